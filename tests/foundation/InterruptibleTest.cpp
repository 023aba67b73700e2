#include "foundation/Interruptible.h"

#include "foundation/ManualExecutor.h"

namespace quillmere {
namespace {

class InterruptibleTest : public ::testing::Test {
 protected:
  Task<bool> inner() {
    const bool isOver = co_await executor.sleep(seconds(1));
    co_return isOver;
  }
  Task<> outer() {
    const auto task = inner();
    elapsed = co_await interruptible(task);
    const bool again = co_await executor.sleep(seconds(1));
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
    co_await clock.sleep(seconds(0));
    result = co_await interruptible(task);
  };
  const auto task = waiting(executor, first, elapsed);
  task.cancel();
  EXPECT_EQ(elapsed, false);
}

TEST_F(InterruptibleTest, ATaskThatIsDoneIsNotWaitedFor) {
  const auto first = inner();
  executor.advance(seconds(1));
  const auto waiting = [](const Task<bool>& task, std::optional<bool>& result) -> Task<> {
    result = co_await interruptible(task);
  };
  const auto task = waiting(first, elapsed);
  EXPECT_TRUE(task.isDone());
  EXPECT_EQ(elapsed, true);
}

}  // namespace
}  // namespace quillmere
