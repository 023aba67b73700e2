#include "fakes/ModelFixture.h"
#include "model/HistoryExecutor.h"

namespace quillmere::testing {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::SizeIs;

ReconcileRequest everything() {
  return {.ids = std::nullopt, .polite = false, .dropsUnavailableFromQueue = false, .completions = {}};
}

// --- Between a run's look at the files and its result ---

/// The look and the delivery of what it saw are two steps of the test.
class BetweenLookAndResult : public ModelFixture {
 protected:
  void SetUp() override {
    chooseFolderBefore(shots);
    defaults = std::make_unique<UserDefaults>(settingsFile.displayPath());
    AppModelDependencies world = dependencies();
    world.executor = &background;
    model = std::make_unique<AppModel>(std::move(world));
    model->start();
    background.drain();
  }
  void TearDown() override { model.reset(); }
  void look() {
    background.hold();
    model->reconcile(everything());
    background.runWork();
  }
  void deliver() { background.release(); }
  /// What was asked for since the look has an end before it.
  void runNewest() {
    background.runWork();
    background.deliver(1);
  }

  HistoryExecutor background{[] { return std::nullopt; }, [](int) {}};
};

TEST_F(BetweenLookAndResult, ARenameInTheProgramIsNotUndone) {
  const UUID id = arrivePermanent("shot.png");
  look();
  const auto renaming = model->rename(id, "By hand", ErrorScope::inbox);
  runNewest();
  EXPECT_TRUE(renaming.isDone());
  deliver();
  EXPECT_EQ(item(id).url, shots.appending("By hand.png"));
  EXPECT_EQ(savedRecord(id), item(id));
}

TEST_F(BetweenLookAndResult, ARecordThatWasThrownAwayDoesNotComeBack) {
  const UUID id = arrive("shot.png");
  look();
  const auto disposing = model->disposeItem(item(id), ErrorScope::popup, AppModel::DisposalReason::chosen);
  runNewest();
  EXPECT_TRUE(disposing.isDone());
  deliver();
  EXPECT_FALSE(hasRecord(id));
  EXPECT_TRUE(savedRecords().empty());
  EXPECT_TRUE(isInTrashFolder("shot.png"));
  EXPECT_EQ(*model->promptError, std::nullopt);
}

TEST_F(BetweenLookAndResult, ADecisionStands) {
  const UUID id = arrive("shot.png");
  look();
  model->markTemporary(id, TemporaryDuration::oneHour).detach();
  deliver();
  EXPECT_EQ(stateOf(id), State::temporary);
  EXPECT_EQ(scheduledAt(id), now() + 3600.0);
}

TEST_F(BetweenLookAndResult, ATemporaryScreenshotThatThePersonRenamedBeforeTheLookIsKept) {
  const UUID id = arrive("shot.png");
  moveFileFollowed(shots.appending("shot.png"), shots.appending("wanted.png"));
  look();
  model->markTemporary(id, TemporaryDuration::oneMinute).detach();
  deliver();
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(item(id).url, shots.appending("wanted.png"));
  EXPECT_EQ(scheduledAt(id), std::nullopt);
}

TEST_F(BetweenLookAndResult, ANewFileUnderTheNameOfOneThatIsGoneHasARecord) {
  arrivePermanent("shot.png");
  deleteFile(shots.appending("shot.png"));
  look();
  writeFile(shots.appending("shot.png"), "the next picture");
  monitor.onScreenshot(shots.appending("shot.png"));
  deliver();
  ASSERT_EQ(model->items().size(), 1u);
  EXPECT_EQ(model->items()[0].url, shots.appending("shot.png"));
  EXPECT_THAT(savedRecords(), SizeIs(1));
}

TEST_F(BetweenLookAndResult, ADiskThatReturnedIsLookedAtAgain) {
  const UUID id = arrivePermanent("shot.png");
  ejectDisk();
  monitor.onStatusChange(WatcherStatus::volumeNotConnected);
  background.drain();
  look();
  connectDisk();
  monitor.onStatusChange(WatcherStatus::watching);
  deliver();
  EXPECT_FALSE(model->unavailableItemIDs->contains(id));
}

// --- A removal or a change of the folder's status during a run ---

class DuringARun : public ModelFixture {
 protected:
  void SetUp() override { launchWatching(); }
  UUID arriveOnAnotherDisk(std::string_view name) {
    writeFile(elsewhere.appending(name), name);
    monitor.onScreenshot(elsewhere.appending(name));
    return model->items()[0].id;
  }
  void beginRun() {
    executor.holdBackground();
    model->reconcile(everything());
  }
};

TEST_F(DuringARun, DisposalShowsTheNextScreenshotWithoutWaitingForIt) {
  const UUID first = arrive("first.png");
  const UUID second = arrive("second.png");
  beginRun();
  model->disposeItem(item(first), ErrorScope::popup, AppModel::DisposalReason::chosen).detach();
  advance(0.25);
  EXPECT_EQ(presenter.visible, second);
  executor.runHeldBackground();
  EXPECT_FALSE(hasRecord(first));
  EXPECT_THAT(queue(), ElementsAre(second));
}

TEST_F(DuringARun, EjectingTheDiskIsActedOnAfterIt) {
  const UUID lost = arrive("lost.png");
  const UUID next = arriveOnAnotherDisk("next.png");
  beginRun();
  ejectDisk();
  monitor.onStatusChange(WatcherStatus::volumeNotConnected);
  EXPECT_EQ(presenter.visible, lost);
  announcer.said.clear();
  executor.runHeldBackground();
  EXPECT_TRUE(model->unavailableItemIDs->contains(lost));
  EXPECT_EQ(presenter.visible, next);
  EXPECT_THAT(announcer.said, Each(Field(&Announcement::priority, AnnouncementPriority::low)));
}

TEST_F(DuringARun, EjectingTheDiskJoinsTheRunThatWaits) {
  const UUID lost = arrive("lost.png");
  const UUID next = arriveOnAnotherDisk("next.png");
  int completions = 0;
  beginRun();
  auto waiting = everything();
  waiting.ids = UUIDSet{next};
  waiting.completions.push_back([&] { ++completions; });
  model->reconcile(std::move(waiting));
  ejectDisk();
  monitor.onStatusChange(WatcherStatus::volumeNotConnected);
  EXPECT_EQ(executor.heldBackground(), 1u);
  executor.runHeldBackground();
  EXPECT_EQ(completions, 1);
  EXPECT_TRUE(model->unavailableItemIDs->contains(lost));
  EXPECT_THAT(queue(), ElementsAre(next));
}

TEST_F(DuringARun, ADiskThatLeavesAndReturnsMeanwhileCostsNothing) {
  const UUID pending = arrive("pending.png");
  const UUID temporary = arriveTemporary("temporary.png");
  beginRun();
  ejectDisk();
  monitor.onStatusChange(WatcherStatus::volumeNotConnected);
  connectDisk();
  monitor.onStatusChange(WatcherStatus::watching);
  executor.runHeldBackground();
  EXPECT_TRUE(model->unavailableItemIDs->empty());
  EXPECT_EQ(presenter.visible, pending);
  EXPECT_EQ(stateOf(temporary), State::temporary);
  EXPECT_EQ(savedRecords().size(), 2u);
  EXPECT_FALSE(model->isReconciling());
}

// --- Two requests that wait for the same run ---

enum class Caller { plainFull, plainSome, removal, folderLost, folderFound, wake };
struct WaitingRun {
  bool looksAtAll;
  bool isPolite;
  bool drops;
};
WaitingRun asksFor(Caller caller) {
  switch (caller) {
    case Caller::plainFull:
      return {true, false, false};
    case Caller::plainSome:
      return {false, false, false};
    case Caller::removal:
      return {false, true, true};
    case Caller::folderLost:
      return {true, true, true};
    case Caller::folderFound:
    case Caller::wake:
      return {true, true, false};
  }
  return {};
}
std::string nameOf(Caller caller) {
  constexpr std::array kNames{"PlainFull", "PlainSome", "Removal", "FolderLost", "FolderFound", "Wake"};
  return kNames.at(static_cast<size_t>(caller));
}

class WaitingRequests : public DuringARun, public ::testing::WithParamInterface<std::pair<Caller, Caller>> {
 protected:
  void call(Caller caller) {
    // The folder is not found again at once.
    unreachableFolders.insert(shots.path());
    switch (caller) {
      case Caller::plainFull:
        model->reconcile(everything());
        break;
      case Caller::plainSome:
        model->reconcile(
            {.ids = UUIDSet{gone, lost}, .polite = false, .dropsUnavailableFromQueue = false, .completions = {}});
        break;
      case Caller::removal:
        monitor.onRemoval({shots.appending("gone.png"), elsewhere.appending("lost.png")});
        break;
      case Caller::folderLost:
        monitor.onStatusChange(*model->watcherStatus == WatcherStatus::notFound ? WatcherStatus::volumeNotConnected
                                                                                : WatcherStatus::notFound);
        break;
      case Caller::folderFound:
        monitor.onStatusChange(WatcherStatus::watching);
        break;
      case Caller::wake:
        systemEvents.didWake();
        break;
    }
    unreachableFolders.clear();
  }

  UUID gone;
  UUID lost;
};

TEST_P(WaitingRequests, BecomeOneRunThatDoesWhatEitherAskedFor) {
  const auto [first, second] = GetParam();
  gone = arrive("gone.png");
  lost = arriveOnAnotherDisk("lost.png");
  const UUID next = arrive("next.png");
  const UUID other = arriveOnAnotherDisk("other.png");
  model->keepPrompt(other).detach();
  const bool startsLost =
      first == Caller::folderFound || (second == Caller::folderFound && first != Caller::folderLost);
  if (startsLost) call(Caller::folderLost);
  executor.drain();

  executor.holdBackground();
  model->reconcile({.ids = UUIDSet{}, .polite = false, .dropsUnavailableFromQueue = false, .completions = {}});
  call(first);
  call(second);
  EXPECT_EQ(executor.heldBackground(), 1u);
  deleteFile(shots.appending("gone.png"));
  deleteFile(elsewhere.appending("lost.png"));
  deleteFile(elsewhere.appending("other.png"));
  announcer.said.clear();
  scope.resolved = 0;
  executor.runHeldBackground();

  const WaitingRun a = asksFor(first);
  const WaitingRun b = asksFor(second);
  const bool drops = a.drops || b.drops;
  EXPECT_FALSE(hasRecord(gone));
  EXPECT_TRUE(model->unavailableItemIDs->contains(lost));
  EXPECT_EQ(model->unavailableItemIDs->contains(other), a.looksAtAll || b.looksAtAll);
  EXPECT_EQ(queue(), drops ? std::vector<UUID>{next} : (std::vector<UUID>{lost, next}));
  EXPECT_THAT(announcer.said, SizeIs(drops ? 2 : 1));
  const auto priority = a.isPolite || b.isPolite ? AnnouncementPriority::low : AnnouncementPriority::high;
  EXPECT_THAT(announcer.said, Each(Field(&Announcement::priority, priority)));
  EXPECT_EQ(scope.resolved, a.looksAtAll || b.looksAtAll ? 4 : 2) << "each record is looked at once";
  EXPECT_FALSE(model->isReconciling());
}

std::vector<std::pair<Caller, Caller>> allPairs() {
  constexpr std::array kCallers{Caller::plainFull,  Caller::plainSome,   Caller::removal,
                                Caller::folderLost, Caller::folderFound, Caller::wake};
  std::vector<std::pair<Caller, Caller>> pairs;
  for (const Caller first : kCallers) {
    for (const Caller second : kCallers) {
      // A folder that is found cannot be found once more.
      if (first != Caller::folderFound || second != Caller::folderFound) pairs.emplace_back(first, second);
    }
  }
  return pairs;
}

INSTANTIATE_TEST_SUITE_P(OfAnyTwoCallers, WaitingRequests, ::testing::ValuesIn(allPairs()),
                         [](const auto& row) { return nameOf(row.param.first) + "Then" + nameOf(row.param.second); });

}  // namespace
}  // namespace quillmere::testing
