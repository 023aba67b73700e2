#include "foundation/ManualExecutor.h"

#include <gtest/gtest.h>
#include <string>

namespace quillmere {
namespace {

class ManualExecutorTest : public ::testing::Test {
 protected:
  Executor::DelayEnd noteEnd(const std::string& name) {
    return [this, name](bool elapsed) { log += name + (elapsed ? "+" : "-"); };
  }
  std::string log;
  ManualExecutor executor;
};

TEST_F(ManualExecutorTest, PostedWorkRunsInALaterTurnInItsOrder) {
  executor.post([&] {
    log += "a";
    executor.post([&] { log += "c"; });
  });
  executor.post([&] { log += "b"; });
  EXPECT_EQ(log, "");
  executor.drain();
  EXPECT_EQ(log, "abc");
}

TEST_F(ManualExecutorTest, TimeMovesOnlyWhenTold) {
  const Instant start = executor.instant();
  executor.drain();
  EXPECT_EQ(executor.instant(), start);
  executor.advance(seconds(1.5));
  EXPECT_EQ(executor.instant() - start, seconds(1.5));
}

TEST_F(ManualExecutorTest, DelaysEndInTheOrderOfTheirDeadlinesEachAtItsMoment) {
  const Instant start = executor.instant();
  executor.startDelay(seconds(2), [&](bool) {
    EXPECT_EQ(executor.instant() - start, seconds(2));
    log += "b";
  });
  executor.startDelay(seconds(1), [&](bool) {
    EXPECT_EQ(executor.instant() - start, seconds(1));
    log += "a";
  });
  executor.startDelay(seconds(2), noteEnd("c"));
  executor.advance(seconds(1.999));
  EXPECT_EQ(log, "a");
  executor.advance(seconds(0.001));
  EXPECT_EQ(log, "abc+");
}

TEST_F(ManualExecutorTest, DelayOfZeroOrLessEndsInALaterTurn) {
  executor.startDelay(Duration::zero(), noteEnd("a"));
  executor.startDelay(seconds(-5), noteEnd("b"));
  EXPECT_EQ(log, "");
  executor.advance(Duration::zero());
  EXPECT_EQ(log, "a+b+");
}

TEST_F(ManualExecutorTest, DelayStartedByAnEndMayEndInTheSameAdvance) {
  executor.startDelay(seconds(1), [&](bool) { executor.startDelay(seconds(1), noteEnd("b")); });
  executor.advance(seconds(2));
  EXPECT_EQ(log, "b+");
}

TEST_F(ManualExecutorTest, CancelledDelayIsForgottenSilently) {
  const auto id = executor.startDelay(seconds(1), noteEnd("a"));
  executor.cancelDelay(id);
  executor.cancelDelay(id);
  executor.advance(seconds(2));
  EXPECT_EQ(log, "");
  EXPECT_EQ(executor.pendingDelays(), 0u);
}

TEST_F(ManualExecutorTest, TellsWhenTheNextDelayEnds) {
  EXPECT_EQ(executor.nextDelay(), std::nullopt);
  executor.startDelay(seconds(3), noteEnd("a"));
  executor.startDelay(seconds(2), noteEnd("b"));
  executor.advance(seconds(0.5));
  EXPECT_EQ(executor.nextDelay(), seconds(1.5));
  EXPECT_EQ(executor.pendingDelays(), 2u);
}

TEST_F(ManualExecutorTest, BackgroundWorkRunsBeforeWhatFollowsIt) {
  executor.runInBackground([&] { log += "work "; }, [&] { log += "done "; });
  EXPECT_EQ(log, "");
  executor.drain();
  EXPECT_EQ(log, "work done ");
}

TEST_F(ManualExecutorTest, HeldBackgroundWorkWaits) {
  executor.holdBackground();
  executor.runInBackground([&] { log += "work "; }, [&] { log += "done "; });
  executor.advance(seconds(1));
  EXPECT_EQ(log, "");
  EXPECT_EQ(executor.heldBackground(), 1u);
  executor.runHeldBackground();
  EXPECT_EQ(log, "work done ");
  EXPECT_EQ(executor.heldBackground(), 0u);
}

TEST_F(ManualExecutorTest, DestroyedOneEndsItsDelaysAsNotElapsed) {
  {
    ManualExecutor other;
    other.startDelay(seconds(1), [&](bool elapsed) {
      log += elapsed ? "+" : "-";
      other.startDelay(seconds(1), noteEnd("b"));
    });
  }
  EXPECT_EQ(log, "-b-");
}

TEST_F(ManualExecutorTest, BackgroundGivesWhatTheWorkReturned) {
  std::string got;
  [](Executor& in, std::string& out) -> Task<> {
    auto work = in.background([] { return std::string(100, 'x'); });
    out = co_await work;
  }(executor, got)
                                            .detach();
  EXPECT_EQ(got, "");
  executor.drain();
  EXPECT_EQ(got, std::string(100, 'x'));
}

TEST(Seconds, AreExactToTheNanosecond) {
  EXPECT_EQ(seconds(0.1), std::chrono::milliseconds(100));
  EXPECT_EQ(seconds(60), std::chrono::minutes(1));
  EXPECT_EQ(seconds(-1), -std::chrono::seconds(1));
}

}  // namespace
}  // namespace quillmere
