#pragma once

#include <coroutine>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

namespace quillmere {

/// A suspended coroutine that somebody promised to resume. Dropped without being resumed it destroys the coroutine, so
/// that a service that goes away takes its waiters with it instead of leaking them.
class Continuation {
 public:
  explicit Continuation(std::coroutine_handle<> handle) : handle_(handle) {}
  Continuation(Continuation&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Continuation& operator=(Continuation&&) = delete;
  ~Continuation() {
    if (handle_) handle_.destroy();
  }
  void resume() {
    if (const auto handle = std::exchange(handle_, nullptr)) handle.resume();
  }

 private:
  std::coroutine_handle<> handle_;
};

/// `co_await isCancelled` tells a task whether it has been asked to stop.
struct IsCancelled {
  struct Tag {};
  bool result = false;
  bool await_ready() const { return false; }
  template <typename Promise>
  bool await_suspend(std::coroutine_handle<Promise> task) {
    result = task.promise().state->isCancelled;
    return false;
  }
  bool await_resume() const { return result; }
};
inline constexpr IsCancelled::Tag isCancelled{};

namespace detail {

/// What the handles of a task, its coroutine and its waiters share.
struct TaskStateBase {
  bool isCancelled = false;
  bool isDone = false;
  std::function<void()> onCancel;  ///< set while the task is suspended in something that can be cut short
  std::vector<std::shared_ptr<Continuation>> waiters;

  void cancel() {
    if (isDone || isCancelled) return;
    isCancelled = true;
    if (const auto interrupt = std::exchange(onCancel, nullptr)) interrupt();
  }
  void finish() {
    isDone = true;
    onCancel = nullptr;
    for (auto& waiter : std::exchange(waiters, {})) waiter->resume();
  }
  /// The coroutine is gone without having finished. Its waiters, which hold this state, would keep each other for ever.
  void abandon() {
    if (!isDone) std::exchange(waiters, {}).clear();
  }
};

template <typename T>
struct TaskState : TaskStateBase {
  std::optional<T> value;
};
template <>
struct TaskState<void> : TaskStateBase {};

/// An awaited variable. Promises can't give the variable itself: GCC 12 would copy it.
template <typename Awaitable>
class Awaited {
 public:
  explicit Awaited(Awaitable& awaitable) : awaitable_(awaitable) {}
  bool await_ready() { return awaitable_.await_ready(); }
  template <typename Promise>
  auto await_suspend(std::coroutine_handle<Promise> waiter) {
    return awaitable_.await_suspend(waiter);
  }
  decltype(auto) await_resume() { return awaitable_.await_resume(); }

 private:
  Awaitable& awaitable_;
};

struct PromiseBase {
  std::suspend_never initial_suspend() noexcept { return {}; }
  std::suspend_never final_suspend() noexcept { return {}; }
  /// A task awaits only what has a name: `const auto reading = read(url); const auto text = co_await reading;`.
  ///
  /// GCC 12 destroys twice whatever closure and whatever aggregate written with braces stands in a full expression with
  /// `co_await`, even one that was converted to a `std::function` or bound to a reference, and so releases twice what
  /// it holds. Results of functions, objects made by a constructor, and copies of variables are destroyed once; so is
  /// everything in an expression without `co_await`. Where the awaited is a variable, the call that makes it is such an
  /// expression. What stands beside a `co_await`, as another argument of one call, is still in danger.
  template <typename Awaitable>
  Awaited<Awaitable> await_transform(Awaitable& awaitable) {
    return Awaited<Awaitable>(awaitable);
  }
  template <typename Awaitable>
  void await_transform(Awaitable&& temporary) = delete;
  IsCancelled await_transform(IsCancelled::Tag) { return {}; }
  /// Errors are values here; an exception that escapes a task is a defect.
  void unhandled_exception() { std::terminate(); }
};

template <typename T>
struct Promise : PromiseBase {
  std::shared_ptr<TaskState<T>> state = std::make_shared<TaskState<T>>();
  ~Promise() { state->abandon(); }
  void return_value(T value) {
    state->value.emplace(std::move(value));
    state->finish();
  }
};
template <>
struct Promise<void> : PromiseBase {
  std::shared_ptr<TaskState<void>> state = std::make_shared<TaskState<void>>();
  ~Promise() { state->abandon(); }
  void return_void() { state->finish(); }
};

}  // namespace detail

/// Asynchronous work on the main thread. It starts at once and runs to its first wait; it can be awaited, cancelled and
/// compared by identity. Dropping the last handle does not cancel it. Cancelling is a request: a sleep or a gate that
/// the task waits in says so at once, everything else finds out by `co_await isCancelled`.
template <typename T = void>
class [[nodiscard]] Task {
 public:
  struct promise_type : detail::Promise<T> {
    Task get_return_object() { return Task(this->state); }
  };

  Task() = default;
  explicit operator bool() const { return state_ != nullptr; }
  bool isDone() const { return state_ && state_->isDone; }
  bool isCancelled() const { return state_ && state_->isCancelled; }
  /// A copy, since cancelling may run the task to its end and with it the owner's last use of this handle.
  void cancel() const {
    if (const auto state = state_) state->cancel();
  }
  bool operator==(const Task& other) const { return state_ == other.state_; }

  /// Lets the task go on without an owner. Whatever it touches must be held weakly.
  void detach() && { state_ = nullptr; }

  bool await_ready() const { return state_->isDone; }
  void await_suspend(std::coroutine_handle<> waiter) const {
    state_->waiters.push_back(std::make_shared<Continuation>(waiter));
  }
  T await_resume() const {
    if constexpr (!std::is_void_v<T>) return *state_->value;
  }

 private:
  explicit Task(std::shared_ptr<detail::TaskState<T>> state) : state_(std::move(state)) {}
  std::shared_ptr<detail::TaskState<T>> state_;
};

}  // namespace quillmere
