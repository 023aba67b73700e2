#include "detection/WindowShadow.h"

#include <algorithm>
#include <cmath>

#include "detection/ShadowFallOff.h"
#include "pixels/PixelRects.h"

namespace quillmere::WindowShadow {
namespace {

using Source = WindowShadowMargin::Source;
using Kind = SideReading::Kind;

constexpr double kSmallestFrame = 32;
/// Shadows are thrown downward. Of left, top, right and bottom.
constexpr std::array kSideWeight{1.0, 0.69, 1.0, 1.27};
/// Of weight 1, in points.
constexpr double kTypicalExtent = 22.5;
/// Of weight 1 where the scale is not known, as a part of the picture's smaller side.
constexpr double kTypicalShare = 0.025;
constexpr double kLeastOfFirst = 0.5;
constexpr double kMostOfFirst = 2.0;
constexpr int kReadableSides = 2;

constexpr double kBudgetShare = 0.15;
constexpr int64_t kLeastBudget = 60;
constexpr int64_t kMostBudget = 320;
constexpr int64_t kLeastDepth = 14;
constexpr int kPasses = 3;
constexpr double kStrongResidual = 2.0;
constexpr double kWellInside = 0.4;
constexpr int64_t kEdgeMargin = 4;

int64_t roomBeside(Side side, const GrayImage& gray, const QRectF& frame) {
  switch (side) {
    case left:
      return static_cast<int64_t>(frame.left());
    case top:
      return static_cast<int64_t>(frame.top());
    case right:
      return gray.width() - static_cast<int64_t>(frame.right());
    case bottom:
      return gray.height() - static_cast<int64_t>(frame.bottom());
  }
  return 0;
}

int64_t smallerSide(const GrayImage& gray) {
  return std::min(gray.width(), gray.height());
}

/// What the sides agree on, at weight 1.
struct Consensus {
  std::optional<double> extent;
  std::array<bool, 4> isKept{};
};

/// A clipped shadow is a lower bound only, and takes no part. What is far from the others is thrown out.
Consensus consensusOf(const std::array<SideReading, 4>& readings) {
  const auto normalized = [&](Side side) -> std::optional<double> {
    const SideReading& reading = readings[side];
    if (reading.kind != Kind::shadow || reading.isClipped) return std::nullopt;
    return static_cast<double>(reading.extent) / kSideWeight[side];
  };
  std::vector<double> all;
  for (const Side side : kSides) {
    if (const auto value = normalized(side)) all.push_back(*value);
  }
  const auto first = median(all);
  Consensus consensus;
  std::vector<double> kept;
  for (const Side side : kSides) {
    const auto value = normalized(side);
    if (!value || *value < kLeastOfFirst * *first || *value > kMostOfFirst * *first) continue;
    consensus.isKept[side] = true;
    kept.push_back(*value);
  }
  consensus.extent = median(kept);
  return consensus;
}

/// With a known scale a measurement only confirms that there is a shadow: its typical size is exact.
WindowShadowMargin marginOf(const std::array<SideReading, 4>& readings, const GrayImage& gray, const QRectF& frame,
                            std::optional<double> scale) {
  const Consensus consensus = consensusOf(readings);
  const auto readable =
      std::count_if(readings.begin(), readings.end(), [](const auto& one) { return one.kind != Kind::unreadable; });
  if (!consensus.extent && readable >= kReadableSides) return {};
  double base = 0;
  if (scale) {
    base = *scale * kTypicalExtent;
  } else if (consensus.extent) {
    base = *consensus.extent;
  } else {
    base = kTypicalShare * static_cast<double>(smallerSide(gray));
  }

  std::array<double, 4> margin{};
  for (const Side side : kSides) {
    const SideReading& reading = readings[side];
    margin[side] = std::round(base * kSideWeight[side]);
    if (reading.kind == Kind::clear && !consensus.extent) margin[side] = 0;
    if (reading.kind == Kind::shadow && consensus.isKept[side] && !scale) {
      margin[side] = std::max(margin[side], static_cast<double>(reading.extent));
    }
    margin[side] = std::min(margin[side], static_cast<double>(roomBeside(side, gray, frame)));
  }
  if (std::all_of(margin.begin(), margin.end(), [](double one) { return one <= 0; })) return {};
  return {margin[left], margin[top], margin[right], margin[bottom],
          consensus.extent ? Source::measured : Source::estimated};
}

}  // namespace

Measurement measure(const GrayImage& gray, const QRectF& frame, std::optional<double> scale) {
  const QRectF whole(0, 0, static_cast<double>(gray.width()), static_cast<double>(gray.height()));
  const QRectF clipped = commonRect(integralRect(frame), whole);
  Measurement result;
  if (clipped.width() < kSmallestFrame || clipped.height() < kSmallestFrame) return result;
  for (const Side side : kSides) result.sides[side] = sideReading(side, gray, clipped);
  result.margin = marginOf(result.sides, gray, clipped, scale);
  return result;
}

std::vector<WindowShadowMargin> margins(const std::vector<QRectF>& frames, const QImage& image,
                                        std::optional<double> scale) {
  std::vector<WindowShadowMargin> result(frames.size());
  if (frames.empty()) return result;
  const auto gray = grayImage(image);
  if (!gray) return result;
  std::transform(frames.begin(), frames.end(), result.begin(),
                 [&](const QRectF& frame) { return measure(*gray, frame, scale).margin; });
  return result;
}

SideReading sideReading(Side side, const GrayImage& gray, const QRectF& frame) {
  const SideReading unreadable;
  const int64_t room = roomBeside(side, gray, frame);
  const auto share = static_cast<int64_t>(std::round(kBudgetShare * static_cast<double>(smallerSide(gray))));
  int64_t depth = std::min(std::clamp(share, kLeastBudget, kMostBudget), room);
  if (depth < kLeastDepth) return unreadable;
  auto profile = brightnessProfile(side, gray, frame, depth);
  if (!profile) return unreadable;

  int64_t reach = depth;
  for (int pass = 1;; ++pass) {
    const FallOff found = fallOff(*profile);
    const bool isLast = pass == kPasses;
    SideReading reading;
    switch (found.kind) {
      case FallOff::Kind::unreadable:
        return unreadable;
      case FallOff::Kind::clear:
        reading = {Kind::clear, 0, false};
        // A strong residual at the window without an end: the shadow may run beyond what was sampled.
        if (reach >= room || isLast || found.nearResidual <= kStrongResidual) return reading;
        break;
      case FallOff::Kind::extentFound:
        reading = {Kind::shadow, found.extent, false};
        if (kWellInside * static_cast<double>(depth) >= static_cast<double>(found.extent)) return reading;
        if (reach >= room) return {Kind::shadow, found.extent, found.extent >= depth - kEdgeMargin};
        if (isLast) return reading;
        break;
    }
    reach = 2 * depth;
    depth = std::min(reach, room);
    const auto farther = brightnessProfile(side, gray, frame, depth, static_cast<int64_t>(profile->size()));
    if (!farther) return reading;
    profile->insert(profile->end(), farther->begin(), farther->end());
  }
}

}  // namespace quillmere::WindowShadow
