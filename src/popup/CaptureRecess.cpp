#include "popup/CaptureRecess.h"

#include <algorithm>

namespace quillmere {
namespace {

/// What comes so soon after another sign, or after a file, tells of the same screenshot.
constexpr Duration kSameCapture = std::chrono::seconds(1);
constexpr int kMostInVain = 2;

}  // namespace

void CaptureRecess::foretold(CaptureSigns::Sign sign, Instant now) {
  const bool isAnother = sign == CaptureSigns::Sign::key;
  if (isAnother) requestsInVain_ = 0;
  if (!isAnother && !isHeeded(now)) return;
  if (expectedUntil_ <= now) expected_ = 0;
  expected_ = std::max(1, expected_ + (isAnother ? 1 : 0));
  expectedUntil_ = now + kLongestWait;
}

bool CaptureRecess::isHeeded(Instant now) {
  if (lastArrival_ && now - *lastArrival_ < kSameCapture) return false;
  const bool isSame = lastRequest_ && now - *lastRequest_ < kSameCapture;
  lastRequest_ = now;
  if (!isSame) ++requestsInVain_;
  return requestsInVain_ <= kMostInVain;
}

void CaptureRecess::chosen(Instant now) {
  expected_ = std::max(1, expected_);
  expectedUntil_ = now + kLongestWait;
}

void CaptureRecess::arrived(Instant now, Duration pause) {
  expected_ = std::max(0, expected_ - 1);
  pauseUntil_ = now + pause;
  requestsInVain_ = 0;
  lastArrival_ = now;
}

std::optional<Instant> CaptureRecess::end(Instant now) const {
  const Instant end = std::max(expected_ > 0 ? expectedUntil_ : now, pauseUntil_);
  return end > now ? std::optional(end) : std::nullopt;
}

}  // namespace quillmere
