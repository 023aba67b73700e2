#include "detection/TitleBarButtons.h"

#include <algorithm>
#include <array>
#include <bit>
#include <vector>

#include "pixels/PixelBits.h"

namespace quillmere::WindowDetector {
namespace {

constexpr int64_t kWidestRegion = 320;
constexpr int64_t kHighestRegion = 170;
constexpr int64_t kLeastWidth = 122;
constexpr int64_t kLeastHeight = 93;
constexpr int kLevelDifference = 13;
constexpr int kFewestPixels = 40;
constexpr int kMostPixels = 6000;
constexpr double kNarrowestBlob = 0.7;
constexpr double kWidestBlob = 1.45;
// Filled like a disc: a solid square is fuller.
constexpr double kEmptiestBlob = 0.55;
constexpr double kFullestBlob = 0.96;
constexpr size_t kMostBlobs = 41;
constexpr double kAlike = 1.3;
constexpr double kLargestOffset = 0.4;
constexpr double kLeastGap = 0.9;

struct Region {
  int64_t x;
  int64_t y;
  int64_t width;
  int64_t height;
};

/// A connected component; its bounding box with both ends included.
struct Blob {
  int64_t minX;
  int64_t minY;
  int64_t maxX;
  int64_t maxY;
  int64_t count;

  int64_t width() const { return maxX - minX + 1; }
  int64_t height() const { return maxY - minY + 1; }
  double centerX() const { return static_cast<double>(minX + maxX) * 0.5; }
  double centerY() const { return static_cast<double>(minY + maxY) * 0.5; }

  void add(const Blob& other) {
    minX = std::min(minX, other.minX);
    minY = std::min(minY, other.minY);
    maxX = std::max(maxX, other.maxX);
    maxY = std::max(maxY, other.maxY);
    count += other.count;
  }
};

bool looksLikeButton(const Blob& blob) {
  if (blob.count < kFewestPixels || blob.count > kMostPixels) return false;
  const auto width = static_cast<double>(blob.width());
  const auto height = static_cast<double>(blob.height());
  const double aspect = width / height;
  const double fill = static_cast<double>(blob.count) / (width * height);
  return aspect >= kNarrowestBlob && aspect <= kWidestBlob && fill >= kEmptiestBlob && fill <= kFullestBlob;
}

/// The most frequent level; of equals the darkest.
uint8_t backgroundLevel(const GrayImage& gray, const Region& region) {
  // Two tables by turns: neighbours are often equal, and one counter would wait for itself.
  std::array<std::array<int, 256>, 2> counts{};
  for (int64_t y = region.y; y < region.y + region.height; ++y) {
    const uint8_t* row = gray.row(y) + region.x;
    for (int64_t x = 0; x < region.width; ++x) ++counts[x & 1][row[x]];
  }
  for (size_t level = 0; level < 256; ++level) counts[0][level] += counts[1][level];
  return static_cast<uint8_t>(std::max_element(counts[0].begin(), counts[0].end()) - counts[0].begin());
}

/// Finds the components of pixels that stand out from the background. A row is cut into runs; a run joins those of the
/// row above that it touches. The first run of a component stands for it, so that components come in the order in which
/// a scan row by row meets them.
class Components {
 public:
  Components(const GrayImage& gray, const Region& region, uint8_t background) : region_(region) {
    background_.fill(background);
    size_t above = 0;
    for (int64_t y = 0; y < region.height; ++y) {
      const size_t first = runs_.size();
      addRuns(gray.row(region.y + y) + region.x, y);
      joinRows(above, first);
      above = first;
    }
  }

  /// In the order of their first pixels, the first 41 of those that look like buttons.
  std::vector<Blob> buttons() {
    for (size_t run = 0; run < runs_.size(); ++run) {
      const size_t first = firstOf(run);
      if (first != run) runs_[first].add(runs_[run]);
    }
    std::vector<Blob> result;
    for (size_t run = 0; run < runs_.size() && result.size() < kMostBlobs; ++run) {
      if (parents_[run] == run && looksLikeButton(runs_[run])) result.push_back(runs_[run]);
    }
    return result;
  }

 private:
  void addRuns(const uint8_t* row, int64_t y) {
    int64_t begin = -1;
    for (int64_t x = 0; x < region_.width; x += 64) {
      uint64_t bits = differenceBits(row + x, background_.data(), kLevelDifference - 1);
      if (region_.width - x < 64) bits &= (uint64_t{1} << (region_.width - x)) - 1;
      // From each change of the bits to the next.
      int64_t at = 0;
      while (at < 64) {
        const uint64_t rest = (begin < 0 ? bits : ~bits) >> at;
        if (rest == 0) break;
        at += std::countr_zero(rest);
        if (begin < 0) {
          begin = x + at;
        } else {
          addRun(begin, x + at - 1, y);
          begin = -1;
        }
      }
    }
    if (begin >= 0) addRun(begin, region_.width - 1, y);
  }
  void addRun(int64_t begin, int64_t end, int64_t y) {
    parents_.push_back(runs_.size());
    runs_.push_back({begin, y, end, y, end - begin + 1});
  }

  void joinRows(size_t above, size_t first) {
    size_t upper = above;
    for (size_t lower = first; lower < runs_.size(); ++lower) {
      while (upper < first && runs_[upper].maxX < runs_[lower].minX) ++upper;
      for (size_t i = upper; i < first && runs_[i].minX <= runs_[lower].maxX; ++i) join(i, lower);
    }
  }
  void join(size_t a, size_t b) {
    a = firstOf(a);
    b = firstOf(b);
    parents_[std::max(a, b)] = std::min(a, b);
  }
  size_t firstOf(size_t run) {
    while (parents_[run] != run) {
      parents_[run] = parents_[parents_[run]];
      run = parents_[run];
    }
    return run;
  }

  Region region_;
  std::array<uint8_t, 64> background_{};
  std::vector<Blob> runs_;
  std::vector<size_t> parents_;
};

/// Of about one size, at one height, and evenly apart.
bool areButtons(const Blob& a, const Blob& b, const Blob& c) {
  const auto [narrowest, widest] = std::minmax({a.width(), b.width(), c.width()});
  const auto largest = static_cast<double>(widest);
  if (!(largest / static_cast<double>(narrowest) < kAlike)) return false;
  const auto [highest, lowest] = std::minmax({a.centerY(), b.centerY(), c.centerY()});
  if (!(lowest - highest < kLargestOffset * largest)) return false;
  const auto [smaller, larger] = std::minmax({b.centerX() - a.centerX(), c.centerX() - b.centerX()});
  return kLeastGap * largest < smaller && larger / smaller < kAlike;
}

}  // namespace

bool hasTitleBarButtons(const GrayImage& gray, const QRectF& frame) {
  const auto x = static_cast<int64_t>(frame.left());
  const auto y = static_cast<int64_t>(frame.top());
  const auto w = static_cast<int64_t>(frame.width());
  const auto h = static_cast<int64_t>(frame.height());
  const Region region{x, y, std::min(w / 2, kWidestRegion), std::min(h / 3, kHighestRegion)};
  if (w < kLeastWidth || h < kLeastHeight || x < 0 || y < 0) return false;
  if (x + region.width > gray.width() || y + region.height > gray.height()) return false;

  std::vector<Blob> blobs = Components(gray, region, backgroundLevel(gray, region)).buttons();
  std::stable_sort(blobs.begin(), blobs.end(), [](const Blob& a, const Blob& b) { return a.minX < b.minX; });
  for (size_t i = 0; i + 2 < blobs.size(); ++i) {
    for (size_t j = i + 1; j + 1 < blobs.size(); ++j) {
      for (size_t k = j + 1; k < blobs.size(); ++k) {
        if (areButtons(blobs[i], blobs[j], blobs[k])) return true;
      }
    }
  }
  return false;
}

}  // namespace quillmere::WindowDetector
