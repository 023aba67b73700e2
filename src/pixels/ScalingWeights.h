#pragma once

#include <cstdint>
#include <vector>

namespace quillmere {

/// How one side of a picture is made shorter. Pixels are averaged in cells, as many at a time as leave at least two
/// cells for each new pixel; a new pixel is then a weighted mean of cells by Lanczos' window of three lobes, which
/// keeps text crisp. The same numbers on every machine.
struct ScalingWeights {
  /// `to` is from 1 to `from`.
  static ScalingWeights of(int from, int to);

  /// What the weights of a new pixel add up to.
  static constexpr int kOne = 1 << 14;
  /// No more rows of bytes fit into sums of 16 bits.
  static constexpr int kLargestCell = 256;

  int from;
  int to;
  int cell;                      ///< in pixels; the last may have fewer
  int cells;                     ///< the side in cells
  int taps;                      ///< weights for a new pixel; even
  std::vector<int> firsts;       ///< the first cell of each new pixel
  std::vector<int16_t> weights;  ///< `taps` for each new pixel; zero where they reach beyond the last cell

  int pixelsIn(int index) const { return index + 1 < cells ? cell : from - cell * (cells - 1); }
  const int16_t* weightsOf(int newPixel) const { return weights.data() + static_cast<std::ptrdiff_t>(newPixel) * taps; }
};

}  // namespace quillmere
