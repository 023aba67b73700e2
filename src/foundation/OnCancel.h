#pragma once

#include <functional>
#include <utility>

#include "foundation/Task.h"

namespace quillmere {

/// Awaited, has `action` called when the task is asked to stop, at once if it has been already. For work on another
/// thread that can be told to end.
class OnCancel {
 public:
  explicit OnCancel(std::function<void()> action) : action_(std::move(action)) {}
  bool await_ready() const { return false; }
  template <typename Promise>
  bool await_suspend(std::coroutine_handle<Promise> task) {
    const auto& state = task.promise().state;
    if (state->isCancelled) {
      action_();
    } else {
      state->onCancel = action_;
    }
    return false;
  }
  void await_resume() const {}

 private:
  std::function<void()> action_;
};

}  // namespace quillmere
