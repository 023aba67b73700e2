#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quillmere {

/// Filters the rows of a PNG, from the top down, with 8 bits a channel. For each it takes that filter whose bytes, as
/// signed numbers, have the smallest sum of absolute values. Sub, Up and Paeth compete: on captures the other two win
/// too seldom to be worth their time.
class PngRowFilter {
 public:
  /// `channels` is 3 or 4; `width` in pixels, one at least.
  PngRowFilter(size_t width, int channels);

  /// 1 + rowBytes().
  size_t filteredBytes() const { return 1 + rowBytes_; }

  /// Where the next row is to be written, channel after channel as in the file; filled anew for each.
  uint8_t* row() { return current_.data() + channels_; }
  /// Puts the filter's number and the filtered row there.
  void filterRow(uint8_t* target);
  /// The same for a row equal to the one above it, without its being written.
  void filterRepeatedRow(uint8_t* target) const;

 private:
  size_t channels_;
  size_t rowBytes_;
  // Each with a pixel of zeros before it, which the filters take for the one on the left of the first.
  std::vector<uint8_t> current_;
  std::vector<uint8_t> above_;
  std::vector<uint8_t> candidate_;
};

}  // namespace quillmere
