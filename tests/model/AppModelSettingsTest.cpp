#include "fakes/ModelFixture.h"

namespace quillmere::testing {
namespace {

using ::testing::IsEmpty;

class AppModelSettings : public ModelFixture {
 protected:
  void expectDefaults() const {
    EXPECT_TRUE(*model->settings().menuBarEnabled);
    EXPECT_TRUE(*model->settings().showPopupThumbnail);
    EXPECT_TRUE(*model->settings().analyzeScreenshots);
    EXPECT_FALSE(*model->settings().showsDeleteImmediately);
    EXPECT_FALSE(*model->settings().deletesChosenImmediately);
    EXPECT_FALSE(*model->settings().deletesExpiredImmediately);
    EXPECT_FALSE(*model->settings().popupAutoSaveEnabled);
    EXPECT_EQ(*model->settings().popupAutoSaveSeconds, 10);
    EXPECT_EQ(*model->settings().screenshotNaming, ScreenshotNaming::original);
    EXPECT_FALSE(*model->settings().includesNonCaptureImages);
    EXPECT_EQ(*model->settings().lastTemporaryDuration, TemporaryDuration::fiveMinutes);
    EXPECT_FALSE(*model->settings().watchFolderHasReceivedScreenshot);
    EXPECT_EQ(*model->settings().dismissedLocationMismatchPath, std::nullopt);
    EXPECT_FALSE(*model->settings().hasSeenWelcome);
  }
};

TEST_F(AppModelSettings, AbsentKeysGiveTheDefaults) {
  makeModel();
  expectDefaults();
}

TEST_F(AppModelSettings, StoredValuesAreRead) {
  setSettings(R"({
    "quillmere.menu-bar-enabled": false, "quillmere.popup-thumbnail": false, "quillmere.analyze": false,
    "quillmere.delete-immediately-command": true, "quillmere.delete-immediately-chosen": true,
    "quillmere.delete-immediately-expired": true, "quillmere.popup-autosave": true, "quillmere.popup-seconds": 25,
    "quillmere.popup-naming": "suggested", "quillmere.include-non-capture-images": true,
    "quillmere.last-duration": 900, "quillmere.watch-folder-received-screenshot": true,
    "quillmere.dismissed-location-mismatch": "/home/her/Pictures", "quillmere.welcome-seen": true})");
  makeModel();
  EXPECT_FALSE(*model->settings().menuBarEnabled);
  EXPECT_FALSE(*model->settings().showPopupThumbnail);
  EXPECT_FALSE(*model->settings().analyzeScreenshots);
  EXPECT_TRUE(*model->settings().showsDeleteImmediately);
  EXPECT_TRUE(*model->settings().deletesChosenImmediately);
  EXPECT_TRUE(*model->settings().deletesExpiredImmediately);
  EXPECT_TRUE(*model->settings().popupAutoSaveEnabled);
  EXPECT_EQ(*model->settings().popupAutoSaveSeconds, 25);
  EXPECT_EQ(*model->settings().screenshotNaming, ScreenshotNaming::suggested);
  EXPECT_TRUE(*model->settings().includesNonCaptureImages);
  EXPECT_EQ(*model->settings().lastTemporaryDuration, TemporaryDuration::fifteenMinutes);
  EXPECT_TRUE(*model->settings().watchFolderHasReceivedScreenshot);
  EXPECT_EQ(*model->settings().dismissedLocationMismatchPath, QStringLiteral("/home/her/Pictures"));
  EXPECT_TRUE(*model->settings().hasSeenWelcome);
}

TEST_F(AppModelSettings, ValuesOfTheWrongTypeGiveTheDefaults) {
  setSettings(R"({
    "quillmere.menu-bar-enabled": 0, "quillmere.popup-thumbnail": "false", "quillmere.analyze": null,
    "quillmere.delete-immediately-command": 1, "quillmere.delete-immediately-chosen": "true",
    "quillmere.delete-immediately-expired": [true], "quillmere.popup-autosave": {"on": true},
    "quillmere.popup-seconds": true, "quillmere.popup-naming": 1, "quillmere.include-non-capture-images": 1.0,
    "quillmere.last-duration": "900", "quillmere.watch-folder-received-screenshot": "yes",
    "quillmere.dismissed-location-mismatch": 3, "quillmere.welcome-seen": 1})");
  makeModel();
  expectDefaults();
}

TEST_F(AppModelSettings, ASettingsFileThatIsNoObjectGivesTheDefaults) {
  setSettings("[1, 2");
  makeModel();
  EXPECT_TRUE(*model->settings().menuBarEnabled);
  EXPECT_EQ(*model->settings().popupAutoSaveSeconds, 10);
}

TEST_F(AppModelSettings, PopupSecondsAreClampedWhenRead) {
  struct Row {
    const char* stored;
    int read;
  };
  for (const Row& row : {Row{"1", 3}, Row{"1000", 300}, Row{R"("25")", 10}, Row{"3", 3}, Row{"300", 300}, Row{"2", 3},
                         Row{"301", 300}, Row{"-7", 3}, Row{"2.5", 10}}) {
    // A file of its own for each row: what was read of a file is remembered while nothing seems to have changed.
    settingsFile = home.file(std::string("settings of ") + row.stored + ".json");
    setSettings((std::string(R"({"quillmere.popup-seconds": )") + row.stored + "}").c_str());
    makeModel();
    EXPECT_EQ(*model->settings().popupAutoSaveSeconds, row.read) << "stored as " << row.stored;
  }
}

TEST_F(AppModelSettings, PopupSecondsAreClampedWhenWritten) {
  makeModel();
  model->setPopupAutoSaveSeconds(1);
  EXPECT_EQ(*model->settings().popupAutoSaveSeconds, 3);
  EXPECT_EQ(settingsOnDisk()["quillmere.popup-seconds"], QJsonValue(3));
  model->setPopupAutoSaveSeconds(1000);
  EXPECT_EQ(*model->settings().popupAutoSaveSeconds, 300);
  EXPECT_EQ(settingsOnDisk()["quillmere.popup-seconds"], QJsonValue(300));
}

TEST_F(AppModelSettings, ThePopupWaitsForNoPauseUntilThatIsChosen) {
  makeModel();
  EXPECT_FALSE(*model->settings().popupWaitsForPause);
  EXPECT_EQ(*model->settings().popupPauseSeconds, 5);
  model->setPopupWaitsForPause(true);
  model->setPopupPauseSeconds(0);
  EXPECT_EQ(settingsOnDisk()["quillmere.popup-waits-for-pause"], QJsonValue(true));
  EXPECT_EQ(settingsOnDisk()["quillmere.popup-pause-seconds"], QJsonValue(1));
  model->setPopupPauseSeconds(100);
  EXPECT_EQ(settingsOnDisk()["quillmere.popup-pause-seconds"], QJsonValue(60));
}

TEST_F(AppModelSettings, LastDurationOutsideTheChoicesReadsAsFiveMinutes) {
  setSettings(R"({"quillmere.last-duration": 45})");
  makeModel();
  EXPECT_EQ(*model->settings().lastTemporaryDuration, TemporaryDuration::fiveMinutes);
}

TEST_F(AppModelSettings, LastDurationMinusOneReadsAsEndOfDay) {
  setSettings(R"({"quillmere.last-duration": -1})");
  makeModel();
  EXPECT_EQ(*model->settings().lastTemporaryDuration, TemporaryDuration::endOfDay);
}

TEST_F(AppModelSettings, NamingOtherThanSuggestedReadsAsOriginal) {
  setSettings(R"({"quillmere.popup-naming": "Suggested"})");
  makeModel();
  EXPECT_EQ(*model->settings().screenshotNaming, ScreenshotNaming::original);
}

TEST_F(AppModelSettings, EachSettingIsWrittenWhenItChanges) {
  makeModel();
  model->setMenuBarEnabled(false);
  model->setShowPopupThumbnail(false);
  model->setAnalyzeScreenshots(false);
  model->setShowsDeleteImmediately(true);
  model->setDeletesChosenImmediately(true);
  model->setDeletesExpiredImmediately(true);
  model->setPopupAutoSaveEnabled(true);
  model->setPopupAutoSaveSeconds(45);
  model->setScreenshotNaming(ScreenshotNaming::suggested);
  model->setIncludesNonCaptureImages(true);
  model->setHasSeenWelcome(true);
  const QJsonObject stored = settingsOnDisk();
  EXPECT_EQ(stored["quillmere.menu-bar-enabled"], QJsonValue(false));
  EXPECT_EQ(stored["quillmere.popup-thumbnail"], QJsonValue(false));
  EXPECT_EQ(stored["quillmere.analyze"], QJsonValue(false));
  EXPECT_EQ(stored["quillmere.delete-immediately-command"], QJsonValue(true));
  EXPECT_EQ(stored["quillmere.delete-immediately-chosen"], QJsonValue(true));
  EXPECT_EQ(stored["quillmere.delete-immediately-expired"], QJsonValue(true));
  EXPECT_EQ(stored["quillmere.popup-autosave"], QJsonValue(true));
  EXPECT_EQ(stored["quillmere.popup-seconds"], QJsonValue(45));
  EXPECT_EQ(stored["quillmere.popup-naming"], QJsonValue("suggested"));
  EXPECT_EQ(stored["quillmere.include-non-capture-images"], QJsonValue(true));
  EXPECT_EQ(stored["quillmere.welcome-seen"], QJsonValue(true));
  model->setScreenshotNaming(ScreenshotNaming::original);
  EXPECT_EQ(settingsOnDisk()["quillmere.popup-naming"], QJsonValue("original"));
}

TEST_F(AppModelSettings, ASettingThatKeepsItsValueIsNotWritten) {
  makeModel();
  std::filesystem::remove(settingsFile.path());
  model->setMenuBarEnabled(true);
  model->setPopupAutoSaveSeconds(10);
  EXPECT_FALSE(fileExists(settingsFile));
  EXPECT_THAT(changes, IsEmpty());
}

TEST_F(AppModelSettings, TheMonitorIsToldAboutOtherImages) {
  setSettings(R"({"quillmere.include-non-capture-images": true})");
  makeModel();
  EXPECT_TRUE(monitor.includes);
  model->setIncludesNonCaptureImages(false);
  EXPECT_FALSE(monitor.includes);
}

}  // namespace
}  // namespace quillmere::testing
