#include "formats/PngRowFilter.h"

#include <algorithm>
#include <cstring>

namespace quillmere {
namespace {

enum Kind : uint8_t { kSub = 1, kUp = 2, kPaeth = 4 };

uint8_t magnitude(uint8_t byte) {
  return std::min(byte, static_cast<uint8_t>(-byte));
}

// Plain loops without jumps, of which the compiler makes vector instructions. 32 bits hold the sum of any row that is
// allowed in a PNG of this program: four million bytes of 128 at most.

uint32_t sum(const uint8_t* bytes, size_t count) {
  uint32_t result = 0;
  for (size_t i = 0; i < count; ++i) result += magnitude(bytes[i]);
  return result;
}

/// Sub and Up: the difference from one neighbour.
uint32_t difference(const uint8_t* row, const uint8_t* neighbour, uint8_t* __restrict target, size_t count) {
  for (size_t i = 0; i < count; ++i) target[i] = static_cast<uint8_t>(row[i] - neighbour[i]);
  return sum(target, count);
}

int16_t absolute(int16_t number) {
  return std::max(number, static_cast<int16_t>(-number));
}

uint32_t paeth(const uint8_t* row, const uint8_t* above, size_t channels, uint8_t* __restrict target, size_t count) {
  const uint8_t* leftRow = row - channels;
  const uint8_t* cornerRow = above - channels;
  for (size_t i = 0; i < count; ++i) {
    const int16_t left = leftRow[i];
    const int16_t up = above[i];
    const int16_t corner = cornerRow[i];
    const auto upLessCorner = static_cast<int16_t>(up - corner);
    const auto leftLessCorner = static_cast<int16_t>(left - corner);
    const int16_t toLeft = absolute(upLessCorner);
    const int16_t toUp = absolute(leftLessCorner);
    const int16_t toCorner = absolute(static_cast<int16_t>(upLessCorner + leftLessCorner));
    const int16_t upOrCorner = toUp <= toCorner ? up : corner;
    const int16_t predicted = toLeft <= std::min(toUp, toCorner) ? left : upOrCorner;
    target[i] = static_cast<uint8_t>(row[i] - predicted);
  }
  return sum(target, count);
}

}  // namespace

PngRowFilter::PngRowFilter(size_t width, int channels)
    : channels_(static_cast<size_t>(channels)),
      rowBytes_(width * channels_),
      current_(channels_ + rowBytes_),
      above_(channels_ + rowBytes_),
      candidate_(rowBytes_) {}

void PngRowFilter::filterRow(uint8_t* target) {
  const uint8_t* row = current_.data() + channels_;
  const uint8_t* above = above_.data() + channels_;
  target[0] = kUp;
  uint32_t least = difference(row, above, target + 1, rowBytes_);
  const auto take = [&](Kind kind, uint32_t sum) {
    if (sum >= least) return;
    least = sum;
    target[0] = kind;
    std::memcpy(target + 1, candidate_.data(), rowBytes_);
  };
  if (least > 0) take(kSub, difference(row, row - channels_, candidate_.data(), rowBytes_));
  if (least > 0) take(kPaeth, paeth(row, above, channels_, candidate_.data(), rowBytes_));
  current_.swap(above_);
}

void PngRowFilter::filterRepeatedRow(uint8_t* target) const {
  target[0] = kUp;
  std::memset(target + 1, 0, rowBytes_);
}

}  // namespace quillmere
