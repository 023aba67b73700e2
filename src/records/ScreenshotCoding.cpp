#include "records/ScreenshotCoding.h"

#include <charconv>
#include <cmath>
#include <cstring>

// Every machine that runs this has it; it finds the ends of long texts 16 bytes at a time.
#ifdef __SSE2__
#define RAPIDJSON_SSE2
#endif
#include <rapidjson/document.h>
#include <QtCore/QUtf8StringView>

namespace quillmere {
namespace {

using rapidjson::Value;

// --- Writing ---

void appendString(std::string& out, std::string_view text) {
  const auto size = static_cast<qsizetype>(text.size());
  if (!QUtf8StringView(text.data(), size).isValidUtf8()) {
    // Bytes that are not UTF-8 would make the whole list unreadable.
    return appendString(out, QString::fromUtf8(text.data(), size).toStdString());
  }
  constexpr std::string_view kHex = "0123456789abcdef";
  out.push_back('"');
  size_t plainFrom = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    const auto c = static_cast<unsigned char>(text[i]);
    if (c >= 0x20 && c != '"' && c != '\\' && c != '/') continue;
    out.append(text, plainFrom, i - plainFrom);
    plainFrom = i + 1;
    out.push_back('\\');
    switch (c) {
      case '\b':
        out.push_back('b');
        break;
      case '\f':
        out.push_back('f');
        break;
      case '\n':
        out.push_back('n');
        break;
      case '\r':
        out.push_back('r');
        break;
      case '\t':
        out.push_back('t');
        break;
      case '"':
      case '\\':
      case '/':
        out.push_back(static_cast<char>(c));
        break;
      default:
        out += "u00";
        out.push_back(kHex[c >> 4]);
        out.push_back(kHex[c & 15]);
    }
  }
  out.append(text, plainFrom, text.size() - plainFrom);
  out.push_back('"');
}

void appendDouble(std::string& out, double number) {
  // Exponents only where plain digits would be absurd: from 2^54 up and below a ten-thousandth.
  constexpr double kPlainBelow = 18014398509481984.0;
  constexpr double kPlainFrom = 1e-4;
  const double magnitude = std::abs(number);
  const bool isPlain = number == 0 || (magnitude >= kPlainFrom && magnitude < kPlainBelow);
  std::array<char, 64> digits{};
  const auto [end, error] =
      std::to_chars(digits.data(), digits.data() + digits.size(), std::isfinite(number) ? number : 0.0,
                    isPlain ? std::chars_format::fixed : std::chars_format::scientific);
  out.append(digits.data(), end);
}

class ObjectWriter {
 public:
  explicit ObjectWriter(std::string& out) : out_(out) { out_.push_back('{'); }
  void text(std::string_view key, std::string_view value) {
    start(key);
    appendString(out_, value);
  }
  void text(std::string_view key, const std::optional<QByteArray>& value) {
    if (value) text(key, std::string_view(value->constData(), static_cast<size_t>(value->size())));
  }
  void number(std::string_view key, double value) {
    start(key);
    appendDouble(out_, value);
  }
  template <std::integral Integer>
  void integer(std::string_view key, Integer value) {
    start(key);
    out_ += std::to_string(value);
  }
  void boolean(std::string_view key, const std::optional<bool>& value) {
    if (!value) return;
    start(key);
    out_ += *value ? "true" : "false";
  }
  void start(std::string_view key) {
    if (!isFirst_) out_.push_back(',');
    isFirst_ = false;
    out_.push_back('"');
    out_ += key;
    out_ += "\":";
  }
  void finish() { out_.push_back('}'); }

 private:
  std::string& out_;
  bool isFirst_ = true;
};

void appendEncoded(std::string& out, const FileIdentity& identity) {
  ObjectWriter object(out);
  if (identity.volume) object.text("volume", *identity.volume);
  object.integer("file", identity.file);
  if (identity.creationDate) object.number("creationDate", identity.creationDate->seconds);
  if (identity.size) object.integer("size", *identity.size);
  if (identity.modificationDate) object.number("modificationDate", identity.modificationDate->seconds);
  object.finish();
}

// --- Reading ---

/// Builds the document, but reads numbers itself: the parser's own exact reading runs out of its tables on hostile
/// exponents. What no number can hold ends the parsing.
class DocumentBuilder {
 public:
  explicit DocumentBuilder(rapidjson::Document& document) : document_(document) {}

  bool RawNumber(const char* text, rapidjson::SizeType length, bool) {
    const std::string_view digits(text, length);
    const bool isWhole = digits.find_first_of(".eE") == std::string_view::npos;
    int64_t whole = 0;
    if (isWhole && read(digits, whole)) return document_.Int64(whole);
    uint64_t large = 0;
    if (isWhole && read(digits, large)) return document_.Uint64(large);
    double number = 0;
    return read(digits, number) && document_.Double(number);
  }

  bool Null() { return document_.Null(); }
  bool Bool(bool value) { return document_.Bool(value); }
  bool Int(int value) { return document_.Int(value); }
  bool Uint(unsigned value) { return document_.Uint(value); }
  bool Int64(int64_t value) { return document_.Int64(value); }
  bool Uint64(uint64_t value) { return document_.Uint64(value); }
  bool Double(double value) { return document_.Double(value); }
  bool String(const char* text, rapidjson::SizeType length, bool copy) { return document_.String(text, length, copy); }
  bool Key(const char* text, rapidjson::SizeType length, bool copy) { return document_.Key(text, length, copy); }
  bool StartObject() { return document_.StartObject(); }
  bool EndObject(rapidjson::SizeType count) { return document_.EndObject(count); }
  bool StartArray() { return document_.StartArray(); }
  bool EndArray(rapidjson::SizeType count) { return document_.EndArray(count); }

 private:
  template <typename Number>
  static bool read(std::string_view digits, Number& number) {
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return error == std::errc() && end == digits.data() + digits.size();
  }

  rapidjson::Document& document_;
};

/// The document's texts point into `bytes`.
bool parseInPlace(char* bytes, size_t size, rapidjson::Document& document) {
  // The parser reads whole blocks of 16 bytes, the last one past the text's end.
  std::memset(bytes + size, 0, kRoomBehindList);
  // Iterative: deeply nested input must not exhaust the stack.
  constexpr unsigned kFlags =
      rapidjson::kParseInsituFlag | rapidjson::kParseIterativeFlag | rapidjson::kParseNumbersAsStringsFlag;
  bool isParsed = false;
  auto generator = [&](rapidjson::Document& target) {
    DocumentBuilder builder(target);
    rapidjson::InsituStringStream stream(bytes);
    rapidjson::Reader reader;
    isParsed = !reader.Parse<kFlags>(stream, builder).IsError();
    return isParsed;
  };
  document.Populate(generator);
  return isParsed;
}

/// Reads the keys of one object. A key that is absent or null reads as none; a value of another type is a failure,
/// which stays noted.
class ObjectReader {
 public:
  explicit ObjectReader(const Value& object) : object_(object) {}
  bool failed() const { return failed_; }
  void fail() { failed_ = true; }

  const Value* find(const char* key) const {
    const auto member = object_.FindMember(key);
    return member == object_.MemberEnd() || member->value.IsNull() ? nullptr : &member->value;
  }
  std::optional<std::string_view> text(const char* key) {
    return read<std::string_view>(
        key, [](const Value& v) { return v.IsString(); },
        [](const Value& v) { return std::string_view(v.GetString(), v.GetStringLength()); });
  }
  std::optional<QByteArray> bytes(const char* key) {
    const auto value = text(key);
    if (!value) return std::nullopt;
    return QByteArray(value->data(), static_cast<qsizetype>(value->size()));
  }
  std::optional<Date> date(const char* key) {
    return read<Date>(
        key, [](const Value& v) { return v.IsNumber(); }, [](const Value& v) { return Date{v.GetDouble()}; });
  }
  std::optional<bool> boolean(const char* key) {
    return read<bool>(
        key, [](const Value& v) { return v.IsBool(); }, [](const Value& v) { return v.GetBool(); });
  }
  std::optional<uint64_t> unsignedNumber(const char* key) {
    return read<uint64_t>(
        key, [](const Value& v) { return v.IsUint64(); }, [](const Value& v) { return v.GetUint64(); });
  }
  std::optional<int64_t> signedNumber(const char* key) {
    return read<int64_t>(
        key, [](const Value& v) { return v.IsInt64(); }, [](const Value& v) { return v.GetInt64(); });
  }
  std::optional<UUID> uuid(const char* key) {
    const auto value = text(key);
    if (!value) return std::nullopt;
    return orFail(uuidFromText(*value));
  }
  std::optional<QByteArray> base64(const char* key) {
    const auto value = text(key);
    if (!value) return std::nullopt;
    const auto decoded =
        QByteArray::fromBase64Encoding(QByteArray::fromRawData(value->data(), static_cast<qsizetype>(value->size())),
                                       QByteArray::Base64Encoding | QByteArray::AbortOnBase64DecodingErrors);
    return orFail(decoded ? std::optional(*decoded) : std::nullopt);
  }
  template <typename T>
  std::optional<T> orFail(std::optional<T> value) {
    if (!value) failed_ = true;
    return value;
  }

 private:
  template <typename T, typename Is, typename Get>
  std::optional<T> read(const char* key, Is is, Get get) {
    const Value* value = find(key);
    if (!value) return std::nullopt;
    if (!is(*value)) {
      failed_ = true;
      return std::nullopt;
    }
    return get(*value);
  }

  const Value& object_;
  bool failed_ = false;
};

std::optional<FileIdentity> decodeIdentity(const Value& value) {
  if (!value.IsObject()) return std::nullopt;
  ObjectReader reader(value);
  FileIdentity identity;
  if (const auto volume = reader.text("volume")) identity.volume = std::string(*volume);
  const auto file = reader.orFail(reader.unsignedNumber("file"));
  identity.creationDate = reader.date("creationDate");
  identity.size = reader.signedNumber("size");
  identity.modificationDate = reader.date("modificationDate");
  if (reader.failed()) return std::nullopt;
  identity.file = *file;
  return identity;
}

/// The identity, or the bare file number that the oldest lists kept. An error in the former counts as absent; one in
/// the latter fails the record.
std::optional<FileIdentity> decodeAnyIdentity(ObjectReader& reader) {
  if (const Value* value = reader.find("fileIdentity")) {
    if (auto identity = decodeIdentity(*value)) return identity;
  }
  const auto number = reader.unsignedNumber("fileIdentifier");
  if (!number) return std::nullopt;
  FileIdentity identity;
  identity.file = *number;
  return identity;
}

/// The code, or `other` for the free-text note that the oldest lists kept in its place.
std::optional<AnalysisFailureCode> decodeFailure(ObjectReader& reader) {
  if (const auto coded = reader.text("analysisFailure")) return analysisFailureCode(*coded);
  if (!reader.failed() && reader.text("analysisNote")) return AnalysisFailureCode::other;
  return std::nullopt;
}

std::optional<ScreenshotItem> decodeItem(const Value& value) {
  if (!value.IsObject()) return std::nullopt;
  ObjectReader reader(value);
  ScreenshotItem item;
  const auto id = reader.orFail(reader.uuid("id"));
  const auto coded = reader.orFail(reader.text("url"));
  const auto createdAt = reader.orFail(reader.date("createdAt"));
  const auto state = reader.orFail(reader.text("state"));
  if (reader.failed()) return std::nullopt;
  const auto url = reader.orFail(FileURL::fromCoded(*coded));
  const auto knownState = reader.orFail(itemState(*state));
  if (reader.failed()) return std::nullopt;

  item.id = *id;
  item.url = *url;
  item.createdAt = *createdAt;
  item.state = *knownState;
  item.expiresAt = reader.date("expiresAt");
  item.suggestedName = reader.bytes("suggestedName");
  item.recognizedText = reader.bytes("recognizedText");
  item.imageDescription = reader.bytes("imageDescription");
  item.analysisFailure = decodeFailure(reader);
  item.analysisRetryable = reader.boolean("analysisRetryable");
  item.sourceItemID = reader.uuid("sourceItemID");
  item.fileBookmark = reader.base64("fileBookmark");
  item.fileIdentity = decodeAnyIdentity(reader);
  item.arrivedFromElsewhere = reader.boolean("arrivedFromElsewhere");
  // As text: a kind that a newer version knows must not cost the record.
  if (const auto kind = reader.text("captureKind")) item.captureKind = captureKind(*kind);
  // Nothing but what can be found again: in a form that is not known it costs no record.
  if (const Value* known = reader.find("knownWindows"); known && known->IsString()) {
    item.knownWindows = QByteArray(known->GetString(), static_cast<qsizetype>(known->GetStringLength()));
  }
  item.hasMovedAway = reader.boolean("hasMovedAway");
  if (reader.failed()) return std::nullopt;
  return item;
}

}  // namespace

void appendEncoded(std::string& out, const ScreenshotItem& item) {
  ObjectWriter object(out);
  object.text("id", uuidText(item.id));
  object.text("url", item.url.coded());
  object.number("createdAt", item.createdAt.seconds);
  object.text("state", codedValue(item.state));
  if (item.expiresAt) object.number("expiresAt", item.expiresAt->seconds);
  object.text("suggestedName", item.suggestedName);
  object.text("recognizedText", item.recognizedText);
  object.text("imageDescription", item.imageDescription);
  if (item.analysisFailure) object.text("analysisFailure", codedValue(*item.analysisFailure));
  object.boolean("analysisRetryable", item.analysisRetryable);
  if (item.sourceItemID) object.text("sourceItemID", uuidText(*item.sourceItemID));
  if (item.fileBookmark) object.text("fileBookmark", item.fileBookmark->toBase64().toStdString());
  if (item.fileIdentity) {
    object.start("fileIdentity");
    appendEncoded(out, *item.fileIdentity);
  }
  object.boolean("arrivedFromElsewhere", item.arrivedFromElsewhere);
  if (item.captureKind) object.text("captureKind", codedValue(*item.captureKind));
  object.text("knownWindows", item.knownWindows);
  object.boolean("hasMovedAway", item.hasMovedAway);
  object.finish();
}

std::optional<DecodedList> decodeList(std::string& bytes) {
  const size_t size = bytes.size();
  bytes.append(kRoomBehindList, '\0');
  return decodeList(bytes.data(), size);
}

std::optional<DecodedList> decodeList(char* bytes, size_t size) {
  // A NUL would end the text early and hide what stands behind it.
  if (std::memchr(bytes, 0, size)) return std::nullopt;
  // At once and vectorised, where the parser would look at each byte.
  if (!QUtf8StringView(bytes, static_cast<qsizetype>(size)).isValidUtf8()) return std::nullopt;
  rapidjson::Document document;
  if (!parseInPlace(bytes, size, document)) return std::nullopt;

  DecodedList list;
  const Value* items = &document;
  if (document.IsObject()) {
    ObjectReader envelope(document);
    const auto version = envelope.orFail(envelope.signedNumber("version"));
    items = envelope.find("items");
    if (envelope.failed() || !items) return std::nullopt;
    list.version = *version;
  }
  if (!items->IsArray()) return std::nullopt;

  list.items.reserve(items->Size());
  for (const Value& value : items->GetArray()) {
    if (auto item = decodeItem(value)) {
      list.items.push_back(std::move(*item));
    } else {
      ++list.dropped;
    }
  }
  return list;
}

}  // namespace quillmere
