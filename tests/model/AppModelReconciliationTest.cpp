#include "fakes/ModelFixture.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class AppModelReconciliation : public ModelFixture {
 protected:
  void SetUp() override { launchWatching(); }
  ReconcileRequest request(std::optional<UUIDSet> ids, const char* name = nullptr) {
    ReconcileRequest made;
    made.ids = std::move(ids);
    if (name) made.completions.push_back([this, name] { completed.push_back(name); });
    return made;
  }
  UUID arriveOnAnotherDisk(std::string_view name) {
    writeFile(elsewhere.appending(name), name);
    monitor.onScreenshot(elsewhere.appending(name));
    return model->items()[0].id;
  }
  std::vector<std::string> completed;
};

// --- What becomes of a record ---

TEST_F(AppModelReconciliation, RecordWhoseFileIsInTrashIsRemoved) {
  const UUID id = arrivePermanent("shot.png");
  std::filesystem::create_directories(trash.path());
  moveFileFollowed(shots.appending("shot.png"), trash.appending("shot.png"));
  reconcileAll();
  EXPECT_FALSE(hasRecord(id));
  EXPECT_THAT(*model->unavailableItemIDs, IsEmpty());
  EXPECT_THAT(savedRecords(), IsEmpty());
}

TEST_F(AppModelReconciliation, VanishedFileOfTheWatchedFolderIsRemoved) {
  const UUID id = arrivePermanent("shot.png");
  deleteFile(shots.appending("shot.png"));
  reconcileAll();
  EXPECT_FALSE(hasRecord(id));
}

TEST_F(AppModelReconciliation, VanishedFileOutsideTheWatchedFolderStaysAsUnavailable) {
  writeFile(elsewhere.appending("shot.png"), "shot");
  monitor.onArrivedScreenshot(elsewhere.appending("shot.png"));
  const UUID id = model->items()[0].id;
  const ScreenshotItem before = item(id);
  deleteFile(elsewhere.appending("shot.png"));
  reconcileAll();
  EXPECT_TRUE(model->unavailableItemIDs->contains(id));
  EXPECT_EQ(item(id), before) << "with all its data";
}

TEST_F(AppModelReconciliation, UnavailableRecordReturnsWithItsFile) {
  const UUID id = arrivePermanent("shot.png");
  ejectDisk();
  reconcileAll();
  EXPECT_TRUE(model->unavailableItemIDs->contains(id));
  connectDisk();
  reconcileAll();
  EXPECT_FALSE(model->unavailableItemIDs->contains(id));
}

TEST_F(AppModelReconciliation, FileRenamedWhileTheProgramWasClosedIsFoundByItsBookmark) {
  const UUID pending = arrive("pending.png");
  const UUID temporary = arriveTemporary("temporary.png");
  model.reset();
  moveFileFollowed(shots.appending("pending.png"), shots.appending("renamed.png"));
  moveFileFollowed(shots.appending("temporary.png"), shots.appending("wanted.png"));
  launchWatching();
  EXPECT_EQ(item(pending).url, shots.appending("renamed.png"));
  EXPECT_EQ(stateOf(pending), State::pending) << "inside the folder it stays pending";
  EXPECT_EQ(item(pending).fileBookmark, FakeSecurityScope::bookmarkOf(shots.appending("renamed.png")));
  EXPECT_EQ(item(temporary).url, shots.appending("wanted.png"));
  EXPECT_EQ(stateOf(temporary), State::permanent);
  EXPECT_EQ(scheduledAt(temporary), std::nullopt);
  EXPECT_EQ(savedRecord(temporary), item(temporary));
}

TEST_F(AppModelReconciliation, FileRenamedWhileTheProgramWasClosedIsFoundByItsIdentity) {
  const UUID temporary = arriveTemporary("temporary.png");
  const auto identity = item(temporary).fileIdentity;
  model.reset();
  moveFile(shots.appending("temporary.png"), shots.appending("wanted.png"));
  launchWatching();
  EXPECT_EQ(item(temporary).url, shots.appending("wanted.png"));
  EXPECT_EQ(stateOf(temporary), State::permanent);
  EXPECT_EQ(item(temporary).fileIdentity, identity);
  EXPECT_EQ(item(temporary).fileBookmark, FakeSecurityScope::bookmarkOf(shots.appending("wanted.png")));
}

TEST_F(AppModelReconciliation, FileFoundByIdentityKeepsItsOldBookmarkWhereNoneCanBeMade) {
  const UUID id = arrivePermanent("shot.png");
  moveFile(shots.appending("shot.png"), shots.appending("renamed.png"));
  scope.refusesBookmarks = true;
  reconcileAll();
  EXPECT_EQ(item(id).url, shots.appending("renamed.png"));
  EXPECT_EQ(item(id).fileBookmark, FakeSecurityScope::bookmarkOf(shots.appending("shot.png")));
}

TEST_F(AppModelReconciliation, PendingFileThatLeftTheFolderIsKept) {
  const UUID first = arrive("first.png");
  const UUID second = arrive("second.png");
  moveFileFollowed(shots.appending("first.png"), elsewhere.appending("first.png"));
  reconcileAll();
  EXPECT_EQ(stateOf(first), State::permanent);
  EXPECT_EQ(presenter.visible, second);
  EXPECT_TRUE(scope.isOpen(elsewhere.appending("first.png")));
}

TEST_F(AppModelReconciliation, EvictedFilesAreKnownAsSuch) {
  const UUID cloud = arrivePermanent("cloud.png");
  const UUID other = arrivePermanent("other.png");
  const UUID here = arrivePermanent("here.png");
  dataless = {shots.appending("cloud.png").path(), shots.appending("other.png").path()};
  ubiquitous = {shots.appending("cloud.png").path(), shots.appending("here.png").path()};
  reconcileAll();
  EXPECT_EQ(*model->evictedItemIDs, (UUIDSet{cloud, other}));
  EXPECT_EQ(*model->iCloudItemIDs, UUIDSet{cloud});
  dataless.clear();
  reconcileAll();
  EXPECT_THAT(*model->evictedItemIDs, IsEmpty());
  EXPECT_THAT(*model->iCloudItemIDs, IsEmpty());
  EXPECT_TRUE(hasRecord(here));
}

TEST_F(AppModelReconciliation, UnreachableFilesAreNotEvicted) {
  dataless = {shots.appending("cloud.png").path()};
  ubiquitous = dataless;
  const UUID id = arriveFromElsewhere("cloud.png");
  ASSERT_TRUE(model->evictedItemIDs->contains(id));
  ejectDisk();
  reconcileAll();
  EXPECT_TRUE(model->unavailableItemIDs->contains(id));
  EXPECT_THAT(*model->evictedItemIDs, IsEmpty());
  EXPECT_THAT(*model->iCloudItemIDs, IsEmpty());
}

TEST_F(AppModelReconciliation, ACompleteIdentityIsKeptAtTheSamePath) {
  const UUID id = arriveTemporary("shot.png");
  const auto before = item(id).fileIdentity;
  deleteFile(shots.appending("shot.png"));
  writeFile(shots.appending("shot.png"), "quite another picture");
  reconcileAll();
  EXPECT_EQ(item(id).fileIdentity, before) << "another file under this name must not pass for the old one";
}

TEST_F(AppModelReconciliation, AnIncompleteIdentityIsCompleted) {
  auto stored = storedItem(1, "shot.png", State::permanent);
  stored.fileIdentity = FileIdentity{std::nullopt, 42, std::nullopt, std::nullopt};
  storeRecords({stored});
  launchWatching();
  EXPECT_EQ(item(uuid(1)).fileIdentity, identityOf(stored.url));
  EXPECT_EQ(savedRecord(uuid(1))->fileIdentity, identityOf(stored.url));
}

TEST_F(AppModelReconciliation, ARecordWithoutABookmarkGetsOne) {
  storeRecords({storedItem(1, "shot.png", State::permanent)});
  launchWatching();
  EXPECT_EQ(item(uuid(1)).fileBookmark, FakeSecurityScope::bookmarkOf(shots.appending("shot.png")));
}

TEST_F(AppModelReconciliation, AStaleBookmarkIsRenewed) {
  auto stored = storedItem(1, "shot.png", State::permanent);
  stored.fileBookmark = "an old form";
  scope.places["an old form"] = SecurityScopeAccess::Resolution{stored.url, true};
  storeRecords({stored});
  launchWatching();
  EXPECT_EQ(savedRecord(uuid(1))->fileBookmark, FakeSecurityScope::bookmarkOf(stored.url));
}

TEST_F(AppModelReconciliation, NothingIsSavedOrToldWhenEverythingIsInPlace) {
  arrivePermanent("shot.png");
  arrive("pending.png");
  wasSaved();
  changes.clear();
  reconcileAll();
  EXPECT_THAT(changes, IsEmpty());
  EXPECT_FALSE(wasSaved());
}

TEST_F(AppModelReconciliation, SetsAreToldOnlyWhenTheyChange) {
  arrivePermanent("shot.png");
  ejectDisk();
  reconcileAll();
  reconcileAll();
  EXPECT_EQ(changesOf(ModelField::unavailableItemIDs), 1u);
  EXPECT_EQ(changesOf(ModelField::evictedItemIDs), 0u);
}

TEST_F(AppModelReconciliation, OnlyTheRecordsAskedForAreLookedAt) {
  const UUID first = arrivePermanent("first.png");
  const UUID second = arrivePermanent("second.png");
  deleteFile(shots.appending("first.png"));
  deleteFile(shots.appending("second.png"));
  model->reconcile(request(UUIDSet{second}));
  executor.drain();
  EXPECT_TRUE(hasRecord(first));
  EXPECT_FALSE(hasRecord(second));
}

// --- During a run ---

TEST_F(AppModelReconciliation, RequestsDuringARunBecomeOneRunAfterItWithTheUnionOfIds) {
  const UUID first = arrivePermanent("first.png");
  const UUID second = arrivePermanent("second.png");
  const UUID third = arrivePermanent("third.png");
  executor.holdBackground();
  model->reconcile(request(UUIDSet{third}, "running"));
  model->reconcile(request(UUIDSet{first}, "one"));
  model->reconcile(request(UUIDSet{second}, "two"));
  EXPECT_EQ(executor.heldBackground(), 1u);
  for (const char* name : {"first.png", "second.png"}) deleteFile(shots.appending(name));
  executor.runHeldBackground();
  EXPECT_THAT(completed, ElementsAre("running", "one", "two"));
  EXPECT_FALSE(hasRecord(first));
  EXPECT_FALSE(hasRecord(second));
  EXPECT_TRUE(hasRecord(third));
  EXPECT_FALSE(model->isReconciling());
}

TEST_F(AppModelReconciliation, AFullRequestAmongThoseWaitingLooksAtEverything) {
  const UUID first = arrivePermanent("first.png");
  const UUID second = arrivePermanent("second.png");
  executor.holdBackground();
  model->reconcile(request(UUIDSet{first}));
  model->reconcile(request(std::nullopt, "all"));
  model->reconcile(request(UUIDSet{first}, "one"));
  deleteFile(shots.appending("second.png"));
  executor.runHeldBackground();
  EXPECT_FALSE(hasRecord(second)) << "none, which is every record, stays none";
  EXPECT_THAT(completed, ElementsAre("all", "one"));
}

TEST_F(AppModelReconciliation, PolitenessAndDroppingAreJoinedWhileWaiting) {
  const UUID lost = arrive("lost.png");
  const UUID next = arriveOnAnotherDisk("next.png");
  executor.holdBackground();
  model->reconcile(request(std::nullopt));
  model->reconcile(request(std::nullopt));
  auto dropping = request(UUIDSet{lost});
  dropping.polite = dropping.dropsUnavailableFromQueue = true;
  model->reconcile(dropping);
  ejectDisk();
  announcer.said.clear();
  executor.runHeldBackground();
  EXPECT_THAT(queue(), ElementsAre(next));
  EXPECT_THAT(announcer.said, ElementsAre(Announcement{"Screenshot ready for a decision.", AnnouncementPriority::low}));
}

TEST_F(AppModelReconciliation, ACompletionMayAskForAnotherRun) {
  auto again = request(std::nullopt, "first");
  again.completions.push_back([this] { model->reconcile(request(std::nullopt, "second")); });
  model->reconcile(again);
  executor.drain();
  EXPECT_THAT(completed, ElementsAre("first", "second"));
  EXPECT_FALSE(model->isReconciling());
}

TEST_F(AppModelReconciliation, ARenameByThePersonDuringARunIsNotUndone) {
  const UUID id = arrivePermanent("shot.png");
  executor.holdBackground();
  model->rename(id, "By hand", ErrorScope::inbox).detach();
  // The run goes by the old place, where by then another file stands.
  executor.runInBackground([&] { writeFile(shots.appending("shot.png"), "another picture"); }, [] {});
  model->reconcile(request(std::nullopt));
  executor.runHeldBackground();
  EXPECT_EQ(item(id).url, shots.appending("By hand.png"));
  EXPECT_FALSE(model->unavailableItemIDs->contains(id));
}

TEST_F(AppModelReconciliation, ARecordForgottenDuringARunStaysForgotten) {
  const UUID id = arrivePermanent("shot.png");
  executor.holdBackground();
  model->reconcile(request(std::nullopt));
  model->removeRecords({id});
  executor.runHeldBackground();
  EXPECT_FALSE(hasRecord(id));
  EXPECT_THAT(*model->unavailableItemIDs, IsEmpty());
}

TEST_F(AppModelReconciliation, AScreenshotThatArrivesDuringARunIsLeftAlone) {
  arrivePermanent("before.png");
  executor.holdBackground();
  model->reconcile(request(std::nullopt));
  const UUID id = arrive("during.png");
  executor.runHeldBackground();
  EXPECT_THAT(queue(), ElementsAre(id));
  EXPECT_FALSE(model->unavailableItemIDs->contains(id));
}

TEST_F(AppModelReconciliation, AModelThatGoesWithARequestWaitingRunsNoCompletion) {
  executor.holdBackground();
  model->reconcile(request(std::nullopt, "running"));
  model->reconcile(request(std::nullopt, "waiting"));
  model.reset();
  executor.runHeldBackground();
  EXPECT_THAT(completed, IsEmpty());
}

// --- News of the monitor ---

TEST_F(AppModelReconciliation, EjectingTheDiskOfTheVisibleScreenshotShowsTheNextPolitely) {
  const UUID lost = arrive("lost.png");
  const UUID next = arriveOnAnotherDisk("next.png");
  ejectDisk();
  announcer.said.clear();
  report(WatcherStatus::volumeNotConnected);
  EXPECT_TRUE(model->unavailableItemIDs->contains(lost));
  EXPECT_EQ(stateOf(lost), State::pending);
  EXPECT_EQ(presenter.visible, next);
  EXPECT_THAT(queue(), ElementsAre(next));
  EXPECT_THAT(announcer.said, ElementsAre(Announcement{"Screenshot ready for a decision.", AnnouncementPriority::low}));
}

TEST_F(AppModelReconciliation, PopupsSpeakAtHighPriorityAgainAfterAPoliteRun) {
  arrive("lost.png");
  ejectDisk();
  report(WatcherStatus::volumeNotConnected);
  EXPECT_EQ(presenter.visible, std::nullopt);
  connectDisk();
  report(WatcherStatus::watching);
  announcer.said.clear();
  arrive("new.png");
  EXPECT_THAT(announcer.said,
              ElementsAre(Announcement{"Screenshot ready for a decision.", AnnouncementPriority::high}));
}

TEST_F(AppModelReconciliation, AScreenshotOfAnEjectedDiskReturnsByTheReview) {
  const UUID id = arrive("lost.png");
  ejectDisk();
  report(WatcherStatus::volumeNotConnected);
  connectDisk();
  report(WatcherStatus::watching);
  EXPECT_THAT(queue(), IsEmpty());
  model->reviewPending(FocusNews::silent);
  EXPECT_THAT(queue(), ElementsAre(id));
}

TEST_F(AppModelReconciliation, ARunThatDropsNothingLeavesUnavailableScreenshotsInTheQueue) {
  const UUID id = arrive("lost.png");
  ejectDisk();
  reconcileAll();
  EXPECT_TRUE(model->unavailableItemIDs->contains(id));
  EXPECT_THAT(queue(), ElementsAre(id));
}

TEST_F(AppModelReconciliation, RemovalOfAKnownFileRemovesItsRecordAndClosesItsPopup) {
  const UUID first = arrive("first.png");
  const UUID second = arrive("second.png");
  deleteFile(shots.appending("first.png"));
  announcer.said.clear();
  reportRemoval({shots.appending("first.png"), shots.appending("never seen.png")});
  EXPECT_FALSE(hasRecord(first));
  EXPECT_EQ(presenter.visible, second);
  EXPECT_THAT(announcer.said, ElementsAre(Announcement{"Screenshot ready for a decision.", AnnouncementPriority::low}));
}

TEST_F(AppModelReconciliation, RemovalOfUnknownFilesStartsNoRun) {
  executor.holdBackground();
  monitor.onRemoval({shots.appending("never seen.png")});
  EXPECT_FALSE(model->isReconciling());
}

TEST_F(AppModelReconciliation, NewsBeforeTheStartStartsNoRun) {
  storeRecords({storedItem(1, "shot.png")});
  makeModel();
  executor.holdBackground();
  monitor.onRemoval({shots.appending("shot.png")});
  monitor.onStatusChange(WatcherStatus::volumeNotConnected);
  EXPECT_FALSE(model->isReconciling());
}

TEST_F(AppModelReconciliation, AStatusThatIsNoChangeStartsNoRun) {
  executor.holdBackground();
  monitor.onStatusChange(WatcherStatus::watching);
  EXPECT_FALSE(model->isReconciling());
}

TEST_F(AppModelReconciliation, LosingAndFindingTheFolderStartsARun) {
  struct Row {
    WatcherStatus before;
    WatcherStatus after;
    bool runs;
  };
  for (const Row& row : {Row{WatcherStatus::watching, WatcherStatus::notFound, true},
                         Row{WatcherStatus::watching, WatcherStatus::volumeNotConnected, true},
                         Row{WatcherStatus::notFound, WatcherStatus::watching, true},
                         Row{WatcherStatus::volumeNotConnected, WatcherStatus::watching, true},
                         Row{WatcherStatus::notFound, WatcherStatus::volumeNotConnected, true},
                         Row{WatcherStatus::watching, WatcherStatus::notChosen, false}}) {
    unreachableFolders = {shots.path()};
    report(row.before);
    executor.holdBackground();
    monitor.onStatusChange(row.after);
    EXPECT_EQ(model->isReconciling(), row.runs)
        << statusText(row.before).toStdString() << " to " << statusText(row.after).toStdString();
    executor.runHeldBackground();
  }
}

TEST_F(AppModelReconciliation, AFileMovedBackAndForthKeepsItsAccessBalanced) {
  const UUID id = arrivePermanent("shot.png");
  for (int i = 0; i < 3; ++i) {
    moveFileFollowed(shots.appending("shot.png"), elsewhere.appending("shot.png"));
    reconcileAll();
    EXPECT_EQ(item(id).url, elsewhere.appending("shot.png"));
    EXPECT_TRUE(scope.isOpen(elsewhere.appending("shot.png")));
    scope.places.clear();
    moveFileFollowed(elsewhere.appending("shot.png"), shots.appending("shot.png"));
    reconcileAll();
    EXPECT_EQ(item(id).url, shots.appending("shot.png"));
    EXPECT_FALSE(scope.isOpen(elsewhere.appending("shot.png")));
    scope.places.clear();
  }
  EXPECT_EQ(scope.openCount(), 1);
}

// --- Moved away to where it is not found ---

TEST_F(AppModelReconciliation, AFileThatWasMovedAwayAndIsNotFoundIsSavedAndUnavailable) {
  launchWatching();
  const UUID temporary = arriveTemporary("temporary.png");
  const UUID pending = arrive("pending.png");
  for (const char* name : {"temporary.png", "pending.png"}) {
    deleteFile(shots.appending(name));
    monitor.movedOut.insert(shots.appending(name).path());
  }
  reportRemoval({shots.appending("temporary.png"), shots.appending("pending.png")});
  executor.drain();
  for (const UUID& id : {temporary, pending}) {
    EXPECT_EQ(stateOf(id), State::permanent);
    EXPECT_TRUE(model->unavailableItemIDs->contains(id));
    EXPECT_EQ(savedRecord(id)->hasMovedAway, true);
  }
  EXPECT_TRUE(queue().empty());
  // Nobody remembers in the next run but the record.
  monitor.movedOut.clear();
  launchWatching();
  EXPECT_TRUE(hasRecord(temporary));
  EXPECT_TRUE(model->unavailableItemIDs->contains(temporary));
}

TEST_F(AppModelReconciliation, AFileThatMovedAwayAndWasWrittenToIsKnownWhenItComesBack) {
  launchWatching();
  const UUID id = arrivePermanent("shot.png");
  const FileURL shot = shots.appending("shot.png");
  moveElsewhere(shot);
  const FileURL back = shots.appending("back.png");
  moveFile(elsewhere.appending("shot.png"), back);
  testing::appendToFile(back, "more");
  monitor.onScreenshot(back);
  executor.drain();
  EXPECT_EQ(model->items().size(), 1u);
  EXPECT_EQ(item(id).url, back);
  EXPECT_EQ(item(id).fileIdentity, identityOf(back));
}

TEST_F(AppModelReconciliation, AFileThatMovedAwayAndComesBackToItsPlaceIsNoNewOne) {
  launchWatching();
  const UUID id = arrivePermanent("shot.png");
  const FileURL shot = shots.appending("shot.png");
  // Where no bookmark finds it.
  moveFile(shot, elsewhere.appending("away.png"));
  monitor.movedOut.insert(shot.path());
  reportRemoval({shot});
  executor.drain();
  ASSERT_EQ(item(id).hasMovedAway, true);
  moveFile(elsewhere.appending("away.png"), shot);
  monitor.onScreenshot(shot);
  executor.drain();
  EXPECT_EQ(model->items().size(), 1u);
  EXPECT_EQ(item(id).url, shot);
  EXPECT_EQ(item(id).hasMovedAway, std::nullopt);
  EXPECT_FALSE(model->unavailableItemIDs->contains(id));
  EXPECT_TRUE(queue().empty());
}

TEST_F(AppModelReconciliation, AFileThatWasWrittenToAndRenamedHasOneRecordInTheEnd) {
  launchWatching();
  for (const bool isDecided : {false, true}) {
    const std::string name = isDecided ? "decided.png" : "pending.png";
    const UUID old = arrivePermanent("old " + name);
    const FileURL before = shots.appending("old " + name);
    const FileURL after = shots.appending(name);
    moveFileFollowed(before, after);
    testing::appendToFile(after, "more");
    monitor.onScreenshot(after);
    const UUID newcomer = model->items()[0].id;
    ASSERT_NE(newcomer, old) << "its size is another one";
    if (isDecided) model->keepPrompt(newcomer).detach();
    reconcileAll();
    EXPECT_EQ(hasRecord(old), !isDecided);
    EXPECT_EQ(hasRecord(newcomer), isDecided);
    EXPECT_TRUE(fileExists(after));
  }
}

TEST_F(AppModelReconciliation, AFileThatWasMovedAwayIsNotAskedAboutWhicheverLookFoundThat) {
  launchWatching();
  const UUID id = arrive("shot.png");
  deleteFile(shots.appending("shot.png"));
  monitor.movedOut.insert(shots.appending("shot.png").path());
  reconcileAll();
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_THAT(queue(), IsEmpty());
}

TEST_F(AppModelReconciliation, AFileThatIsFoundAgainHasNotMovedAway) {
  launchWatching();
  const UUID id = arrivePermanent("shot.png");
  const FileURL shot = shots.appending("shot.png");
  moveElsewhere(shot);
  ASSERT_EQ(item(id).hasMovedAway, true);
  moveFile(elsewhere.appending("shot.png"), shot);
  reconcileAll();
  executor.drain();
  EXPECT_EQ(item(id).hasMovedAway, std::nullopt);
  EXPECT_TRUE(model->unavailableItemIDs->empty());
  deleteFile(shot);
  reportRemoval({shot});
  executor.drain();
  EXPECT_FALSE(hasRecord(id)) << "deleted this time";
}

}  // namespace
}  // namespace quillmere::testing
