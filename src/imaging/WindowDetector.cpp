#include "imaging/WindowDetector.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "imaging/EdgeMaps.h"
#include "imaging/OutlineScore.h"
#include "imaging/PixelRects.h"
#include "imaging/TitleBarButtons.h"
#include "imaging/VisionRectangles.h"
#include "imaging/WindowCandidates.h"

namespace quillmere::WindowDetector {
namespace {

/// The second only where the first gives nothing at all.
constexpr std::array kThresholds{16, 8};
/// The tests of title bars and rectangles are the costly part.
constexpr size_t kMostTested = 24;
constexpr double kRectangleTolerance = 0.02;
constexpr double kButtonBonus = 0.25;
constexpr double kSameWindow = 0.45;
constexpr double kCoveringLead = 0.25;
constexpr double kEnclosingMargin = 4;

/// The candidates of one threshold with what ranks them.
struct Ranked {
  Candidate candidate;
  double score = 0;
};

bool isAlike(const QRectF& a, const QRectF& b, double tolerance) {
  return std::abs(a.left() - b.left()) <= tolerance && std::abs(a.top() - b.top()) <= tolerance &&
         std::abs(a.right() - b.right()) <= tolerance && std::abs(a.bottom() - b.bottom()) <= tolerance;
}

/// By score, highest first; of equals first what the other detector sees too. It is asked only when it can matter.
std::vector<Ranked> rank(const GrayImage& gray, const std::vector<Candidate>& candidates,
                         const RectangleFinder& rectangles) {
  std::vector<Ranked> ranked;
  ranked.reserve(candidates.size());
  for (const Candidate& candidate : candidates) ranked.push_back({candidate, candidate.strength()});
  const auto byScore = [](const Ranked& a, const Ranked& b) { return a.score > b.score; };
  std::stable_sort(ranked.begin(), ranked.end(), byScore);

  const auto tested = ranked.begin() + static_cast<ptrdiff_t>(std::min(ranked.size(), kMostTested));
  for (auto one = ranked.begin(); one != tested; ++one) {
    one->candidate.hasTitleBarButtons = hasTitleBarButtons(gray, one->candidate.frame);
    if (one->candidate.hasTitleBarButtons) one->score += kButtonBonus;
  }
  const bool hasTie = std::any_of(ranked.begin(), tested, [&](const Ranked& one) {
    return std::count_if(ranked.begin(), ranked.end(), [&](const Ranked& other) { return other.score == one.score; }) >
           1;
  });
  if (hasTie) {
    const std::vector<QRectF> seen = rectangles(gray);
    const double tolerance = kRectangleTolerance * static_cast<double>(std::max(gray.width(), gray.height()));
    for (auto one = ranked.begin(); one != tested; ++one) {
      one->candidate.matchesVisionRectangle = std::any_of(seen.begin(), seen.end(), [&](const QRectF& rectangle) {
        return isAlike(rectangle, one->candidate.frame, tolerance);
      });
    }
  }
  std::stable_sort(ranked.begin(), ranked.end(), [&](const Ranked& a, const Ranked& b) {
    if (a.score != b.score) return a.score > b.score;
    return a.candidate.matchesVisionRectangle && !b.candidate.matchesVisionRectangle;
  });
  return ranked;
}

bool isSameWindow(const QRectF& a, const QRectF& b) {
  const double common = rectArea(commonRect(a, b));
  const double together = rectArea(a) + rectArea(b) - common;
  return together > 0 && common / together > kSameWindow;
}

/// One of each group that overlaps much: the best, unless a fully drawn one holds all of it, such as the window around
/// its content.
std::vector<Candidate> merged(const std::vector<Ranked>& ranked) {
  std::vector<Candidate> kept;
  for (const Ranked& one : ranked) {
    const Candidate& candidate = one.candidate;
    const auto same = std::find_if(kept.begin(), kept.end(),
                                   [&](const Candidate& other) { return isSameWindow(candidate.frame, other.frame); });
    if (same == kept.end()) {
      kept.push_back(candidate);
    } else if (rectContains(candidate.frame, same->frame) && candidate.weakestSide() >= kDrawnSide) {
      *same = candidate;
    }
  }
  return kept;
}

bool isCoveredBy(const QRectF& a, const QRectF& b, const LineProfiles& profiles, int64_t width, int64_t height) {
  if (commonRect(a, b).isEmpty() || rectContains(a, b) || rectContains(b, a)) return false;
  const auto ofA = outlineScore(a, b, profiles, width, height);
  const auto ofB = outlineScore(b, a, profiles, width, height);
  // The one whose outline goes on across the other lies on top.
  return ofA && ofB && *ofB - *ofA >= kCoveringLead;
}

std::vector<Detection> described(const std::vector<Candidate>& kept, const LineProfiles& profiles,
                                 const GrayImage& gray) {
  std::vector<Detection> result;
  for (const Candidate& candidate : kept) {
    const QRectF& frame = candidate.frame;
    Detection detection{frame, candidate.hasTitleBarButtons, candidate.weakestSide() >= kDrawnSide};
    for (const Candidate& other : kept) {
      if (other.frame == frame) continue;
      const QRectF grown =
          other.frame.adjusted(-kEnclosingMargin, -kEnclosingMargin, kEnclosingMargin, kEnclosingMargin);
      detection.isEnclosed = detection.isEnclosed || rectContains(grown, frame);
      detection.isCovered =
          detection.isCovered || isCoveredBy(frame, other.frame, profiles, gray.width(), gray.height());
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
    std::vector<Candidate> kept = merged(rank(gray, search->candidates, rectangles));
    std::stable_sort(kept.begin(), kept.end(),
                     [](const Candidate& a, const Candidate& b) { return rectArea(a.frame) > rectArea(b.frame); });
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
