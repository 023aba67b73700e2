#include "detection/OutlineScore.h"

#include <algorithm>

namespace quillmere::WindowDetector {
namespace {

/// So far inside, the other window's own outline and its corners are left out.
constexpr double kInset = 8;
constexpr int64_t kLongRun = 16;
constexpr int64_t kLeastLength = 24;

/// Points of a side from `from` up to `to` that lie in runs of edges of at least 16.
int64_t solidPoints(const LineProfile& profile, int64_t from, int64_t to) {
  int64_t solid = 0;
  int64_t run = 0;
  for (int64_t at = from; at <= to; ++at) {
    if (at < to && profile.isHit(at)) {
      ++run;
      continue;
    }
    if (run >= kLongRun) solid += run;
    run = 0;
  }
  return solid;
}

struct Span {
  double begin;
  double end;
};

/// Adds up the two parallel sides of a frame.
class Outline {
 public:
  void addSide(double position, Span along, Span innerAcross, Span innerAlong, int64_t imageSize,
               const std::unordered_map<int, LineProfile>& profiles) {
    const auto at = static_cast<int>(position);
    if (!(innerAcross.begin < at && at < innerAcross.end) || at < 1 || at >= imageSize - 1) return;
    const auto from = static_cast<int64_t>(std::max(along.begin, innerAlong.begin));
    const auto to = static_cast<int64_t>(std::min(along.end, innerAlong.end));
    const auto profile = profiles.find(at);
    if (from >= to || profile == profiles.end()) return;
    solid_ += solidPoints(profile->second, from, to);
    total_ += to - from;
  }
  std::optional<double> score() const {
    if (total_ < kLeastLength) return std::nullopt;
    return static_cast<double>(solid_) / static_cast<double>(total_);
  }

 private:
  int64_t solid_ = 0;
  int64_t total_ = 0;
};

}  // namespace

std::optional<double> outlineScore(const QRectF& frame, const QRectF& inside, const LineProfiles& profiles,
                                   int64_t width, int64_t height) {
  const QRectF inner = inside.adjusted(kInset, kInset, -kInset, -kInset);
  if (inner.width() <= 0 || inner.height() <= 0) return std::nullopt;
  const Span innerX{inner.left(), inner.right()};
  const Span innerY{inner.top(), inner.bottom()};
  const Span x{frame.left(), frame.right()};
  const Span y{frame.top(), frame.bottom()};
  Outline outline;
  for (const double side : {x.begin, x.end}) outline.addSide(side, y, innerX, innerY, width, profiles.columns);
  for (const double side : {y.begin, y.end}) outline.addSide(side, x, innerY, innerX, height, profiles.rows);
  return outline.score();
}

}  // namespace quillmere::WindowDetector
