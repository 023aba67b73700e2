#pragma once

#include <optional>
#include <vector>

#include "detection/OutlineEvidence.h"

namespace quillmere::CapturedWindows {

/// Where on the screen a picture of a part of it may have been taken.
struct RegionPlace {
  QPoint origin;
  StackEvidence evidence;
  int score = 0;  ///< the more of the state is seen there, the higher
  int overruns = 0;
  bool isSure = false;  ///< no other place fits nearly as well
};

/// Looks for the place of a picture among the windows of states. The edges outlive it.
class RegionSearch {
 public:
  explicit RegionSearch(const EdgeBlocks& edges);

  /// The place that fits the windows of that state best: each line of the picture votes for the places where it would
  /// be a window's side. None where too little fits. Where all that is seen of windows runs in one direction, or is a
  /// corner alone, none is sure.
  std::optional<RegionPlace> place(const WindowStack& stack) const;

 private:
  /// Blocks of lines up to each block, by position.
  using Sums = std::vector<std::vector<uint16_t>>;
  std::vector<QPoint> candidates(const WindowStack& stack) const;

  const EdgeBlocks& edges_;
  Sums vertical_;
  Sums horizontal_;
};

}  // namespace quillmere::CapturedWindows
