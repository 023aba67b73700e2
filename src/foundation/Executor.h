#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

#include "foundation/Task.h"

namespace quillmere {

/// Delays are counted on a clock that goes on while the machine sleeps and that nobody can set.
using Duration = std::chrono::nanoseconds;
struct ContinuousClock {
  using duration = Duration;
  using rep = duration::rep;
  using period = duration::period;
  using time_point = std::chrono::time_point<ContinuousClock>;
  static constexpr bool is_steady = true;
};
using Instant = ContinuousClock::time_point;

constexpr Duration seconds(double count) {
  return std::chrono::duration_cast<Duration>(std::chrono::duration<double>(count));
}

/// The only door to time and threads.
class Executor {
 public:
  /// Told true when the delay is over, false when the executor goes away first. Called once.
  using DelayEnd = std::function<void(bool elapsed)>;
  /// Identifies a delay until it ends.
  using DelayID = uint64_t;

  virtual ~Executor() = default;

  /// Runs `work` on the main thread, in a later turn of its loop. Any thread may call it.
  virtual void post(std::function<void()> work) = 0;
  /// Main thread. A delay of zero or less still ends in a later turn.
  virtual DelayID startDelay(Duration delay, DelayEnd end) = 0;
  /// Main thread. Forgets the delay without calling its end; nothing happens when it is over already.
  virtual void cancelDelay(DelayID delay) = 0;
  /// Runs `work` on another thread and then `done` on the main thread.
  virtual void runInBackground(std::function<void()> work, std::function<void()> done) = 0;
  virtual Instant instant() const = 0;

  class Sleep;
  /// Awaited, gives true after the delay, which is counted from then on, or false if the task was cancelled first.
  Sleep sleep(Duration delay);

  template <typename Result>
  class Background;
  /// Awaited, once, runs `work` on another thread and gives what it returned.
  template <typename Work>
  auto background(Work work) {
    return Background<std::invoke_result_t<Work&>>(*this, std::move(work));
  }
};

class Executor::Sleep {
 public:
  Sleep(Executor& executor, Duration delay) : executor_(executor), delay_(delay) {}
  Sleep(const Sleep&) = delete;
  Sleep& operator=(const Sleep&) = delete;
  bool await_ready() const { return false; }
  template <typename Promise>
  bool await_suspend(std::coroutine_handle<Promise> task) {
    auto state = task.promise().state;
    elapsed_ = false;
    if (state->isCancelled) return false;
    auto continuation = std::make_shared<Continuation>(task);
    const auto id = executor_.startDelay(delay_, [this, continuation, state](bool elapsed) {
      state->onCancel = nullptr;
      elapsed_ = elapsed;
      continuation->resume();
    });
    state->onCancel = [&executor = executor_, continuation, id] {
      executor.cancelDelay(id);
      continuation->resume();
    };
    return true;
  }
  bool await_resume() const { return elapsed_; }

 private:
  Executor& executor_;
  Duration delay_;
  bool elapsed_ = false;
};

inline Executor::Sleep Executor::sleep(Duration delay) {
  return Sleep(*this, delay);
}

template <typename Result>
class Executor::Background {
 public:
  Background(Executor& executor, std::function<Result()> work) : executor_(executor), work_(std::move(work)) {}
  Background(const Background&) = delete;
  Background& operator=(const Background&) = delete;
  bool await_ready() const { return false; }
  void await_suspend(std::coroutine_handle<> task) {
    auto continuation = std::make_shared<Continuation>(task);
    // The result lives apart from the coroutine, which may be destroyed while the work still runs.
    auto box = std::make_shared<std::optional<Result>>();
    executor_.runInBackground([box, work = std::move(work_)] { box->emplace(work()); },
                              [this, box, continuation] {
                                result_ = std::move(*box);
                                continuation->resume();
                              });
  }
  Result await_resume() { return std::move(*result_); }

 private:
  Executor& executor_;
  std::function<Result()> work_;
  std::optional<Result> result_;
};

}  // namespace quillmere
