#pragma once

#include <deque>
#include <memory>
#include <vector>

#include "reading/WindowStack.h"

namespace quillmere {

/// What the window system showed lately, in memory only: a picture may be saved long after it was taken, by a tool in
/// which a person still draws on it. Every state of the last seconds, and of the last quarter of an hour those that
/// lasted long enough to be seen.
class WindowHistory {
 public:
  static constexpr double kAll = 10;             // seconds
  static constexpr double kSeen = 0.2;           // seconds
  static constexpr double kLongest = 15 * 60.0;  // seconds
  static constexpr size_t kMost = 256;

  /// What shows the same as the last one is not new.
  void add(WindowStack state);
  /// Oldest first; the last one still holds.
  std::vector<WindowStack> states(Date now);
  const WindowStack* last() const { return states_.empty() ? nullptr : &states_.back(); }

 private:
  void forget(Date now);

  std::deque<WindowStack> states_;
};

}  // namespace quillmere
