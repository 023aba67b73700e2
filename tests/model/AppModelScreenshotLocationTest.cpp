#include "fakes/ModelFixture.h"
#include "foundation/Localized.h"

namespace quillmere::testing {
namespace {

using Kind = ScreenshotFolderMatch::Kind;

class AppModelScreenshotLocation : public ModelFixture {
 protected:
  AppModelScreenshotLocation() { location.value = elsewhere.displayPath(); }
  void expectSettingsError(const QString& title, const QString& message) {
    ASSERT_TRUE(*model->settingsError);
    EXPECT_EQ((*model->settingsError)->title, title);
    EXPECT_EQ((*model->settingsError)->message, message);
  }
};

// --- Comparing ---

TEST_F(AppModelScreenshotLocation, TheDesktopsFolderIsReadAtTheStart) {
  makeModel();
  EXPECT_FALSE(*model->macOSScreenshotFolder);
  launchWatching();
  EXPECT_EQ(*model->macOSScreenshotFolder, elsewhere);
}

TEST_F(AppModelScreenshotLocation, WithoutEitherFolderNothingCanBeSaid) {
  launch();
  EXPECT_EQ(model->screenshotFolderMatch().kind, Kind::unknown);
  location.value.reset();
  launchWatching();
  EXPECT_EQ(model->screenshotFolderMatch().kind, Kind::unknown);
  EXPECT_FALSE(model->showsLocationMismatch());
  EXPECT_FALSE(model->canPointMacOSAtWatchFolder());
}

TEST_F(AppModelScreenshotLocation, TwoPathsThatDifferOnlyInCaseMatch) {
  location.value = shots.displayPath().toUpper();
  launchWatching();
  EXPECT_EQ(model->screenshotFolderMatch().kind, Kind::matches);
}

TEST_F(AppModelScreenshotLocation, AFolderAndALinkToItMatch) {
  const FileURL link = home.file("link");
  std::filesystem::create_symlink(shots.path(), link.path());
  location.value = link.displayPath();
  launchWatching();
  EXPECT_EQ(model->screenshotFolderMatch().kind, Kind::matches);
}

TEST_F(AppModelScreenshotLocation, AnotherFolderDiffersAndIsNamed) {
  launchWatching();
  EXPECT_EQ(model->screenshotFolderMatch(), (ScreenshotFolderMatch{Kind::differs, elsewhere}));
  EXPECT_TRUE(model->showsLocationMismatch());
}

// --- The mismatch notice ---

TEST_F(AppModelScreenshotLocation, AnArrivedScreenshotEndsTheNotice) {
  launchWatching();
  arrive("shot.png");
  EXPECT_FALSE(model->showsLocationMismatch());
  EXPECT_EQ(model->screenshotFolderMatch().kind, Kind::differs);
}

TEST_F(AppModelScreenshotLocation, AnImageFromElsewhereDoesNotEndTheNotice) {
  launchWatching();
  arriveFromElsewhere("download.png");
  EXPECT_TRUE(model->showsLocationMismatch());
}

TEST_F(AppModelScreenshotLocation, ADismissalHoldsForThatFolderOnly) {
  launchWatching();
  model->dismissLocationMismatch();
  EXPECT_FALSE(model->showsLocationMismatch());
  EXPECT_EQ(settingsOnDisk()["quillmere.dismissed-location-mismatch"].toString(), elsewhere.displayPath());
  launchWatching();
  EXPECT_FALSE(model->showsLocationMismatch());
  location.value = away.displayPath();
  model->refreshScreenshotLocation();
  EXPECT_TRUE(model->showsLocationMismatch());
}

TEST_F(AppModelScreenshotLocation, WithoutAMismatchNothingIsDismissed) {
  location.value = shots.displayPath();
  launchWatching();
  model->dismissLocationMismatch();
  EXPECT_FALSE(*model->settings().dismissedLocationMismatchPath);
}

TEST_F(AppModelScreenshotLocation, AFixedFolderIsNotOfferedToBeChangedAndTheNoticeStillShows) {
  location.isChangeable = false;
  launchWatching();
  EXPECT_TRUE(model->showsLocationMismatch());
  EXPECT_FALSE(model->canPointMacOSAtWatchFolder());
}

// --- Looking again ---

TEST_F(AppModelScreenshotLocation, TheFolderIsCheckedEveryMinuteWhileOneIsWatched) {
  launchWatching();
  const int reads = location.reads;
  advance(59);
  EXPECT_EQ(location.reads, reads);
  advance(1);
  EXPECT_EQ(location.reads, reads + 1);
  advance(120);
  EXPECT_EQ(location.reads, reads + 3);
}

TEST_F(AppModelScreenshotLocation, WithoutAWatchedFolderNothingIsChecked) {
  launch();
  const int reads = location.reads;
  advance(600);
  EXPECT_EQ(location.reads, reads);
  model->adoptWatchFolder(shots, ErrorScope::inbox);
  executor.drain();
  const int adopted = location.reads;
  advance(60);
  EXPECT_EQ(location.reads, adopted + 1);
}

TEST_F(AppModelScreenshotLocation, AdoptingAFolderStartsNoSecondCheck) {
  launchWatching();
  model->adoptWatchFolder(elsewhere, ErrorScope::inbox);
  executor.drain();
  const int reads = location.reads;
  advance(60);
  EXPECT_EQ(location.reads, reads + 1);
}

TEST_F(AppModelScreenshotLocation, ComingToTheFrontIsALook) {
  launchWatching();
  location.value = away.displayPath();
  systemEvents.didBecomeActive();
  EXPECT_EQ(*model->macOSScreenshotFolder, away);
}

TEST_F(AppModelScreenshotLocation, TheFolderIsToldOnlyWhenItChanges) {
  launchWatching();
  changes.clear();
  advance(60);
  EXPECT_EQ(changesOf(ModelField::macOSScreenshotFolder), 0u);
  location.value = away.displayPath();
  advance(60);
  EXPECT_EQ(changesOf(ModelField::macOSScreenshotFolder), 1u);
}

// --- Changing it ---

TEST_F(AppModelScreenshotLocation, TheDesktopIsPointedAtTheWatchedFolderAndBack) {
  launchWatching();
  ASSERT_TRUE(model->canPointMacOSAtWatchFolder());
  model->pointMacOSAtWatchFolder();
  EXPECT_EQ(location.value, shots.displayPath());
  EXPECT_EQ(*model->macOSScreenshotFolder, shots);
  EXPECT_EQ(*model->lastScreenshotLocationChange, (ScreenshotLocationChange{shots, elsewhere.displayPath()}));
  EXPECT_FALSE(*model->settingsError);
  model->undoScreenshotLocationChange();
  EXPECT_EQ(location.value, elsewhere.displayPath());
  EXPECT_EQ(*model->macOSScreenshotFolder, elsewhere);
  EXPECT_FALSE(*model->lastScreenshotLocationChange);
}

TEST_F(AppModelScreenshotLocation, UndoingWhereNothingStoodRemovesTheValue) {
  location.value.reset();
  location.standard = elsewhere;
  launchWatching();
  model->pointMacOSAtWatchFolder();
  ASSERT_TRUE(location.value);
  model->undoScreenshotLocationChange();
  EXPECT_FALSE(location.value);
}

TEST_F(AppModelScreenshotLocation, AChangeByThePersonEndsTheUndoAtTheNextCheck) {
  launchWatching();
  model->pointMacOSAtWatchFolder();
  location.value = away.displayPath();
  EXPECT_TRUE(*model->lastScreenshotLocationChange);
  advance(60);
  EXPECT_FALSE(*model->lastScreenshotLocationChange);
  const int writes = location.writes;
  model->undoScreenshotLocationChange();
  EXPECT_EQ(location.writes, writes);
}

TEST_F(AppModelScreenshotLocation, WithoutAWatchedFolderNothingIsWritten) {
  launch();
  model->pointMacOSAtWatchFolder();
  EXPECT_EQ(location.writes, 0);
  EXPECT_FALSE(*model->settingsError);
}

TEST_F(AppModelScreenshotLocation, AFixedFolderIsNotWritten) {
  location.isChangeable = false;
  launchWatching();
  model->pointMacOSAtWatchFolder();
  EXPECT_EQ(location.writes, 0);
  expectSettingsError("Quillmere Can’t Change This Setting",
                      localized("This copy of Quillmere isn’t allowed to change where macOS saves screenshots. Change "
                                "it in Screenshot (⇧⌘5) › Options instead."));
}

TEST_F(AppModelScreenshotLocation, AFolderThatIsAwayIsNotWritten) {
  launchWatching();
  unreachableFolders.insert(shots.path());
  model->pointMacOSAtWatchFolder();
  EXPECT_EQ(location.writes, 0);
  expectSettingsError(localized("Couldn’t Change Where macOS Saves Screenshots"),
                      "“shots” isn’t available right now. Connect the disk it’s on, or choose another folder, then try "
                      "again.");
}

TEST_F(AppModelScreenshotLocation, ARefusalIsTold) {
  launchWatching();
  location.refuses = true;
  model->pointMacOSAtWatchFolder();
  expectSettingsError(localized("Couldn’t Change Where macOS Saves Screenshots"),
                      localized("macOS refused the change, and the setting is unchanged. Change it in Screenshot (⇧⌘5) "
                                "› Options instead."));
  EXPECT_FALSE(*model->lastScreenshotLocationChange);
}

TEST_F(AppModelScreenshotLocation, OnlyWhatIsReadBackCounts) {
  launchWatching();
  location.ignores = true;
  model->pointMacOSAtWatchFolder();
  expectSettingsError(localized("Couldn’t Change Where macOS Saves Screenshots"),
                      localized("macOS still doesn’t save screenshots to “%@”. Change it in Screenshot (⇧⌘5) › Options "
                                "instead.",
                                {QStringLiteral("shots")}));
  EXPECT_FALSE(*model->lastScreenshotLocationChange);
}

TEST_F(AppModelScreenshotLocation, ARefusedUndoKeepsTheOffer) {
  launchWatching();
  model->pointMacOSAtWatchFolder();
  location.refuses = true;
  model->undoScreenshotLocationChange();
  expectSettingsError("Couldn’t Undo the Change",
                      localized("macOS still saves screenshots to the folder Quillmere chose. Change it back in "
                                "Screenshot (⇧⌘5) › Options."));
  EXPECT_TRUE(*model->lastScreenshotLocationChange);
}

// --- The folder panel ---

TEST_F(AppModelScreenshotLocation, ThePanelOpensAtTheDesktopsFolderAndSaysSo) {
  launch();
  const auto start = model->folderPanelStart({});
  EXPECT_EQ(start.directory, elsewhere);
  EXPECT_TRUE(start.isMacOSScreenshotFolder);
  EXPECT_EQ(start.message, localized("macOS saves screenshots here. Choose it to let Quillmere watch it."));
}

TEST_F(AppModelScreenshotLocation, ThePanelPrefersWhatIsAskedForThenTheWatchedFolder) {
  launchWatching();
  EXPECT_EQ(model->folderPanelStart(elsewhere).directory, elsewhere);
  const auto start = model->folderPanelStart({});
  EXPECT_EQ(start.directory, shots);
  EXPECT_FALSE(start.isMacOSScreenshotFolder);
  EXPECT_EQ(start.message, "Quillmere will watch this folder for new screenshots.");
}

TEST_F(AppModelScreenshotLocation, ThePanelLooksAnewBeforeItOpens) {
  launchWatching();
  location.value = shots.displayPath();
  EXPECT_TRUE(model->folderPanelStart({}).isMacOSScreenshotFolder);
}

}  // namespace
}  // namespace quillmere::testing
