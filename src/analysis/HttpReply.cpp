#include "analysis/HttpReply.h"

#include <QtCore/QLocale>
#include <QtCore/QTimeZone>
#include <algorithm>
#include <string_view>
#include <utility>

namespace quillmere {
namespace {

const QByteArray kLineEnd = "\r\n";
const QByteArray kHeadEnd = "\r\n\r\n";

bool isDigits(const QByteArray& text, qsizetype mostDigits) {
  return !text.isEmpty() && text.size() <= mostDigits &&
         std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

bool isHexDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

bool isTokenCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
         std::string_view("!#$%&'*+-.^_`|~").find(c) != std::string_view::npos;
}

/// A line holds no controls but the tab; a lone CR or LF is where readers begin to disagree.
bool isLine(const QByteArray& line) {
  return std::all_of(line.begin(), line.end(),
                     [](char c) { return static_cast<unsigned char>(c) >= ' ' || c == '\t'; });
}

/// Of "HTTP/1.1 200 OK"; the reason may be missing.
std::optional<int> statusOf(const QByteArray& line) {
  if (!line.startsWith("HTTP/1.1 ") && !line.startsWith("HTTP/1.0 ")) return std::nullopt;
  const QByteArray code = line.mid(9, 3);
  if (code.size() != 3 || !isDigits(code, 3) || (line.size() > 12 && line[12] != ' ')) return std::nullopt;
  const int status = code.toInt();
  return status >= 100 && status < 600 ? std::optional(status) : std::nullopt;
}

}  // namespace

QByteArray HttpReply::header(const QByteArray& lowercaseName) const {
  const auto found = headers.find(lowercaseName);
  return found == headers.end() ? QByteArray() : found->second;
}

std::optional<Date> HttpReply::retryAfter(Date now) const {
  const QByteArray value = header("retry-after");
  if (isDigits(value, 6)) return now + value.toDouble();
  QDateTime moment =
      QLocale::c().toDateTime(QString::fromLatin1(value), QStringLiteral("ddd, dd MMM yyyy hh:mm:ss 'GMT'"));
  if (!moment.isValid()) return std::nullopt;
  moment.setTimeZone(QTimeZone::utc());
  return Date::fromDateTime(moment);
}

HttpReplyParser::State HttpReplyParser::add(QByteArrayView bytes) {
  if (state_ != State::incomplete) return state_;
  buffer_.append(bytes);
  while (step()) {
  }
  return state_;
}

HttpReplyParser::State HttpReplyParser::end() {
  if (state_ == State::incomplete && part_ == Part::bodyToTheEnd) stop(State::whole);
  return state_;
}

bool HttpReplyParser::step() {
  if (state_ != State::incomplete) return false;
  switch (part_) {
    case Part::head:
      return readHead();
    case Part::bodyOfLength:
    case Part::bodyToTheEnd:
    case Part::chunk:
      return moveToBody();
    case Part::chunkSize:
      return readChunkSize();
    case Part::chunkEnd:
      return readChunkEnd();
    case Part::trailer:
      return readTrailer();
  }
  return false;
}

bool HttpReplyParser::readHead() {
  const qsizetype end = buffer_.indexOf(kHeadEnd);
  if (end < 0) return buffer_.size() + headBytes_ > kMostHeadBytes ? stop(State::tooLarge) : false;
  headBytes_ += end + kHeadEnd.size();
  if (headBytes_ > kMostHeadBytes) return stop(State::tooLarge);
  const QByteArray head = buffer_.left(end);
  buffer_.remove(0, end + kHeadEnd.size());
  if (!parseHead(head)) return stop(State::malformed);
  // An interim answer; the real one follows. Nothing here asks to switch protocols.
  if (reply_.status == 101) return stop(State::malformed);
  if (reply_.status >= 200) beginBody();
  return true;
}

bool HttpReplyParser::parseHead(const QByteArray& head) {
  reply_ = {};
  bool isFirst = true;
  for (qsizetype begin = 0; begin <= head.size();) {
    qsizetype end = head.indexOf(kLineEnd, begin);
    if (end < 0) end = head.size();
    const QByteArray line = head.mid(begin, end - begin);
    begin = end + kLineEnd.size();
    if (!isLine(line)) return false;
    if (std::exchange(isFirst, false)) {
      const auto status = statusOf(line);
      if (!status) return false;
      reply_.status = *status;
      continue;
    }
    const qsizetype colon = line.indexOf(':');
    const QByteArray name = line.left(colon).toLower();
    if (colon <= 0 || !std::all_of(name.begin(), name.end(), isTokenCharacter)) return false;
    const bool isNew = reply_.headers.emplace(name, line.mid(colon + 1).trimmed()).second;
    // Where the body ends must be said once.
    if (!isNew && (name == "content-length" || name == "transfer-encoding")) return false;
  }
  return true;
}

void HttpReplyParser::beginBody() {
  const bool hasLength = reply_.headers.contains("content-length");
  const bool hasCoding = reply_.headers.contains("transfer-encoding");
  if (reply_.status == 204 || reply_.status == 304) {
    stop(State::whole);
  } else if (hasCoding) {
    part_ = Part::chunkSize;
    if (hasLength || reply_.header("transfer-encoding").toLower() != "chunked") stop(State::malformed);
  } else if (hasLength) {
    part_ = Part::bodyOfLength;
    const QByteArray length = reply_.header("content-length");
    if (!isDigits(length, 18)) {
      stop(State::malformed);
    } else if (wanted_ = length.toLongLong(); wanted_ > kMostBodyBytes) {
      stop(State::tooLarge);
    }
  } else {
    part_ = Part::bodyToTheEnd;
  }
}

/// Moves what there is of the body, or of the chunk, out of the buffer.
bool HttpReplyParser::moveToBody() {
  const bool isToTheEnd = part_ == Part::bodyToTheEnd;
  const qsizetype count = isToTheEnd ? buffer_.size() : std::min(wanted_, buffer_.size());
  if (reply_.body.size() + count > kMostBodyBytes) return stop(State::tooLarge);
  reply_.body.append(buffer_.constData(), count);
  buffer_.remove(0, count);
  if (isToTheEnd) return false;
  wanted_ -= count;
  if (wanted_ > 0) return false;
  if (part_ == Part::bodyOfLength) return stop(State::whole);
  part_ = Part::chunkEnd;
  return true;
}

bool HttpReplyParser::readChunkSize() {
  const auto line = takeLine();
  if (!line) return false;
  // Extensions say nothing that matters here.
  const QByteArray size = line->split(';').front().trimmed();
  bool isNumber = false;
  wanted_ = size.toLongLong(&isNumber, 16);
  const bool isPlain = std::all_of(size.begin(), size.end(), isHexDigit);
  if (!isNumber || !isPlain) return stop(State::malformed);
  if (wanted_ > kMostBodyBytes) return stop(State::tooLarge);
  part_ = wanted_ == 0 ? Part::trailer : Part::chunk;
  return true;
}

bool HttpReplyParser::readChunkEnd() {
  if (buffer_.size() < kLineEnd.size()) return false;
  if (!buffer_.startsWith(kLineEnd)) return stop(State::malformed);
  buffer_.remove(0, kLineEnd.size());
  part_ = Part::chunkSize;
  return true;
}

bool HttpReplyParser::readTrailer() {
  const auto line = takeLine();
  if (!line) return false;
  return line->isEmpty() ? stop(State::whole) : true;
}

/// Without its end. None when there is none yet, or none that is good.
std::optional<QByteArray> HttpReplyParser::takeLine() {
  const qsizetype end = buffer_.indexOf(kLineEnd);
  const qsizetype length = end < 0 ? buffer_.size() : end;
  if (length > kMostHeadBytes) stop(State::tooLarge);
  if (end < 0 || state_ != State::incomplete) return std::nullopt;
  const QByteArray line = buffer_.left(end);
  buffer_.remove(0, end + kLineEnd.size());
  if (isLine(line)) return line;
  stop(State::malformed);
  return std::nullopt;
}

bool HttpReplyParser::stop(State state) {
  state_ = state;
  buffer_.clear();
  return false;
}

}  // namespace quillmere
