#include "detection/LineProfiles.h"

#include <algorithm>
#include <cstdlib>

namespace quillmere::WindowDetector {
namespace {

constexpr double kLeastShare = 0.04;
constexpr int kMargin = 3;
constexpr int kLeastDistance = 6;
constexpr size_t kMostLines = 56;
constexpr int64_t kTolerance = 2;

LineProfile columnProfile(const EdgeMaps& maps, int64_t x) {
  const int64_t from = std::max<int64_t>(x - kTolerance, 1);
  const int64_t to = std::min<int64_t>(x + kTolerance, maps.width - 2);
  LineProfile profile(maps.height);
  for (int64_t y = 0; y < maps.height; ++y) profile.add(maps.verticalEdges.hasAny(from, to, y));
  return profile;
}

LineProfile rowProfile(const EdgeMaps& maps, int64_t y) {
  const int64_t from = std::max<int64_t>(y - kTolerance, 1);
  const int64_t to = std::min<int64_t>(y + kTolerance, maps.height - 2);
  LineProfile profile(maps.width);
  for (int64_t word = 0; word < maps.horizontalEdges.wordsPerRow(); ++word) {
    uint64_t bits = 0;
    for (int64_t row = from; row <= to; ++row) bits |= maps.horizontalEdges.row(row)[word];
    for (int64_t x = 64 * word; x < std::min<int64_t>(64 * word + 64, maps.width); ++x, bits >>= 1) {
      profile.add((bits & 1) != 0);
    }
  }
  return profile;
}

}  // namespace

std::vector<int> linePeaks(const std::vector<int>& counts, int64_t lengthAcross, int64_t extent) {
  const int minimum = static_cast<int>(kLeastShare * static_cast<double>(lengthAcross));
  std::vector<int> peaks;
  for (int i = kMargin; i <= extent - kMargin - 1; ++i) {
    if (counts[i] >= minimum && counts[i] >= counts[i - 1] && counts[i] >= counts[i + 1]) peaks.push_back(i);
  }
  std::stable_sort(peaks.begin(), peaks.end(), [&](int a, int b) { return counts[a] > counts[b]; });
  std::vector<int> kept;
  for (const int peak : peaks) {
    const bool isNear =
        std::any_of(kept.begin(), kept.end(), [&](int other) { return std::abs(peak - other) < kLeastDistance; });
    if (isNear) continue;
    kept.push_back(peak);
    if (kept.size() == kMostLines) break;
  }
  std::sort(kept.begin(), kept.end());
  return kept;
}

LineProfiles::LineProfiles(const EdgeMaps& maps, const std::vector<int>& columnsKept,
                           const std::vector<int>& rowsKept) {
  for (const int x : columnsKept) columns.emplace(x, columnProfile(maps, x));
  for (const int y : rowsKept) rows.emplace(y, rowProfile(maps, y));
}

}  // namespace quillmere::WindowDetector
