#include "update/library/UpdateFeed.h"

#include <rapidjson/reader.h>
#include <QtCore/QDateTime>
#include <QtCore/QHash>
#include <QtCore/QTimeZone>
#include <algorithm>
#include <optional>

namespace quillmere {
namespace {

constexpr int kFormat = 1;
constexpr qsizetype kMostText = 16 * 1024;
const QByteArray kName = QByteArrayLiteral("quillmere-update-feed");

/// Takes one object of texts and whole numbers and stops at anything else, so that nothing nested is ever followed.
class FlatObject : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, FlatObject> {
 public:
  bool Default() { return false; }
  bool StartObject() { return !std::exchange(isOpen_, true); }
  bool EndObject(rapidjson::SizeType) { return true; }
  bool Key(const char* text, rapidjson::SizeType length, bool) {
    key_ = QByteArray(text, length);
    return !texts_.contains(key_) && !numbers_.contains(key_);
  }
  bool String(const char* text, rapidjson::SizeType length, bool) {
    texts_.insert(key_, QByteArray(text, length));
    return isOpen_;
  }
  bool Uint(unsigned number) { return Uint64(number); }
  bool Uint64(uint64_t number) {
    numbers_.insert(key_, number);
    return isOpen_;
  }

  // Each is taken out, so that what is left is what nobody knows.
  std::optional<QString> text(const char* key) {
    const auto found = texts_.find(QByteArray(key));
    if (found == texts_.end()) return std::nullopt;
    const QByteArray bytes = *found;
    texts_.erase(found);
    return QString::fromUtf8(bytes);
  }
  std::optional<uint64_t> number(const char* key) {
    const auto found = numbers_.find(QByteArray(key));
    if (found == numbers_.end()) return std::nullopt;
    const uint64_t value = *found;
    numbers_.erase(found);
    return value;
  }
  bool isEmpty() const { return texts_.isEmpty() && numbers_.isEmpty(); }

 private:
  bool isOpen_ = false;
  QByteArray key_;
  QHash<QByteArray, QByteArray> texts_;
  QHash<QByteArray, uint64_t> numbers_;
};

std::optional<QByteArray> signatureOf(const std::optional<QString>& text) {
  if (!text) return std::nullopt;
  const auto read = QByteArray::fromBase64Encoding(text->toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
  if (!read || read.decoded.size() != FeedSignature::kSignatureBytes) return std::nullopt;
  return read.decoded;
}

/// "2026-12-31T00:00:00Z" and nothing else.
std::optional<Date> dateOf(const std::optional<QString>& text) {
  if (!text || !text->endsWith(QLatin1Char('Z'))) return std::nullopt;
  QDateTime moment = QDateTime::fromString(text->chopped(1), QStringLiteral("yyyy-MM-ddTHH:mm:ss"));
  if (!moment.isValid()) return std::nullopt;
  moment.setTimeSpec(Qt::UTC);
  return Date::fromDateTime(moment);
}

std::optional<QUrl> addressOf(const std::optional<QString>& text) {
  const QUrl url(text.value_or(QString()), QUrl::StrictMode);
  const bool isWeb = url.isValid() && url.scheme() == QLatin1String("https") && !url.host().isEmpty();
  return isWeb && url.userInfo().isEmpty() ? std::optional(url) : std::nullopt;
}

/// Lines and letters; nothing that hides or turns around what stands beside it.
QString readable(QString text) {
  const auto isHidden = [](QChar c) {
    const auto category = c.category();
    return c != QLatin1Char('\n') && (category == QChar::Other_Control || category == QChar::Other_Format);
  };
  text.erase(std::remove_if(text.begin(), text.end(), isHidden), text.end());
  return text.trimmed();
}

}  // namespace

Result<UpdateFeed, UpdateFailure> UpdateFeed::read(const QByteArray& file, const FeedSignature& maker) {
  if (file.size() > kMostBytes) return UpdateFailure::tooLarge;
  const auto lineEnd = file.indexOf('\n');
  const QList<QByteArray> words = file.left(std::max<qsizetype>(lineEnd, 0)).split(' ');
  if (words.size() != 3 || words[0] != kName || words[1] != "ed25519") return UpdateFailure::notSigned;
  const auto signature = signatureOf(QString::fromLatin1(words[2]));
  const QByteArray object = file.mid(lineEnd + 1);
  if (!signature || !maker.isGenuine(kName + '\n' + object, *signature)) return UpdateFailure::notSigned;
  return readObject(object);
}

Result<UpdateFeed, UpdateFailure> UpdateFeed::readObject(const QByteArray& json) {
  if (json.size() > kMostBytes) return UpdateFailure::tooLarge;
  FlatObject values;
  rapidjson::MemoryStream stream(json.constData(), static_cast<size_t>(json.size()));
  rapidjson::Reader reader;
  constexpr unsigned kStrictly = rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag;
  if (!reader.Parse<kStrictly>(stream, values)) return UpdateFailure::badFeed;

  const auto format = values.number("format");
  const auto version = VersionNumber::read(values.text("version").value_or(QString()));
  const auto minimum = VersionNumber::read(values.text("minimumVersion").value_or(QString()));
  const auto expires = dateOf(values.text("expires"));
  const auto package = addressOf(values.text("package"));
  const auto size = values.number("size");
  const auto signature = signatureOf(values.text("signature"));
  const auto notes = values.text("notes");
  const bool isWhole = version && minimum && expires && package && size && signature && notes;
  if (format != kFormat || !isWhole || !values.isEmpty()) return UpdateFailure::badFeed;
  if (*size == 0 || notes->size() > kMostText || *minimum > *version) return UpdateFailure::badFeed;
  if (*size > static_cast<uint64_t>(kMostPackageBytes)) return UpdateFailure::tooLarge;
  return UpdateFeed{*version, *minimum, *expires, *package, static_cast<qint64>(*size), *signature, readable(*notes)};
}

}  // namespace quillmere
