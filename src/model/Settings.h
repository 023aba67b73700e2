#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <optional>

#include "foundation/UserDefaults.h"
#include "model/HotKeyShortcut.h"
#include "model/Published.h"
#include "records/ScreenshotNaming.h"
#include "records/TemporaryDuration.h"

namespace quillmere {

/// Where settings are kept and told of. Both outlive the settings.
struct SettingsHome {
  UserDefaults& defaults;
  Signal<const ModelChange&>& changed;
};

/// The form of each kind of setting on disk. Reading leaves the value as it is where none is stored that can be used.
namespace StoredSetting {
void read(const UserDefaults& defaults, const QString& key, bool& value);
void read(const UserDefaults& defaults, const QString& key, int& value);
void read(const UserDefaults& defaults, const QString& key, QString& value);
void read(const UserDefaults& defaults, const QString& key, std::optional<QString>& value);
void read(const UserDefaults& defaults, const QString& key, ScreenshotNaming& value);
void read(const UserDefaults& defaults, const QString& key, TemporaryDuration& value);
void read(const UserDefaults& defaults, const QString& key, std::optional<HotKeyShortcut>& value);
void write(UserDefaults& defaults, const QString& key, bool value);
void write(UserDefaults& defaults, const QString& key, int value);
void write(UserDefaults& defaults, const QString& key, const QString& value);
void write(UserDefaults& defaults, const QString& key, const std::optional<QString>& value);
void write(UserDefaults& defaults, const QString& key, ScreenshotNaming value);
void write(UserDefaults& defaults, const QString& key, TemporaryDuration value);
void write(UserDefaults& defaults, const QString& key, const std::optional<HotKeyShortcut>& value);
}  // namespace StoredSetting

/// One setting: the key that it is stored under, the field that tells of it, and its value until another is chosen.
template <typename T>
class Setting final : public Published<T, Setting<T>> {
 public:
  /// Makes any value one that the setting can have.
  using Limit = T (*)(T value);

  Setting(SettingsHome home, const char* key, ModelField field, T standard, Limit limit = nullptr)
      : Published<T, Setting>(home.changed, field, limited(stored(home, key, std::move(standard)), limit)),
        defaults_(home.defaults),
        key_(key),
        limit_(limit) {}

  /// Tells and writes a value that is another one; answers whether it is.
  bool change(T value) {
    if (!this->set(limited(std::move(value), limit_))) return false;
    StoredSetting::write(defaults_, QLatin1String(key_), **this);
    return true;
  }
  /// Writes the value whether or not it is another one: it was chosen, and is not to follow the standard.
  void choose(T value) {
    if (!change(value)) StoredSetting::write(defaults_, QLatin1String(key_), **this);
  }

 private:
  static T stored(SettingsHome home, const char* key, T value) {
    StoredSetting::read(home.defaults, QLatin1String(key), value);
    return value;
  }
  static T limited(T value, Limit limit) { return limit ? limit(std::move(value)) : value; }

  UserDefaults& defaults_;
  const char* key_;
  Limit limit_;
};

/// What the person has set, and what the program remembers from one run to the next. Whoever holds it as constant can
/// only read.
class Settings {
 public:
  Settings(UserDefaults& defaults, Signal<const ModelChange&>& changed) : home_{defaults, changed} {}

  static constexpr int kShortestPopupSeconds = 3;
  static constexpr int kLongestPopupSeconds = 300;
  static constexpr int kShortestPauseSeconds = 1;
  static constexpr int kLongestPauseSeconds = 60;
  /// The address of a model server as it is stored now, for those that read it anew each time.
  static std::optional<QString> storedModelAddress(const UserDefaults& defaults);
  /// The keys of the foreign model servers that are allowed now.
  static QStringList storedForeignModelServers(const UserDefaults& defaults);

 private:
  static constexpr const char* kModelAddress = "quillmere.model-address";
  static constexpr const char* kForeignModelServers = "quillmere.foreign-model-servers";
  static int popupSeconds(int seconds);
  static int pauseSeconds(int seconds);

  SettingsHome home_;

 public:
  Setting<bool> menuBarEnabled{home_, "quillmere.menu-bar-enabled", ModelField::menuBarEnabled, true};
  Setting<bool> showPopupThumbnail{home_, "quillmere.popup-thumbnail", ModelField::showPopupThumbnail, true};
  Setting<bool> analyzeScreenshots{home_, "quillmere.analyze", ModelField::analyzeScreenshots, true};
  /// Empty: it is found by itself.
  Setting<QString> modelAddress{home_, kModelAddress, ModelField::modelAddress, {}};
  /// Keys, each on a line.
  Setting<QString> foreignModelServers{home_, kForeignModelServers, ModelField::foreignModelServers, {}};
  Setting<bool> showsDeleteImmediately{home_, "quillmere.delete-immediately-command",
                                       ModelField::showsDeleteImmediately, false};
  Setting<bool> deletesChosenImmediately{home_, "quillmere.delete-immediately-chosen",
                                         ModelField::deletesChosenImmediately, false};
  Setting<bool> deletesExpiredImmediately{home_, "quillmere.delete-immediately-expired",
                                          ModelField::deletesExpiredImmediately, false};
  Setting<bool> popupAutoSaveEnabled{home_, "quillmere.popup-autosave", ModelField::popupAutoSaveEnabled, false};
  Setting<int> popupAutoSaveSeconds{home_, "quillmere.popup-seconds", ModelField::popupAutoSaveSeconds, 10,
                                    &popupSeconds};
  /// The popup waits until no screenshot has come for so many seconds.
  Setting<bool> popupWaitsForPause{home_, "quillmere.popup-waits-for-pause", ModelField::popupWaitsForPause, false};
  Setting<int> popupPauseSeconds{home_, "quillmere.popup-pause-seconds", ModelField::popupPauseSeconds, 5,
                                 &pauseSeconds};
  /// Several screenshots show as a note of their number before the popup.
  Setting<bool> popupGathersSeries{home_, "quillmere.popup-gathers-series", ModelField::popupGathersSeries, false};
  Setting<ScreenshotNaming> screenshotNaming{home_, "quillmere.popup-naming", ModelField::screenshotNaming,
                                             ScreenshotNaming::original};
  Setting<bool> includesNonCaptureImages{home_, "quillmere.include-non-capture-images",
                                         ModelField::includesNonCaptureImages, false};
  Setting<TemporaryDuration> lastTemporaryDuration{home_, "quillmere.last-duration", ModelField::lastTemporaryDuration,
                                                   TemporaryDuration::fiveMinutes};
  Setting<bool> watchFolderHasReceivedScreenshot{home_, "quillmere.watch-folder-received-screenshot",
                                                 ModelField::watchFolderHasReceivedScreenshot, false};
  Setting<std::optional<QString>> dismissedLocationMismatchPath{
      home_, "quillmere.dismissed-location-mismatch", ModelField::dismissedLocationMismatchPath, std::nullopt};
  /// None when the person cleared it.
  Setting<std::optional<HotKeyShortcut>> hotKeyShortcut{home_, "quillmere.review-shortcut", ModelField::hotKeyShortcut,
                                                        HotKeyShortcut::standard()};
  Setting<bool> hasSeenWelcome{home_, "quillmere.welcome-seen", ModelField::hasSeenWelcome, false};
};

}  // namespace quillmere
