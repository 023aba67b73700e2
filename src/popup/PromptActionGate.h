#pragma once

#include "foundation/Executor.h"

namespace quillmere {

/// Drops what is clicked too soon after the content under the pointer changed: a person who double-clicks at one
/// screenshot must not decide the next.
struct PromptActionGate {
  static constexpr Duration kDelay = std::chrono::milliseconds(300);

  int generation = 0;
  Instant changedAt{};

  /// The same generation leaves the time alone.
  void observe(int newGeneration, Instant now) {
    if (newGeneration == generation) return;
    generation = newGeneration;
    changedAt = now;
  }
  bool allows(Instant now) const { return now - changedAt >= kDelay; }
};

}  // namespace quillmere
