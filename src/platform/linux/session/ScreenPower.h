#pragma once

#include <functional>
#include <optional>

#include "foundation/Executor.h"

namespace quillmere {

/// Whether the displays are off, as the X server says; none where there is none or it does not manage their power.
std::optional<bool> areScreensOff();

/// Looks every two seconds, while it is on, whether the displays are off: X11 has no event for it.
class ScreenPowerPoll {
 public:
  using Look = std::function<std::optional<bool>()>;
  /// `seen` is told what each look sees, and false when the poll is switched off.
  ScreenPowerPoll(Executor& executor, Look look, std::function<void(bool areOff)> seen);
  ~ScreenPowerPoll();

  void setOn(bool isOn);

  static constexpr Duration kInterval = std::chrono::seconds(2);

 private:
  void lookAfter(Duration delay);

  Executor& executor_;
  Look look_;
  std::function<void(bool areOff)> seen_;
  bool isOn_ = false;
  std::optional<Executor::DelayID> delay_;
};

}  // namespace quillmere
