#pragma once

#include "detection/WindowCandidates.h"
#include "detection/WindowDetector.h"

namespace quillmere::WindowDetector {

/// A candidate with what ranks it. A picture of many lines has millions, which are big: they stay in their place.
struct Ranked {
  const Candidate* candidate;
  double score;
  bool hasTitleBarButtons = false;
  bool matchesRectangle = false;

  const QRectF& frame() const { return candidate->frame; }
  bool isFullyDrawn() const { return candidate->weakestSide() >= kDrawnSide; }
};

/// By score, highest first; of equals first what the other detector sees too. It is asked only when it can matter.
std::vector<Ranked> ranked(const GrayImage& gray, const std::vector<Candidate>& candidates,
                           const RectangleFinder& rectangles);

/// One of each group that overlaps much: the best, unless a fully drawn one holds all of it, such as the window around
/// its content. The best 512 at most.
std::vector<Ranked> merged(const std::vector<Ranked>& all);

}  // namespace quillmere::WindowDetector
