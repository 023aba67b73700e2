#include <sys/stat.h>
#include <set>

#include "monitor/MonitorFixture.h"
#include "support/ChildProcess.h"

namespace quillmere {
namespace {

using Names = std::vector<std::string>;
using ApplyTest = testing::MonitorTest;

// --- The way of one file ---

TEST_F(ApplyTest, FileThatDecodesAtItsSecondLookWithItsTagIsAcceptedAtThatLook) {
  begin();
  make("a.png");
  tellChange();
  EXPECT_TRUE(told().empty());
  EXPECT_EQ(executor.nextDelay(), seconds(0.1));
  advance(0.0999);
  EXPECT_TRUE(told().empty());
  advance(0.0001);
  EXPECT_EQ(told(), Names{"captured a.png"});
}

TEST_F(ApplyTest, OfManyEachIsAcceptedAtItsSecondLookWithoutAPause) {
  begin();
  Names expected;
  for (size_t i = 0; i < 3 * kLeastPortion; ++i) {
    const std::string name = std::to_string(1000 + i) + ".png";
    make(name);
    expected.push_back("captured " + name);
  }
  tellChange();
  EXPECT_TRUE(told().empty());
  advance(0.1);
  EXPECT_EQ(told(), expected);
  EXPECT_EQ(executor.nextDelay(), seconds(59.85)) << "nothing is left to look at";
}

TEST_F(ApplyTest, TellsSinceWhenAFileIsOnItsWay) {
  begin();
  EXPECT_EQ(monitor->awaitedSince(), std::nullopt);
  services->file("broken.png").decodes = false;
  make("broken.png");
  tellChange();
  const Date first = now();
  advance(0.05);
  make("good.png");
  tellChange();
  EXPECT_EQ(monitor->awaitedSince(), first);
  advance(0.1);
  EXPECT_EQ(told(), Names{"captured good.png"});
  EXPECT_EQ(monitor->awaitedSince(), first);
  advance(5);
  EXPECT_EQ(monitor->awaitedSince(), std::nullopt) << "what was looked at in vain for long is not awaited";
}

TEST_F(ApplyTest, WhatIsPutOffIsAwaitedSinceItWasSeen) {
  begin();
  for (size_t i = 0; i < 2 * kLeastPortion; ++i) make(std::to_string(1000 + i) + ".png");
  tellChange();
  const Date first = now();
  std::vector<std::optional<Date>> since;
  monitor->onScreenshot = [&](const FileURL&) { since.push_back(monitor->awaitedSince()); };
  advance(0.1);
  EXPECT_EQ(since, std::vector<std::optional<Date>>(2 * kLeastPortion, first)) << "until all are told";
  EXPECT_EQ(monitor->awaitedSince(), std::nullopt);
}

TEST_F(ApplyTest, AcceptedFileIsNotLookedAtAgain) {
  begin();
  make("a.png");
  tellChange();
  advance(0.1);
  EXPECT_EQ(told(), Names{"captured a.png"});
  const int examinations = services->examinations();
  advance(600);
  tellChange();
  EXPECT_TRUE(told().empty());
  EXPECT_EQ(services->examinations(), examinations);
}

TEST_F(ApplyTest, AcceptedFileThatChangesIsNotToldTwice) {
  begin();
  const auto url = make("a.png");
  tellChange();
  advance(0.1);
  testing::appendToFile(url, "more");
  tellChange();
  advance(200);
  EXPECT_EQ(told(), Names{"captured a.png"});
}

TEST_F(ApplyTest, AcceptedFileThatWentAndCameBackIsToldAgain) {
  begin();
  remove(make("a.png"));
  const auto url = make("a.png");
  tellChange();
  advance(0.1);
  remove(url);
  tellChange();
  make("a.png");
  tellChange();
  advance(0.1);
  EXPECT_EQ(told(), (Names{"captured a.png", "removed a.png", "captured a.png"}));
}

TEST_F(ApplyTest, FileThatTheProgramRenamedIsNotAnnouncedButItsLeavingIs) {
  begin();
  const auto url = make("a.png");
  tellChange();
  advance(0.1);
  const FileURL renamed = folder.file("Invoice.png");
  ASSERT_EQ(::rename(url.c_str(), renamed.c_str()), 0);
  monitor->noteKnown(renamed);
  services->file("Invoice.png").isTagged = false;  // its name was the only mark
  tellChange();
  advance(5);
  EXPECT_EQ(told(), (Names{"captured a.png", "removed a.png"}));
  remove(renamed);
  tellChange();
  EXPECT_EQ(told(), Names{"removed Invoice.png"});
}

TEST_F(ApplyTest, WhatIsNotedWhileAScanLooksCountsAfterIt) {
  begin();
  const auto known = make("known.png");
  const auto both = make("both.png");
  executor.holdBackground();
  tellChange();
  monitor->noteKnown(known);
  monitor->noteKnown(both);
  monitor->noteUnknown(both);
  executor.runHeldBackground();
  advance(0.2);
  EXPECT_EQ(told(), Names{"captured both.png"});
}

// --- Many at once ---

/// Time also passes while something runs.
class PassingTime final : public Executor {
 public:
  explicit PassingTime(ManualExecutor& executor) : executor_(executor) {}
  void pass(Duration time) { passed_ += time; }

  void post(std::function<void()> work) override { executor_.post(std::move(work)); }
  DelayID startDelay(Duration delay, DelayEnd end) override { return executor_.startDelay(delay, std::move(end)); }
  void cancelDelay(DelayID delay) override { executor_.cancelDelay(delay); }
  void runInBackground(std::function<void()> work, std::function<void()> done) override {
    executor_.runInBackground(std::move(work), std::move(done));
  }
  Instant instant() const override { return executor_.instant() + passed_; }

 private:
  ManualExecutor& executor_;
  Duration passed_{};
};

class ManyFilesTest : public testing::MonitorTest {
 protected:
  ManyFilesTest() {
    monitor = std::make_unique<ScreenshotInboxMonitor>(time, systemEvents, events, services.services(),
                                                       [this] { return now(); });
  }
  ~ManyFilesTest() override { monitor.reset(); }

  /// Each file takes the model its time, and asks for a turn of somebody else.
  void takeLong() {
    monitor->onScreenshot = [this](const FileURL& url) {
      note(url.lastPathComponent());
      time.pass(seconds(0.003));
      executor.post([this] {
        note("turn");
        if (onTurn) onTurn();
      });
    };
    for (const char* name : {"a.png", "b.png", "c.png", "d.png"}) make(name);
  }

  PassingTime time{executor};
  std::function<void()> onTurn;
};

TEST_F(ManyFilesTest, OthersHaveATurnInBetween) {
  begin();
  takeLong();
  tellChange();
  advance(1);
  EXPECT_EQ(told(), (Names{"a.png", "b.png", "turn", "turn", "c.png", "d.png", "turn", "turn"}));
}

TEST_F(ManyFilesTest, ThereIsOneScanAtATimeUntilAllAreTold) {
  begin();
  takeLong();
  std::vector<bool> scans;
  onTurn = [&] {
    scans.push_back(monitor->isScanning());
    monitor->scheduleScan(Duration::zero(), ScanScope::full);
  };
  tellChange();
  advance(1);
  EXPECT_EQ(told(), (Names{"a.png", "b.png", "turn", "turn", "c.png", "d.png", "turn", "turn"}));
  EXPECT_EQ(scans, (std::vector{true, true, false, false}));
  EXPECT_FALSE(monitor->isScanning());
}

TEST_F(ManyFilesTest, AnotherFolderInBetweenEndsTheRest) {
  const testing::TemporaryFolder other;
  begin();
  takeLong();
  onTurn = [&] { monitor->watch(other.url()); };
  tellChange();
  advance(1);
  EXPECT_EQ(told(), (Names{"a.png", "b.png", "turn", "turn"}));
  EXPECT_FALSE(monitor->isScanning());
  onTurn = nullptr;
  testing::writeFile(other.file("new.png"), "bytes");
  testing::setModified(other.file("new.png"), now());
  services->file("new.png").dates.created = now();
  tellChange();
  advance(1);
  EXPECT_EQ(told(), (Names{"new.png", "turn"}));
}

TEST_F(ManyFilesTest, TheMonitorMayGoInBetween) {
  begin();
  takeLong();
  onTurn = [&] { monitor.reset(); };
  tellChange();
  advance(1);
  EXPECT_EQ(told(), (Names{"a.png", "b.png", "turn", "turn"}));
}

TEST_F(ApplyTest, FileOfAnotherFolderIsNotNotedAsKnown) {
  begin();
  monitor->noteKnown(FileURL::fromPath("/elsewhere/a.png"));
  tellChange();
  EXPECT_TRUE(told().empty());
}

TEST_F(ApplyTest, EmptyFileIsNeverDecodedAndGetsNoQuickLookAfterTheTwentieth) {
  begin();
  make("a.png", "");
  monitor->reconciliationInterval = seconds(100'000);
  tellChange();
  advance(1.85);
  EXPECT_TRUE(services->decodeCalls.empty());
  // The look that the event brought was the first; each tenth of a second brings one more.
  int quickLooks = 1 + 18;
  while (executor.nextDelay() == seconds(0.05) || executor.nextDelay() == seconds(0.1)) {
    advance(std::chrono::duration<double>(*executor.nextDelay()).count());
    ++quickLooks;
    ASSERT_LE(quickLooks, 20);
  }
  EXPECT_EQ(quickLooks, 20);
  EXPECT_TRUE(services->decodeCalls.empty());
}

TEST_F(ApplyTest, FileThatDoesNotDecodeIsTriedAtEveryLookUpToTheTwentieth) {
  begin();
  make("a.png");
  services->file("a.png").decodes = false;
  tellChange();
  advance(10);
  EXPECT_EQ(services->decodeCalls["a.png"], 19) << "the first look does not decode";
}

TEST_F(ApplyTest, StalledFileIsTriedAgainAtEachFullScan) {
  begin();
  make("a.png");
  services->file("a.png").decodes = false;
  tellChange();
  advance(10);
  tellChange();
  EXPECT_EQ(services->decodeCalls["a.png"], 20);
  advance(10);
  EXPECT_EQ(services->decodeCalls["a.png"], 20) << "and gets no quick looks by it";
  services->file("a.png").decodes = true;
  tellChange();
  EXPECT_EQ(told(), Names{"captured a.png"});
}

TEST_F(ApplyTest, StalledFileThatChangesStartsOver) {
  begin();
  const auto url = make("a.png");
  services->file("a.png").decodes = false;
  tellChange();
  advance(10);
  services->file("a.png").decodes = true;
  testing::appendToFile(url, "more");
  tellChange();
  EXPECT_TRUE(told().empty());
  advance(0.1);
  EXPECT_EQ(told(), Names{"captured a.png"});
}

TEST_F(ApplyTest, FileThatGrowsForTenSecondsIsToldOnceItHeldStill) {
  begin();
  const auto url = make("a.png");
  tellChange();
  for (int i = 0; i < 100; ++i) {
    testing::appendToFile(url, "more");
    testing::setModified(url, now());
    advance(0.1);
    EXPECT_TRUE(services->decodeCalls.empty()) << "look " << i;
  }
  EXPECT_TRUE(told().empty());
  advance(0.1);
  EXPECT_EQ(told(), Names{"captured a.png"});
  EXPECT_EQ(services->decodeCalls["a.png"], 1);
}

TEST_F(ApplyTest, FileThatKeepsGrowingKeepsItsFirstSighting) {
  begin();
  const auto url = make("a.png");
  tellChange();
  for (int i = 0; i < 1300; ++i) {
    testing::appendToFile(url, "more");
    advance(0.1);
  }
  advance(0.1);
  EXPECT_EQ(told(), Names{"captured a.png"}) << "though it took longer than a recent capture may be old";
}

// --- Files that get no tag ---

TEST_F(ApplyTest, TagMayComeUpToTwoSecondsAfterTheFileDecoded) {
  begin();
  make("a.png");
  services->file("a.png").isTagged = false;
  tellChange();
  advance(0.1 + 1.85);
  EXPECT_TRUE(told().empty());
  services->file("a.png").isTagged = true;
  advance(0.1);
  EXPECT_EQ(told(), Names{"captured a.png"});
  EXPECT_EQ(services->decodeCalls["a.png"], 1) << "it is never decoded again";
}

TEST_F(ApplyTest, FileThatNeverGetsItsTagIsIgnoredTwoSecondsAfterItDecoded) {
  begin();
  make("a.png");
  services->file("a.png").isTagged = false;
  tellChange();
  advance(0.1 + 1.95);
  const int looks = services->tagCalls["a.png"];
  EXPECT_EQ(looks, 20);
  advance(0.1);
  EXPECT_EQ(services->tagCalls["a.png"], 21) << "the look at two seconds still reads it";
  services->file("a.png").isTagged = true;
  advance(30);
  tellChange();
  EXPECT_EQ(services->tagCalls["a.png"], 21) << "then it is ignored";
  EXPECT_TRUE(told().empty());
}

TEST_F(ApplyTest, FileWithoutItsTagIsAwaitedForTwoSecondsFromItsSecondLookAndNeverDecoded) {
  begin();
  make("a.png");
  services->file("a.png").isTagged = false;
  tellChange();
  // Two seconds after its first look, but not after the one that found no tag.
  advance(0.1 + 1.95);
  EXPECT_TRUE(monitor->awaitedSince());
  advance(0.1);
  EXPECT_FALSE(monitor->awaitedSince());
  advance(70);
  EXPECT_EQ(services->tagCalls["a.png"], 21) << "it is ignored";
  EXPECT_TRUE(services->decodeCalls.empty());
}

TEST_F(ApplyTest, FileThatHadItsTagMeanwhileIsAwaitedAnew) {
  begin();
  make("a.png");
  auto& file = services->file("a.png");
  file.isTagged = false;
  tellChange();
  advance(1);
  file.isTagged = true;
  file.decodes = false;
  advance(0.8);
  file.isTagged = false;
  advance(0.3);
  // More than two seconds after the first look without a tag, less after the last with one.
  file.isTagged = true;
  file.decodes = true;
  tellChange();
  advance(0.1);
  EXPECT_EQ(told(), Names{"captured a.png"});
}

TEST_F(ApplyTest, LooksAtAFileWithoutItsTagGoOnBeyondTheTwentieth) {
  begin();
  make("a.png");
  monitor->screenCaptureTagGracePeriod = 10;
  services->file("a.png").isTagged = false;
  tellChange();
  advance(8);
  EXPECT_GT(services->tagCalls["a.png"], 60);
  EXPECT_TRUE(services->decodeCalls.empty());
  services->file("a.png").isTagged = true;
  advance(0.1);
  EXPECT_EQ(told(), Names{"captured a.png"});
}

TEST_F(ApplyTest, LooksAtACompleteFileGoOnBeyondTheTwentieth) {
  begin();
  make("a.png");
  monitor->screenCaptureTagGracePeriod = 10;
  services->file("a.png").isTagged = false;
  tellChange();
  advance(8);
  services->file("a.png").isTagged = true;
  advance(0.1);
  EXPECT_EQ(told(), Names{"captured a.png"});
}

TEST_F(ApplyTest, IgnoredFileThatChangesGetsANewHearing) {
  begin();
  const auto url = make("a.png");
  services->file("a.png").isTagged = false;
  tellChange();
  advance(5);
  services->file("a.png").isTagged = true;
  testing::appendToFile(url, "more");
  tellChange();
  advance(0.1);
  EXPECT_EQ(told(), Names{"captured a.png"});
}

TEST_F(ApplyTest, IgnoredFileKeepsItsFirstSighting) {
  begin();
  const auto url = make("a.png");
  services->file("a.png").isTagged = false;
  services->file("a.png").dates.created = now();
  tellChange();
  advance(300);
  services->file("a.png").isTagged = true;
  testing::appendToFile(url, "more");
  tellChange();
  advance(0.1);
  EXPECT_EQ(told(), Names{"captured a.png"}) << "measured from its first sighting it is a recent capture";
}

TEST_F(ApplyTest, IncludingOtherImagesDoesNotReviveAnIgnoredFile) {
  begin();
  make("a.png");
  services->file("a.png").isTagged = false;
  tellChange();
  advance(5);
  monitor->setIncludesNonCaptureImages(true);
  advance(130);
  EXPECT_TRUE(told().empty());
}

TEST_F(ApplyTest, WithOtherImagesIncludedAnyImageIsAccepted) {
  begin();
  monitor->setIncludesNonCaptureImages(true);
  executor.drain();
  make("a.png");
  services->file("a.png").isTagged = false;
  tellChange();
  advance(0.1);
  EXPECT_EQ(told(), Names{"captured a.png"});
  EXPECT_TRUE(services->tagCalls.empty());
}

TEST_F(ApplyTest, IncludingOtherImagesAcceptsWhatStillWaitsForItsTag) {
  begin();
  make("a.png");
  services->file("a.png").isTagged = false;
  tellChange();
  advance(0.5);
  monitor->setIncludesNonCaptureImages(true);
  advance(0);
  EXPECT_EQ(told(), Names{"captured a.png"});
}

TEST_F(ApplyTest, IncludingOtherImagesAsksForAFullScanAtOnceAndOnlyForAChange) {
  monitor->watch(folder.url());
  executor.drain();
  monitor->setIncludesNonCaptureImages(true);
  EXPECT_EQ(executor.pendingDelays(), 0u) << "not before it runs";
  monitor->start();
  executor.drain();
  monitor->setIncludesNonCaptureImages(true);
  EXPECT_EQ(executor.pendingDelays(), 1u) << "the periodic scan alone";
  monitor->setIncludesNonCaptureImages(false);
  EXPECT_EQ(executor.pendingDelays(), 2u);
  EXPECT_EQ(executor.nextDelay(), Duration::zero());
}

// --- Captured here, or from elsewhere ---

TEST_F(ApplyTest, RecentCreationTellsACaptureFromAnArrival) {
  begin();
  for (const auto& [name, age] :
       std::vector<std::pair<std::string, double>>{{"119.png", 119}, {"121.png", 121}, {"future.png", -121}}) {
    make(name);
    // First seen when the gathered events are looked at.
    services->file(name).dates.created = now() + (0.05 - age);
  }
  tellChange();
  advance(0.1);
  auto all = told();
  std::sort(all.begin(), all.end());
  EXPECT_EQ(all, (Names{"arrived 121.png", "arrived future.png", "captured 119.png"}));
}

TEST_F(ApplyTest, AClockThatIsSetWhileACaptureComesHidesNone) {
  begin();
  for (const double shift : {-3600.0, 7200.0}) {
    const std::string name = std::to_string(static_cast<int>(shift)) + ".png";
    make(name);
    clockShift += shift;
    tellChange();
    advance(0.1);
    EXPECT_EQ(told(), Names{"captured " + name});
    advance(300);
  }
  make("old.png");
  services->file("old.png").dates.created = now() + -3600;
  tellChange();
  advance(0.1);
  EXPECT_EQ(told(), Names{"arrived old.png"}) << "later the dates count as ever";
}

TEST_F(ApplyTest, EvictedFileOfASyncedFolderWithItsTagArrivesAtItsThirdLookWithoutBeingDecoded) {
  begin();
  services->isSynced = true;
  make("a.png");
  services->file("a.png").isDataless = true;
  tellChange();
  advance(0.1);
  EXPECT_TRUE(told().empty());
  advance(0.1);
  EXPECT_EQ(told(), Names{"arrived a.png"});
  EXPECT_TRUE(services->decodeCalls.empty());
}

TEST_F(ApplyTest, EvictedFileWithoutItsTagStaysPendingAndStalls) {
  begin();
  services->isSynced = true;
  make("a.png");
  services->file("a.png").isDataless = true;
  services->file("a.png").isTagged = false;
  tellChange();
  advance(30);
  EXPECT_TRUE(told().empty());
  EXPECT_EQ(services->datalessCalls["a.png"], 19);
  services->file("a.png").isTagged = true;
  tellChange();
  EXPECT_EQ(told(), Names{"arrived a.png"}) << "it was never ignored";
}

TEST_F(ApplyTest, EvictedFileOfAFolderThatIsNotSyncedWaitsForItsDataAndThenArrives) {
  begin();
  make("a.png");
  services->file("a.png").isDataless = true;
  tellChange();
  advance(1);
  EXPECT_TRUE(told().empty());
  services->file("a.png").isDataless = false;
  advance(0.1);
  EXPECT_EQ(told(), Names{"arrived a.png"});
}

TEST_F(ApplyTest, OneLookWithoutDataDoesNotMakeAnArrival) {
  begin();
  make("a.png");
  services->file("a.png").isDataless = true;
  tellChange();
  advance(0.1);
  services->file("a.png").isDataless = false;
  advance(0.1);
  EXPECT_EQ(told(), Names{"captured a.png"});
}

// --- Baseline and removals ---

TEST_F(ApplyTest, FilesThatWereThereBeforeCauseNothing) {
  makeDated("old.png", kStart + -10);
  begin();
  advance(200);
  EXPECT_TRUE(told().empty());
  EXPECT_EQ(services->examinations(), 0);
}

TEST_F(ApplyTest, FileFromTheBaselinesStartOnIsHeard) {
  makeDated("old.png", kStart + -0.001);
  makeDated("new.png", kStart);
  monitor->watch(folder.url());
  advance(0.1);
  EXPECT_EQ(told(), Names{"captured new.png"});
}

TEST_F(ApplyTest, FilesSinceAnExpectedMomentAreHeardOnce) {
  makeDated("before.png", kStart + -61);
  makeDated("since.png", kStart + -60);
  monitor->expectArrivalsSince(kStart + -60);
  monitor->watch(folder.url());
  advance(0.1);
  EXPECT_EQ(told(), Names{"captured since.png"});
  // The expectation held for that baseline alone.
  monitor->watch(folder.url());
  advance(1);
  EXPECT_TRUE(told().empty());
}

TEST_F(ApplyTest, BaselinesFilesAreToldWhenTheyGo) {
  const auto b = makeDated("b.png", kStart + -10);
  const auto a = makeDated("a.png", kStart + -10);
  const auto c = makeDated("c.png", kStart + -10);
  begin();
  for (const auto& url : {c, a, b}) remove(url);
  tellChange();
  EXPECT_EQ(told(), Names{"removed a.png b.png c.png"}) << "sorted, in one call";
  tellChange();
  EXPECT_TRUE(told().empty());
}

TEST_F(ApplyTest, RemovalsAreToldBeforeArrivalsOfTheSameScan) {
  const auto old = makeDated("old.png", kStart + -10);
  begin();
  make("new.png");
  tellChange();
  remove(old);
  events.tell(FolderEvent::changed);
  advance(0.05);
  EXPECT_EQ(told(), (Names{"removed old.png", "captured new.png"}));
}

TEST_F(ApplyTest, RenamedFileIsARemovalAndANewFile) {
  const auto old = makeDated("old.png", kStart + -10);
  begin();
  ASSERT_EQ(::rename(old.c_str(), folder.file("new.png").c_str()), 0);
  services->file("new.png").dates.created = kStart + -10;
  tellChange();
  advance(0.1);
  EXPECT_EQ(told(), (Names{"removed old.png", "captured new.png"}));
}

TEST_F(ApplyTest, FileDeletedWhilePendingIsForgottenWithItsEvidence) {
  begin();
  const auto url = make("a.png");
  services->file("a.png").dates.created = now();
  tellChange();
  remove(url);
  advance(0.1);
  EXPECT_EQ(executor.pendingDelays(), 1u) << "no look is planned but the periodic one";
  EXPECT_TRUE(told().empty());
  advance(200);
  make("a.png");
  services->file("a.png").dates.created = kStart;
  tellChange();
  advance(0.1);
  EXPECT_EQ(told(), Names{"arrived a.png"}) << "its new first sighting is long after its creation";
}

TEST_F(ApplyTest, PendingFileThatCannotBeReadDuringAFullScanKeepsItsState) {
  begin();
  make("a.png");
  services->file("a.png").isTagged = false;
  ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
  tellChange();
  advance(0.1);
  const int result = testing::exitCodeOfChild([&] {
    if (::chmod(folder.path().c_str(), 0744) != 0 || !testing::becomeOrdinaryUser()) return testing::kCannotSetUp;
    monitor->scheduleScan(Duration::zero(), ScanScope::full);
    advance(0);
    return executor.nextDelay() && *executor.nextDelay() <= seconds(0.1) ? 0 : 1;
  });
  EXPECT_EQ(result, 0) << "it is still pending, so a quick look is planned";
}

TEST_F(ApplyTest, FileThatTurnsIntoAFolderWhilePendingIsForgotten) {
  begin();
  const auto url = make("a.png");
  tellChange();
  remove(url);
  ASSERT_EQ(::mkdir(url.c_str(), 0700), 0);
  advance(0.1);
  EXPECT_EQ(executor.pendingDelays(), 1u);
  EXPECT_TRUE(told().empty());
}

// --- Many files, and names of all kinds ---

TEST_F(ApplyTest, TwoHundredScreenshotsAtOnceAreEachToldOnce) {
  begin();
  std::multiset<std::string> expected;
  for (int i = 0; i < 200; ++i) {
    make(std::to_string(i) + ".png");
    expected.insert("captured " + std::to_string(i) + ".png");
  }
  tellChange();
  advance(0.1);
  const auto first = told();
  EXPECT_EQ(std::multiset<std::string>(first.begin(), first.end()), expected);
  advance(300);
  tellChange();
  EXPECT_TRUE(told().empty());
  EXPECT_EQ(services->decodeCalls.size(), 200u);
  for (const auto& [name, calls] : services->decodeCalls) EXPECT_EQ(calls, 1) << name;
}

TEST_F(ApplyTest, ScreenshotsThatComeOneByOneAreEachToldOnce) {
  begin();
  std::multiset<std::string> expected;
  for (int i = 0; i < 200; ++i) {
    make(std::to_string(i) + ".png");
    expected.insert("captured " + std::to_string(i) + ".png");
    events.tell(FolderEvent::changed);
    advance(0.013);
  }
  advance(1);
  const auto all = told();
  EXPECT_EQ(std::multiset<std::string>(all.begin(), all.end()), expected);
}

TEST_F(ApplyTest, EventsThatAreLostAreMadeUpForByThePeriodicScan) {
  begin();
  make("a.png");
  advance(60);
  EXPECT_TRUE(told().empty());
  advance(0.1);
  EXPECT_EQ(told(), Names{"captured a.png"});
}

TEST_F(ApplyTest, NamesOfAllKindsAreTold) {
  begin();
  const std::vector<std::string> names{"\n.png",   "a\tb.png", "\xff\xfe.png", std::string(251, 'n') + ".png",
                                       "截图.png", " .png",    "%20.png",      "#?.png"};
  std::multiset<std::string> expected;
  for (const auto& name : names) {
    make(name);
    expected.insert("captured " + name);
  }
  tellChange();
  advance(0.1);
  const auto all = told();
  EXPECT_EQ(std::multiset<std::string>(all.begin(), all.end()), expected);
}

TEST_F(ApplyTest, HundredThousandFilesThatAreThereCostNoExamination) {
  constexpr int kFiles = 100'000;
  // On memory: a hundred thousand names on a disk take too long to make and to remove.
  const testing::TemporaryFolder large("/dev/shm");
  const timespec past[2] = {{1000, 0}, {1000, 0}};
  for (int i = 0; i < kFiles; ++i) {
    const auto url = large.file("Screenshot " + std::to_string(i) + ".png");
    const int descriptor = ::open(url.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_GE(descriptor, 0);
    ASSERT_EQ(::futimens(descriptor, past), 0);
    ::close(descriptor);
  }
  monitor->watch(large.url());
  monitor->start();
  executor.drain();
  EXPECT_TRUE(told().empty());
  EXPECT_EQ(services->examinations(), 0);

  testing::writeFile(large.file("new.png"), "bytes");
  tellChange();
  advance(0.1);
  EXPECT_EQ(told(), Names{"captured new.png"});
  EXPECT_EQ(services->examinations(), 3) << "its data, its picture and its tag, of this file alone";
  EXPECT_EQ(services->decodeCalls.size(), 1u);

  remove(large.file("Screenshot 500.png"));
  tellChange();
  EXPECT_EQ(told(), Names{"removed Screenshot 500.png"});
  EXPECT_EQ(services->examinations(), 3);
}

// --- Callbacks that act on the monitor ---

TEST_F(ApplyTest, CallbackThatChangesTheFolderEndsTheNewsOfTheOldOne) {
  begin();
  const testing::TemporaryFolder other;
  monitor->onScreenshot = [&](const FileURL& url) {
    note("captured " + url.lastPathComponent());
    monitor->watch(other.url());
  };
  make("a.png");
  make("b.png");
  tellChange();
  advance(0.1);
  advance(1);
  EXPECT_EQ(told().size(), 1u);
}

TEST_F(ApplyTest, RemovalThatChangesTheFolderEndsTheNewsOfTheOldOne) {
  const auto old = makeDated("old.png", kStart + -10);
  begin();
  make("a.png");
  tellChange();
  remove(old);
  const testing::TemporaryFolder other;
  monitor->onRemoval = [&](const auto&) { monitor->watch(other.url()); };
  tellChange();
  advance(1);
  EXPECT_TRUE(told().empty());
}

TEST_F(ApplyTest, ANewcomerIsToldBeforeItHasHeldStill) {
  begin();
  std::vector<FileURL> newcomers;
  monitor->onNewcomer = [&](const FileURL& url) { newcomers.push_back(url); };
  const FileURL url = make("a.png");
  tellChange();
  EXPECT_EQ(newcomers, std::vector{url});
  EXPECT_TRUE(told().empty());
  advance(0.1);
  EXPECT_EQ(newcomers.size(), 1u);
  EXPECT_EQ(told().size(), 1u);
}

TEST_F(ApplyTest, CallbacksNeedNotBeSet) {
  const auto old = makeDated("old.png", kStart + -10);
  begin();
  monitor->onScreenshot = nullptr;
  monitor->onArrivedScreenshot = nullptr;
  monitor->onRemoval = nullptr;
  monitor->onStatusChange = nullptr;
  remove(old);
  make("a.png");
  tellChange();
  advance(0.1);
  events.tell(FolderEvent::lost);
  advance(100);
  EXPECT_TRUE(told().empty());
}

}  // namespace
}  // namespace quillmere
