#include "update/UpdateConfiguration.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QUrl>

#include "foundation/FileStatus.h"
#include "update/TrustedPlace.h"

namespace quillmere {
namespace {

constexpr int64_t kMostBytes = 16384;
constexpr int kKeyBytes = 32;
const QString kPackage = QStringLiteral("package");
const QString kSingleFile = QStringLiteral("single-file");

FileURL prefixOf(const FileURL& program) {
  return program.parent().parent();
}

std::optional<QByteArray> decodedKey(const QString& text) {
  const auto key = QByteArray::fromBase64Encoding(text.toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
  if (!key || key.decoded.size() != kKeyBytes) return std::nullopt;
  return key.decoded;
}

std::optional<UpdateConfiguration> ofTexts(const QString& feed, const QString& key, const QString& form,
                                           const FileURL& program) {
  const QUrl url(feed, QUrl::StrictMode);
  const auto decoded = decodedKey(key);
  const bool isWeb = url.isValid() && url.scheme() == QLatin1String("https") && !url.host().isEmpty();
  if (!isWeb || !url.userInfo().isEmpty() || !decoded || (form != kPackage && form != kSingleFile)) return std::nullopt;
  return UpdateConfiguration{.feed = url.toEncoded(),
                             .key = *decoded,
                             .authority = {},
                             .isSingleFile = form == kSingleFile,
                             .library = prefixOf(program).appending("lib/quillmere/libquillmere-update.so"),
                             .program = program};
}

FileURL packagersFile(const FileURL& program) {
  return prefixOf(program).appending("share/quillmere/update.json");
}

}  // namespace

std::optional<UpdateConfiguration> UpdateConfiguration::read(const QByteArray& json, const FileURL& program) {
  const QJsonDocument document = QJsonDocument::fromJson(json);
  if (!document.isObject()) return std::nullopt;
  QJsonObject values = document.object();
  for (const QJsonValue value : std::as_const(values)) {
    if (!value.isString()) return std::nullopt;
  }
  const auto take = [&](const char* name) { return values.take(QLatin1String(name)).toString(); };
  const QString feed = take("url"), key = take("key"), authority = take("authority"), form = take("form");
  // A word that is misspelt must not be overlooked.
  if (!values.isEmpty() || authority.contains(QLatin1Char('/'))) return std::nullopt;
  auto configuration = ofTexts(feed, key, form.isEmpty() ? kPackage : form, program);
  if (configuration && !authority.isEmpty()) {
    configuration->authority = packagersFile(program).parent().appending(authority.toStdString());
    if (!isAsSafeAsTheProgram(configuration->authority, program)) return std::nullopt;
  }
  return configuration;
}

std::optional<UpdateConfiguration> UpdateConfiguration::ofProgram(const FileURL& program) {
  const FileURL file = packagersFile(program);
  if (isAbsent(file)) {
    return ofTexts(QStringLiteral(QUILLMERE_UPDATE_FEED), QStringLiteral(QUILLMERE_UPDATE_KEY),
                   QStringLiteral(QUILLMERE_UPDATE_FORM), program);
  }
  if (!isAsSafeAsTheProgram(file, program)) return std::nullopt;
  const auto bytes = readFileItself(file, kMostBytes);
  return bytes ? read(QByteArray::fromStdString(*bytes), program) : std::nullopt;
}

}  // namespace quillmere
