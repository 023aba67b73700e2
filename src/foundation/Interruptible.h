#pragma once

#include <utility>

#include "foundation/Task.h"

namespace quillmere {

/// Awaited, gives what the task gives, and whoever cancels the waiting task cancels that one too. For a task that
/// nobody else waits for.
template <typename T>
class Interruptible {
 public:
  explicit Interruptible(Task<T> task) : task_(std::move(task)) {}
  bool await_ready() const { return task_.isDone(); }
  template <typename Promise>
  bool await_suspend(std::coroutine_handle<Promise> waiter) {
    waiter_ = waiter.promise().state.get();
    if (waiter_->isCancelled) task_.cancel();
    if (task_.isDone()) return false;
    waiter_->onCancel = [task = task_] { task.cancel(); };
    task_.await_suspend(waiter);
    return true;
  }
  T await_resume() {
    if (waiter_) waiter_->onCancel = nullptr;
    return task_.await_resume();
  }

 private:
  Task<T> task_;
  detail::TaskStateBase* waiter_ = nullptr;  // of the coroutine that this stands in
};

template <typename T>
Interruptible<T> interruptible(Task<T> task) {
  return Interruptible<T>(std::move(task));
}

}  // namespace quillmere
