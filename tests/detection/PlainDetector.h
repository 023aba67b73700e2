#pragma once

#include <cmath>

#include "detection/PlainButtons.h"

namespace quillmere::plain {

struct Detection {
  QRectF frame;
  bool hasTitleBarButtons;
  bool isFullyDrawn;
  bool isCovered;
  bool isEnclosed;
};

inline bool contains(const QRectF& outer, const QRectF& inner) {
  return outer.left() <= inner.left() && outer.top() <= inner.top() && outer.right() >= inner.right() &&
         outer.bottom() >= inner.bottom();
}
inline bool isEqual(const QRectF& a, const QRectF& b) {
  return a.x() == b.x() && a.y() == b.y() && a.width() == b.width() && a.height() == b.height();
}
inline double area(const QRectF& a) {
  return a.width() * a.height();
}
/// 0 where they only touch or are apart.
inline double commonArea(const QRectF& a, const QRectF& b) {
  const double width = std::min(a.right(), b.right()) - std::max(a.left(), b.left());
  const double height = std::min(a.bottom(), b.bottom()) - std::max(a.top(), b.top());
  return width > 0 && height > 0 ? width * height : 0;
}

inline std::vector<Candidate> merge(const std::vector<Candidate>& ranked) {
  std::vector<Candidate> kept;
  for (const Candidate& one : ranked) {
    bool isNew = true;
    for (size_t i = 0; i < kept.size() && isNew; ++i) {
      const double common = commonArea(one.frame, kept[i].frame);
      const double together = area(one.frame) + area(kept[i].frame) - common;
      if (together <= 0 || common / together <= 0.45) continue;
      isNew = false;
      if (contains(one.frame, kept[i].frame) && one.weakest() >= 0.75) kept[i] = one;
    }
    if (isNew) kept.push_back(one);
  }
  return kept;
}

inline void sortByScore(std::vector<Candidate>& all) {
  const auto score = [](const Candidate& one) { return one.hasButtons ? one.strength() + 0.25 : one.strength(); };
  std::stable_sort(all.begin(), all.end(), [&](const Candidate& a, const Candidate& b) {
    if (score(a) == score(b)) return a.matchesRectangle > b.matchesRectangle;
    return score(a) > score(b);
  });
}

inline std::vector<Detection> detect(const Gray& gray, const std::vector<QRectF>& rectangles) {
  if (gray.width < 9 || gray.height < 9) return {};
  Edges edges = plain::edges(gray, 16);
  std::vector<Candidate> all = candidates(edges);
  if (all.empty()) {
    edges = plain::edges(gray, 8);
    all = candidates(edges);
  }
  std::stable_sort(all.begin(), all.end(),
                   [](const Candidate& a, const Candidate& b) { return a.strength() > b.strength(); });
  const double tolerance = 0.02 * static_cast<double>(std::max(gray.width, gray.height));
  for (size_t i = 0; i < all.size() && i < 24; ++i) {
    const QRectF& frame = all[i].frame;
    all[i].hasButtons = hasTitleBarButtons(gray, frame);
    for (const QRectF& seen : rectangles) {
      if (std::abs(seen.left() - frame.left()) <= tolerance && std::abs(seen.top() - frame.top()) <= tolerance &&
          std::abs(seen.right() - frame.right()) <= tolerance &&
          std::abs(seen.bottom() - frame.bottom()) <= tolerance) {
        all[i].matchesRectangle = true;
      }
    }
  }
  sortByScore(all);
  std::vector<Candidate> kept = merge(all);
  std::stable_sort(kept.begin(), kept.end(),
                   [](const Candidate& a, const Candidate& b) { return area(a.frame) > area(b.frame); });

  std::vector<Detection> result;
  for (const Candidate& a : kept) {
    Detection detection{a.frame, a.hasButtons, a.weakest() >= 0.75, false, false};
    for (const Candidate& b : kept) {
      if (isEqual(a.frame, b.frame)) continue;
      if (contains(b.frame.adjusted(-4, -4, 4, 4), a.frame)) detection.isEnclosed = true;
      if (commonArea(a.frame, b.frame) == 0 || contains(a.frame, b.frame) || contains(b.frame, a.frame)) continue;
      const auto scoreA = outlineScore(a.frame, b.frame, edges);
      const auto scoreB = outlineScore(b.frame, a.frame, edges);
      if (scoreA && scoreB && *scoreB - *scoreA >= 0.25) detection.isCovered = true;
    }
    result.push_back(detection);
  }
  return result;
}

}  // namespace quillmere::plain
