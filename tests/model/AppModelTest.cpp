#include <sys/stat.h>

#include "fakes/ModelFixture.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

// --- The initializer and the start ---

class AppModelStart : public ModelFixture {};

TEST_F(AppModelStart, TheInitializerReadsTheListAndStartsNothing) {
  storeRecords({storedItem(1, "one.png"), storedTemporary(2, "two.png", -5)});
  chooseFolderBefore(shots);
  makeModel();
  executor.drain();
  advance(600);
  EXPECT_EQ(model->items().size(), 2u);
  EXPECT_EQ(monitor.starts, 0);
  EXPECT_EQ(scope.starts, 0);
  EXPECT_EQ(*model->watchFolderURL, std::nullopt);
  EXPECT_EQ(*model->watcherStatus, WatcherStatus::notChosen);
  EXPECT_THAT(queue(), IsEmpty());
  EXPECT_THAT(log.calls(), ElementsAre("captures only"));
  EXPECT_TRUE(hasRecord(uuid(2)));
}

TEST_F(AppModelStart, ListThatCannotBeBackedUpIsReadOnlyAndSaysSo) {
  std::filesystem::create_directories(listFile.path());  // cannot be read, and cannot be copied as a file
  makeModel();
  EXPECT_TRUE(model->isRecordsReadOnly());
  EXPECT_EQ(banner(), Issue::recordsReadOnly);
}

TEST_F(AppModelStart, StepsComeInTheirOrder) {
  storeRecords({storedItem(1, "one.png")});
  chooseFolderBefore(shots);
  makeModel();
  log.clear();
  executor.holdBackground();
  model->start();
  EXPECT_THAT(log.calls(), ElementsAre("read folder bookmark", "start access shots", "watch shots", "start monitor"));
  EXPECT_TRUE(model->isReconciling());
  EXPECT_THAT(queue(), IsEmpty()) << "popups wait until their files have been checked";
  executor.runHeldBackground();
  EXPECT_THAT(queue(), ElementsAre(uuid(1)));
}

TEST_F(AppModelStart, TheMonitorIsStartedWithNothingWhereNoFolderWasChosen) {
  launch();
  EXPECT_EQ(monitor.watched, std::nullopt);
  EXPECT_EQ(monitor.starts, 1);
  EXPECT_EQ(*model->watcherStatus, WatcherStatus::notChosen);
}

TEST_F(AppModelStart, ASecondStartDoesNothing) {
  launchWatching();
  log.clear();
  executor.holdBackground();
  model->start();
  EXPECT_THAT(log.calls(), IsEmpty());
  EXPECT_FALSE(model->isReconciling());
  systemEvents.didWake();
  EXPECT_EQ(executor.heldBackground(), 1u) << "one set of observers";
  executor.runHeldBackground();
  EXPECT_FALSE(model->isReconciling());
}

TEST_F(AppModelStart, TwoStartsMakeOneReconciliation) {
  chooseFolderBefore(shots);
  makeModel();
  executor.holdBackground();
  model->start();
  const size_t held = executor.heldBackground();
  model->start();
  EXPECT_EQ(executor.heldBackground(), held);
  executor.runHeldBackground();
  EXPECT_FALSE(model->isReconciling());
  EXPECT_EQ(monitor.starts, 1);
}

TEST_F(AppModelStart, PendingScreenshotsComeBackOldestFirst) {
  auto newest = storedItem(3, "three.png");
  auto middle = storedItem(1, "one.png");
  auto oldest = storedItem(2, "two.png");
  newest.createdAt = now() + -10.0;
  middle.createdAt = now() + -20.0;
  oldest.createdAt = now() + -30.0;
  storeRecords({newest, middle, oldest});
  launchWatching();
  EXPECT_THAT(queue(), ElementsAre(uuid(2), uuid(1), uuid(3)));
  EXPECT_THAT(presenter.presented, ElementsAre(uuid(2)));
}

TEST_F(AppModelStart, PendingScreenshotsWhoseFilesCannotBeReachedStayAway) {
  auto lost = storedItem(1, "lost.png");
  deleteFile(lost.url);
  lost.url = elsewhere.appending("lost.png");
  unreachableFolders.insert(elsewhere.path());
  storeRecords({storedItem(2, "here.png"), lost});
  launchWatching();
  EXPECT_THAT(queue(), ElementsAre(uuid(2)));
  EXPECT_EQ(stateOf(uuid(1)), State::pending);
  EXPECT_TRUE(model->unavailableItemIDs->contains(uuid(1)));
}

TEST_F(AppModelStart, ScreenshotReportedDuringTheFirstReconciliationIsQueuedOnce) {
  storeRecords({storedItem(1, "one.png")});
  chooseFolderBefore(shots);
  makeModel();
  executor.holdBackground();
  model->start();
  const UUID late = arrive("late.png");
  executor.runHeldBackground();
  EXPECT_THAT(queue(), ElementsAre(late, uuid(1)));
}

TEST_F(AppModelStart, AfterARunThatEndedWithoutNoticeTheOldestScreenshotComesFirst) {
  storeRecords({storedItem(1, "one.png")});
  interruptedSince = now() + -60.0;
  chooseFolderBefore(shots);
  makeModel();
  executor.holdBackground();
  model->start();
  const UUID late = arrive("late.png");
  EXPECT_THAT(queue(), IsEmpty());
  executor.runHeldBackground();
  EXPECT_THAT(queue(), ElementsAre(uuid(1), late));
}

TEST_F(AppModelStart, TemporaryScreenshotsAreScheduledAgain) {
  auto item = storedTemporary(1, "one.png", 100);
  storeRecords({item});
  launchWatching();
  EXPECT_EQ(scheduledAt(uuid(1)), item.expiresAt);
  advance(99);
  EXPECT_TRUE(hasRecord(uuid(1)));
  advance(2);
  EXPECT_FALSE(hasRecord(uuid(1)));
  EXPECT_TRUE(isInTrashFolder("one.png"));
}

TEST_F(AppModelStart, ARunThatEndedWithoutNoticeAsksForTheArrivalsSince) {
  interruptedSince = now() + -60.0;
  chooseFolderBefore(shots);
  makeModel();
  log.clear();
  model->start();
  EXPECT_EQ(monitor.expectedSince, interruptedSince);
  EXPECT_THAT(log.calls(), ElementsAre("read folder bookmark", "start access shots", "expect arrivals", "watch shots",
                                       "start monitor"));
  executor.drain();
}

TEST_F(AppModelStart, TheMonitorNoLongerCallsAModelThatIsGone) {
  launchWatching();
  model.reset();
  EXPECT_FALSE(monitor.onScreenshot);
  EXPECT_FALSE(monitor.onArrivedScreenshot);
  EXPECT_FALSE(monitor.onRemoval);
  EXPECT_FALSE(monitor.onStatusChange);
  systemEvents.didWake();
  systemEvents.screensDidSleep();
  advance(60);
}

TEST_F(AppModelStart, AModelThatGoesDuringAReconciliationIsNotTouched) {
  storeRecords({storedItem(1, "one.png")});
  chooseFolderBefore(shots);
  makeModel();
  executor.holdBackground();
  model->start();
  model.reset();
  executor.runHeldBackground();
  EXPECT_THAT(presenter.presented, IsEmpty());
}

// --- The machine and the session ---

class AppModelSystemEvents : public ModelFixture {};

TEST_F(AppModelSystemEvents, LockedSessionKeepsCountdownsPausedAfterTheScreensWake) {
  launchWatching();
  const auto isPaused = [&] { return model->popupAutoSaveScheduler().isSystemPaused(); };
  systemEvents.screensDidSleep();
  EXPECT_TRUE(isPaused());
  systemEvents.sessionDidResign();
  systemEvents.screensDidWake();
  EXPECT_TRUE(isPaused());
  systemEvents.sessionDidBecomeActive();
  EXPECT_FALSE(isPaused());
}

TEST_F(AppModelSystemEvents, SleepingScreensKeepCountdownsPausedAfterUnlocking) {
  launchWatching();
  const auto isPaused = [&] { return model->popupAutoSaveScheduler().isSystemPaused(); };
  systemEvents.sessionDidResign();
  systemEvents.screensDidSleep();
  systemEvents.sessionDidBecomeActive();
  EXPECT_TRUE(isPaused());
  systemEvents.screensDidWake();
  EXPECT_FALSE(isPaused());
}

TEST_F(AppModelSystemEvents, WakingReconcilesEverythingPolitely) {
  launchWatching();
  const UUID first = arrive("first.png");
  const UUID second = arrive("second.png");
  deleteFile(shots.appending("first.png"));
  announcer.said.clear();
  systemEvents.didWake();
  executor.drain();
  EXPECT_FALSE(hasRecord(first));
  EXPECT_EQ(presenter.visible, second);
  EXPECT_THAT(announcer.said, ElementsAre(Announcement{"Screenshot ready for a decision.", AnnouncementPriority::low}));
}

TEST_F(AppModelSystemEvents, ComingToTheFrontLooksForALostFolder) {
  launchWatching();
  ejectDisk();
  report(WatcherStatus::volumeNotConnected);
  connectDisk();
  systemEvents.didBecomeActive();
  executor.drain();
  EXPECT_EQ(*model->watcherStatus, WatcherStatus::watching);
}

TEST_F(AppModelSystemEvents, ComingToTheFrontBringsTheRecordsOfALostFolderBack) {
  launchWatching();
  const UUID id = arriveTemporary("one.png");
  ejectDisk();
  report(WatcherStatus::volumeNotConnected);
  ASSERT_TRUE(model->unavailableItemIDs->contains(id));
  connectDisk();
  systemEvents.didBecomeActive();
  executor.drain();
  EXPECT_FALSE(model->unavailableItemIDs->contains(id));
}

TEST_F(AppModelSystemEvents, ComingToTheFrontLeavesAWatchedFolderAlone) {
  launchWatching();
  log.clear();
  systemEvents.didBecomeActive();
  executor.drain();
  EXPECT_THAT(log.calls(), IsEmpty());
}

TEST_F(AppModelSystemEvents, WakingLooksForALostFolderAndItsRecords) {
  launchWatching();
  const UUID id = arriveTemporary("one.png");
  ejectDisk();
  report(WatcherStatus::volumeNotConnected);
  connectDisk();
  systemEvents.didWake();
  executor.drain();
  EXPECT_EQ(*model->watcherStatus, WatcherStatus::watching);
  EXPECT_FALSE(model->unavailableItemIDs->contains(id));
}

// --- Messages ---

class AppModelMessages : public ModelFixture {};

TEST_F(AppModelMessages, PopupErrorIsSpokenAtHighPriority) {
  makeModel();
  model->show(ErrorScope::popup, "A title", "A message.");
  EXPECT_THAT(announcer.said, ElementsAre(Announcement{"A title A message.", AnnouncementPriority::high}));
  ASSERT_TRUE(model->promptError->has_value());
  EXPECT_EQ((*model->promptError)->title, "A title");
  EXPECT_EQ((*model->promptError)->message, "A message.");
}

TEST_F(AppModelMessages, ErrorsStandInTheirScopeAlone) {
  makeModel();
  model->show(ErrorScope::inbox, "In the Inbox", "One.");
  model->show(ErrorScope::settings, "In Settings", "Two.");
  EXPECT_EQ(*model->promptError, std::nullopt);
  EXPECT_EQ((*model->inboxError)->title, "In the Inbox");
  EXPECT_EQ((*model->settingsError)->title, "In Settings");
  EXPECT_THAT(announcer.said, IsEmpty());
  model->dismissError(ErrorScope::inbox);
  EXPECT_EQ(*model->inboxError, std::nullopt);
  EXPECT_TRUE(model->settingsError->has_value());
  model->dismissError(ErrorScope::settings);
  EXPECT_EQ(*model->settingsError, std::nullopt);
}

TEST_F(AppModelMessages, ARepeatedErrorIsANewOne) {
  makeModel();
  model->show(ErrorScope::inbox, "A title", "A message.");
  const UUID first = (*model->inboxError)->id;
  model->show(ErrorScope::inbox, "A title", "A message.");
  EXPECT_NE((*model->inboxError)->id, first);
  EXPECT_EQ(changesOf(ModelField::inboxError), 2u);
}

TEST_F(AppModelMessages, AFieldIsToldOnlyWhenItBecomesAnotherValue) {
  makeModel();
  model->setSelectedItemIDs({uuid(1)});
  model->setSelectedItemIDs({uuid(1)});
  EXPECT_EQ(changesOf(ModelField::selectedItemIDs), 1u);
}

// --- Saving ---

class AppModelSaving : public ModelFixture {};

TEST_F(AppModelSaving, TheFolderOfTheListIsMade) {
  launchWatching();
  ASSERT_FALSE(fileExists(listFile.parent().parent()));
  model->saveNow();
  EXPECT_EQ(readBytes(listFile), R"({"version":1,"items":[]})");
}

TEST_F(AppModelSaving, RecordsAreWrittenNewestFirst) {
  launchWatching();
  const UUID first = arrive("first.png");
  const UUID second = arrive("second.png");
  const auto saved = savedRecords();
  ASSERT_EQ(saved.size(), 2u);
  EXPECT_EQ(saved[0].id, second);
  EXPECT_EQ(saved[1], item(first));
}

TEST_F(AppModelSaving, TwoScheduledSavesMakeOneWriteThreeQuartersOfASecondAfterTheFirst) {
  launchWatching();
  wasSaved();
  model->scheduleSave();
  advance(0.5);
  model->scheduleSave();
  advance(0.24);
  EXPECT_FALSE(wasSaved());
  EXPECT_TRUE(model->hasPendingSave());
  advance(0.01);
  EXPECT_TRUE(wasSaved());
  EXPECT_FALSE(model->hasPendingSave());
  advance(5);
  EXPECT_FALSE(wasSaved());
}

TEST_F(AppModelSaving, ASteadyStreamStillSaves) {
  launchWatching();
  wasSaved();
  int writes = 0;
  for (int i = 0; i < 30; ++i) {
    model->scheduleSave();
    advance(0.1);
    writes += wasSaved() ? 1 : 0;
  }
  EXPECT_GE(writes, 3);
}

TEST_F(AppModelSaving, SavingNowReplacesAScheduledSave) {
  launchWatching();
  model->scheduleSave();
  model->saveNow();
  EXPECT_FALSE(model->hasPendingSave());
  wasSaved();
  advance(5);
  EXPECT_FALSE(wasSaved());
}

TEST_F(AppModelSaving, AScheduledSaveIsMadeAtTheEndOfTheModelAndNotAfterIt) {
  launchWatching();
  model->scheduleSave();
  model.reset();
  executor.drain();
  EXPECT_TRUE(wasSaved());
  advance(5);
  EXPECT_FALSE(wasSaved());
}

TEST_F(AppModelSaving, ReadOnlyListIsLeftByteForByte) {
  // Nothing can be copied beside a list whose name leaves no room for a longer one.
  const FileURL longName = home.file(std::string(240, 'x') + ".json");
  const std::string unreadable = "not a list";
  writeFile(longName, unreadable);
  defaults = std::make_unique<UserDefaults>(settingsFile.displayPath());
  AppModelDependencies world = dependencies();
  world.recordStore.fileURL = longName;
  model = std::make_unique<AppModel>(world);
  ASSERT_TRUE(model->isRecordsReadOnly());
  model->start();
  executor.drain();
  arrive("one.png");
  model->saveNow();
  EXPECT_EQ(readBytes(longName), unreadable);
  EXPECT_EQ(banner(), Issue::recordsReadOnly);
}

TEST_F(AppModelSaving, AFailureIsTheBannerAndKeepsTheRecords) {
  launchWatching();
  makeSavingFail();
  const UUID id = arrive("one.png");
  EXPECT_EQ(banner(), Issue::recordsNotSaved);
  EXPECT_TRUE(hasRecord(id));
  makeSavingWork();
  model->saveNow();
  EXPECT_EQ(banner(), std::nullopt);
  EXPECT_TRUE(savedRecord(id));
}

TEST_F(AppModelSaving, AFailedSaveIsTriedAgainWithGrowingPauses) {
  launchWatching();
  makeSavingFail();
  const UUID id = arrive("one.png");
  advance(3.5);  // tried after 1 and 2 seconds more
  makeSavingWork();
  advance(3.4);
  EXPECT_FALSE(model->isSaved());
  advance(0.1);
  EXPECT_TRUE(model->isSaved());
  EXPECT_TRUE(savedRecord(id));
  EXPECT_EQ(banner(), std::nullopt);
  EXPECT_FALSE(model->hasPendingSave());
}

TEST_F(AppModelSaving, RoomThatReturnsIsNoticedWithinHalfAMinute) {
  launchWatching();
  makeSavingFail();
  const UUID id = arrive("one.png");
  advance(10'000);
  makeSavingWork();
  advance(32);
  EXPECT_TRUE(savedRecord(id));
}

TEST_F(AppModelSaving, ABannerThatWasDismissedStaysAwayWhileItIsTriedAgain) {
  launchWatching();
  makeSavingFail();
  arrive("one.png");
  model->dismissBackgroundIssue();
  advance(100);
  EXPECT_EQ(banner(), std::nullopt);
  EXPECT_FALSE(model->isSaved());
  model->saveNow();
  EXPECT_EQ(banner(), Issue::recordsNotSaved) << "another decision that is not saved";
}

TEST_F(AppModelSaving, AListThatCouldNotBeLookedAtIsNotTakenForAbsent) {
  const FileURL loop = home.file("loop");
  std::filesystem::create_symlink("loop", loop.path());
  defaults = std::make_unique<UserDefaults>(settingsFile.displayPath());
  AppModelDependencies world = dependencies();
  world.recordStore.fileURL = loop.appending("screenshots.json");
  model = std::make_unique<AppModel>(world);
  EXPECT_TRUE(model->isRecordsReadOnly());
  model->start();
  executor.drain();
  model->dismissBackgroundIssue();
  EXPECT_TRUE(model->isRecordsReadOnly());
  EXPECT_EQ(banner(), Issue::recordsReadOnly);
}

TEST_F(AppModelSaving, ASaveThatSucceedsLeavesAnotherBannerStanding) {
  launchWatching();
  const UUID id = arriveTemporary("one.png", TemporaryDuration::oneMinute);
  files.refuse(item(id).url);
  advance(61);
  ASSERT_EQ(banner(), Issue::expiredScreenshotsNotTrashed);
  model->saveNow();
  EXPECT_EQ(banner(), Issue::expiredScreenshotsNotTrashed);
}

// --- What observers are told ---

class AppModelChanges : public ModelFixture {};

TEST_F(AppModelChanges, RowsAreToldByIndex) {
  launchWatching();
  arrive("one.png");
  changes.clear();
  arrive("two.png");
  const auto isItems = [](const ModelChange& change) { return change.field == ModelField::items; };
  const auto inserted = std::find_if(changes.begin(), changes.end(), isItems);
  ASSERT_NE(inserted, changes.end());
  EXPECT_EQ(inserted->rows, ModelChange::Rows::inserted);
  EXPECT_THAT(inserted->indices, ElementsAre(0u));

  changes.clear();
  model->keepPrompt(model->items()[1].id).detach();
  const auto changed = std::find_if(changes.begin(), changes.end(), isItems);
  ASSERT_NE(changed, changes.end());
  EXPECT_EQ(changed->rows, ModelChange::Rows::changed);
  EXPECT_THAT(changed->indices, ElementsAre(1u));

  changes.clear();
  model->removeRecords({model->items()[0].id, model->items()[1].id});
  const auto removed = std::find_if(changes.begin(), changes.end(), isItems);
  ASSERT_NE(removed, changes.end());
  EXPECT_EQ(removed->rows, ModelChange::Rows::removed);
  EXPECT_THAT(removed->indices, ElementsAre(0u, 1u));
}

TEST_F(AppModelChanges, AChangeIsToldAfterIt) {
  makeModel();
  std::vector<bool> seen;
  const Connection watching =
      model->changed.connect([&](const ModelChange&) { seen.push_back(*model->settings().hasSeenWelcome); });
  model->setHasSeenWelcome(true);
  EXPECT_THAT(seen, ElementsAre(true));
}

TEST_F(AppModelChanges, ArrivalsDoNotTellOfTheWholeList) {
  launchWatching();
  for (int i = 0; i < 20; ++i) arrive(std::to_string(i) + ".png");
  for (const ModelChange& change : changes) {
    EXPECT_LE(change.indices.size(), 1u);
  }
}

}  // namespace
}  // namespace quillmere::testing
