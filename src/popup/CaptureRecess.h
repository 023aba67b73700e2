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

  /// Requests count only while screenshots follow them: some programs ask for pictures of the screen all the time, and
  /// a tool opens windows of its own once it has taken one.
  void foretold(CaptureSigns::Sign sign, Instant now);
  /// A part of the screen was chosen, which becomes a screenshot.
  void chosen(Instant now);
  /// `pause`: how long no other may come until the popup shows; zero for not at all.
  void arrived(Instant now, Duration pause);
  /// None when nothing keeps the popup away.
  std::optional<Instant> end(Instant now) const;

 private:
  bool isHeeded(Instant now);

  int expected_ = 0;  // screenshots that are still to come
  int requestsInVain_ = 0;
  std::optional<Instant> lastRequest_;
  std::optional<Instant> lastArrival_;
  Instant expectedUntil_{};
  Instant pauseUntil_{};
};

}  // namespace quillmere
