#pragma once

#include <optional>

#include "foundation/FileURL.h"

namespace quillmere {

/// A start that waits. It keeps waiting when this is gone.
class WaitingStart {
 public:
  explicit WaitingStart(int waiter) : waiter_(waiter) {}
  /// This program goes on, and the other one isn't started for it. Once.
  void callOff() const;

 private:
  int waiter_;
};

/// Has the program started as soon as this one has ended, however it ends: two at once would take each other for the
/// one that runs already. None where no process can be made.
std::optional<WaitingStart> startWhenThisEnds(const FileURL& program);

}  // namespace quillmere
