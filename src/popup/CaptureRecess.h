#pragma once

#include <optional>

#include "foundation/Executor.h"
#include "popup/CaptureSigns.h"

namespace quillmere {

/// How long the popup keeps away from someone who takes screenshots, so that it does not stand in the next one.
class CaptureRecess {
 public:
  /// How long a screenshot that was foretold is waited for.
  static constexpr Duration kLongestWait = std::chrono::seconds(3);

  void foretold(CaptureSigns::Sign sign, Instant now);
  /// `pause`: how long no other may come until the popup shows; zero for not at all.
  void arrived(Instant now, Duration pause);
  /// None when nothing keeps the popup away.
  std::optional<Instant> end(Instant now) const;

 private:
  int expected_ = 0;  // screenshots that are still to come
  Instant expectedUntil_{};
  Instant pauseUntil_{};
};

}  // namespace quillmere
