#include "model/Settings.h"

#include <algorithm>

namespace quillmere {

void StoredSetting::read(const UserDefaults& defaults, const QString& key, bool& value) {
  value = defaults.boolean(key).value_or(value);
}
void StoredSetting::read(const UserDefaults& defaults, const QString& key, int& value) {
  value = defaults.integer(key).value_or(value);
}
void StoredSetting::read(const UserDefaults& defaults, const QString& key, QString& value) {
  value = defaults.text(key).value_or(value);
}
void StoredSetting::read(const UserDefaults& defaults, const QString& key, std::optional<QString>& value) {
  if (const auto text = defaults.text(key)) value = text;
}
void StoredSetting::read(const UserDefaults& defaults, const QString& key, ScreenshotNaming& value) {
  const auto text = defaults.text(key);
  if (text == QLatin1String("suggested")) value = ScreenshotNaming::suggested;
  if (text == QLatin1String("original")) value = ScreenshotNaming::original;
}
void StoredSetting::read(const UserDefaults& defaults, const QString& key, TemporaryDuration& value) {
  if (const auto number = defaults.integer(key)) value = temporaryDuration(*number).value_or(value);
}
void StoredSetting::read(const UserDefaults& defaults, const QString& key, std::optional<HotKeyShortcut>& value) {
  const auto stored = defaults.data(key);
  if (const auto shortcut = stored ? StoredShortcut::decode(*stored) : std::nullopt) value = *shortcut;
}

void StoredSetting::write(UserDefaults& defaults, const QString& key, bool value) {
  defaults.set(key, value);
}
void StoredSetting::write(UserDefaults& defaults, const QString& key, int value) {
  defaults.set(key, value);
}
void StoredSetting::write(UserDefaults& defaults, const QString& key, const QString& value) {
  defaults.set(key, value);
}
void StoredSetting::write(UserDefaults& defaults, const QString& key, const std::optional<QString>& value) {
  if (value) {
    defaults.set(key, *value);
  } else {
    defaults.remove(key);
  }
}
void StoredSetting::write(UserDefaults& defaults, const QString& key, ScreenshotNaming value) {
  defaults.set(key, value == ScreenshotNaming::suggested ? QStringLiteral("suggested") : QStringLiteral("original"));
}
void StoredSetting::write(UserDefaults& defaults, const QString& key, TemporaryDuration value) {
  defaults.set(key, static_cast<int>(value));
}
void StoredSetting::write(UserDefaults& defaults, const QString& key, const std::optional<HotKeyShortcut>& value) {
  defaults.set(key, StoredShortcut::encode(value));
}

std::optional<QString> Settings::storedModelAddress(const UserDefaults& defaults) {
  return defaults.text(QLatin1String(kModelAddress));
}

QStringList Settings::storedForeignModelServers(const UserDefaults& defaults) {
  return defaults.text(QLatin1String(kForeignModelServers)).value_or(QString()).split(QLatin1Char('\n'));
}

int Settings::popupSeconds(int seconds) {
  return std::clamp(seconds, kShortestPopupSeconds, kLongestPopupSeconds);
}

int Settings::pauseSeconds(int seconds) {
  return std::clamp(seconds, kShortestPauseSeconds, kLongestPauseSeconds);
}

}  // namespace quillmere
