#pragma once

#include <coroutine>
#include <list>
#include <memory>
#include <utility>

#include "foundation/Task.h"

namespace quillmere {

/// Lets at most `limit` tasks in at a time, first come first served. Main thread only.
class AsyncGate {
 public:
  explicit AsyncGate(int limit) : limit_(limit) {}
  /// Those that still wait go with the gate: nobody could let them in, and they would keep each other alive.
  ~AsyncGate() {
    const Waiters abandoned = std::exchange(*waiters_, {});
    for (const Waiter& waiter : abandoned) waiter.task->onCancel = nullptr;
  }
  AsyncGate(const AsyncGate&) = delete;
  AsyncGate& operator=(const AsyncGate&) = delete;

  class Entry;
  /// Awaited, gives true with a place, which `leave` gives back, or false if the task was cancelled while it waited.
  Entry enter();
  void leave();

  int running() const { return running_; }
  size_t waiting() const { return waiters_->size(); }

 private:
  struct Waiter {
    std::shared_ptr<Continuation> continuation;
    std::shared_ptr<detail::TaskStateBase> task;
    bool* isIn = nullptr;
  };
  using Waiters = std::list<Waiter>;

  int limit_;
  int running_ = 0;
  std::shared_ptr<Waiters> waiters_ = std::make_shared<Waiters>();
};

class AsyncGate::Entry {
 public:
  explicit Entry(AsyncGate& gate) : gate_(gate) {}
  Entry(const Entry&) = delete;
  Entry& operator=(const Entry&) = delete;
  bool await_ready() {
    if (gate_.running_ >= gate_.limit_) return false;
    ++gate_.running_;
    isIn_ = true;
    return true;
  }
  template <typename Promise>
  bool await_suspend(std::coroutine_handle<Promise> task) {
    auto state = task.promise().state;
    if (state->isCancelled) return false;
    auto continuation = std::make_shared<Continuation>(task);
    const auto place = gate_.waiters_->insert(gate_.waiters_->end(), {continuation, state, &isIn_});
    state->onCancel = [waiters = gate_.waiters_, place, continuation] {
      waiters->erase(place);
      continuation->resume();
    };
    return true;
  }
  bool await_resume() const { return isIn_; }

 private:
  AsyncGate& gate_;
  bool isIn_ = false;
};

inline AsyncGate::Entry AsyncGate::enter() {
  return Entry(*this);
}

inline void AsyncGate::leave() {
  if (waiters_->empty()) {
    --running_;
    return;
  }
  // The place is handed over, so that nobody can slip in between.
  Waiter next = std::move(waiters_->front());
  waiters_->pop_front();
  next.task->onCancel = nullptr;
  *next.isIn = true;
  next.continuation->resume();
}

}  // namespace quillmere
