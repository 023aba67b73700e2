#include "fakes/ModelFixture.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class AppModelExpiry : public ModelFixture {
 protected:
  void SetUp() override { launchWatching(); }
  /// A Temporary screenshot of one minute whose trashing is refused.
  UUID arriveRefused(std::string_view name) {
    const UUID id = arriveTemporary(name, TemporaryDuration::oneMinute);
    files.refuse(item(id).url);
    return id;
  }
};

TEST_F(AppModelExpiry, ExpiredFileGoesToTrashAndItsRecordIsForgotten) {
  const UUID id = arriveTemporary("shot.png", TemporaryDuration::oneMinute);
  advance(59.5);
  EXPECT_TRUE(hasRecord(id));
  advance(1);
  EXPECT_FALSE(hasRecord(id));
  EXPECT_TRUE(isInTrashFolder("shot.png"));
  EXPECT_THAT(savedRecords(), IsEmpty());
}

TEST_F(AppModelExpiry, ExpiredFileIsDeletedWhereTheSettingsSaySo) {
  model->setDeletesExpiredImmediately(true);
  arriveTemporary("shot.png", TemporaryDuration::oneMinute);
  advance(61);
  EXPECT_EQ(files.removeCalls, 1);
  EXPECT_FALSE(isInTrashFolder("shot.png"));
  EXPECT_FALSE(fileExists(shots.appending("shot.png")));
}

TEST_F(AppModelExpiry, OnlyATemporaryRecordWhoseTimeHasComeExpires) {
  const UUID pending = arrive("pending.png");
  const UUID kept = arrivePermanent("kept.png");
  const UUID early = arriveTemporary("early.png");
  for (const UUID& id : {pending, kept, early, uuid(404)}) model->expire(id);
  executor.drain();
  EXPECT_EQ(model->items().size(), 3u);
  EXPECT_EQ(files.calls(), 0);
}

TEST_F(AppModelExpiry, ProtectedRecordIsTriedAgainEveryTenSecondsUntilItIsFree) {
  const UUID id = arriveTemporary("shot.png", TemporaryDuration::oneMinute);
  model->protect(id);
  advance(60);
  EXPECT_EQ(scheduledAt(id), now() + 10.0);
  advance(25);
  EXPECT_TRUE(hasRecord(id));
  EXPECT_EQ(files.calls(), 0);
  EXPECT_FALSE(model->unavailableItemIDs->contains(id));
  model->unprotect(id);
  advance(10);
  EXPECT_FALSE(hasRecord(id));
  EXPECT_TRUE(isInTrashFolder("shot.png"));
}

TEST_F(AppModelExpiry, FileMovedOutOfTheWatchedFolderIsKept) {
  const UUID id = arriveTemporary("shot.png", TemporaryDuration::oneMinute);
  moveFileFollowed(shots.appending("shot.png"), elsewhere.appending("shot.png"));
  advance(61);
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(statusText(stateOf(id)), "Saved");
  EXPECT_EQ(item(id).url, elsewhere.appending("shot.png"));
  EXPECT_EQ(item(id).expiresAt, std::nullopt);
  EXPECT_EQ(files.calls(), 0);
  EXPECT_TRUE(scope.isOpen(elsewhere.appending("shot.png")));
  EXPECT_EQ(savedRecord(id), item(id));
}

TEST_F(AppModelExpiry, FileThatThePersonTrashedIsForgotten) {
  const UUID id = arriveTemporary("shot.png", TemporaryDuration::oneMinute);
  std::filesystem::create_directories(trash.path());
  moveFileFollowed(shots.appending("shot.png"), trash.appending("shot.png"));
  advance(61);
  EXPECT_FALSE(hasRecord(id));
  EXPECT_EQ(files.calls(), 0);
}

TEST_F(AppModelExpiry, FileThatIsGoneFromAReachableFolderIsForgotten) {
  const UUID id = arriveTemporary("shot.png", TemporaryDuration::oneMinute);
  deleteFile(shots.appending("shot.png"));
  advance(61);
  EXPECT_FALSE(hasRecord(id));
  EXPECT_THAT(savedRecords(), IsEmpty());
}

TEST_F(AppModelExpiry, EjectedDiskIsRetriedEverLessOftenAndTheFileTrashedOnItsReturn) {
  const UUID id = arriveTemporary("shot.png", TemporaryDuration::oneMinute);
  ejectDisk();
  advance(60);
  for (const double delay :
       {60., 120., 240., 480., 960., 1920., 3600., 3600., 3600., 3600., 3600., 3600., 3600., 3600.}) {
    ASSERT_TRUE(scheduledAt(id));
    EXPECT_NEAR(*scheduledAt(id) - now(), delay, 0.001);
    EXPECT_TRUE(model->unavailableItemIDs->contains(id));
    EXPECT_EQ(stateOf(id), State::temporary);
    advance(delay);
  }
  EXPECT_EQ(files.calls(), 0);
  EXPECT_EQ(banner(), std::nullopt);
  connectDisk();
  advance(3600);
  EXPECT_FALSE(hasRecord(id));
  EXPECT_TRUE(isInTrashFolder("shot.png"));
  EXPECT_THAT(*model->unavailableItemIDs, IsEmpty());
}

TEST_F(AppModelExpiry, WithoutAnyAccessNothingIsTakenForGone) {
  auto stored = storedTemporary(1, "shot.png", 60);
  storeRecords({stored});
  folderStore.stored.reset();
  deleteFile(stored.url);
  launch();
  advance(61);
  EXPECT_TRUE(hasRecord(uuid(1)));
  EXPECT_TRUE(model->unavailableItemIDs->contains(uuid(1)));
}

TEST_F(AppModelExpiry, FileOutsideTheWatchedFolderIsKeptNotTrashed) {
  auto stored = storedTemporary(1, "shot.png", 60);
  moveFile(stored.url, elsewhere.appending("shot.png"));
  stored.url = elsewhere.appending("shot.png");
  storeRecords({stored});
  launchWatching();
  advance(61);
  EXPECT_EQ(stateOf(uuid(1)), State::permanent);
  EXPECT_TRUE(fileExists(stored.url));
  EXPECT_EQ(files.calls(), 0);
  EXPECT_EQ(savedRecord(uuid(1))->state, State::permanent);
}

TEST_F(AppModelExpiry, FileInAFolderNotAccessibleIsKeptNotTrashed) {
  storeRecords({storedTemporary(1, "shot.png", 60)});
  scope.refusesAccess.insert(shots.path());
  launchWatching();
  advance(61);
  EXPECT_EQ(stateOf(uuid(1)), State::permanent);
  EXPECT_EQ(files.calls(), 0);
}

TEST_F(AppModelExpiry, NewFileUnderTheSameNameIsNotSentToTrash) {
  const UUID id = arriveTemporary("shot.png", TemporaryDuration::oneMinute);
  deleteFile(shots.appending("shot.png"));
  writeFile(shots.appending("shot.png"), "quite another picture");
  advance(61);
  EXPECT_FALSE(hasRecord(id));
  EXPECT_EQ(files.calls(), 0);
  EXPECT_EQ(readBytes(shots.appending("shot.png")), "quite another picture");
}

TEST_F(AppModelExpiry, FileReplacedByAnotherIsFollowedToWhereItWent) {
  const UUID id = arriveTemporary("shot.png", TemporaryDuration::oneMinute);
  moveFileFollowed(shots.appending("shot.png"), shots.appending("renamed.png"));
  writeFile(shots.appending("shot.png"), "quite another picture");
  advance(61);
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(item(id).url, shots.appending("renamed.png"));
  EXPECT_EQ(files.calls(), 0);
}

TEST_F(AppModelExpiry, FileWhoseIdentityCannotBeReadIsNotSentToTrashAndIsTriedAgain) {
  const UUID id = arriveTemporary("shot.png", TemporaryDuration::oneMinute);
  identities[shots.appending("shot.png").path()] = std::nullopt;
  advance(61);
  EXPECT_EQ(files.calls(), 0);
  EXPECT_EQ(stateOf(id), State::temporary);
  EXPECT_TRUE(model->unavailableItemIDs->contains(id));
  identities.clear();
  advance(60);
  EXPECT_FALSE(hasRecord(id));
  EXPECT_TRUE(isInTrashFolder("shot.png"));
}

TEST_F(AppModelExpiry, WithoutBirthTimesAFileIsKnownByInodeSizeAndDateOfWriting) {
  identities[shots.appending("shot.png").path()] = FileIdentity{"volume", 7, std::nullopt, 8, Date{5}};
  arriveTemporary("shot.png", TemporaryDuration::oneMinute);
  advance(61);
  EXPECT_TRUE(isInTrashFolder("shot.png"));
}

TEST_F(AppModelExpiry, AFileThatCannotBeToldFromAnotherIsKeptAndThatIsTold) {
  setSettings(R"({"quillmere.delete-immediately-expired":true})");
  launchWatching();
  std::vector<UUID> ids;
  for (const char* name : {"1.png", "2.png", "3.png"}) {
    identities[shots.appending(name).path()] = FileIdentity{"volume", 7, std::nullopt, 8, Date{5}};
    ids.push_back(arriveTemporary(name, TemporaryDuration::oneMinute));
  }
  identities[shots.appending("1.png").path()] = FileIdentity{"volume", 7, std::nullopt, 8, Date{6}};
  identities[shots.appending("2.png").path()] = FileIdentity{"volume", 9, std::nullopt, 8, Date{5}};
  identities[shots.appending("3.png").path()] = FileIdentity{"volume", 7, Date{1}, 8};
  advance(61);
  EXPECT_EQ(files.calls(), 0);
  for (const UUID& id : ids) EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(*model->backgroundIssue, (BackgroundIssue{Issue::expiredScreenshotsKept, 3}));
  EXPECT_EQ(savedRecord(ids[0])->state, State::permanent);
  model->dismissBackgroundIssue();
  EXPECT_EQ(banner(), std::nullopt);
}

TEST_F(AppModelExpiry, ByItsNameAloneNothingIsThrownAway) {
  identities[shots.appending("shot.png").path()] = std::nullopt;
  const UUID id = arriveTemporary("shot.png", TemporaryDuration::oneMinute);
  identities.clear();
  advance(61);
  EXPECT_EQ(files.calls(), 0);
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(banner(), Issue::expiredScreenshotsKept);
}

TEST_F(AppModelExpiry, WhatAnotherDiskHasUnderTheNameIsLeftAlone) {
  const UUID id = arriveTemporary("shot.png", TemporaryDuration::oneMinute);
  isVolumeMounted = false;
  advance(61);
  EXPECT_EQ(files.calls(), 0);
  EXPECT_TRUE(model->unavailableItemIDs->contains(id));
  isVolumeMounted = true;
  advance(60);
  EXPECT_TRUE(isInTrashFolder("shot.png"));
}

TEST_F(AppModelExpiry, FileThatVanishesWhileItIsTrashedIsForgotten) {
  const UUID id = arriveTemporary("shot.png", TemporaryDuration::oneMinute);
  files.answers[shots.appending("shot.png").path()] = FileOutcome::missing;
  advance(61);
  EXPECT_FALSE(hasRecord(id));
  EXPECT_EQ(banner(), std::nullopt);
}

TEST_F(AppModelExpiry, RefusedTrashIsRetriedEverLessOftenAndEightFailuresStopIt) {
  const UUID id = arriveRefused("shot.png");
  advance(60);
  int failures = 1;
  for (const double delay : {60., 120., 240., 480., 960., 1920., 3600.}) {
    EXPECT_EQ(files.trashCalls, failures);
    ASSERT_TRUE(scheduledAt(id));
    EXPECT_NEAR(*scheduledAt(id) - now(), delay, 0.001);
    EXPECT_EQ(banner(), Issue::expiredScreenshotsNotTrashed);
    advance(delay);
    ++failures;
  }
  EXPECT_EQ(files.trashCalls, 8);
  EXPECT_EQ(scheduledAt(id), std::nullopt);
  advance(86400);
  EXPECT_EQ(files.trashCalls, 8);
  EXPECT_EQ(banner(), Issue::expiredScreenshotsNotTrashed);
  EXPECT_EQ(stateOf(id), State::temporary);
  EXPECT_EQ(savedRecord(id), item(id));

  model->dismissBackgroundIssue();
  EXPECT_EQ(banner(), std::nullopt);
  advance(0);
  EXPECT_EQ(files.trashCalls, 9) << "dismissing tries at once";
  EXPECT_NEAR(*scheduledAt(id) - now(), 60, 0.001) << "with a fresh count";
  EXPECT_EQ(banner(), Issue::expiredScreenshotsNotTrashed);
}

TEST_F(AppModelExpiry, DismissingTheBannerTrashesWhatCanBeTrashedNow) {
  const UUID first = arriveRefused("first.png");
  const UUID second = arriveRefused("second.png");
  advance(61);
  EXPECT_EQ(message(**model->backgroundIssue),
            "2 expired screenshots couldn’t be moved to Trash. Quillmere will try again.");
  files.answers.clear();
  model->dismissBackgroundIssue();
  advance(0);
  EXPECT_FALSE(hasRecord(first));
  EXPECT_FALSE(hasRecord(second));
  EXPECT_EQ(banner(), std::nullopt);
}

TEST_F(AppModelExpiry, ARetryThatSucceedsTakesTheBannerAway) {
  arriveRefused("shot.png");
  advance(61);
  EXPECT_EQ(message(**model->backgroundIssue),
            "1 expired screenshot couldn’t be moved to Trash. Quillmere will try again.");
  files.answers.clear();
  advance(60);
  EXPECT_EQ(banner(), std::nullopt);
  EXPECT_TRUE(isInTrashFolder("shot.png"));
}

TEST_F(AppModelExpiry, LaunchAfterTheMomentTrashesTheFileAfterTheFirstReconciliationWithNoPopup) {
  storeRecords({storedTemporary(1, "shot.png", -86400)});
  presenter.presented.clear();
  chooseFolderBefore(shots);
  makeModel();
  executor.holdBackground();
  model->start();
  advance(5);
  EXPECT_TRUE(hasRecord(uuid(1))) << "not before its file has been checked";
  executor.runHeldBackground();
  advance(0);
  EXPECT_FALSE(hasRecord(uuid(1)));
  EXPECT_TRUE(isInTrashFolder("shot.png"));
  EXPECT_THAT(presenter.presented, IsEmpty());
}

TEST_F(AppModelExpiry, ExpiredFileThatWasRenamedWhileTheProgramWasClosedIsKept) {
  auto stored = storedTemporary(1, "shot.png", -86400);
  stored.fileBookmark = FakeSecurityScope::bookmarkOf(stored.url);
  storeRecords({stored});
  moveFileFollowed(stored.url, shots.appending("renamed.png"));
  launchWatching();
  advance(60);
  EXPECT_EQ(stateOf(uuid(1)), State::permanent);
  EXPECT_EQ(item(uuid(1)).url, shots.appending("renamed.png"));
  EXPECT_EQ(files.calls(), 0);
}

// --- Dismissing the other banners ---

TEST_F(AppModelExpiry, OtherBannersAreJustDismissed) {
  makeSavingFail();
  model->saveNow();
  ASSERT_EQ(banner(), Issue::recordsNotSaved);
  model->dismissBackgroundIssue();
  EXPECT_EQ(banner(), std::nullopt);
  model->dismissBackgroundIssue();
  EXPECT_EQ(banner(), std::nullopt);
}

class AppModelReadOnlyList : public ModelFixture {
 protected:
  void SetUp() override {
    // A folder in the list's place cannot be read, nor copied as a file.
    std::filesystem::create_directories(listFile.path());
    launchWatching();
    ASSERT_TRUE(model->isRecordsReadOnly());
  }
};

TEST_F(AppModelReadOnlyList, DismissingWithoutABackupLeavesTheBanner) {
  model->dismissBackgroundIssue();
  EXPECT_EQ(banner(), Issue::recordsReadOnly);
  EXPECT_TRUE(model->isRecordsReadOnly());
}

TEST_F(AppModelReadOnlyList, DismissingBacksUpAndSaves) {
  std::filesystem::remove(listFile.path());
  writeFile(listFile, "no list");
  const UUID id = arrive("shot.png");
  ASSERT_EQ(readBytes(listFile), "no list");
  model->dismissBackgroundIssue();
  EXPECT_EQ(banner(), std::nullopt);
  EXPECT_FALSE(model->isRecordsReadOnly());
  EXPECT_TRUE(savedRecord(id));
  const auto names = namesIn(listFile.parent());
  ASSERT_EQ(names.size(), 2u);
  EXPECT_TRUE(names[0].starts_with("screenshots.backup-"));
  EXPECT_EQ(readBytes(listFile.parent().appending(names[0])), "no list");
}

TEST_F(AppModelReadOnlyList, DismissingSavesWhereTheListIsGone) {
  std::filesystem::remove(listFile.path());
  model->dismissBackgroundIssue();
  EXPECT_EQ(banner(), std::nullopt);
  EXPECT_EQ(readBytes(listFile), R"({"version":1,"items":[]})");
}

TEST_F(AppModelExpiry, AFileThatWasMovedAwayIsKeptEvenBeforeThatIsReported) {
  const UUID id = arriveTemporary("shot.png", TemporaryDuration::oneMinute);
  deleteFile(shots.appending("shot.png"));
  monitor.movedOut.insert(shots.appending("shot.png").path());
  advance(61);
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_TRUE(model->unavailableItemIDs->contains(id));
  EXPECT_EQ(savedRecord(id)->hasMovedAway, true);
}

}  // namespace
}  // namespace quillmere::testing
