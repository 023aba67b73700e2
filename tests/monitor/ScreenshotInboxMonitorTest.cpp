#include "monitor/ScreenshotInboxMonitor.h"

#include "monitor/MonitorFixture.h"

namespace quillmere {
namespace {

using Names = std::vector<std::string>;
using Statuses = std::vector<WatcherStatus>;

class LifecycleTest : public testing::MonitorTest {
 protected:
  /// How many scans ran to their end while `act` was done.
  int scansDuring(const std::function<void()>& act) {
    const int before = scans();
    act();
    return scans() - before;
  }
  /// Each full scan asks once whether the volume is there; nothing else does while the folder is open.
  int scans() const { return mountQuestions; }
  LifecycleTest() {
    ScanServices counting = services.services();
    counting.isVolumeMounted = [this, ask = counting.isVolumeMounted](const FileURL& url) {
      ++mountQuestions;
      return ask(url);
    };
    const auto onScreenshot = monitor->onScreenshot;
    const auto onRemoval = monitor->onRemoval;
    const auto onStatusChange = monitor->onStatusChange;
    monitor =
        std::make_unique<ScreenshotInboxMonitor>(executor, systemEvents, events, counting, [this] { return now(); });
    monitor->onScreenshot = onScreenshot;
    monitor->onRemoval = onRemoval;
    monitor->onStatusChange = onStatusChange;
  }
  int mountQuestions = 0;
};

TEST(WatcherStatus, HasItsTexts) {
  EXPECT_EQ(statusText(WatcherStatus::notChosen).toStdString(), "Choose a screenshot folder");
  EXPECT_EQ(statusText(WatcherStatus::watching).toStdString(), "Watching for new screenshots");
  EXPECT_EQ(statusText(WatcherStatus::notFound).toStdString(),
            "Quillmere can’t find the screenshot folder. Choose it again in Settings.");
  EXPECT_EQ(statusText(WatcherStatus::volumeNotConnected).toStdString(),
            "The screenshot folder is on a disk that isn’t connected. Connect the disk and Quillmere starts watching "
            "it again.");
}

// --- Starting ---

TEST_F(LifecycleTest, NewMonitorHasItsDefaults) {
  EXPECT_FALSE(monitor->includesNonCaptureImages());
  EXPECT_FALSE(monitor->isScanning());
  EXPECT_EQ(monitor->lastStatus(), std::nullopt);
  EXPECT_EQ(monitor->reconciliationInterval, seconds(60));
  EXPECT_EQ(monitor->screenCaptureTagGracePeriod, 2.0);
  EXPECT_EQ(monitor->localArrivalTolerance, 2.0);
  EXPECT_EQ(monitor->recentCaptureInterval, 120.0);
}

TEST_F(LifecycleTest, WithoutAFolderNothingIsToldUntilTheStartTellsSo) {
  monitor->watch(std::nullopt);
  executor.drain();
  EXPECT_EQ(monitor->lastStatus(), std::nullopt);
  EXPECT_TRUE(toldStatuses().empty());
  monitor->start();
  EXPECT_EQ(toldStatuses(), Statuses{WatcherStatus::notChosen});
  EXPECT_FALSE(monitor->isScanning());
}

TEST_F(LifecycleTest, BaselineIsUnderWayBeforeTheStart) {
  makeDated("old.png", kStart + -10);
  monitor->watch(folder.url());
  EXPECT_TRUE(monitor->isScanning());
  EXPECT_FALSE(events.isWatching());
  executor.drain();
  EXPECT_FALSE(monitor->isScanning());
  EXPECT_TRUE(toldStatuses().empty()) << "watching means that events work too";
  monitor->start();
  EXPECT_EQ(toldStatuses(), Statuses{WatcherStatus::watching});
  EXPECT_TRUE(events.isWatching());
}

TEST_F(LifecycleTest, StartingTwiceStartsOnce) {
  monitor->watch(folder.url());
  monitor->start();
  monitor->start();
  executor.drain();
  EXPECT_EQ(events.attempts, 1);
  EXPECT_EQ(executor.pendingDelays(), 1u) << "one periodic loop";
  EXPECT_EQ(toldStatuses(), Statuses{WatcherStatus::watching});
}

TEST_F(LifecycleTest, FolderChosenAfterTheStartIsOpenedAtOnce) {
  monitor->start();
  toldStatuses();
  monitor->watch(folder.url());
  EXPECT_EQ(events.opened, std::vector{folder.url()});
  EXPECT_EQ(toldStatuses(), Statuses{WatcherStatus::watching});
}

TEST_F(LifecycleTest, TakingTheFolderAwayEndsTheWatch) {
  begin();
  monitor->watch(std::nullopt);
  EXPECT_FALSE(events.isWatching());
  EXPECT_EQ(toldStatuses(), Statuses{WatcherStatus::notChosen});
  make("a.png");
  advance(200);
  EXPECT_TRUE(told().empty());
}

TEST_F(LifecycleTest, SameFolderChosenAgainTellsItsStatusAgain) {
  begin();
  monitor->watch(folder.url());
  EXPECT_EQ(toldStatuses(), Statuses{WatcherStatus::watching});
}

TEST_F(LifecycleTest, ChosenFolderMakesANewBaseline) {
  begin();
  makeDated("meanwhile.png", now());
  advance(1);
  monitor->watch(folder.url());
  advance(200);
  EXPECT_TRUE(told().empty());
}

// --- Scans ---

TEST_F(LifecycleTest, SeveralEventsWithin50MillisecondsCauseOneScan) {
  begin();
  EXPECT_EQ(scansDuring([&] {
              events.tell(FolderEvent::changed);
              advance(0.02);
              events.tell(FolderEvent::changed);
              advance(0.029);
              events.tell(FolderEvent::changed);
            }),
            0);
  EXPECT_EQ(scansDuring([&] { advance(0.001); }), 1) << "the first event's deadline holds";
  EXPECT_EQ(scansDuring([&] { advance(1); }), 0);
}

TEST_F(LifecycleTest, EventDuringAScanBringsExactlyOneMore) {
  begin();
  EXPECT_EQ(scansDuring([&] {
              executor.holdBackground();
              events.tell(FolderEvent::changed);
              advance(0.05);
              EXPECT_TRUE(monitor->isScanning());
              for (int i = 0; i < 5; ++i) {
                events.tell(FolderEvent::changed);
                advance(0.05);
              }
              EXPECT_EQ(executor.heldBackground(), 1u) << "never two at a time";
              executor.runHeldBackground();
            }),
            2);
  EXPECT_FALSE(monitor->isScanning());
}

TEST_F(LifecycleTest, QueuedScanIsFullIfAnyAskerWantedFull) {
  begin();
  make("pending.png", "");
  tellChange();
  for (const auto& [first, second, fullScans] :
       std::vector<std::tuple<bool, bool, int>>{{false, true, 2}, {true, false, 2}, {false, false, 1}}) {
    EXPECT_EQ(scansDuring([&, asks = std::vector{first, second}] {
                executor.holdBackground();
                monitor->scheduleScan(Duration::zero(), ScanScope::full);
                advance(0);
                for (const bool full : asks) {
                  monitor->scheduleScan(Duration::zero(), full ? ScanScope::full : ScanScope::partial);
                  advance(0);
                }
                executor.runHeldBackground();
              }),
              fullScans)
        << first << second;
  }
}

TEST_F(LifecycleTest, PartialScanWithNothingPendingDoesNothing) {
  begin();
  executor.holdBackground();
  EXPECT_EQ(scansDuring([&] {
              monitor->scheduleScan(Duration::zero(), ScanScope::partial);
              advance(0);
              EXPECT_FALSE(monitor->isScanning());
            }),
            0);
  EXPECT_EQ(executor.heldBackground(), 0u);
}

TEST_F(LifecycleTest, PartialScanIsFullWhileABaselineIsOwed) {
  services->isMounted = false;
  monitor->watch(folder.url());
  executor.drain();
  services->isMounted = true;
  EXPECT_EQ(scansDuring([&] {
              monitor->scheduleScan(Duration::zero(), ScanScope::partial);
              advance(0);
            }),
            1);
}

TEST_F(LifecycleTest, ScanWithoutAFolderDoesNothing) {
  monitor->start();
  monitor->scheduleScan(Duration::zero(), ScanScope::full);
  advance(1);
  EXPECT_EQ(scans(), 0);
}

TEST_F(LifecycleTest, LaterRequestCannotDelayAnEarlierDeadlineButMakesItFull) {
  begin();
  make("pending.png", "");
  tellChange();  // a quick look is due in 0.1 s
  EXPECT_EQ(scansDuring([&] {
              monitor->scheduleScan(seconds(5), ScanScope::full);
              EXPECT_EQ(executor.nextDelay(), seconds(0.1));
              advance(0.1);
            }),
            1)
      << "the quick look became a full scan";
  EXPECT_EQ(scansDuring([&] { advance(10); }), 0) << "and the request is met by it";
}

TEST_F(LifecycleTest, RequestForTheSameMomentJoinsTheOneThatIsThere) {
  begin();
  const auto before = executor.pendingDelays();
  monitor->scheduleScan(seconds(1), ScanScope::partial);
  monitor->scheduleScan(seconds(1), ScanScope::full);
  EXPECT_EQ(executor.pendingDelays(), before + 1);
  EXPECT_EQ(scansDuring([&] { advance(1); }), 1);
}

TEST_F(LifecycleTest, EarlierRequestReplacesALaterDeadlineAndKeepsItsFullness) {
  begin();
  EXPECT_EQ(scansDuring([&] {
              monitor->scheduleScan(seconds(5), ScanScope::full);
              monitor->scheduleScan(seconds(1), ScanScope::partial);
              advance(0.999);
            }),
            0);
  EXPECT_EQ(scansDuring([&] { advance(0.001); }), 1);
  EXPECT_EQ(scansDuring([&] { advance(10); }), 0) << "there is one delayed scan at most";
}

TEST_F(LifecycleTest, FullScanTakesTheDelayedOneAlong) {
  begin();
  make("pending.png", "");
  tellChange();
  EXPECT_EQ(executor.pendingDelays(), 2u);
  executor.holdBackground();
  systemEvents.didWake();
  advance(0);
  EXPECT_EQ(executor.pendingDelays(), 1u) << "the periodic one alone, until the scan is over";
  executor.runHeldBackground();
}

TEST_F(LifecycleTest, FullScanThatHadToWaitForAnotherTakesTheDelayedOneAlong) {
  begin();
  executor.holdBackground();
  events.tell(FolderEvent::changed);
  advance(0.05);
  events.tell(FolderEvent::changed);
  advance(0.05);
  monitor->scheduleScan(seconds(5), ScanScope::full);
  EXPECT_EQ(executor.pendingDelays(), 2u);
  executor.runHeldBackground();
  EXPECT_EQ(executor.pendingDelays(), 1u) << "the periodic one alone";
}

TEST_F(LifecycleTest, DelayedScanGoesWithItsFolder) {
  begin();
  monitor->scheduleScan(seconds(5), ScanScope::full);
  EXPECT_EQ(executor.pendingDelays(), 2u);
  monitor->watch(std::nullopt);
  EXPECT_EQ(executor.pendingDelays(), 1u) << "the periodic one alone";
}

TEST_F(LifecycleTest, EarlierRequestLeavesNoDelayOfTheLaterOne) {
  begin();
  monitor->scheduleScan(seconds(5), ScanScope::full);
  monitor->scheduleScan(seconds(1), ScanScope::full);
  EXPECT_EQ(executor.pendingDelays(), 2u) << "its own and the periodic one";
}

TEST_F(LifecycleTest, FullnessOfADelayedScanDoesNotOutliveIt) {
  begin();
  make("pending.png", "");
  monitor->scheduleScan(seconds(1), ScanScope::full);
  advance(1);
  EXPECT_EQ(scansDuring([&] { advance(1); }), 0) << "the quick looks that follow are partial";
}

TEST_F(LifecycleTest, PeriodicScanComesEveryMinute) {
  begin();
  EXPECT_EQ(scansDuring([&] { advance(59.999); }), 0);
  EXPECT_EQ(scansDuring([&] { advance(0.001); }), 1);
  EXPECT_EQ(scansDuring([&] { advance(600); }), 10);
}

TEST_F(LifecycleTest, WakeAndMountsScanAtOnce) {
  begin();
  EXPECT_EQ(scansDuring([&] {
              systemEvents.didWake();
              advance(0);
            }),
            1);
  EXPECT_EQ(scansDuring([&] {
              systemEvents.volumesDidChange();
              advance(0);
            }),
            1);
}

TEST_F(LifecycleTest, BeforeTheStartWakeAndMountsDoNothing) {
  monitor->watch(folder.url());
  executor.drain();
  EXPECT_EQ(scansDuring([&] {
              systemEvents.didWake();
              systemEvents.volumesDidChange();
              advance(100);
            }),
            0);
}

// --- Results of another folder ---

TEST_F(LifecycleTest, ResultThatComesAfterTheFolderWasReplacedChangesNothing) {
  const testing::TemporaryFolder other;
  const auto old = makeDated("old.png", kStart + -10);
  begin();
  remove(old);
  executor.holdBackground();
  events.tell(FolderEvent::changed);
  advance(0.05);
  monitor->watch(other.url());
  toldStatuses();
  executor.runHeldBackground();
  EXPECT_TRUE(told().empty());
  EXPECT_TRUE(toldStatuses().empty());
  EXPECT_FALSE(monitor->isScanning());
}

TEST_F(LifecycleTest, NewFoldersBaselineFollowsTheScanOfTheOldOne) {
  const testing::TemporaryFolder other;
  testing::writeFile(other.file("old.png"), "bytes");
  testing::setModified(other.file("old.png"), kStart + -10);
  begin();
  executor.holdBackground();
  events.tell(FolderEvent::changed);
  advance(0.05);
  monitor->watch(other.url());
  executor.runHeldBackground();
  remove(other.file("old.png"));
  tellChange();
  EXPECT_EQ(told(), Names{"removed old.png"}) << "it was in the baseline";
}

TEST_F(LifecycleTest, ResultAfterTheFolderWasTakenAwayChangesNothing) {
  begin();
  executor.holdBackground();
  events.tell(FolderEvent::changed);
  advance(0.05);
  monitor->watch(std::nullopt);
  toldStatuses();
  executor.runHeldBackground();
  EXPECT_TRUE(toldStatuses().empty());
  EXPECT_EQ(monitor->lastStatus(), WatcherStatus::notChosen);
}

// --- Folders that go and come back ---

TEST_F(LifecycleTest, FolderThatWasDeletedIsNotFoundAndComesBackAtTheNextRefresh) {
  begin();
  std::filesystem::remove_all(folder.path());
  events.canOpen = false;
  events.tell(FolderEvent::lost);
  EXPECT_EQ(toldStatuses(), Statuses{WatcherStatus::notFound});
  EXPECT_FALSE(events.isWatching());
  advance(59);
  EXPECT_TRUE(toldStatuses().empty()) << "told once";
  std::filesystem::create_directory(folder.path());
  events.canOpen = true;
  EXPECT_TRUE(toldStatuses().empty());
  advance(1);
  EXPECT_EQ(toldStatuses(), Statuses{WatcherStatus::watching});
  EXPECT_TRUE(events.isWatching());
}

TEST_F(LifecycleTest, FolderReplacedAtTheSamePathIsNotFoundUntilTheNextRefresh) {
  begin();
  events.tell(FolderEvent::lost);
  EXPECT_EQ(toldStatuses(), Statuses{WatcherStatus::notFound});
  advance(59.9);
  EXPECT_TRUE(toldStatuses().empty()) << "listing works, but no events";
  advance(0.1);
  EXPECT_EQ(toldStatuses(), Statuses{WatcherStatus::watching});
}

TEST_F(LifecycleTest, FolderOfAnEjectedDiskComesBackWithTheDisk) {
  const auto old = makeDated("old.png", kStart + -10);
  begin();
  services->isMounted = false;
  events.canOpen = false;
  events.tell(FolderEvent::lost);
  EXPECT_EQ(toldStatuses(), Statuses{WatcherStatus::volumeNotConnected});
  advance(30);
  systemEvents.volumesDidChange();
  advance(0);
  EXPECT_TRUE(toldStatuses().empty()) << "another disk came";
  services->isMounted = true;
  events.canOpen = true;
  systemEvents.volumesDidChange();
  EXPECT_EQ(toldStatuses(), Statuses{WatcherStatus::watching});
  advance(1);
  EXPECT_TRUE(told().empty()) << "nothing was lost with the disk";
  remove(old);
  tellChange();
  EXPECT_EQ(told(), Names{"removed old.png"});
}

TEST_F(LifecycleTest, EmptyFolderUnderADiskThatIsAwayIsNotOpened) {
  services->isMounted = false;
  monitor->watch(folder.url());
  monitor->start();
  EXPECT_EQ(events.attempts, 0) << "though it could be";
  EXPECT_EQ(toldStatuses(), Statuses{WatcherStatus::volumeNotConnected});
}

TEST_F(LifecycleTest, FolderThatIsNotThereAtTheStartIsNotFoundOrNotConnected) {
  for (const bool isMounted : {true, false}) {
    services->isMounted = isMounted;
    events.canOpen = false;
    monitor->watch(folder.file("absent"));
    monitor->start();
    executor.drain();
    EXPECT_EQ(toldStatuses(), Statuses{isMounted ? WatcherStatus::notFound : WatcherStatus::volumeNotConnected});
  }
}

TEST_F(LifecycleTest, BaselineOfAFolderThatWasAwayIsMadeWhenItComes) {
  makeDated("old.png", kStart + -10);
  services->isMounted = false;
  monitor->watch(folder.url());
  monitor->start();
  executor.drain();
  services->isMounted = true;
  systemEvents.volumesDidChange();
  advance(1);
  EXPECT_TRUE(told().empty());
  EXPECT_EQ(services->examinations(), 0);
}

TEST_F(LifecycleTest, FolderThatCanBeListedWithoutEventsIsNotCalledWatched) {
  events.canOpen = false;
  monitor->watch(folder.url());
  monitor->start();
  executor.drain();
  EXPECT_EQ(toldStatuses(), Statuses{WatcherStatus::notFound});
  make("a.png");
  advance(61);
  EXPECT_TRUE(toldStatuses().empty());
  EXPECT_EQ(told(), Names{"captured a.png"}) << "what is found is told all the same";
}

TEST_F(LifecycleTest, ListingThatFailsWhileEventsWorkIsToldAndTakenBack) {
  begin();
  services->isMounted = false;
  tellChange();
  EXPECT_EQ(toldStatuses(), Statuses{WatcherStatus::volumeNotConnected});
  services->isMounted = true;
  tellChange();
  EXPECT_EQ(toldStatuses(), Statuses{WatcherStatus::watching});
}

TEST_F(LifecycleTest, LostFolderIsLookedForAfter50Milliseconds) {
  begin();
  events.tell(FolderEvent::lost);
  EXPECT_EQ(executor.nextDelay(), seconds(0.05));
}

// --- Ending ---

TEST_F(LifecycleTest, DestroyedMonitorLeavesNothingBehind) {
  begin();
  make("pending.png", "");
  tellChange();
  EXPECT_EQ(executor.pendingDelays(), 2u);
  monitor.reset();
  EXPECT_EQ(executor.pendingDelays(), 0u);
  EXPECT_FALSE(events.isWatching());
  systemEvents.didWake();
  systemEvents.volumesDidChange();
  advance(100);
}

TEST_F(LifecycleTest, MonitorDestroyedDuringAScanIsNotTouchedByItsEnd) {
  begin();
  make("a.png");
  executor.holdBackground();
  events.tell(FolderEvent::changed);
  advance(0.05);
  monitor.reset();
  executor.runHeldBackground();
  EXPECT_TRUE(told().empty());
}

}  // namespace
}  // namespace quillmere
