#include "model/Settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include "foundation/FileStatus.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SettingsTest : public ::testing::Test {
 protected:
  void store(const char* json) { writeFile(file, json); }
  Settings& made() {
    defaults = std::make_unique<UserDefaults>(file.displayPath());
    settings = std::make_unique<Settings>(*defaults, changed);
    return *settings;
  }
  QJsonObject onDisk() const { return QJsonDocument::fromJson(QByteArray::fromStdString(readBytes(file))).object(); }

  TemporaryFolder folder;
  const FileURL file = folder.file("settings.json");
  Signal<const ModelChange&> changed;
  std::vector<ModelField> told;
  Connection follower = changed.connect([this](const ModelChange& change) { told.push_back(change.field); });
  std::unique_ptr<UserDefaults> defaults;
  std::unique_ptr<Settings> settings;
};

TEST_F(SettingsTest, WhatIsReadIsNotToldAsAChange) {
  store(R"({"quillmere.welcome-seen": true, "quillmere.popup-seconds": 1})");
  EXPECT_TRUE(*made().hasSeenWelcome);
  EXPECT_EQ(*settings->popupAutoSaveSeconds, 3);
  EXPECT_THAT(told, IsEmpty());
  EXPECT_EQ(onDisk()["quillmere.popup-seconds"], QJsonValue(1)) << "nor written";
}

TEST_F(SettingsTest, AChangeIsToldBeforeItIsWritten) {
  made();
  std::optional<bool> storedWhenTold;
  const Connection reader = changed.connect([&](const ModelChange&) {
    EXPECT_FALSE(*settings->menuBarEnabled);
    storedWhenTold = defaults->boolean(QStringLiteral("quillmere.menu-bar-enabled"));
    EXPECT_FALSE(storedWhenTold);
  });
  EXPECT_TRUE(settings->menuBarEnabled.change(false));
  EXPECT_THAT(told, ElementsAre(ModelField::menuBarEnabled));
  EXPECT_EQ(onDisk()["quillmere.menu-bar-enabled"], QJsonValue(false));
}

TEST_F(SettingsTest, AValueThatIsNoOtherIsNeitherToldNorWritten) {
  EXPECT_FALSE(made().menuBarEnabled.change(true));
  EXPECT_FALSE(settings->popupAutoSaveSeconds.change(10));
  EXPECT_FALSE(settings->lastTemporaryDuration.change(TemporaryDuration::fiveMinutes));
  EXPECT_THAT(told, IsEmpty());
  EXPECT_FALSE(fileExists(file));
}

TEST_F(SettingsTest, AChosenValueIsWrittenThoughItIsNoOther) {
  made().lastTemporaryDuration.choose(TemporaryDuration::fiveMinutes);
  EXPECT_THAT(told, IsEmpty());
  EXPECT_EQ(onDisk()["quillmere.last-duration"], QJsonValue(300));
  settings->lastTemporaryDuration.choose(TemporaryDuration::endOfDay);
  EXPECT_THAT(told, ElementsAre(ModelField::lastTemporaryDuration));
  EXPECT_EQ(onDisk()["quillmere.last-duration"], QJsonValue(-1));
}

TEST_F(SettingsTest, ALimitHoldsForWhatIsReadAndForWhatIsChanged) {
  store(R"({"quillmere.popup-seconds": 1000})");
  EXPECT_EQ(*made().popupAutoSaveSeconds, Settings::kLongestPopupSeconds);
  EXPECT_TRUE(settings->popupAutoSaveSeconds.change(-5));
  EXPECT_EQ(*settings->popupAutoSaveSeconds, Settings::kShortestPopupSeconds);
  EXPECT_FALSE(settings->popupAutoSaveSeconds.change(2)) << "the same once it is limited";
}

TEST_F(SettingsTest, EachKindOfValueIsReadAsItWasWritten) {
  made().deletesChosenImmediately.change(true);
  settings->popupAutoSaveSeconds.change(45);
  settings->modelAddress.change(QStringLiteral("127.0.0.1:9"));
  settings->dismissedLocationMismatchPath.change(QStringLiteral("/a"));
  settings->screenshotNaming.change(ScreenshotNaming::suggested);
  settings->lastTemporaryDuration.change(TemporaryDuration::oneHour);
  made();
  EXPECT_TRUE(*settings->deletesChosenImmediately);
  EXPECT_EQ(*settings->popupAutoSaveSeconds, 45);
  EXPECT_EQ(*settings->modelAddress, QStringLiteral("127.0.0.1:9"));
  EXPECT_EQ(*settings->dismissedLocationMismatchPath, QStringLiteral("/a"));
  EXPECT_EQ(*settings->screenshotNaming, ScreenshotNaming::suggested);
  EXPECT_EQ(*settings->lastTemporaryDuration, TemporaryDuration::oneHour);
}

TEST_F(SettingsTest, ATextThatIsNoMoreIsTakenOffTheDisk) {
  made().dismissedLocationMismatchPath.change(QStringLiteral("/a"));
  settings->dismissedLocationMismatchPath.change(std::nullopt);
  EXPECT_FALSE(onDisk().contains("quillmere.dismissed-location-mismatch"));
  EXPECT_EQ(*made().dismissedLocationMismatchPath, std::nullopt);
}

TEST_F(SettingsTest, TheModelsAddressCanBeReadWithoutTheSettings) {
  store(R"({"quillmere.model-address": 7})");
  made();
  EXPECT_EQ(Settings::storedModelAddress(*defaults), std::nullopt);
  settings->modelAddress.change(QStringLiteral("[::1]:8"));
  EXPECT_EQ(Settings::storedModelAddress(*defaults), QStringLiteral("[::1]:8"));
}

}  // namespace
}  // namespace quillmere::testing
