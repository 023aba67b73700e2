#include "foundation/UserDefaults.h"

#include <QtCore/QIODevice>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QSettings>
#include <QtCore/QVariant>
#include <cmath>
#include <limits>

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

}  // namespace

UserDefaults::UserDefaults(const QString& filePath) : settings_(std::make_unique<QSettings>(filePath, jsonFormat())) {}
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

void UserDefaults::set(const QString& key, bool value) {
  write(key, value);
}
void UserDefaults::set(const QString& key, int value) {
  write(key, value);
}
void UserDefaults::set(const QString& key, const QString& value) {
  write(key, value);
}
void UserDefaults::set(const QString& key, const QByteArray& value) {
  write(key, QString::fromLatin1(value.toBase64()));
}

void UserDefaults::remove(const QString& key) {
  settings_->remove(key);
  settings_->sync();
}

void UserDefaults::write(const QString& key, const QVariant& value) {
  settings_->setValue(key, value);
  settings_->sync();
}

}  // namespace quillmere
