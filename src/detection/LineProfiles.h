#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "detection/EdgeMaps.h"

namespace quillmere::WindowDetector {

/// The positions of the strongest lines, ascending: local maxima of `counts`, which are marks across each position,
/// that reach 4 in 100 of `lengthAcross`; strongest first, none less than 6 from a stronger one, 56 at most. `extent`
/// is the length of `counts`.
std::vector<int> linePeaks(const std::vector<int>& counts, int64_t lengthAcross, int64_t extent);

/// Sums of hits along one line: the number between two points costs two look-ups.
class LineProfile {
 public:
  explicit LineProfile(int64_t length) { sums_.reserve(static_cast<size_t>(length) + 1), sums_.push_back(0); }
  void add(bool isHit) { sums_.push_back(sums_.back() + (isHit ? 1 : 0)); }

  int hits(int64_t from, int64_t to) const { return sums_[to] - sums_[from]; }
  bool isHit(int64_t at) const { return hits(at, at + 1) != 0; }

 private:
  std::vector<int> sums_;
};

/// Of all kept lines, by position. An edge within two pixels of a line counts, once for each point of the line.
struct LineProfiles {
  LineProfiles(const EdgeMaps& maps, const std::vector<int>& columnsKept, const std::vector<int>& rowsKept);

  std::unordered_map<int, LineProfile> columns;
  std::unordered_map<int, LineProfile> rows;
};

}  // namespace quillmere::WindowDetector
