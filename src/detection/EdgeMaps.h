#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "pixels/GrayImage.h"

namespace quillmere::WindowDetector {

/// One bit a pixel, row-major; a row starts with a new word, its first pixel in the lowest bit.
class EdgeMask {
 public:
  /// Of undefined marks.
  EdgeMask(int64_t width, int64_t height);

  bool at(int64_t x, int64_t y) const { return ((row(y)[x / 64] >> (x % 64)) & 1) != 0; }
  /// Whether any of the columns `from` to `to`, at most 63 further, is marked in row `y`.
  bool hasAny(int64_t from, int64_t to, int64_t y) const;
  int64_t wordsPerRow() const { return wordsPerRow_; }
  uint64_t* row(int64_t y) { return words_.get() + y * wordsPerRow_; }
  const uint64_t* row(int64_t y) const { return words_.get() + y * wordsPerRow_; }

 private:
  int64_t wordsPerRow_;
  std::unique_ptr<uint64_t[]> words_;
};

/// Where the luminance changes by more than a threshold from one side of a pixel to the other. The outermost ring of
/// pixels is never marked.
struct EdgeMaps {
  EdgeMaps(int64_t imageWidth, int64_t imageHeight);

  int64_t width;
  int64_t height;
  EdgeMask verticalEdges;         ///< a change from left to right: the pixel lies on a vertical line
  EdgeMask horizontalEdges;       ///< a change from top to bottom: the pixel lies on a horizontal line
  std::vector<int> columnCounts;  ///< marks of `verticalEdges` in each column
  std::vector<int> rowCounts;     ///< marks of `horizontalEdges` in each row
};

/// Of thresholds from 0 to 254; a change must be above it.
EdgeMaps edgeMaps(const GrayImage& gray, int threshold, Instructions instructions = bestInstructions());

}  // namespace quillmere::WindowDetector
