#include "foundation/Interruptible.h"

#include <gtest/gtest.h>

#include "foundation/ManualExecutor.h"

namespace quillmere {
namespace {

class InterruptibleTest : public ::testing::Test {
 protected:
  Task<bool> inner() {
    auto pause = executor.sleep(seconds(1));
    const bool isOver = co_await pause;
    co_return isOver;
  }
  Task<> outer() {
    auto waiting = interruptible(inner());
    elapsed = co_await waiting;
    auto pause = executor.sleep(seconds(1));
    const bool again = co_await pause;
    sleptAgain = again;
  }
  ManualExecutor executor;
  std::optional<bool> elapsed;
  std::optional<bool> sleptAgain;
};

TEST_F(InterruptibleTest, GivesWhatTheTaskGave) {
  const auto task = outer();
  executor.advance(seconds(1));
  EXPECT_EQ(elapsed, true);
  executor.advance(seconds(1));
  EXPECT_EQ(sleptAgain, true);
}

TEST_F(InterruptibleTest, CancellingTheWaiterCancelsTheTask) {
  const auto task = outer();
  task.cancel();
  EXPECT_EQ(elapsed, false);
  EXPECT_EQ(sleptAgain, false);
}

TEST_F(InterruptibleTest, CancellingLaterReachesOnlyWhatIsWaitedForThen) {
  const auto task = outer();
  executor.advance(seconds(1));
  task.cancel();
  EXPECT_EQ(elapsed, true);
  EXPECT_EQ(sleptAgain, false);
}

TEST_F(InterruptibleTest, AWaiterThatIsCancelledAlreadyDoesNotWait) {
  const auto first = inner();
  const auto waiting = [](Executor& clock, const Task<bool>& task, std::optional<bool>& result) -> Task<> {
    auto pause = clock.sleep(seconds(0));
    co_await pause;
    auto wait = interruptible(task);
    result = co_await wait;
  };
  const auto task = waiting(executor, first, elapsed);
  task.cancel();
  EXPECT_EQ(elapsed, false);
}

TEST_F(InterruptibleTest, ATaskThatIsDoneIsNotWaitedFor) {
  const auto first = inner();
  executor.advance(seconds(1));
  const auto waiting = [](const Task<bool>& task, std::optional<bool>& result) -> Task<> {
    auto wait = interruptible(task);
    result = co_await wait;
  };
  const auto task = waiting(first, elapsed);
  EXPECT_TRUE(task.isDone());
  EXPECT_EQ(elapsed, true);
}

}  // namespace
}  // namespace quillmere
