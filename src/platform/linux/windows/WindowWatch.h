#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

#include "reading/WindowStack.h"

namespace quillmere {

/// Follows which windows the desktop shows, in memory alone.
class WindowWatch {
 public:
  /// A state is read when nothing has changed for that long, or the first change is that long ago.
  static constexpr auto kQuiet = std::chrono::milliseconds(15);
  static constexpr auto kLongest = std::chrono::milliseconds(60);

  /// By whoever can tell in this session: sway, else the X server, which knows nothing of a Wayland compositor's own
  /// windows.
  static std::unique_ptr<WindowWatch> ofSession(std::function<Date()> now);

  virtual ~WindowWatch() = default;
  /// What was shown lately, the oldest first. Any thread.
  virtual std::vector<WindowStack> states() const = 0;
  /// Has it find out what it is not told of by itself; `states` has that a moment later. Any thread.
  virtual void lookAgain() = 0;
};

}  // namespace quillmere
