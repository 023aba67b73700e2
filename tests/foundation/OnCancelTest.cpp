#include "foundation/OnCancel.h"

#include <gtest/gtest.h>

#include "foundation/ManualExecutor.h"

namespace quillmere::testing {
namespace {

Task<int> working(ManualExecutor& executor, int& calls) {
  OnCancel stopping([&] { ++calls; });
  co_await stopping;
  auto work = executor.background([] { return 7; });
  const int result = co_await work;
  co_return result;
}

TEST(OnCancel, TheActionIsCalledOnceWhenTheTaskIsAskedToStop) {
  ManualExecutor executor;
  int calls = 0;
  const auto task = working(executor, calls);
  EXPECT_EQ(calls, 0);
  task.cancel();
  task.cancel();
  EXPECT_EQ(calls, 1);
  EXPECT_FALSE(task.isDone()) << "it goes on until its work ends";
  executor.drain();
  EXPECT_EQ(task.await_resume(), 7);
}

TEST(OnCancel, ATaskThatEndsByItselfCallsNothing) {
  ManualExecutor executor;
  int calls = 0;
  const auto task = working(executor, calls);
  executor.drain();
  task.cancel();
  EXPECT_EQ(calls, 0);
}

}  // namespace
}  // namespace quillmere::testing
