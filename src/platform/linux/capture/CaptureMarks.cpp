#include "platform/linux/capture/CaptureMarks.h"

#include <fcntl.h>
#include <unistd.h>
#include <QtCore/QDateTime>
#include <QtCore/QRegularExpression>
#include <algorithm>
#include <array>
#include <cerrno>

#include "platform/linux/capture/CaptureNames.h"
#include "records/PictureFormat.h"

namespace quillmere::CaptureMarks {
namespace {

uint32_t bigEndian(const unsigned char* bytes) {
  return (uint32_t{bytes[0]} << 24) | (uint32_t{bytes[1]} << 16) | (uint32_t{bytes[2]} << 8) | bytes[3];
}

std::pair<std::string, std::string> splitText(std::string_view data) {
  const auto end = data.find('\0');
  if (end == std::string_view::npos) return {};
  return {std::string(data.substr(0, end)), std::string(data.substr(end + 1))};
}

/// iTXt: key, NUL, compression flag, method, language, NUL, translated key, NUL, UTF-8 text.
std::pair<std::string, std::string> splitInternationalText(std::string_view data) {
  const auto end = data.find('\0');
  if (end == std::string_view::npos || end + 3 > data.size() || data[end + 1] != 0) return {};
  std::string_view rest = data.substr(end + 3);
  for (int field = 0; field < 2; ++field) {
    const auto stop = rest.find('\0');
    if (stop == std::string_view::npos) return {};
    rest.remove_prefix(stop + 1);
  }
  return {std::string(data.substr(0, end)), std::string(rest)};
}

bool readAt(int descriptor, int64_t offset, void* into, size_t count) {
  ssize_t got = 0;
  do {
    got = ::pread(descriptor, into, count, offset);
  } while (got < 0 && errno == EINTR);
  return got == static_cast<ssize_t>(count);
}

TextChunks readChunks(int descriptor) {
  const std::string_view wanted = traits(PictureFormat::png).signature.bytes;
  constexpr int64_t kLimit = 1 << 20;
  TextChunks chunks;
  std::array<char, 8> signature{};
  if (!readAt(descriptor, 0, signature.data(), signature.size()) ||
      std::string_view(signature.data(), signature.size()) != wanted) {
    return chunks;
  }
  int64_t offset = 8;
  while (offset < kLimit) {
    std::array<unsigned char, 8> head{};
    if (!readAt(descriptor, offset, head.data(), head.size())) break;
    const uint32_t length = bigEndian(head.data());
    const std::string_view type(reinterpret_cast<const char*>(head.data()) + 4, 4);
    if (type == "IDAT" || type == "IEND" || offset + length > kLimit) break;
    if (type == "tEXt" || type == "iTXt") {
      std::string data(length, '\0');
      if (!readAt(descriptor, offset + 8, data.data(), length)) break;
      auto chunk = type == "tEXt" ? splitText(data) : splitInternationalText(data);
      if (!chunk.first.empty()) chunks.push_back(std::move(chunk));
    }
    offset += 12 + int64_t{length};
  }
  return chunks;
}

}  // namespace

bool isCaptureText(const TextChunks& chunks) {
  return std::any_of(chunks.begin(), chunks.end(), [](const auto& chunk) {
    const auto& [key, value] = chunk;
    if (key == "Software") return value == "gnome-screenshot" || value == "mate-screenshot";
    // Spectacle's, written by way of Qt under their own names.
    if (key == "windowTitle" || key == "screen" || key == "logicalX" || key == "subGeometryList") return true;
    return key == "XML:com.adobe.xmp" &&
           value.find("<exif:UserComment>Screenshot</exif:UserComment>") != std::string::npos;
  });
}

std::optional<QDate> dayInText(const TextChunks& chunks) {
  // ISO 8601, as GNOME's tools and the camera data of other systems have it.
  static const QRegularExpression creation(QStringLiteral("^(\\d{4})-(\\d\\d)-(\\d\\d)T"));
  static const QRegularExpression camera(
      QStringLiteral("(?:DateTimeOriginal|DateCreated)(?:>|=[\"'])(\\d{4})-(\\d\\d)-(\\d\\d)T"));
  for (const auto& [key, value] : chunks) {
    const bool isCamera = key == "XML:com.adobe.xmp";
    if (!isCamera && key != "Creation Time") continue;
    const auto match = (isCamera ? camera : creation).match(QString::fromUtf8(value));
    const QDate day(match.captured(1).toInt(), match.captured(2).toInt(), match.captured(3).toInt());
    if (day.isValid()) return day;
  }
  return std::nullopt;
}

TextChunks readTextChunks(const FileURL& url) {
  const int descriptor = ::open(url.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) return {};
  TextChunks chunks = readChunks(descriptor);
  ::close(descriptor);
  return chunks;
}

bool marksCapture(const FileURL& url) {
  return CaptureName::of(url.lastPathComponent()) || isCaptureText(readTextChunks(url));
}

std::optional<Date> captureDate(const FileURL& url) {
  std::optional<QDate> day = dayInText(readTextChunks(url));
  if (const auto name = CaptureName::of(url.lastPathComponent()); name && !day) day = name->day;
  if (!day) return std::nullopt;
  return Date::fromUnix(day->addDays(1).startOfDay().toSecsSinceEpoch(), 0);
}

}  // namespace quillmere::CaptureMarks
