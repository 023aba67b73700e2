#include "fakes/ModelFixture.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class AppModelWatchFolder : public ModelFixture {
 protected:
  void adopt(const FileURL& folder) {
    model->adoptWatchFolder(folder, ErrorScope::inbox);
    executor.drain();
  }
  QByteArray bookmarkOf(const FileURL& url) const { return FakeSecurityScope::bookmarkOf(url); }
};

// --- Choosing ---

TEST_F(AppModelWatchFolder, ThePanelOpensAtTheFirstFolderThatExists) {
  launch();
  const FileURL missing = home.file("missing");
  EXPECT_EQ(model->folderPanelStart({}).directory, std::nullopt);
  standardFolder = home.file("missing too");
  EXPECT_EQ(model->folderPanelStart(missing).directory, std::nullopt);
  standardFolder = elsewhere;
  EXPECT_EQ(model->folderPanelStart(missing).directory, elsewhere);
  adopt(shots);
  EXPECT_EQ(model->folderPanelStart(missing).directory, shots);
  EXPECT_EQ(model->folderPanelStart(home.url()).directory, home.url());
  EXPECT_EQ(model->folderPanelStart({}).message, "Quillmere will watch this folder for new screenshots.");
}

TEST_F(AppModelWatchFolder, AConfirmedChoiceIsAdopted) {
  launch();
  chooser.answer = shots;
  model->chooseWatchFolder(home.url());
  executor.drain();
  ASSERT_EQ(chooser.starts.size(), 1u);
  EXPECT_EQ(chooser.starts[0].directory, home.url());
  EXPECT_EQ(*model->watchFolderURL, shots);
}

TEST_F(AppModelWatchFolder, ACancelledChoiceChangesNothing) {
  launchWatching();
  log.clear();
  model->chooseWatchFolder();
  executor.drain();
  EXPECT_EQ(*model->watchFolderURL, shots);
  EXPECT_THAT(log.calls(), IsEmpty());
}

TEST_F(AppModelWatchFolder, AChoiceThatIsTakenBackChangesNothing) {
  launchWatching();
  log.clear();
  chooser.answer = elsewhere;
  confirmsWatching = false;
  model->chooseWatchFolder();
  executor.drain();
  EXPECT_THAT(watchingQuestions, ElementsAre(elsewhere));
  EXPECT_EQ(*model->watchFolderURL, shots);
  EXPECT_THAT(log.calls(), IsEmpty());
  confirmsWatching = true;
  model->chooseWatchFolder();
  executor.drain();
  EXPECT_EQ(*model->watchFolderURL, elsewhere);
}

// --- Adopting ---

TEST_F(AppModelWatchFolder, AdoptingIsStrictlyInItsOrder) {
  auto stored = storedItem(1, "shot.png", State::permanent);
  storeRecords({stored});
  scope.refusesBookmarks = true;  // the record starts with none
  launchWatching();
  scope.refusesBookmarks = false;
  ASSERT_EQ(item(uuid(1)).fileBookmark, std::nullopt);
  log.clear();
  model->adoptWatchFolder(elsewhere, ErrorScope::inbox);
  EXPECT_THAT(log.calls(), ElementsAre("make bookmark elsewhere", "store folder bookmark", "make bookmark shot.png",
                                       "start access elsewhere", "watch elsewhere"));
  EXPECT_TRUE(model->isReconciling());
  EXPECT_TRUE(scope.isOpen(shots)) << "until the file has access of its own";
  log.clear();
  executor.drain();
  EXPECT_THAT(log.calls(), ::testing::IsSupersetOf({"start access shot.png", "stop access shots"}));
  EXPECT_EQ(*model->watchFolderURL, elsewhere);
  EXPECT_EQ(*model->watcherStatus, WatcherStatus::watching);
  EXPECT_EQ(folderStore.stored, bookmarkOf(elsewhere));
  EXPECT_EQ(monitor.watched, elsewhere);
  EXPECT_TRUE(savedRecord(uuid(1))->fileBookmark);
}

TEST_F(AppModelWatchFolder, NoFileIsWithoutAccessWhileTheFolderChanges) {
  launchWatching();
  arrivePermanent("shot.png");
  log.clear();
  adopt(elsewhere);
  EXPECT_TRUE(scope.isOpen(shots.appending("shot.png")));
  EXPECT_TRUE(scope.isOpen(elsewhere));
  EXPECT_FALSE(scope.isOpen(shots));
  adopt(shots);
  EXPECT_FALSE(scope.isOpen(shots.appending("shot.png"))) << "reached through the folder again";
  EXPECT_TRUE(scope.isOpen(shots));
}

TEST_F(AppModelWatchFolder, AccessIsTakenOverTwoHundredRecordsATurn) {
  for (const auto& [count, expected] : {std::pair(200, 1), {201, 2}, {400, 2}, {401, 3}}) {
    std::vector<ScreenshotItem> stored;
    for (int i = 1; i <= count; ++i) {
      stored.push_back(storedItem(i, "shot " + std::to_string(i) + ".png", State::permanent));
    }
    storeRecords(stored);
    launchWatching();
    const size_t resting = executor.pendingDelays();
    adopt(elsewhere);
    int turns = 1;
    // Comes after each turn of the model.
    const std::function<void(bool)> lookOn = [&](bool) {
      ++turns;
      if (executor.pendingDelays() > resting) executor.startDelay(Duration::zero(), lookOn);
    };
    if (executor.pendingDelays() > resting) executor.startDelay(Duration::zero(), lookOn);
    advance(0);
    EXPECT_EQ(turns, expected) << count;
    EXPECT_EQ(scope.openCount(), count + 1) << "each file, and the folder";
  }
}

TEST_F(AppModelWatchFolder, ReceivedScreenshotStartsOverEvenForTheSameFolder) {
  launchWatching();
  arrive("shot.png");
  ASSERT_TRUE(*model->settings().watchFolderHasReceivedScreenshot);
  log.clear();
  model->adoptWatchFolder(shots, ErrorScope::inbox);
  EXPECT_FALSE(*model->settings().watchFolderHasReceivedScreenshot);
  EXPECT_EQ(settingsOnDisk()["quillmere.watch-folder-received-screenshot"], QJsonValue(false));
  EXPECT_THAT(log.calls(),
              ElementsAre("make bookmark shots", "store folder bookmark", "start access shots", "watch shots"));
  executor.drain();
  EXPECT_EQ(scope.open[shots.path()], 1);
}

TEST_F(AppModelWatchFolder, FolderWhoseBookmarkCannotBeSavedLeavesThePreviousOneWatched) {
  launchWatching();
  const UUID id = arrive("shot.png");
  scope.refusedBookmarks.insert(elsewhere.path());
  log.clear();
  wasSaved();
  adopt(elsewhere);
  EXPECT_EQ(*model->watchFolderURL, shots);
  EXPECT_EQ(folderStore.stored, bookmarkOf(shots));
  EXPECT_EQ(monitor.watched, shots);
  EXPECT_TRUE(scope.isOpen(shots));
  EXPECT_TRUE(*model->settings().watchFolderHasReceivedScreenshot);
  EXPECT_THAT(queue(), ElementsAre(id));
  EXPECT_THAT(log.calls(), ElementsAre("make bookmark elsewhere"));
  EXPECT_FALSE(wasSaved());
  EXPECT_EQ((*model->inboxError)->title, "Couldn’t Use Folder");
  EXPECT_EQ((*model->inboxError)->message,
            "Quillmere couldn’t save access to “elsewhere”. It is still watching the previous folder. Choose the "
            "folder again.");
}

TEST_F(AppModelWatchFolder, AFolderThatCannotBeRememberedIsNotWatched) {
  launchWatching();
  folderStore.refuses = true;
  model->adoptWatchFolder(elsewhere, ErrorScope::settings);
  EXPECT_EQ(*model->watchFolderURL, shots);
  EXPECT_EQ(folderStore.stored, FakeSecurityScope::bookmarkOf(shots));
  EXPECT_EQ(monitor.watched, shots);
  EXPECT_EQ((*model->settingsError)->title, "Couldn’t Use Folder");
}

TEST_F(AppModelWatchFolder, TheErrorOfAChoiceShowsWhereThePersonActed) {
  launch();
  scope.refusesBookmarks = true;
  model->adoptWatchFolder(shots, ErrorScope::settings);
  EXPECT_TRUE(model->settingsError->has_value());
  EXPECT_EQ(*model->inboxError, std::nullopt);
}

TEST_F(AppModelWatchFolder, AdoptingReconcilesOnlyAfterTheStart) {
  makeModel();
  model->adoptWatchFolder(shots, ErrorScope::inbox);
  EXPECT_FALSE(model->isReconciling());
}

TEST_F(AppModelWatchFolder, PendingRecordsOfTheOldFolderStayPendingAndInTheQueue) {
  launchWatching();
  const UUID id = arrive("shot.png");
  adopt(elsewhere);
  EXPECT_EQ(stateOf(id), State::pending);
  EXPECT_THAT(queue(), ElementsAre(id));
}

// --- The status ---

TEST_F(AppModelWatchFolder, TheStatusTellsAMissingFolderFromAMissingDisk) {
  launchWatching();
  unreachableFolders.insert(elsewhere.path());
  adopt(elsewhere);
  EXPECT_EQ(*model->watcherStatus, WatcherStatus::notFound);
  isVolumeMounted = false;
  adopt(elsewhere);
  EXPECT_EQ(*model->watcherStatus, WatcherStatus::volumeNotConnected);
  unreachableFolders.clear();
  adopt(elsewhere);
  EXPECT_EQ(*model->watcherStatus, WatcherStatus::watching);
}

TEST_F(AppModelWatchFolder, FolderWithoutAccessIsNotWatched) {
  scope.refusesAccess.insert(shots.path());
  launchWatching();
  EXPECT_EQ(*model->watchFolderURL, shots);
  EXPECT_EQ(*model->watcherStatus, WatcherStatus::notFound);
}

TEST_F(AppModelWatchFolder, TheStatusIsToldOnlyWhenItChanges) {
  launchWatching();
  changes.clear();
  report(WatcherStatus::watching);
  adopt(shots);
  EXPECT_EQ(changesOf(ModelField::watcherStatus), 0u);
}

// --- Restoring ---

TEST_F(AppModelWatchFolder, StoredFolderIsWatchedAgain) {
  launchWatching();
  EXPECT_EQ(*model->watchFolderURL, shots);
  EXPECT_EQ(*model->watcherStatus, WatcherStatus::watching);
  EXPECT_TRUE(scope.isOpen(shots));
  EXPECT_EQ(log.count("store folder bookmark"), 0u);
}

TEST_F(AppModelWatchFolder, StaleBookmarkIsRenewedAtLaunch) {
  chooseFolderBefore(home.file("where it was"));
  scope.follow(home.file("where it was"), shots);
  launch();
  EXPECT_EQ(*model->watchFolderURL, shots);
  EXPECT_EQ(folderStore.stored, bookmarkOf(shots));
  EXPECT_EQ(scope.open[shots.path()], 1) << "the renewal closed its own access";
}

TEST_F(AppModelWatchFolder, StaleBookmarkThatCannotBeRenewedIsKept) {
  const FileURL before = home.file("where it was");
  chooseFolderBefore(before);
  scope.follow(before, shots);
  scope.refusesBookmarks = true;
  launch();
  EXPECT_EQ(*model->watchFolderURL, shots);
  EXPECT_EQ(folderStore.stored, bookmarkOf(before));
}

TEST_F(AppModelWatchFolder, BookmarkThatDoesNotResolveGivesNoFolder) {
  chooseFolderBefore(home.file("missing"));
  launch();
  EXPECT_EQ(*model->watchFolderURL, std::nullopt);
  EXPECT_EQ(*model->watcherStatus, WatcherStatus::notChosen);
  EXPECT_EQ(monitor.watched, std::nullopt);
  EXPECT_EQ(*model->settingsError, std::nullopt);
  EXPECT_EQ(*model->inboxError, std::nullopt) << "a missing folder is a status, never a dialog";
}

// --- Following ---

class AppModelMovedFolder : public AppModelWatchFolder {
 protected:
  void SetUp() override {
    launchWatching();
    pending = arrive("pending.png");
    temporary = arriveTemporary("temporary.png");
    std::filesystem::create_directories(shots.appending("deeper").path());
    deeper = arrivePermanent("deeper/kept.png");
    writeFile(elsewhere.appending("outside.png"), "outside");
    monitor.onArrivedScreenshot(elsewhere.appending("outside.png"));
    outside = model->items()[0].id;
    moveFile(shots, moved);
    scope.follow(shots, moved);
  }
  const FileURL moved = home.file("shots of today");
  UUID pending, temporary, deeper, outside;
};

TEST_F(AppModelMovedFolder, RecordsAndMonitorFollowAMovedFolder) {
  log.clear();
  report(WatcherStatus::notFound);
  EXPECT_EQ(*model->watchFolderURL, moved);
  EXPECT_EQ(*model->watcherStatus, WatcherStatus::watching);
  EXPECT_EQ(monitor.watched, moved);
  EXPECT_EQ(folderStore.stored, bookmarkOf(moved));
  EXPECT_EQ(item(pending).url, moved.appending("pending.png"));
  EXPECT_EQ(item(temporary).url, moved.appending("temporary.png"));
  EXPECT_EQ(item(deeper).url, moved.appending("deeper/kept.png"));
  EXPECT_EQ(item(outside).url, elsewhere.appending("outside.png"));
  EXPECT_EQ(savedRecord(pending)->url, moved.appending("pending.png"));
  EXPECT_FALSE(scope.isOpen(shots));
  EXPECT_TRUE(scope.isOpen(moved));
}

TEST_F(AppModelMovedFolder, AMovedFolderDecidesNothing) {
  const auto expiresAt = item(temporary).expiresAt;
  report(WatcherStatus::notFound);
  EXPECT_EQ(stateOf(pending), State::pending);
  EXPECT_THAT(queue(), ElementsAre(pending));
  EXPECT_EQ(stateOf(temporary), State::temporary);
  EXPECT_EQ(scheduledAt(temporary), expiresAt);
  EXPECT_THAT(*model->unavailableItemIDs, IsEmpty());
}

TEST_F(AppModelMovedFolder, TheOldAccessEndsAfterTheNewOneBegan) {
  log.clear();
  monitor.onStatusChange(WatcherStatus::notFound);
  const auto& calls = log.calls();
  const auto begun = std::find(calls.begin(), calls.end(), "start access shots of today");
  const auto ended = std::find(calls.begin(), calls.end(), "stop access shots");
  ASSERT_NE(ended, calls.end());
  EXPECT_LT(begun, ended);
  EXPECT_EQ(calls.back(), "watch shots of today");
}

TEST_F(AppModelMovedFolder, AFolderThatCannotBeReachedWhereItWentIsNotFollowed) {
  unreachableFolders.insert(moved.path());
  report(WatcherStatus::notFound);
  EXPECT_EQ(*model->watchFolderURL, shots);
  EXPECT_EQ(item(pending).url, shots.appending("pending.png"));
  EXPECT_EQ(*model->watcherStatus, WatcherStatus::notFound);
  EXPECT_EQ(folderStore.stored, bookmarkOf(shots));
}

TEST_F(AppModelMovedFolder, AFolderRenamedWhileTheProgramWasClosedDecidesNothing) {
  const auto expiresAt = item(temporary).expiresAt;
  launch();
  EXPECT_EQ(*model->watchFolderURL, moved);
  EXPECT_EQ(item(temporary).url, moved.appending("temporary.png"));
  EXPECT_EQ(stateOf(temporary), State::temporary);
  EXPECT_EQ(scheduledAt(temporary), expiresAt);
  EXPECT_EQ(stateOf(pending), State::pending);
  EXPECT_EQ(item(deeper).url, moved.appending("deeper/kept.png"));
  EXPECT_EQ(item(outside).url, elsewhere.appending("outside.png"));
  EXPECT_EQ(savedRecord(pending)->url, moved.appending("pending.png"));
  EXPECT_THAT(*model->unavailableItemIDs, IsEmpty());
}

TEST_F(AppModelMovedFolder, AFolderWithALongerNameIsAnotherFolder) {
  const UUID id = uuid(77);
  auto neighbour = bareItem(77);
  neighbour.url = home.file("shots2").appending("a.png");
  storeRecords({neighbour});
  chooseFolderBefore(moved);
  launch();
  const FileURL again = home.file("again");
  moveFile(moved, again);
  scope.follow(moved, again);
  report(WatcherStatus::notFound);
  EXPECT_EQ(*model->watchFolderURL, again);
  EXPECT_EQ(item(id).url, neighbour.url);
}

TEST_F(AppModelWatchFolder, ALostFolderThatIsBackIsWatchedAgain) {
  launchWatching();
  ejectDisk();
  report(WatcherStatus::volumeNotConnected);
  EXPECT_EQ(*model->watcherStatus, WatcherStatus::volumeNotConnected);
  connectDisk();
  report(WatcherStatus::watching);
  EXPECT_EQ(*model->watcherStatus, WatcherStatus::watching);
  EXPECT_TRUE(scope.isOpen(shots));
}

TEST_F(AppModelWatchFolder, AFolderWhoseAccessWasRefusedGetsItWhenItIsReportedBack) {
  scope.refusesAccess.insert(shots.path());
  launchWatching();
  ASSERT_FALSE(scope.isOpen(shots));
  scope.refusesAccess.clear();
  report(WatcherStatus::watching);
  EXPECT_TRUE(scope.isOpen(shots));
}

// --- Access to single files ---

TEST_F(AppModelWatchFolder, AFileOutsideHasAccessOfItsOwnUntilItsRecordGoes) {
  launchWatching();
  const FileURL outside = elsewhere.appending("outside.png");
  writeFile(outside, "outside");
  monitor.onArrivedScreenshot(outside);
  const UUID id = model->items()[0].id;
  EXPECT_TRUE(scope.isOpen(outside));
  model->removeRecords({id});
  EXPECT_FALSE(scope.isOpen(outside));
}

TEST_F(AppModelWatchFolder, AFileInTheFolderNeedsNoAccessOfItsOwn) {
  launchWatching();
  arrive("shot.png");
  EXPECT_FALSE(scope.isOpen(shots.appending("shot.png")));
  EXPECT_EQ(scope.openCount(), 1);
}

TEST_F(AppModelWatchFolder, AccessFollowsARenamedFileOutside) {
  launchWatching();
  const FileURL outside = elsewhere.appending("outside.png");
  writeFile(outside, "outside");
  monitor.onArrivedScreenshot(outside);
  const UUID id = model->items()[0].id;
  EXPECT_TRUE(finish(model->rename(id, "renamed", ErrorScope::inbox)));
  EXPECT_FALSE(scope.isOpen(outside));
  EXPECT_TRUE(scope.isOpen(elsewhere.appending("renamed.png")));
  EXPECT_EQ(scope.openCount(), 2);
}

TEST_F(AppModelWatchFolder, AStaleRecordBookmarkIsRenewedWhenItsAccessIsOpened) {
  auto stored = storedItem(1, "shot.png", State::permanent);
  stored.fileBookmark = "old form of the bookmark";
  scope.places["old form of the bookmark"] = SecurityScopeAccess::Resolution{stored.url, true};
  storeRecords({stored});
  launchWatching();
  adopt(elsewhere);
  EXPECT_EQ(item(uuid(1)).fileBookmark, bookmarkOf(stored.url));
  EXPECT_TRUE(scope.isOpen(stored.url));
}

TEST_F(AppModelWatchFolder, ManyChangesOfFolderLeaveEveryAccessBalanced) {
  launchWatching();
  for (int i = 0; i < 5; ++i) arrivePermanent(std::to_string(i) + ".png");
  for (int i = 0; i < 4; ++i) {
    adopt(i % 2 == 0 ? elsewhere : shots);
    for (const auto& [path, count] : scope.open) EXPECT_LE(count, 1) << path;
  }
  ejectDisk();
  report(WatcherStatus::volumeNotConnected);
  connectDisk();
  report(WatcherStatus::watching);
  EXPECT_EQ(scope.openCount(), 1);
}

}  // namespace
}  // namespace quillmere::testing
