#include "fakes/ModelFixture.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;

class AppModelRenaming : public ModelFixture {
 protected:
  void SetUp() override { launchWatching(); }
  bool rename(const UUID& id, const QString& name) { return finish(model->rename(id, name, ErrorScope::inbox)); }
};

TEST_F(AppModelRenaming, RenamedFileIsFollowedByItsRecord) {
  const UUID id = arrivePermanent("shot.png");
  const ScreenshotItem before = item(id);
  EXPECT_TRUE(rename(id, "A window"));
  ScreenshotItem expected = before;
  expected.url = shots.appending("A window.png");
  expected.fileBookmark = FakeSecurityScope::bookmarkOf(expected.url);
  EXPECT_EQ(item(id), expected);
  EXPECT_FALSE(fileExists(before.url));
  EXPECT_EQ(savedRecord(id), expected);
}

TEST_F(AppModelRenaming, TheMonitorsNewsOfARenameMakesNoSecondRecord) {
  const UUID id = arrive("shot.png");
  rename(id, "A window");
  monitor.onScreenshot(shots.appending("A window.png"));
  reportRemoval({shots.appending("shot.png")});
  EXPECT_EQ(model->items().size(), 1u);
  EXPECT_THAT(queue(), ElementsAre(id));
}

TEST_F(AppModelRenaming, TheIdentityIsReadAnewWhereItCanBe) {
  const UUID id = arrivePermanent("shot.png");
  const auto before = item(id).fileIdentity;
  identities[shots.appending("unreadable.png").path()] = std::nullopt;
  rename(id, "unreadable");
  EXPECT_EQ(item(id).fileIdentity, before);
  const FileIdentity other{"volume", 31, Date{1}, 2};
  identities[shots.appending("other.png").path()] = other;
  rename(id, "other");
  EXPECT_EQ(item(id).fileIdentity, other);
}

TEST_F(AppModelRenaming, TheMonitorLearnsBothNames) {
  const UUID id = arrivePermanent("shot.png");
  rename(id, "A window");
  EXPECT_THAT(monitor.unknown, ElementsAre(shots.appending("shot.png")));
  EXPECT_THAT(monitor.known, ElementsAre(shots.appending("A window.png")));
}

TEST_F(AppModelRenaming, AFileThatAnEditorSavedAnewIsRenamedButNeverThrownAwayForTheOldOne) {
  const UUID id = arriveTemporary("shot.png");
  const FileURL url = item(id).url;
  const auto before = item(id).fileIdentity;
  writeFile(elsewhere.appending("saved anew"), "an edited picture");
  moveFile(elsewhere.appending("saved anew"), url);
  ASSERT_NE(identityOf(url), before);
  EXPECT_TRUE(rename(id, "A window"));
  EXPECT_EQ(item(id).url, shots.appending("A window.png"));
  EXPECT_EQ(item(id).fileIdentity, before);
  EXPECT_EQ(item(id).fileBookmark, FakeSecurityScope::bookmarkOf(url)) << "still of the old file";
  advance(3600);
  EXPECT_EQ(readBytes(shots.appending("A window.png")), "an edited picture");
  EXPECT_EQ(files.trashCalls + files.removeCalls, 0);
}

TEST_F(AppModelRenaming, AFileThatAloneSharesItsNumberWithAnotherRecordsIsNoneOfIts) {
  const UUID id = arrivePermanent("shot.png");
  const UUID other = arrivePermanent("other.png");
  const FileURL url = item(id).url;
  auto anew = item(other).fileIdentity;
  anew->volume = "another disk";
  identities[url.path()] = anew;
  EXPECT_TRUE(rename(id, "A window"));
  EXPECT_EQ(item(id).url, shots.appending("A window.png"));
}

TEST_F(AppModelRenaming, AnotherRecordsFileUnderTheNameIsNotRenamed) {
  const UUID first = arrivePermanent("first.png");
  const UUID second = arrivePermanent("second.png");
  const FileURL place = item(second).url;
  deleteFile(place);
  moveFile(item(first).url, place);
  scope.lose(place);
  EXPECT_FALSE(rename(second, "A window"));
  EXPECT_TRUE(fileExists(place));
  EXPECT_EQ(item(second).url, place);
}

TEST_F(AppModelRenaming, AScreenshotThatWasMovedAwayIsRenamedWhereItIs) {
  const UUID id = arrive("shot.png");
  const FileURL url = item(id).url;
  const FileURL own = elsewhere.appending("shot.png");
  moveFile(url, own);
  scope.follow(url, own);
  writeFile(url, "another picture");
  finish(model->markTemporary(id, TemporaryDuration::fiveMinutes, QStringLiteral("A window")));
  EXPECT_EQ(item(id).url, elsewhere.appending("A window.png"));
  EXPECT_EQ(readBytes(url), "another picture");
  // Moving it was the person's decision to keep it.
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(scheduledAt(id), std::nullopt);
}

TEST_F(AppModelRenaming, ARenameInTheProgramDoesNotKeepATemporaryScreenshot) {
  const UUID id = arriveTemporary("shot.png");
  const auto expiresAt = item(id).expiresAt;
  rename(id, "A window");
  EXPECT_EQ(stateOf(id), State::temporary);
  EXPECT_EQ(scheduledAt(id), expiresAt);
}

TEST_F(AppModelRenaming, NamesThatChangeNothing) {
  const UUID id = arrivePermanent("Shot.png");
  wasSaved();
  for (const char* name : {"Shot", "Shot.png", " Shot ", "...", "///", "", ". . ."}) {
    EXPECT_TRUE(rename(id, name)) << name;
    EXPECT_EQ(item(id).url, shots.appending("Shot.png")) << name;
  }
  EXPECT_EQ(files.calls(), 0);
  EXPECT_FALSE(wasSaved());
  EXPECT_EQ(*model->inboxError, std::nullopt);
}

TEST_F(AppModelRenaming, TheStemIsComparedExactly) {
  const UUID id = arrivePermanent("Shot.png");
  EXPECT_TRUE(rename(id, "shot.PNG"));
  EXPECT_EQ(item(id).url, shots.appending("shot.png"));
}

TEST_F(AppModelRenaming, ForbiddenCharactersBecomeBlanks) {
  const UUID id = arrivePermanent("shot.png");
  rename(id, "a/b:c");
  EXPECT_EQ(item(id).url, shots.appending("a b c.png"));
}

TEST_F(AppModelRenaming, TakenNamesAreNumbered) {
  writeFile(shots.appending("Name.png"), "taken");
  writeFile(shots.appending("Name (1).png"), "taken too");
  const UUID id = arrivePermanent("shot.png");
  EXPECT_TRUE(rename(id, "Name"));
  EXPECT_EQ(item(id).url, shots.appending("Name (2).png"));
  EXPECT_EQ(readBytes(shots.appending("Name.png")), "taken");
}

TEST_F(AppModelRenaming, TheNumberedSearchMayEndAtTheFilesOwnName) {
  writeFile(shots.appending("Name.png"), "taken");
  const UUID id = arrivePermanent("Name (1).png");
  EXPECT_TRUE(rename(id, "Name"));
  EXPECT_EQ(item(id).url, shots.appending("Name (1).png"));
  EXPECT_EQ(files.moveCalls, 0);
}

TEST_F(AppModelRenaming, ANameTakenAtTheLastMomentIsPassedOver) {
  const UUID id = arrivePermanent("shot.png");
  files.onMove = [&](const FileURL&, const FileURL& to) {
    if (to.lastPathComponent() == "Name.png") writeFile(to, "got there first");
  };
  EXPECT_TRUE(rename(id, "Name"));
  EXPECT_EQ(item(id).url, shots.appending("Name (1).png"));
  EXPECT_EQ(readBytes(shots.appending("Name.png")), "got there first");
}

TEST_F(AppModelRenaming, TheTypeOfAFileStaysAndOneWithoutGetsNone) {
  const UUID photo = arrivePermanent("shot.JPG");
  rename(photo, "A photo.png");
  EXPECT_EQ(item(photo).url, shots.appending("A photo.JPG"));
  const UUID bare = arrivePermanent("bare");
  rename(bare, "Another");
  EXPECT_EQ(item(bare).url, shots.appending("Another"));
}

TEST_F(AppModelRenaming, RefusedRenameLeavesFileAndRecordAndSaysSo) {
  const UUID id = arrivePermanent("shot.png");
  const ScreenshotItem before = item(id);
  files.refuse(before.url);
  EXPECT_FALSE(rename(id, "A window"));
  EXPECT_EQ(item(id), before);
  EXPECT_EQ((*model->inboxError)->title, "Couldn’t Rename Screenshot");
  EXPECT_EQ((*model->inboxError)->message,
            "“shot.png” couldn’t be renamed, so it keeps its current name. Check that you can change files in its "
            "folder, then try again.");
}

TEST_F(AppModelRenaming, VanishedFileIsAFailure) {
  const UUID id = arrivePermanent("shot.png");
  deleteFile(shots.appending("shot.png"));
  EXPECT_FALSE(rename(id, "A window"));
  EXPECT_TRUE((*model->inboxError)->message.startsWith("“shot.png” couldn’t be renamed"));
}

TEST_F(AppModelRenaming, UnavailableRecordIsNotTouched) {
  const UUID id = arrivePermanent("shot.png");
  makeUnavailable(id);
  EXPECT_FALSE(rename(id, "A window"));
  EXPECT_EQ(files.calls(), 0);
  EXPECT_EQ((*model->inboxError)->title, "Couldn’t Rename Screenshot");
  EXPECT_EQ((*model->inboxError)->message,
            "“shot.png” is on a disk or in a folder that isn’t available. Connect the disk or choose the folder again, "
            "then try again.");
}

TEST_F(AppModelRenaming, AnEmptyNameIsNoFailureEvenWhenUnavailable) {
  const UUID id = arrivePermanent("shot.png");
  makeUnavailable(id);
  EXPECT_TRUE(rename(id, "..."));
  EXPECT_EQ(*model->inboxError, std::nullopt);
}

TEST_F(AppModelRenaming, AnUnknownRecordIsNotRenamed) {
  EXPECT_FALSE(rename(uuid(404), "A window"));
  EXPECT_EQ(*model->inboxError, std::nullopt);
}

TEST_F(AppModelRenaming, TheErrorShowsWhereThePersonActed) {
  const UUID id = arrive("shot.png");
  files.refuse(item(id).url);
  EXPECT_FALSE(finish(model->rename(id, "A window", ErrorScope::popup)));
  EXPECT_EQ((*model->promptError)->title, "Couldn’t Rename Screenshot");
  EXPECT_EQ(*model->inboxError, std::nullopt);
}

TEST_F(AppModelRenaming, TheOldBookmarkStaysWhereNoneCanBeMade) {
  const UUID id = arrivePermanent("shot.png");
  scope.refusesBookmarks = true;
  rename(id, "A window");
  EXPECT_EQ(item(id).fileBookmark, FakeSecurityScope::bookmarkOf(shots.appending("shot.png")));
}

}  // namespace
}  // namespace quillmere::testing
