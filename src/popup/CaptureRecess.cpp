#include "popup/CaptureRecess.h"

#include <algorithm>

namespace quillmere {

void CaptureRecess::foretold(CaptureSigns::Sign sign, Instant now) {
  if (expectedUntil_ <= now) expected_ = 0;
  const bool isAnother = sign == CaptureSigns::Sign::key;
  expected_ = std::max(1, expected_ + (isAnother ? 1 : 0));
  expectedUntil_ = now + kLongestWait;
}

void CaptureRecess::arrived(Instant now, Duration pause) {
  expected_ = std::max(0, expected_ - 1);
  pauseUntil_ = now + pause;
}

std::optional<Instant> CaptureRecess::end(Instant now) const {
  const Instant end = std::max(expected_ > 0 ? expectedUntil_ : now, pauseUntil_);
  return end > now ? std::optional(end) : std::nullopt;
}

}  // namespace quillmere
