#pragma once

#include "foundation/Executor.h"

namespace quillmere {

/// How long a loop over many things may go on before everybody else on the main thread has a turn.
class TurnLimit {
 public:
  explicit TurnLimit(const Executor& executor) : executor_(executor) { begin(); }
  /// A new turn.
  void begin() { end_ = executor_.instant() + kLongest; }
  bool isReached() const { return executor_.instant() >= end_; }

 private:
  static constexpr Duration kLongest = std::chrono::milliseconds(4);
  const Executor& executor_;
  Instant end_;
};

}  // namespace quillmere
