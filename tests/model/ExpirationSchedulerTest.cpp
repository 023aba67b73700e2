#include "model/ExpirationScheduler.h"

#include <gmock/gmock.h>

#include "foundation/ManualExecutor.h"
#include "support/Records.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class ExpirationSchedulerTest : public ::testing::Test {
 protected:
  Date now() const {
    return Date{1000 + clockOffset + std::chrono::duration<double>(executor.instant().time_since_epoch()).count()};
  }
  void start() {
    scheduler->start([this](const UUID& id) {
      fired.push_back(id);
      if (onFire) onFire(id);
    });
  }
  void advance(double bySeconds) { executor.advance(seconds(bySeconds)); }

  double clockOffset = 0;
  SystemEvents events;
  ManualExecutor executor;
  std::vector<UUID> fired;
  std::function<void(const UUID&)> onFire;
  std::unique_ptr<ExpirationScheduler> scheduler =
      std::make_unique<ExpirationScheduler>(executor, events, [this] { return now(); });
};

TEST_F(ExpirationSchedulerTest, NothingIsArmedBeforeTheStart) {
  scheduler->schedule(uuid(1), now() + -5.0);
  EXPECT_EQ(executor.pendingDelays(), 0u);
  start();
  EXPECT_EQ(executor.pendingDelays(), 1u);
  advance(0);
  EXPECT_THAT(fired, ElementsAre(uuid(1)));
}

TEST_F(ExpirationSchedulerTest, AnEntryFiresAtItsMomentAndOnce) {
  start();
  scheduler->schedule(uuid(1), now() + 10.0);
  advance(9.99);
  EXPECT_THAT(fired, IsEmpty());
  advance(0.02);
  EXPECT_THAT(fired, ElementsAre(uuid(1)));
  EXPECT_TRUE(scheduler->expirations().empty());
  advance(100);
  EXPECT_EQ(fired.size(), 1u);
}

TEST_F(ExpirationSchedulerTest, NoTimerRunsWithoutEntries) {
  start();
  EXPECT_EQ(executor.pendingDelays(), 0u);
  scheduler->schedule(uuid(1), now() + 10.0);
  EXPECT_EQ(executor.pendingDelays(), 1u);
  scheduler->cancel(uuid(1));
  EXPECT_EQ(executor.pendingDelays(), 0u);
}

TEST_F(ExpirationSchedulerTest, OneTimerServesTheEarliestEntry) {
  start();
  scheduler->schedule(uuid(1), now() + 20.0);
  scheduler->schedule(uuid(2), now() + 5.0);
  scheduler->schedule(uuid(3), now() + 12.0);
  EXPECT_EQ(executor.pendingDelays(), 1u);
  EXPECT_EQ(executor.nextDelay(), seconds(5));
  scheduler->cancel(uuid(2));
  EXPECT_EQ(executor.nextDelay(), seconds(12));
  advance(30);
  EXPECT_THAT(fired, ElementsAre(uuid(3), uuid(1)));
}

TEST_F(ExpirationSchedulerTest, SeveralEntriesAreEnteredTogether) {
  start();
  scheduler->schedule({{uuid(1), now() + 1.0}, {uuid(2), now() + 2.0}});
  advance(3);
  EXPECT_THAT(fired, ElementsAre(uuid(1), uuid(2)));
}

TEST_F(ExpirationSchedulerTest, ARescheduledEntryFiresAtItsNewMomentAlone) {
  start();
  scheduler->schedule(uuid(1), now() + 5.0);
  scheduler->schedule(uuid(1), now() + 15.0);
  advance(14);
  EXPECT_THAT(fired, IsEmpty());
  advance(2);
  EXPECT_THAT(fired, ElementsAre(uuid(1)));
}

TEST_F(ExpirationSchedulerTest, ASleepIsNeverLongerThanThirtySeconds) {
  start();
  scheduler->schedule(uuid(1), now() + 86400.0);
  EXPECT_EQ(executor.nextDelay(), seconds(30));
  advance(30);
  EXPECT_EQ(executor.nextDelay(), seconds(30));
  EXPECT_THAT(fired, IsEmpty());
}

TEST_F(ExpirationSchedulerTest, AMomentInThePastDoesNotWait) {
  start();
  scheduler->schedule(uuid(1), now() + -3600.0);
  EXPECT_EQ(executor.nextDelay(), seconds(0));
  EXPECT_THAT(fired, IsEmpty()) << "but it fires in a later turn";
  advance(0);
  EXPECT_THAT(fired, ElementsAre(uuid(1)));
}

TEST_F(ExpirationSchedulerTest, ClockMovedForwardByADayFiresWithinThirtySeconds) {
  start();
  scheduler->schedule(uuid(1), now() + 3600.0);
  advance(7);
  clockOffset += 86400;
  EXPECT_THAT(fired, IsEmpty());
  advance(30);
  EXPECT_THAT(fired, ElementsAre(uuid(1)));
}

TEST_F(ExpirationSchedulerTest, ClockMovedBackwardWaitsForTheMomentAgain) {
  start();
  scheduler->schedule(uuid(1), now() + 10.0);
  clockOffset -= 100;
  advance(11);
  EXPECT_THAT(fired, IsEmpty());
  advance(100);
  EXPECT_THAT(fired, ElementsAre(uuid(1)));
}

TEST_F(ExpirationSchedulerTest, WakingFiresWhatIsDueAtOnce) {
  start();
  scheduler->schedule(uuid(1), now() + 100.0);
  scheduler->schedule(uuid(2), now() + 200.0);
  clockOffset += 150;
  events.didWake();
  EXPECT_THAT(fired, ElementsAre(uuid(1)));
  EXPECT_EQ(executor.nextDelay(), seconds(30));
}

TEST_F(ExpirationSchedulerTest, TheWakeObserverIsInstalledOnce) {
  start();
  start();
  int calls = 0;
  onFire = [&](const UUID& id) {
    ++calls;
    scheduler->schedule(id, now());
  };
  scheduler->schedule(uuid(1), now());
  events.didWake();
  EXPECT_EQ(calls, 1) << "an entry made anew while firing waits for the timer";
}

TEST_F(ExpirationSchedulerTest, DueEntriesFireTogetherAndEachIsGoneBeforeItsHandlerRuns) {
  start();
  onFire = [&](const UUID& id) { EXPECT_FALSE(scheduler->expirations().contains(id)); };
  scheduler->schedule({{uuid(1), now() + 1.0}, {uuid(2), now() + 1.0}, {uuid(3), now() + 1.5}});
  clockOffset += 10;
  scheduler->fireDue(now());
  EXPECT_THAT(fired, UnorderedElementsAre(uuid(1), uuid(2), uuid(3)));
}

TEST_F(ExpirationSchedulerTest, AnEntryExactlyAtTheMomentIsDue) {
  start();
  scheduler->schedule(uuid(1), Date{2000});
  scheduler->fireDue(Date{1999.9999});
  EXPECT_THAT(fired, IsEmpty());
  scheduler->fireDue(Date{2000});
  EXPECT_THAT(fired, ElementsAre(uuid(1)));
}

TEST_F(ExpirationSchedulerTest, AHandlerMayCancelAnotherDueEntry) {
  start();
  onFire = [&](const UUID& id) { scheduler->cancel(id == uuid(1) ? uuid(2) : uuid(1)); };
  scheduler->schedule({{uuid(1), now()}, {uuid(2), now()}});
  advance(0);
  EXPECT_EQ(fired.size(), 1u);
  EXPECT_TRUE(scheduler->expirations().empty());
}

TEST_F(ExpirationSchedulerTest, AHandlerMayEnterItsOwnIdAgain) {
  start();
  onFire = [&](const UUID& id) {
    if (fired.size() < 3) scheduler->schedule(id, now() + 10.0);
  };
  scheduler->schedule(uuid(1), now());
  advance(60);
  EXPECT_EQ(fired.size(), 3u);
}

TEST_F(ExpirationSchedulerTest, ASchedulerThatIsGoneFiresNothing) {
  start();
  scheduler->schedule(uuid(1), now() + 1.0);
  scheduler.reset();
  EXPECT_EQ(executor.pendingDelays(), 0u);
  events.didWake();
  advance(60);
  EXPECT_THAT(fired, IsEmpty());
}

}  // namespace
}  // namespace quillmere::testing
