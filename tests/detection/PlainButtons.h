#pragma once

#include "support/PlainEdges.h"

namespace quillmere::plain {

struct Blob {
  int64_t minX, minY, maxX, maxY;
  int64_t count = 0;
};

/// The components of pixels that stand out, as a flood fill meets them, of the size and shape of a button.
inline std::vector<Blob> blobs(const Gray& gray, int64_t left, int64_t top, int64_t width, int64_t height) {
  std::array<int64_t, 256> histogram{};
  for (int64_t y = top; y < top + height; ++y) {
    for (int64_t x = left; x < left + width; ++x) ++histogram[gray.at(x, y)];
  }
  int mode = 0;
  for (int level = 1; level < 256; ++level) {
    if (histogram[level] > histogram[mode]) mode = level;
  }

  std::vector<bool> visited(static_cast<size_t>(width * height));
  const auto joins = [&](int64_t x, int64_t y) {
    if (x < left || y < top || x >= left + width || y >= top + height) return false;
    return !visited[(y - top) * width + x - left] && std::abs(gray.at(x, y) - mode) >= 13;
  };
  std::vector<std::pair<int64_t, int64_t>> stack;
  const auto push = [&](int64_t x, int64_t y) {
    visited[(y - top) * width + x - left] = true;
    stack.emplace_back(x, y);
  };
  std::vector<Blob> accepted;
  for (int64_t y = top; y < top + height; ++y) {
    for (int64_t x = left; x < left + width; ++x) {
      if (!joins(x, y)) continue;
      Blob blob{x, y, x, y};
      push(x, y);
      while (!stack.empty()) {
        const auto [atX, atY] = stack.back();
        stack.pop_back();
        blob = {std::min(blob.minX, atX), std::min(blob.minY, atY), std::max(blob.maxX, atX), std::max(blob.maxY, atY),
                blob.count + 1};
        if (joins(atX + 1, atY)) push(atX + 1, atY);
        if (joins(atX - 1, atY)) push(atX - 1, atY);
        if (joins(atX, atY + 1)) push(atX, atY + 1);
        if (joins(atX, atY - 1)) push(atX, atY - 1);
      }
      if (blob.count < 40 || blob.count > 6000) continue;
      const auto bw = static_cast<double>(blob.maxX - blob.minX + 1);
      const auto bh = static_cast<double>(blob.maxY - blob.minY + 1);
      const double fill = static_cast<double>(blob.count) / (bw * bh);
      if (bw / bh < 0.7 || bw / bh > 1.45 || fill < 0.55 || fill > 0.96) continue;
      accepted.push_back(blob);
      if (accepted.size() == 41) return accepted;
    }
  }
  return accepted;
}

inline bool isTriple(const Blob& i, const Blob& j, const Blob& k) {
  std::array<double, 3> widths{};
  std::array<double, 3> centersX{};
  std::array<double, 3> centersY{};
  size_t at = 0;
  for (const Blob* blob : {&i, &j, &k}) {
    widths[at] = static_cast<double>(blob->maxX - blob->minX + 1);
    centersX[at] = static_cast<double>(blob->minX + blob->maxX) * 0.5;
    centersY[at++] = static_cast<double>(blob->minY + blob->maxY) * 0.5;
  }
  const double largest = *std::max_element(widths.begin(), widths.end());
  const double smallest = *std::min_element(widths.begin(), widths.end());
  if (largest / smallest >= 1.3) return false;
  const double offset =
      *std::max_element(centersY.begin(), centersY.end()) - *std::min_element(centersY.begin(), centersY.end());
  if (offset >= 0.4 * largest) return false;
  const double gap1 = centersX[1] - centersX[0];
  const double gap2 = centersX[2] - centersX[1];
  if (gap1 <= 0.9 * largest || gap2 <= 0.9 * largest) return false;
  return std::max(gap1, gap2) / std::min(gap1, gap2) < 1.3;
}

inline bool hasTitleBarButtons(const Gray& gray, const QRectF& frame) {
  const auto x = static_cast<int64_t>(frame.x());
  const auto y = static_cast<int64_t>(frame.y());
  const auto w = static_cast<int64_t>(frame.width());
  const auto h = static_cast<int64_t>(frame.height());
  const int64_t regionWidth = std::min<int64_t>(w / 2, 320);
  const int64_t regionHeight = h >= 513 ? 170 : std::min<int64_t>(h / 3, 170);
  if (w < 122 || h < 93 || x < 0 || y < 0) return false;
  if (x + regionWidth > gray.width || y + regionHeight > gray.height) return false;
  std::vector<Blob> found = blobs(gray, x, y, regionWidth, regionHeight);
  std::stable_sort(found.begin(), found.end(), [](const Blob& a, const Blob& b) { return a.minX < b.minX; });
  for (size_t i = 0; i < found.size(); ++i) {
    for (size_t j = i + 1; j < found.size(); ++j) {
      for (size_t k = j + 1; k < found.size(); ++k) {
        if (isTriple(found[i], found[j], found[k])) return true;
      }
    }
  }
  return false;
}

}  // namespace quillmere::plain
