#include "detection/WindowDetector.h"

#include <algorithm>
#include <array>

#include "detection/EdgeMaps.h"
#include "detection/OutlineScore.h"
#include "detection/VisionRectangles.h"
#include "detection/WindowRanking.h"
#include "pixels/PixelRects.h"

namespace quillmere::WindowDetector {
namespace {

/// The second only where the first gives nothing at all.
constexpr std::array kThresholds{16, 8};
constexpr double kCoveringLead = 0.25;
constexpr double kEnclosingMargin = 4;

bool isCoveredBy(const QRectF& a, const QRectF& b, const LineProfiles& profiles, int64_t width, int64_t height) {
  if (commonRect(a, b).isEmpty() || rectContains(a, b) || rectContains(b, a)) return false;
  const auto ofA = outlineScore(a, b, profiles, width, height);
  const auto ofB = outlineScore(b, a, profiles, width, height);
  // The one whose outline goes on across the other lies on top.
  return ofA && ofB && *ofB - *ofA >= kCoveringLead;
}

std::vector<Detection> described(const std::vector<Ranked>& kept, const LineProfiles& profiles, const GrayImage& gray) {
  std::vector<Detection> result;
  for (const Ranked& one : kept) {
    const QRectF& frame = one.frame();
    Detection detection{frame, one.hasTitleBarButtons, one.isFullyDrawn()};
    for (const Ranked& other : kept) {
      if (other.frame() == frame) continue;
      const QRectF grown =
          other.frame().adjusted(-kEnclosingMargin, -kEnclosingMargin, kEnclosingMargin, kEnclosingMargin);
      detection.isEnclosed = detection.isEnclosed || rectContains(grown, frame);
      detection.isCovered =
          detection.isCovered || isCoveredBy(frame, other.frame(), profiles, gray.width(), gray.height());
    }
    result.push_back(detection);
  }
  return result;
}

}  // namespace

Findings find(const GrayImage& gray, const RectangleFinder& rectangles) {
  for (const int threshold : kThresholds) {
    const auto search = candidates(gray.width(), gray.height(), edgeMaps(gray, threshold));
    if (!search || search->candidates.empty()) continue;
    Findings findings{{}, threshold, search->candidates.size()};
    std::vector<Ranked> kept = merged(ranked(gray, search->candidates, rectangles));
    std::stable_sort(kept.begin(), kept.end(),
                     [](const Ranked& a, const Ranked& b) { return rectArea(a.frame()) > rectArea(b.frame()); });
    findings.windows = described(kept, search->profiles, gray);
    return findings;
  }
  return {};
}

std::vector<Detection> detect(const QImage& image) {
  const auto gray = grayImage(image);
  return gray ? find(*gray, &visionRectangles).windows : std::vector<Detection>();
}

}  // namespace quillmere::WindowDetector
