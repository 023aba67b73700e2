#include "foundation/UserDefaults.h"

#include <QtCore/QJsonDocument>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <limits>

#include "foundation/FileCopy.h"
#include "foundation/FileStatus.h"

namespace quillmere {
namespace {

constexpr std::filesystem::perms ownerAlone() {
  return std::filesystem::perms::owner_read | std::filesystem::perms::owner_write;
}

/// None for what is no object: unreadable values give defaults, never an error.
std::optional<QJsonObject> readObject(const FileURL& file) {
  const auto bytes = readFile(file);
  const auto document = bytes ? QJsonDocument::fromJson(QByteArray::fromStdString(*bytes)) : QJsonDocument();
  return document.isObject() ? std::optional(document.object()) : std::nullopt;
}

bool writeObject(const FileURL& file, const QJsonObject& object) {
  return replaceFile(file, QJsonDocument(object).toJson(QJsonDocument::Indented).toStdString());
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
void repair(const FileURL& asked) {
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
  writeObject(file, settingsIn(text));
}

}  // namespace

UserDefaults::UserDefaults(const QString& filePath) : file_(FileURL::fromPath(filePath)) {
  removeUnfinished(file_);
  repair(file_);
  // One that an earlier version or a person made may be open to others.
  std::error_code ignored;
  std::filesystem::permissions(filePath.toStdString(), ownerAlone(), ignored);
  values_ = readObject(file_).value_or(QJsonObject());
}

std::optional<bool> UserDefaults::boolean(const QString& key) const {
  const QJsonValue value = values_.value(key);
  return value.isBool() ? std::optional(value.toBool()) : std::nullopt;
}

std::optional<int> UserDefaults::integer(const QString& key) const {
  const QJsonValue value = values_.value(key);
  if (!value.isDouble()) return std::nullopt;
  const double number = value.toDouble();
  using Limits = std::numeric_limits<int>;
  if (number != std::trunc(number) || number < Limits::min() || number > Limits::max()) return std::nullopt;
  return static_cast<int>(number);
}

std::optional<QString> UserDefaults::text(const QString& key) const {
  const QJsonValue value = values_.value(key);
  return value.isString() ? std::optional(value.toString()) : std::nullopt;
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
  write(key, QJsonValue::Undefined);
}

/// What another program has changed in the file meanwhile is kept.
bool UserDefaults::write(const QString& key, const QJsonValue& value) {
  unwritten_[key] = value;
  const auto present = readObject(file_);
  if (present) values_ = *present;
  // An undefined value removes its key.
  for (const auto& [name, change] : unwritten_) values_[name] = change;
  // What stands there already needs no disk to be waited for.
  if (present != values_ && !writeObject(file_, values_)) return false;
  unwritten_ = {};
  return true;
}

}  // namespace quillmere
