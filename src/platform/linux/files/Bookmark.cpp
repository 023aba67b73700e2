#include "platform/linux/files/Bookmark.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

namespace quillmere {
namespace {

/// A path that is not UTF-8 cannot stand in JSON as it is; its coded URL can.
QString textOf(const FileURL& url) {
  const QString path = url.displayPath();
  const bool isText = FileURL::fromPath(path) == url;
  return isText ? path : QString::fromStdString(url.coded());
}

FileURL urlOf(const QString& text) {
  if (text.startsWith(QLatin1Char('/'))) return FileURL::fromPath(text);
  return FileURL::fromCoded(text.toStdString()).value_or(FileURL());
}

std::optional<std::string> optionalText(const QJsonValue& value) {
  return value.isString() ? std::optional(value.toString().toStdString()) : std::nullopt;
}

}  // namespace

std::optional<ExpectedDisk> Bookmark::disk() const {
  if (!isDirectory || !mountPoint) return std::nullopt;
  const bool isMountPoint = url.path() == *mountPoint;
  return ExpectedDisk{url, *mountPoint, volume, isMountPoint ? file : std::nullopt};
}

QByteArray Bookmark::encoded() const {
  QJsonObject object;
  object[QLatin1String("path")] = textOf(url);
  if (volume) object[QLatin1String("volume")] = QString::fromStdString(*volume);
  // As text: a JSON number cannot hold every 64-bit file number.
  if (file) object[QLatin1String("file")] = QString::number(*file);
  if (creationDate) object[QLatin1String("creationDate")] = creationDate->seconds;
  if (isDirectory) object[QLatin1String("directory")] = true;
  if (mountPoint) object[QLatin1String("mountPoint")] = textOf(FileURL::fromPath(*mountPoint));
  return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

std::optional<Bookmark> Bookmark::decode(const QByteArray& bytes) {
  const QJsonObject object = QJsonDocument::fromJson(bytes).object();
  Bookmark bookmark;
  bookmark.url = urlOf(object.value(QLatin1String("path")).toString());
  if (bookmark.url.isEmpty() || bookmark.url.path().find('\0') != std::string::npos) return std::nullopt;
  bookmark.volume = optionalText(object.value(QLatin1String("volume")));
  const QJsonValue file = object.value(QLatin1String("file"));
  bool isNumber = false;
  const uint64_t number = file.toString().toULongLong(&isNumber);
  if (isNumber) bookmark.file = number;
  const QJsonValue created = object.value(QLatin1String("creationDate"));
  if (created.isDouble()) bookmark.creationDate = Date{created.toDouble()};
  bookmark.isDirectory = object.value(QLatin1String("directory")).toBool();
  const FileURL mountPoint = urlOf(object.value(QLatin1String("mountPoint")).toString());
  if (!mountPoint.isEmpty()) bookmark.mountPoint = mountPoint.path();
  return bookmark;
}

}  // namespace quillmere
