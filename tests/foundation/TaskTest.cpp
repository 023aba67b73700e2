#include "foundation/Task.h"

#include <gtest/gtest.h>
#include <string>

#include "foundation/Interruptible.h"
#include "foundation/ManualExecutor.h"
#include "foundation/OnCancel.h"

namespace quillmere {
namespace {

Task<int> answer(int number) {
  co_return number;
}

Task<int> answerLater(Executor& executor, Duration delay, int number) {
  auto pause = executor.sleep(delay);
  const bool elapsed = co_await pause;
  co_return elapsed ? number : -number;
}

int work() {
  return 5;
}

Task<> note(std::string& log, Executor& executor) {
  log += "start ";
  auto pause = executor.sleep(seconds(1));
  const bool elapsed = co_await pause;
  log += elapsed ? "elapsed " : "cancelled ";
  log += co_await isCancelled ? "asked" : "not asked";
}

TEST(Task, StartsAtOnce) {
  ManualExecutor executor;
  std::string log;
  const auto task = note(log, executor);
  EXPECT_EQ(log, "start ");
  EXPECT_TRUE(task);
  EXPECT_FALSE(task.isDone());
  executor.advance(seconds(1));
  EXPECT_TRUE(task.isDone());
  EXPECT_EQ(log, "start elapsed not asked");
}

TEST(Task, ThatNeverWaitsIsDoneWhenItIsMade) {
  EXPECT_TRUE(answer(1).isDone());
}

TEST(Task, EmptyHandleIsNoTask) {
  const Task<> task;
  EXPECT_FALSE(task);
  EXPECT_FALSE(task.isDone());
  EXPECT_FALSE(task.isCancelled());
  task.cancel();
}

TEST(Task, GivesItsValueToWhoAwaitsIt) {
  ManualExecutor executor;
  int got = 0;
  const auto outer = [](Executor& in, int& result) -> Task<> {
    const auto atOnce = answer(1);
    result = co_await atOnce;
    const auto later = answerLater(in, seconds(1), 10);
    result += co_await later;
    const auto shared = answerLater(in, seconds(1), 100);
    result += co_await shared;
    result += co_await shared;
  }(executor, got);
  EXPECT_EQ(got, 1);
  executor.advance(seconds(1));
  EXPECT_EQ(got, 11);
  executor.advance(seconds(1));
  EXPECT_EQ(got, 211);
  EXPECT_TRUE(outer.isDone());
}

TEST(Task, ResumesAllWhoAwaitItInTheirOrder) {
  ManualExecutor executor;
  std::string log;
  const auto inner = answerLater(executor, seconds(1), 5);
  const auto wait = [](Task<int> task, std::string& out, const char* name) -> Task<> {
    out += name + std::to_string(co_await task);
  };
  const auto a = wait(inner, log, "a");
  const auto b = wait(inner, log, "b");
  executor.advance(seconds(1));
  EXPECT_EQ(log, "a5b5");
}

TEST(Task, SleepThatIsCancelledSaysSoAtOnce) {
  ManualExecutor executor;
  std::string log;
  const auto task = note(log, executor);
  executor.advance(seconds(0.5));
  task.cancel();
  EXPECT_EQ(log, "start cancelled asked");
  EXPECT_TRUE(task.isDone());
  EXPECT_TRUE(task.isCancelled());
  EXPECT_EQ(executor.pendingDelays(), 0u);
  executor.advance(seconds(10));
  EXPECT_EQ(log, "start cancelled asked");
}

TEST(Task, SleepAfterACancellationDoesNotSleep) {
  ManualExecutor executor;
  std::string log;
  const auto task = [](Executor& in, std::string& out) -> Task<> {
    auto pause = in.sleep(seconds(1));
    for (int i = 0; i < 3; ++i) out += co_await pause ? "e" : "c";
  }(executor, log);
  task.cancel();
  EXPECT_EQ(log, "ccc");
  EXPECT_TRUE(task.isDone());
}

TEST(Task, CancelledWhenItIsDoneStaysNotCancelled) {
  const auto task = answer(1);
  task.cancel();
  EXPECT_FALSE(task.isCancelled());
}

TEST(Task, CancelledTwiceIsCancelledOnce) {
  ManualExecutor executor;
  std::string log;
  const auto task = note(log, executor);
  task.cancel();
  task.cancel();
  EXPECT_EQ(log, "start cancelled asked");
}

TEST(Task, BackgroundWorkGoesOnAfterACancellation) {
  ManualExecutor executor;
  bool wasAsked = false;
  int got = 0;
  const auto task = [](Executor& in, int& result, bool& asked) -> Task<> {
    auto working = in.background(&work);
    result = co_await working;
    asked = co_await isCancelled;
  }(executor, got, wasAsked);
  task.cancel();
  EXPECT_FALSE(task.isDone());
  executor.drain();
  EXPECT_EQ(got, 5);
  EXPECT_TRUE(wasAsked);
}

TEST(Task, DroppingTheLastHandleDoesNotCancel) {
  ManualExecutor executor;
  std::string log;
  note(log, executor).detach();
  { const auto dropped = note(log, executor); }
  executor.advance(seconds(1));
  EXPECT_EQ(log, "start start elapsed not askedelapsed not asked");
}

TEST(Task, IsComparedByIdentity) {
  ManualExecutor executor;
  const auto a = answerLater(executor, seconds(1), 1);
  const auto b = answerLater(executor, seconds(1), 1);
  EXPECT_TRUE(a == Task<int>(a));
  EXPECT_FALSE(a == b);
  EXPECT_FALSE(a == Task<int>());
  EXPECT_TRUE(Task<int>() == Task<int>());
}

TEST(Task, CancellingOneHandleCancelsTheTask) {
  ManualExecutor executor;
  const auto a = answerLater(executor, seconds(1), 1);
  Task<int>(a).cancel();
  EXPECT_TRUE(a.isCancelled());
  EXPECT_TRUE(a.isDone());
}

TEST(Task, OwnerMayDropItsHandleInTheTasksLastStep) {
  ManualExecutor executor;
  Task<> owned;
  owned = [](Executor& in, Task<>& handle) -> Task<> {
    auto pause = in.sleep(seconds(1));
    co_await pause;
    handle = {};
  }(executor, owned);
  owned.cancel();
  EXPECT_FALSE(owned);
}

// --- What can be awaited ---

template <typename Awaited>
concept CanBeAwaited = requires(Task<>::promise_type& promise, Awaited&& awaited) {
  promise.await_transform(std::forward<Awaited>(awaited));
};

static_assert(CanBeAwaited<Task<int>&> && CanBeAwaited<const Task<int>&>);
static_assert(!CanBeAwaited<Task<int>> && !CanBeAwaited<const Task<int>>);
static_assert(CanBeAwaited<Executor::Sleep&> && !CanBeAwaited<Executor::Sleep>);
static_assert(CanBeAwaited<Executor::Background<int>&> && !CanBeAwaited<Executor::Background<int>>);
static_assert(CanBeAwaited<Interruptible<int>&> && !CanBeAwaited<Interruptible<int>>);
static_assert(CanBeAwaited<OnCancel&> && !CanBeAwaited<OnCancel>);
static_assert(CanBeAwaited<decltype((isCancelled))>);

Task<> takeInTurn(Executor& executor, std::function<int()> held, int& result) {
  auto working = executor.background(held);
  held = nullptr;
  result = co_await working;
}

TEST(Task, ReleasesOnceWhatAClosureHoldsThatItIsGiven) {
  ManualExecutor executor;
  const auto held = std::make_shared<int>(5);
  int got = 0;
  const auto outer = [](Executor& in, std::shared_ptr<int> owned, int& result) -> Task<> {
    const auto inner = takeInTurn(
        in, [owned] { return *owned; }, result);
    owned = nullptr;
    co_await inner;
  }(executor, held, got);
  EXPECT_EQ(held.use_count(), 2);
  executor.drain();
  EXPECT_EQ(got, 5);
  EXPECT_EQ(held.use_count(), 1);
}

// --- Executors that go away ---

/// Notes its end, in whatever way the coroutine that holds it ends.
struct Witness {
  int& ends;
  ~Witness() { ++ends; }
};

TEST(Task, DestroyedExecutorEndsSleepsAsCancelled) {
  std::string log;
  Task<> task;
  {
    ManualExecutor executor;
    task = note(log, executor);
  }
  EXPECT_EQ(log, "start cancelled not asked");
  EXPECT_TRUE(task.isDone());
}

TEST(Task, DestroyedExecutorTakesBackgroundWaitersWithIt) {
  int ends = 0;
  {
    ManualExecutor executor;
    [](Executor& in, int& count) -> Task<> {
      const Witness witness{count};
      auto working = in.background(&work);
      co_await working;
      ADD_FAILURE() << "nobody ran the work";
    }(executor, ends)
                                        .detach();
    EXPECT_EQ(ends, 0);
  }
  EXPECT_EQ(ends, 1);
}

TEST(Task, DestroyedExecutorTakesThoseWithItWhoAwaitItsWaiters) {
  int ends = 0;
  Task<> outerHandle;
  {
    ManualExecutor executor;
    const auto inner = [](Executor& in, int& count) -> Task<int> {
      const Witness witness{count};
      auto working = in.background(&work);
      co_return co_await working;
    };
    const auto outer = [](Task<int> task, int& count) -> Task<> {
      const Witness witness{count};
      co_await task;
    };
    outer(inner(executor, ends), ends).detach();
    outerHandle = outer(inner(executor, ends), ends);
    EXPECT_EQ(ends, 0);
  }
  EXPECT_EQ(ends, 4);
  EXPECT_FALSE(outerHandle.isDone());
}

}  // namespace
}  // namespace quillmere
