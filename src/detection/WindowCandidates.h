#pragma once

#include <QtCore/QRectF>
#include <array>
#include <optional>
#include <vector>

#include "detection/LineProfiles.h"

namespace quillmere::WindowDetector {

/// A rectangle that is well drawn: perhaps a window.
struct Candidate {
  /// Of left, right, top and bottom: the fraction of the side that is backed by edges, 0 to 1.
  std::array<double, 4> support{};
  QRectF frame;  ///< whole-numbered

  /// The mean of the support.
  double strength() const { return (support[0] + support[1] + support[2] + support[3]) / 4; }
  double weakestSide() const;
};

/// A side of which that much is backed counts as drawn.
constexpr double kDrawnSide = 0.75;

/// So many are looked at, the strongest; of equals the first. A picture of a desktop gives some hundreds, a sheet
/// of twenty columns and rows some ten thousands, one of lines alone more than a million and a half.
constexpr size_t kMostCandidates = 131'072;

/// What one threshold gave.
struct CandidateSearch {
  std::vector<Candidate> candidates;  ///< by x1, x2, y1, y2 of their frames
  LineProfiles profiles;              ///< of every line that a candidate has a side on
};

/// Every rectangle that four kept lines form, big enough, of an aspect between 0.2 and 6, with three sides drawn and
/// none below 0.35; the strongest `kMostCandidates` at most. Nullopt where fewer than two lines run either way.
std::optional<CandidateSearch> candidates(int64_t width, int64_t height, const EdgeMaps& maps);

}  // namespace quillmere::WindowDetector
