#include "detection/WindowRanking.h"

#include <algorithm>
#include <cmath>

#include "detection/TitleBarButtons.h"
#include "pixels/PixelRects.h"

namespace quillmere::WindowDetector {
namespace {

/// The tests of title bars and rectangles are the costly part.
constexpr size_t kMostTested = 24;
/// No desktop shows as many; each is compared with every other.
constexpr size_t kMostWindows = 512;
constexpr double kRectangleTolerance = 0.02;
constexpr double kButtonBonus = 0.25;
constexpr double kSameWindow = 0.45;

bool isAlike(const QRectF& a, const QRectF& b, double tolerance) {
  return std::abs(a.left() - b.left()) <= tolerance && std::abs(a.top() - b.top()) <= tolerance &&
         std::abs(a.right() - b.right()) <= tolerance && std::abs(a.bottom() - b.bottom()) <= tolerance;
}

bool isSameWindow(const QRectF& a, const QRectF& b) {
  const double common = rectArea(commonRect(a, b));
  const double together = rectArea(a) + rectArea(b) - common;
  return together > 0 && common / together > kSameWindow;
}

}  // namespace

std::vector<Ranked> ranked(const GrayImage& gray, const std::vector<Candidate>& candidates,
                           const RectangleFinder& rectangles) {
  std::vector<Ranked> result;
  result.reserve(candidates.size());
  for (const Candidate& candidate : candidates) result.push_back({&candidate, candidate.strength()});
  const auto byScore = [](const Ranked& a, const Ranked& b) { return a.score > b.score; };
  std::stable_sort(result.begin(), result.end(), byScore);

  const auto tested = result.begin() + static_cast<ptrdiff_t>(std::min(result.size(), kMostTested));
  for (auto one = result.begin(); one != tested; ++one) {
    one->hasTitleBarButtons = hasTitleBarButtons(gray, one->frame());
    if (one->hasTitleBarButtons) one->score += kButtonBonus;
  }
  const bool hasTie = std::any_of(result.begin(), tested, [&](const Ranked& one) {
    return std::count_if(result.begin(), result.end(), [&](const Ranked& other) { return other.score == one.score; }) >
           1;
  });
  if (hasTie) {
    const std::vector<QRectF> seen = rectangles(gray);
    const double tolerance = kRectangleTolerance * static_cast<double>(std::max(gray.width(), gray.height()));
    for (auto one = result.begin(); one != tested; ++one) {
      one->matchesRectangle = std::any_of(seen.begin(), seen.end(), [&](const QRectF& rectangle) {
        return isAlike(rectangle, one->frame(), tolerance);
      });
    }
  }
  std::stable_sort(result.begin(), result.end(), [&](const Ranked& a, const Ranked& b) {
    if (a.score != b.score) return a.score > b.score;
    return a.matchesRectangle && !b.matchesRectangle;
  });
  return result;
}

std::vector<Ranked> merged(const std::vector<Ranked>& all) {
  std::vector<Ranked> kept;
  for (const Ranked& one : all) {
    const auto same = std::find_if(kept.begin(), kept.end(),
                                   [&](const Ranked& other) { return isSameWindow(one.frame(), other.frame()); });
    if (same == kept.end()) {
      if (kept.size() < kMostWindows) kept.push_back(one);
    } else if (rectContains(one.frame(), same->frame()) && one.isFullyDrawn()) {
      *same = one;
    }
  }
  return kept;
}

}  // namespace quillmere::WindowDetector
