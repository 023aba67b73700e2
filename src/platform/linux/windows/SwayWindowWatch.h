#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "platform/linux/windows/SwayConnection.h"
#include "platform/linux/windows/WindowHistory.h"
#include "platform/linux/windows/WindowWatch.h"

namespace quillmere {

/// Follows which windows sway shows, on a thread of its own. It is told of windows that come, go, or get the keyboard,
/// but not while one is moved or gets another size: `lookAgain` finds that out. Sleeps until one of them.
class SwayWindowWatch final : public WindowWatch {
 public:
  SwayWindowWatch(std::function<Date()> now, SwayConnection connection);
  ~SwayWindowWatch() override;

  std::vector<WindowStack> states() const override;
  void lookAgain() override;

 private:
  using Clock = std::chrono::steady_clock;

  void run();
  bool look(Date since);
  /// Answers whether it is to go on.
  bool wait(std::optional<Clock::time_point> until);

  std::function<Date()> now_;
  SwayConnection connection_;
  Descriptor wake_;
  mutable std::mutex mutex_;
  mutable WindowHistory history_;
  bool isEnding_ = false;

  // Of the thread alone.
  std::optional<Clock::time_point> firstChange_, lastChange_;
  Date changedAt_;
  Date confirmedAt_;  ///< when it last looked

  std::thread thread_;
};

}  // namespace quillmere
