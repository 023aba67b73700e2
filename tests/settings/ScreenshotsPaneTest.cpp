#include "settings/ScreenshotsPane.h"

#include "settings/SettingsFixture.h"

namespace quillmere {
namespace {

class ScreenshotsPaneTest : public testing::SettingsFixture {
 protected:
  void show() { showPane(std::make_unique<ScreenshotsPane>(*model, services, nullptr)); }
  SettingsServices services;
};

TEST_F(ScreenshotsPaneTest, EachControlWritesAtOnceAndFollowsTheModel) {
  show();
  const Settings& settings = model->settings();
  expectToWriteAndFollow(
      {{"Also detect images from other apps", [&] { return *settings.includesNonCaptureImages; },
        [&](bool isOn) { model->setIncludesNonCaptureImages(isOn); }},
       {"Show Delete Immediately in menus", [&] { return *settings.showsDeleteImmediately; },
        [&](bool isOn) { model->setShowsDeleteImmediately(isOn); }},
       {"Move to Trash deletes instead", [&] { return *settings.deletesChosenImmediately; },
        [&](bool isOn) { model->setDeletesChosenImmediately(isOn); }},
       {"Delete Temporary screenshots when their time is up", [&] { return *settings.deletesExpiredImmediately; },
        [&](bool isOn) { model->setDeletesExpiredImmediately(isOn); }}});
}

TEST_F(ScreenshotsPaneTest, TheFolderIsNamedWithItsState) {
  show();
  EXPECT_TRUE(says("shots"));
  EXPECT_TRUE(says(statusText(WatcherStatus::watching)));
  moveFile(shots, away);
  report(WatcherStatus::notFound);
  EXPECT_TRUE(says(statusText(WatcherStatus::notFound)));
  EXPECT_FALSE(says(statusText(WatcherStatus::watching)));
}

TEST_F(ScreenshotsPaneTest, AnotherFolderCanBeChosen) {
  show();
  QPushButton& choose = button("Choose Screenshot Folder");
  EXPECT_EQ(choose.text(), QStringLiteral("Choose…"));
  EXPECT_EQ(choose.toolTip(), QStringLiteral("Choose the folder where your desktop saves screenshots"));
  chooser.answer = elsewhere;
  choose.click();
  executor.drain();
  EXPECT_TRUE(says("elsewhere"));
}

TEST_F(ScreenshotsPaneTest, AFolderWhoseFilesCannotBeFollowedIsToldOf) {
  constexpr auto kWarning =
      "The disk of this folder keeps too little about its files: a screenshot that you rename or move with another app "
      "may become unavailable here, and one that can’t be told from another file isn’t deleted when its time is up.";
  show();
  EXPECT_FALSE(says(kWarning));
  keepsIdentities = false;
  show();
  EXPECT_TRUE(says(kWarning));
  moveFile(shots, away);
  report(WatcherStatus::notFound);
  EXPECT_FALSE(says(kWarning));
}

TEST_F(ScreenshotsPaneTest, TheScreenshotToolIsOpenedWhereThereIsOne) {
  show();
  EXPECT_THROW(button("Open Screenshot Tool"), std::logic_error);
  int opened = 0;
  services.openScreenshotOptions = [&] { ++opened; };
  show();
  button("Open Screenshot Tool").click();
  EXPECT_EQ(opened, 1);
}

}  // namespace
}  // namespace quillmere
