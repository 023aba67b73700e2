#pragma once

#include <functional>

#include "foundation/Task.h"

namespace quillmere {

/// `co_await onCancel(action)` has `action` called when the task is asked to stop, at once if it has been already. For
/// work on another thread that can be told to end.
class OnCancel {
 public:
  explicit OnCancel(const std::function<void()>& action) : action_(action) {}
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
  const std::function<void()>& action_;
};

/// The action is a variable of the coroutine: GCC 12 destroys twice what is made inside an awaited expression.
inline OnCancel onCancel(const std::function<void()>& action) {
  return OnCancel(action);
}
OnCancel onCancel(std::function<void()>&& action) = delete;

}  // namespace quillmere
