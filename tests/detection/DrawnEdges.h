#pragma once

#include <algorithm>

#include "detection/EdgeMaps.h"
#include "support/DrawnPictures.h"

namespace quillmere::pictures {

inline WindowDetector::EdgeMaps edgeMaps(const plain::Edges& edges) {
  WindowDetector::EdgeMaps maps(edges.width, edges.height);
  for (int64_t y = 0; y < edges.height; ++y) {
    std::fill_n(maps.verticalEdges.row(y), maps.verticalEdges.wordsPerRow(), 0);
    std::fill_n(maps.horizontalEdges.row(y), maps.horizontalEdges.wordsPerRow(), 0);
    for (int64_t x = 0; x < edges.width; ++x) {
      const uint64_t bit = uint64_t{1} << (x % 64);
      if (edges.isVertical(x, y)) maps.verticalEdges.row(y)[x / 64] |= bit;
      if (edges.isHorizontal(x, y)) maps.horizontalEdges.row(y)[x / 64] |= bit;
    }
  }
  maps.columnCounts = edges.columnCounts;
  maps.rowCounts = edges.rowCounts;
  return maps;
}

/// Edges that are marked by hand, from one point up to another.
class Marks {
 public:
  Marks(int64_t width, int64_t height) : edges_(plain::edges(plain::Gray(width, height), 0)) {}

  void column(int64_t x, int64_t from, int64_t to) {
    for (int64_t y = from; y < to; ++y) {
      if (!edges_.isVertical(x, y)) ++edges_.columnCounts[x];
      edges_.vertical[y * edges_.width + x] = true;
    }
  }
  void row(int64_t y, int64_t from, int64_t to) {
    for (int64_t x = from; x < to; ++x) {
      if (!edges_.isHorizontal(x, y)) ++edges_.rowCounts[y];
      edges_.horizontal[y * edges_.width + x] = true;
    }
  }
  void rectangle(int64_t left, int64_t top, int64_t width, int64_t height) {
    for (const int64_t x : {left, left + width}) column(x, top, top + height);
    for (const int64_t y : {top, top + height}) row(y, left, left + width);
  }

  const plain::Edges& edges() const { return edges_; }
  WindowDetector::EdgeMaps maps() const { return edgeMaps(edges_); }

 private:
  plain::Edges edges_;
};

}  // namespace quillmere::pictures
