#include "fakes/ModelFixture.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class AppModelMoving : public ModelFixture {
 protected:
  void SetUp() override { launchWatching(); }
  FileURL destination() const { return elsewhere.appending("A window.png"); }
  MoveJournal journal() const { return MoveJournal(listFile.parent().appending("moving.json")); }
  /// The analysis of a record, as it stands in an older run's list.
  ScreenshotItem analyzed(int number, std::string_view name, std::string_view suggestion) {
    ScreenshotItem item = storedItem(number, name, State::permanent);
    item.suggestedName = QByteArray(suggestion.data(), static_cast<qsizetype>(suggestion.size()));
    item.imageDescription = "A window with text.";
    return item;
  }
  std::vector<UUID> everyID() const {
    std::vector<UUID> ids;
    model->items().forEach([&](const ScreenshotItem& item) { ids.push_back(item.id); });
    return ids;
  }
};

TEST_F(AppModelMoving, AMovedScreenshotIsKeptAtItsNewPlace) {
  const UUID id = arrive("shot.png");
  finish(model->move(id, destination()));
  EXPECT_TRUE(fileExists(destination()));
  EXPECT_FALSE(fileExists(shots.appending("shot.png")));
  EXPECT_EQ(item(id).url, destination());
  EXPECT_EQ(item(id).fileBookmark, FakeSecurityScope::bookmarkOf(destination()));
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_THAT(queue(), IsEmpty());
  EXPECT_EQ(savedRecord(id), item(id));
  EXPECT_FALSE(*model->inboxError);
}

TEST_F(AppModelMoving, ATemporaryScreenshotThatWasMovedHasNoExpiryAnyMore) {
  const UUID id = arriveTemporary("shot.png");
  finish(model->move(id, destination()));
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_FALSE(item(id).expiresAt);
  EXPECT_FALSE(scheduledAt(id));
  advance(24 * 3600.0);
  EXPECT_TRUE(fileExists(destination()));
}

TEST_F(AppModelMoving, AFileOutsideTheFolderGetsAccessOfItsOwn) {
  const UUID id = arrive("shot.png");
  finish(model->move(id, destination()));
  EXPECT_TRUE(scope.isOpen(destination()));
}

TEST_F(AppModelMoving, AMoveWithinTheFolderMakesNoSecondRecord) {
  const UUID id = arrive("shot.png");
  const FileURL renamed = shots.appending("other.png");
  finish(model->move(id, renamed));
  monitor.onScreenshot(renamed);
  reportRemoval({shots.appending("shot.png")});
  EXPECT_EQ(model->items().size(), 1u);
  EXPECT_THAT(monitor.known, ::testing::Contains(renamed));
  EXPECT_EQ(item(id).url, renamed);
}

TEST_F(AppModelMoving, OnAnotherDiskTheFileHasAnotherIdentity) {
  const UUID id = arrive("shot.png");
  const FileIdentity there{"other volume", 7, Date{1}, 8};
  identities[destination().path()] = there;
  finish(model->move(id, destination()));
  EXPECT_EQ(item(id).fileIdentity, there);
}

TEST_F(AppModelMoving, ATakenNameIsToldWithoutAnythingElse) {
  const UUID id = arriveTemporary("shot.png");
  const ScreenshotItem before = item(id);
  writeFile(destination(), "another file");
  finish(model->move(id, destination()));
  ASSERT_TRUE(*model->inboxError);
  EXPECT_EQ((*model->inboxError)->title, "Couldn’t Move Screenshot");
  EXPECT_EQ((*model->inboxError)->message,
            "A file already exists with that name. Choose a different name to avoid replacing it.");
  EXPECT_EQ(item(id), before);
  EXPECT_EQ(readBytes(destination()), "another file");
  EXPECT_TRUE(scheduledAt(id));
}

TEST_F(AppModelMoving, ARefusedMoveIsToldInTheSystemsWords) {
  const UUID id = arrive("shot.png");
  const ScreenshotItem before = item(id);
  files.refuse(before.url);
  finish(model->move(id, destination()));
  ASSERT_TRUE(*model->inboxError);
  EXPECT_EQ((*model->inboxError)->title, "Couldn’t Move Screenshot");
  EXPECT_EQ((*model->inboxError)->message,
            "No space left on device. The screenshot wasn’t moved. Choose a different folder or name, then try again.");
  EXPECT_EQ(item(id), before);
  EXPECT_THAT(queue(), ElementsAre(id));
}

TEST_F(AppModelMoving, AccessThatCannotBeSavedIsToldAndTheMoveStands) {
  const UUID id = arrive("shot.png");
  const auto oldBookmark = item(id).fileBookmark;
  scope.refusedBookmarks.insert(destination().path());
  finish(model->move(id, destination()));
  ASSERT_TRUE(*model->inboxError);
  EXPECT_EQ((*model->inboxError)->title, "Access Not Saved");
  EXPECT_EQ((*model->inboxError)->message,
            "The screenshot was moved and kept, but access couldn’t be saved for the next launch. If it shows as "
            "unavailable later, move it again with Move and Rename.");
  EXPECT_EQ(item(id).url, destination());
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(item(id).fileBookmark, oldBookmark);
}

TEST_F(AppModelMoving, AMovedScreenshotIsAvailableAndItsDataIsLookedForAtTheNewPlace) {
  const UUID id = arrivePermanent("shot.png");
  ejectDisk();
  report(WatcherStatus::volumeNotConnected);
  ASSERT_TRUE(model->unavailableItemIDs->contains(id));
  connectDisk();
  dataless.insert(destination().path());
  ubiquitous.insert(destination().path());
  finish(model->move(id, destination()));
  EXPECT_FALSE(model->unavailableItemIDs->contains(id));
  EXPECT_TRUE(model->evictedItemIDs->contains(id));
  EXPECT_TRUE(model->iCloudItemIDs->contains(id));
}

TEST_F(AppModelMoving, ARecordThatIsGoneIsNotMoved) {
  const UUID id = arrive("shot.png");
  model->removeRecords({id});
  finish(model->move(id, destination()));
  EXPECT_TRUE(fileExists(shots.appending("shot.png")));
  EXPECT_FALSE(*model->inboxError);
}

// --- The save panel ---

TEST_F(AppModelMoving, AMoveIsNotedUntilItIsSaved) {
  const UUID id = arrive("shot.png");
  const FileURL before = item(id).url;
  const std::vector<BegunMove> noted{{id, before, destination()}};
  files.onMove = [&](const FileURL&, const FileURL&) { EXPECT_TRUE(journal().load() == noted); };
  files.refuse(before);
  finish(model->move(id, destination()));
  EXPECT_TRUE(journal().load().empty()) << "it did not take place";
  files.allow(before);
  finish(model->move(id, destination()));
  EXPECT_EQ(savedRecord(id)->url, destination());
  EXPECT_TRUE(journal().load().empty());
}

TEST_F(AppModelMoving, AMoveStaysNotedUntilTheListCanBeSaved) {
  const UUID id = arrive("shot.png");
  const FileURL inItsWay = listFile.parent().appending("screenshots.json.saving");
  std::filesystem::create_directory(inItsWay.path());
  finish(model->move(id, destination()));
  EXPECT_FALSE(model->isSaved());
  EXPECT_EQ(journal().load().size(), 1u);
  model.reset();
  std::filesystem::remove(inItsWay.path());
  launch();
  EXPECT_EQ(item(id).url, destination());
  EXPECT_TRUE(journal().load().empty());
}

TEST_F(AppModelMoving, ANoteThatWasCutOffIsGoneAfterAStart) {
  model.reset();
  const FileURL unfinished = listFile.parent().appending("moving.json.saving");
  std::filesystem::create_directories(unfinished.parent().path());
  writeFile(unfinished, "half a note");
  launch();
  EXPECT_FALSE(fileExists(unfinished));
}

TEST_F(AppModelMoving, AFileThatHasMovedWhenTheRunEndsIsFollowed) {
  const UUID id = arriveTemporary("shot.png");
  const FileURL before = item(id).url;
  model.reset();
  ASSERT_TRUE(journal().save({{id, before, destination()}}));
  // To another disk: nothing else tells that it is the same file.
  moveFile(before, destination());
  identities[destination().path()] = {"other volume", 7, Date{1}, 8};
  launch();
  EXPECT_EQ(item(id).url, destination());
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(savedRecord(id)->url, destination());
  EXPECT_TRUE(journal().load().empty());
}

TEST_F(AppModelMoving, OneThatHasNotGoneStays) {
  const UUID id = arrive("shot.png");
  const ScreenshotItem before = item(id);
  model.reset();
  ASSERT_TRUE(journal().save({{id, before.url, destination()}}));
  writeFile(destination(), "its copy");
  launch();
  EXPECT_EQ(item(id).url, before.url);
  EXPECT_EQ(stateOf(id), State::pending);
  EXPECT_EQ(readBytes(destination()), "its copy");
  EXPECT_TRUE(journal().load().empty());
}

TEST_F(AppModelMoving, AnotherFileInTheNewPlaceIsNotTheScreenshot) {
  const UUID id = arrive("shot.png");
  const FileURL before = item(id).url;
  model.reset();
  ASSERT_TRUE(journal().save({{id, before, destination()}}));
  deleteFile(before);
  writeFile(destination(), "another file of another size than the screenshot has");
  launch();
  EXPECT_FALSE(hasRecord(id));
}

TEST_F(AppModelMoving, OneThatMayBeOnADiskThatIsAwayIsWaitedFor) {
  const UUID id = arrive("shot.png");
  const FileURL before = item(id).url;
  model.reset();
  ASSERT_TRUE(journal().save({{id, before, destination()}}));
  moveFile(before, destination());
  unreachableFolders.insert(elsewhere.path());
  std::filesystem::rename(elsewhere.path(), away.path());
  launch();
  EXPECT_TRUE(model->unavailableItemIDs->contains(id));
  EXPECT_EQ(journal().load().size(), 1u);
  model.reset();
  unreachableFolders.clear();
  std::filesystem::rename(away.path(), elsewhere.path());
  launch();
  EXPECT_EQ(item(id).url, destination());
  EXPECT_FALSE(item(id).hasMovedAway);
  EXPECT_FALSE(model->unavailableItemIDs->contains(id));
  EXPECT_TRUE(journal().load().empty());
}

TEST_F(AppModelMoving, ThePanelOpensWithTheFilesNameInItsFolder) {
  const UUID id = arrive("My shot.png");
  chooser.destination = destination();
  model->moveAndRename(id);
  executor.drain();
  ASSERT_EQ(chooser.saveStarts.size(), 1u);
  EXPECT_EQ(chooser.saveStarts[0].directory, shots);
  EXPECT_EQ(chooser.saveStarts[0].name, "My shot.png");
  EXPECT_EQ(chooser.saveStarts[0].pathExtension, "png");
  EXPECT_EQ(item(id).url, destination());
}

TEST_F(AppModelMoving, ACancelledPanelChangesNothing) {
  const UUID id = arriveTemporary("shot.png");
  const ScreenshotItem before = item(id);
  model->moveAndRename(id);
  executor.drain();
  EXPECT_EQ(item(id), before);
  EXPECT_EQ(files.calls(), 0);
}

TEST_F(AppModelMoving, NothingRunsOutOfTimeUnderTheOpenPanel) {
  const UUID id = arriveTemporary("shot.png");
  chooser.whileOpen = [&] {
    advance(3600);
    EXPECT_TRUE(fileExists(shots.appending("shot.png")));
    EXPECT_EQ(files.trashCalls, 0);
  };
  model->moveAndRename(id);
  executor.drain();
  // The panel is closed, and the time is up.
  advance(10);
  EXPECT_EQ(files.trashCalls, 1);
}

TEST_F(AppModelMoving, ARecordCannotBeDisposedOfUnderTheOpenPanel) {
  const UUID id = arrive("shot.png");
  chooser.whileOpen = [&] {
    finish(model->disposeItem(item(id), ErrorScope::inbox, AppModel::DisposalReason::chosen));
  };
  chooser.destination = destination();
  model->moveAndRename(id);
  executor.drain();
  EXPECT_EQ(files.trashCalls, 0);
  EXPECT_EQ(item(id).url, destination());
}

TEST_F(AppModelMoving, AFileThatVanishedUnderTheOpenPanelIsAFailedMove) {
  const UUID id = arrive("shot.png");
  chooser.whileOpen = [&] { deleteFile(shots.appending("shot.png")); };
  chooser.destination = destination();
  model->moveAndRename(id);
  executor.drain();
  ASSERT_TRUE(*model->inboxError);
  EXPECT_EQ((*model->inboxError)->title, "Couldn’t Move Screenshot");
}

// --- Suggested names ---

TEST_F(AppModelMoving, OneSuggestedNameIsUsedAsInOneRename) {
  storeRecords({analyzed(1, "shot.png", "Budget: 2026")});
  launchWatching();
  finish(model->applySuggestedNames({uuid(1)}, ErrorScope::inbox));
  EXPECT_EQ(item(uuid(1)).url, shots.appending("Budget 2026.png"));
  EXPECT_EQ(savedRecord(uuid(1)), item(uuid(1)));
}

TEST_F(AppModelMoving, AFailureOfOneSuggestedNameIsToldAsOneRenames) {
  storeRecords({analyzed(1, "shot.png", "Budget")});
  launchWatching();
  files.refuse(shots.appending("shot.png"));
  finish(model->applySuggestedNames({uuid(1)}, ErrorScope::inbox));
  ASSERT_TRUE(*model->inboxError);
  EXPECT_EQ((*model->inboxError)->title, "Couldn’t Rename Screenshot");
}

TEST_F(AppModelMoving, RecordsWithoutAUsableSuggestionAreSkipped) {
  ScreenshotItem undescribed = analyzed(3, "c.png", "Name");
  undescribed.imageDescription.reset();
  storeRecords({analyzed(1, "a.png", "Table"), analyzed(2, "b.png", "..."), undescribed,
                storedItem(4, "d.png", State::permanent)});
  launchWatching();
  finish(model->applySuggestedNames(everyID(), ErrorScope::inbox));
  EXPECT_EQ(files.moveCalls, 1);
  EXPECT_EQ(item(uuid(1)).url, shots.appending("Table.png"));
  EXPECT_FALSE(*model->inboxError);
  finish(model->applySuggestedNames({uuid(2)}, ErrorScope::inbox));
  finish(model->applySuggestedNames({uuid(4)}, ErrorScope::inbox));
  EXPECT_EQ(files.moveCalls, 1);
}

TEST_F(AppModelMoving, ABatchIsSavedOnceAndNumbersEqualNames) {
  storeRecords({analyzed(1, "a.png", "Table"), analyzed(2, "b.png", "Table")});
  launchWatching();
  finish(model->applySuggestedNames({uuid(1), uuid(2)}, ErrorScope::inbox));
  EXPECT_EQ(item(uuid(1)).url, shots.appending("Table.png"));
  EXPECT_EQ(item(uuid(2)).url, shots.appending("Table (1).png"));
  EXPECT_EQ(savedRecord(uuid(2)), item(uuid(2)));
}

TEST_F(AppModelMoving, ABatchInWhichNothingIsRenamedIsNotSaved) {
  storeRecords({analyzed(1, "Table.png", "Table"), analyzed(2, "b.png", "b")});
  launchWatching();
  wasSaved();
  finish(model->applySuggestedNames({uuid(1), uuid(2)}, ErrorScope::inbox));
  EXPECT_FALSE(wasSaved());
  EXPECT_FALSE(*model->inboxError);
}

TEST_F(AppModelMoving, ABatchTellsFailuresFirstThenTheUnavailable) {
  storeRecords({analyzed(1, "a.png", "One"), analyzed(2, "b.png", "Two"), analyzed(3, "c.png", "Three"),
                analyzed(4, "d.png", "Four")});
  launchWatching();
  files.refuse(shots.appending("a.png"));
  files.refuse(shots.appending("b.png"));
  // Its folder goes for a moment, and with it the record.
  unreachableFolders.insert(shots.path());
  moveFile(shots.appending("c.png"), home.file("hidden.png"));
  model->reconcile({.ids = UUIDSet{uuid(3)}, .polite = false, .dropsUnavailableFromQueue = false, .completions = {}});
  executor.drain();
  ASSERT_TRUE(model->unavailableItemIDs->contains(uuid(3)));
  finish(model->applySuggestedNames({uuid(3), uuid(1), uuid(2), uuid(4)}, ErrorScope::inbox));
  ASSERT_TRUE(*model->inboxError);
  EXPECT_EQ((*model->inboxError)->title, "Couldn’t Rename Every Screenshot");
  EXPECT_EQ((*model->inboxError)->message,
            "2 screenshots couldn’t be renamed. Check that you can change files in their folder. 1 screenshot is on a "
            "disk or in a folder that isn’t available. They keep the names they have.");
  EXPECT_EQ(item(uuid(4)).url, shots.appending("Four.png"));
}

}  // namespace
}  // namespace quillmere::testing
