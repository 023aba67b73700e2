#include "model/PopupAutoSaveScheduler.h"

#include <gmock/gmock.h>

#include "foundation/ManualExecutor.h"
#include "support/Records.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PopupAutoSaveSchedulerTest : public ::testing::Test {
 protected:
  Date now() const {
    return Date{1000 + clockOffset + std::chrono::duration<double>(executor.instant().time_since_epoch()).count()};
  }
  void configure() {
    scheduler->configure([this](const UUID& id) { return paused.contains(id); },
                         [this](const UUID& id) {
                           timedOut.push_back(id);
                           if (onTimeout) onTimeout(id);
                         });
  }
  void advance(double bySeconds) { executor.advance(seconds(bySeconds)); }
  double remaining(const UUID& id) const { return scheduler->remaining(id).value_or(-1); }

  double clockOffset = 0;
  ManualExecutor executor;
  UUIDSet paused;
  std::vector<UUID> timedOut;
  std::function<void(const UUID&)> onTimeout;
  std::unique_ptr<PopupAutoSaveScheduler> scheduler =
      std::make_unique<PopupAutoSaveScheduler>(executor, [this] { return now(); });
};

TEST_F(PopupAutoSaveSchedulerTest, ItTicksEveryQuarterOfASecond) {
  configure();
  scheduler->begin(uuid(1), 3);
  EXPECT_EQ(executor.nextDelay(), std::chrono::milliseconds(250));
  advance(0.24);
  EXPECT_DOUBLE_EQ(remaining(uuid(1)), 3);
  advance(0.01);
  EXPECT_DOUBLE_EQ(remaining(uuid(1)), 2.75);
}

TEST_F(PopupAutoSaveSchedulerTest, TimeUpIsToldOnceAndTheTaskEnds) {
  configure();
  scheduler->begin(uuid(1), 1);
  advance(0.99);
  EXPECT_THAT(timedOut, IsEmpty());
  advance(0.01);
  EXPECT_THAT(timedOut, ElementsAre(uuid(1)));
  EXPECT_EQ(executor.pendingDelays(), 0u);
  advance(10);
  EXPECT_EQ(timedOut.size(), 1u);
}

TEST_F(PopupAutoSaveSchedulerTest, NothingCountsBeforeItIsConfigured) {
  scheduler->begin(uuid(1), 1);
  EXPECT_EQ(executor.pendingDelays(), 0u);
  configure();
  EXPECT_EQ(executor.pendingDelays(), 1u);
}

TEST_F(PopupAutoSaveSchedulerTest, ConfiguringAgainLeavesOneTask) {
  configure();
  scheduler->begin(uuid(1), 1);
  configure();
  EXPECT_EQ(executor.pendingDelays(), 1u);
}

TEST_F(PopupAutoSaveSchedulerTest, PausedTimeDoesNotCount) {
  configure();
  scheduler->begin(uuid(1), 2);
  advance(1);
  paused.insert(uuid(1));
  advance(100);
  EXPECT_DOUBLE_EQ(remaining(uuid(1)), 1);
  paused.clear();
  advance(0.25);
  EXPECT_DOUBLE_EQ(remaining(uuid(1)), 0.75);
}

TEST_F(PopupAutoSaveSchedulerTest, OneTickTakesAtMostHalfASecond) {
  configure();
  scheduler->begin(uuid(1), 3);
  clockOffset += 3600;
  advance(0.25);
  EXPECT_DOUBLE_EQ(remaining(uuid(1)), 2.5);
}

TEST_F(PopupAutoSaveSchedulerTest, AClockThatGoesBackTakesNothing) {
  configure();
  scheduler->begin(uuid(1), 3);
  clockOffset -= 3600;
  advance(0.25);
  EXPECT_DOUBLE_EQ(remaining(uuid(1)), 3);
  advance(0.25);
  EXPECT_DOUBLE_EQ(remaining(uuid(1)), 2.75);
}

TEST_F(PopupAutoSaveSchedulerTest, SystemPauseStopsTheTaskAndResumesWithoutTheTimeBetween) {
  configure();
  scheduler->begin(uuid(1), 3);
  advance(1);
  scheduler->setSystemPaused(true);
  EXPECT_EQ(executor.pendingDelays(), 0u);
  advance(3600);
  scheduler->setSystemPaused(true);
  scheduler->setSystemPaused(false);
  EXPECT_DOUBLE_EQ(remaining(uuid(1)), 2);
  advance(0.25);
  EXPECT_DOUBLE_EQ(remaining(uuid(1)), 1.75);
  scheduler->setSystemPaused(false);
  EXPECT_EQ(executor.pendingDelays(), 1u);
}

TEST_F(PopupAutoSaveSchedulerTest, ACountdownBegunDuringASystemPauseWaits) {
  configure();
  scheduler->setSystemPaused(true);
  scheduler->begin(uuid(1), 1);
  EXPECT_EQ(executor.pendingDelays(), 0u);
  advance(10);
  scheduler->setSystemPaused(false);
  advance(1);
  EXPECT_THAT(timedOut, ElementsAre(uuid(1)));
}

TEST_F(PopupAutoSaveSchedulerTest, DroppingTheLastCountdownStopsTheTask) {
  configure();
  scheduler->begin(uuid(1), 1);
  scheduler->begin(uuid(2), 1);
  scheduler->drop(uuid(1));
  EXPECT_EQ(executor.pendingDelays(), 1u);
  scheduler->drop(uuid(2));
  EXPECT_EQ(executor.pendingDelays(), 0u);
  EXPECT_EQ(scheduler->remaining(uuid(2)), std::nullopt);
}

TEST_F(PopupAutoSaveSchedulerTest, ResetForgetsEverything) {
  configure();
  scheduler->begin(uuid(1), 1);
  scheduler->reset();
  EXPECT_EQ(executor.pendingDelays(), 0u);
  advance(10);
  EXPECT_THAT(timedOut, IsEmpty());
}

TEST_F(PopupAutoSaveSchedulerTest, ATimeoutMayBeginTheNextCountdownInFull) {
  configure();
  onTimeout = [&](const UUID& id) {
    if (id == uuid(1)) scheduler->begin(uuid(2), 2);
  };
  scheduler->begin(uuid(1), 1);
  advance(1);
  EXPECT_DOUBLE_EQ(remaining(uuid(2)), 2);
  EXPECT_EQ(executor.pendingDelays(), 1u);
  advance(2);
  EXPECT_THAT(timedOut, ElementsAre(uuid(1), uuid(2)));
}

TEST_F(PopupAutoSaveSchedulerTest, ATimeoutMayDropAnotherThatIsDue) {
  configure();
  onTimeout = [&](const UUID& id) { scheduler->drop(id == uuid(1) ? uuid(2) : uuid(1)); };
  scheduler->begin(uuid(1), 1);
  scheduler->begin(uuid(2), 1);
  advance(5);
  EXPECT_EQ(timedOut.size(), 1u);
  EXPECT_EQ(executor.pendingDelays(), 0u);
}

TEST_F(PopupAutoSaveSchedulerTest, ASchedulerThatIsGoneTellsNothing) {
  configure();
  scheduler->begin(uuid(1), 1);
  scheduler.reset();
  EXPECT_EQ(executor.pendingDelays(), 0u);
  advance(10);
  EXPECT_THAT(timedOut, IsEmpty());
}

}  // namespace
}  // namespace quillmere::testing
