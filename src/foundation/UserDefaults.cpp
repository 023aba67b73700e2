#include "foundation/UserDefaults.h"

#include <QtCore/QFile>
#include <QtCore/QIODevice>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QSaveFile>
#include <QtCore/QSettings>
#include <QtCore/QVariant>
#include <cmath>
#include <cstdio>
#include <limits>

#include "foundation/FileCopy.h"
#include "foundation/FileStatus.h"

namespace quillmere {
namespace {

bool readJson(QIODevice& device, QSettings::SettingsMap& map) {
  const auto document = QJsonDocument::fromJson(device.readAll());
  // A file that is not an object reads as no settings: unreadable values give defaults, never an error.
  map = document.object().toVariantMap();
  return true;
}

bool writeJson(QIODevice& device, const QSettings::SettingsMap& map) {
  const QByteArray bytes = QJsonDocument(QJsonObject::fromVariantMap(map)).toJson(QJsonDocument::Indented);
  return device.write(bytes) == bytes.size();
}

QSettings::Format jsonFormat() {
  static const QSettings::Format format =
      QSettings::registerFormat(QStringLiteral("json"), readJson, writeJson, Qt::CaseSensitive);
  return format;
}

/// As they are written: one setting a line.
QJsonObject settingsIn(const QByteArray& damaged) {
  QJsonObject kept;
  for (QByteArray line : damaged.split('\n')) {
    line = line.trimmed();
    if (line.endsWith(',')) line.chop(1);
    const QJsonObject one = QJsonDocument::fromJson("{" + line + "}").object();
    for (auto setting = one.begin(); setting != one.end(); ++setting) kept[setting.key()] = setting.value();
  }
  return kept;
}

/// One damaged byte must not cost all settings, the chosen folder among them.
void repair(const QString& path) {
  const FileURL asked = FileURL::fromPath(path);
  const FileURL file = asked.resolvingSymlinks().value_or(asked);
  const auto status = fileStatus(file);
  // Reading a named pipe would wait for ever.
  if (status && status->kind == FileStatus::Kind::other) {
    ::rename(file.c_str(), file.parent().appending(file.stem() + ".no-file").c_str());
    return;
  }
  const auto bytes = readFile(file);
  if (!bytes || bytes->empty()) return;
  const QByteArray text = QByteArray::fromStdString(*bytes);
  if (QJsonDocument::fromJson(text).isObject()) return;
  if (!copyAside(file, file.parent(), file.stem() + ".damaged")) return;
  QSaveFile repaired(QString::fromLocal8Bit(file.c_str()));
  if (!repaired.open(QIODevice::WriteOnly)) return;
  repaired.write(QJsonDocument(settingsIn(text)).toJson(QJsonDocument::Indented));
  repaired.commit();
}

}  // namespace

UserDefaults::UserDefaults(const QString& filePath) {
  repair(filePath);
  settings_ = std::make_unique<QSettings>(filePath, jsonFormat());
}
UserDefaults::~UserDefaults() = default;

std::optional<bool> UserDefaults::boolean(const QString& key) const {
  const QVariant value = settings_->value(key);
  if (value.typeId() != QMetaType::Bool) return std::nullopt;
  return value.toBool();
}

std::optional<int> UserDefaults::integer(const QString& key) const {
  const QVariant value = settings_->value(key);
  const int type = value.typeId();
  if (type == QMetaType::Int) return value.toInt();
  if (type != QMetaType::Double && type != QMetaType::LongLong) return std::nullopt;
  const double number = value.toDouble();
  using Limits = std::numeric_limits<int>;
  if (number != std::trunc(number) || number < Limits::min() || number > Limits::max()) return std::nullopt;
  return static_cast<int>(number);
}

std::optional<QString> UserDefaults::text(const QString& key) const {
  const QVariant value = settings_->value(key);
  if (value.typeId() != QMetaType::QString) return std::nullopt;
  return value.toString();
}

std::optional<QByteArray> UserDefaults::data(const QString& key) const {
  const auto coded = text(key);
  if (!coded) return std::nullopt;
  const auto decoded = QByteArray::fromBase64Encoding(coded->toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
  if (!decoded) return std::nullopt;
  return *decoded;
}

bool UserDefaults::set(const QString& key, bool value) {
  return write(key, value);
}
bool UserDefaults::set(const QString& key, int value) {
  return write(key, value);
}
bool UserDefaults::set(const QString& key, const QString& value) {
  return write(key, value);
}
bool UserDefaults::set(const QString& key, const QByteArray& value) {
  return write(key, QString::fromLatin1(value.toBase64()));
}

void UserDefaults::remove(const QString& key) {
  settings_->remove(key);
  settings_->sync();
}

bool UserDefaults::write(const QString& key, const QVariant& value) {
  settings_->setValue(key, value);
  settings_->sync();
  QFile::setPermissions(settings_->fileName(), QFile::ReadOwner | QFile::WriteOwner);
  // Asked of the file: the status of QSettings tells of the first failure for ever.
  const auto bytes = readFile(FileURL::fromPath(settings_->fileName()));
  const auto object = bytes ? QJsonDocument::fromJson(QByteArray::fromStdString(*bytes)).object() : QJsonObject();
  return object.value(key) == QJsonValue::fromVariant(value);
}

}  // namespace quillmere
