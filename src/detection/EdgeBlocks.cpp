#include "detection/EdgeBlocks.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace quillmere::CapturedWindows {
namespace {

/// The least change of colour, in levels.
constexpr int kLeastStep = 2;
/// A line begins where the step is so many times that of the pixel before.
constexpr int kSteeper = 3;
/// How many pixels of each side are looked at, past the line and what belongs to it.
constexpr int kLooked = 4;

/// How far two colours are apart in the channel where they are most.
int step(uint32_t a, uint32_t b) {
  const auto channel = [&](int shift) {
    return std::abs(static_cast<int>((a >> shift) & 255) - static_cast<int>((b >> shift) & 255));
  };
  return std::max({channel(0), channel(8), channel(16)});
}

const uint32_t* pixelRow(const QImage& image, int y) {
  return reinterpret_cast<const uint32_t*>(image.constScanLine(y));
}

/// The steepest step of one side, in levels of a block's sum.
int steepest(const std::vector<uint16_t>& steps, int from, int to) {
  int most = 0;
  for (int at = from; at <= to; ++at) most = std::max<int>(most, steps[static_cast<size_t>(at)]);
  return most;
}

}  // namespace

EdgeBlocks::EdgeBlocks(const QImage& image, int reach)
    : pixels_(image.convertToFormat(QImage::Format_RGB32)),
      reach_(reach),
      width_(image.width()),
      height_(image.height()),
      vertical_(static_cast<size_t>(rowCount()) * static_cast<size_t>(width_ + 1)),
      horizontal_(static_cast<size_t>(columnCount()) * static_cast<size_t>(height_ + 1)) {
  std::vector<uint16_t> steps(static_cast<size_t>(width_) + 1);
  for (int row = 0; row < rowCount(); ++row) {
    std::fill(steps.begin(), steps.end(), uint16_t{0});
    for (int y = row * kBlock; y < (row + 1) * kBlock; ++y) {
      const uint32_t* line = pixelRow(pixels_, y);
      for (int x = 1; x < width_; ++x) {
        steps[static_cast<size_t>(x)] += static_cast<uint16_t>(step(line[x - 1], line[x]));
      }
    }
    mark(steps, &vertical_[at(0, row, width_)]);
  }

  // Of all blocks of a row at once, as the pixels lie.
  const auto columns = static_cast<size_t>(columnCount());
  std::vector<std::vector<uint16_t>> down(columns, std::vector<uint16_t>(static_cast<size_t>(height_) + 1));
  for (int y = 1; y < height_; ++y) {
    const uint32_t* above = pixelRow(pixels_, y - 1);
    const uint32_t* below = pixelRow(pixels_, y);
    for (size_t column = 0; column < columns; ++column) {
      int sum = 0;
      for (size_t x = column * kBlock; x < (column + 1) * kBlock; ++x) sum += step(above[x], below[x]);
      down[column][static_cast<size_t>(y)] = static_cast<uint16_t>(sum);
    }
  }
  for (size_t column = 0; column < columns; ++column) {
    mark(down[column], &horizontal_[at(0, static_cast<int>(column), height_)]);
  }
}

int EdgeBlocks::verticalStep(int x, int y) const {
  if (x < 2 || x > width_ - 2 || y < 0 || y >= height_) return 0;
  const uint32_t* row = pixelRow(pixels_, y);
  return std::max({step(row[x - 2], row[x - 1]), step(row[x - 1], row[x]), step(row[x], row[x + 1])});
}

int EdgeBlocks::horizontalStep(int x, int y) const {
  if (y < 2 || y > height_ - 2 || x < 0 || x >= width_) return 0;
  const auto at = [&](int row) { return pixelRow(pixels_, row)[x]; };
  return std::max({step(at(y - 2), at(y - 1)), step(at(y - 1), at(y)), step(at(y), at(y + 1))});
}

/// `steps` has the sums of a block's steps before each position, and one more for the end.
void EdgeBlocks::mark(const std::vector<uint16_t>& steps, uint8_t* marks) const {
  const int length = static_cast<int>(steps.size()) - 1;
  const auto at = [&](int position) { return static_cast<int>(steps[static_cast<size_t>(position)]); };
  for (int position = 1; position < length; ++position) {
    const int from = std::max(1, position - reach_);
    const int to = std::min(length - 1, position + reach_);
    const int best = steepest(steps, from, to);
    if (best < kLeastStep * kBlock) continue;
    // Where the picture ends, the other side tells.
    const int farthest = reach_ + kLooked;
    const bool hasBefore = position - farthest >= 1;
    const bool hasBehind = position + farthest <= length - 1;
    const int before = hasBefore ? steepest(steps, position - farthest, position - reach_ - 1) : 0;
    const int behind = hasBehind ? steepest(steps, position + reach_ + 1, position + farthest) : 0;
    const int smoother = hasBefore && hasBehind ? std::min(before, behind) : std::max(before, behind);
    if (2 * best < 3 * smoother + 2 * kBlock) continue;
    marks[position] = kNear;
    if (at(position) == best) marks[position] |= kExact;
    if (at(position) < kLeastStep * kBlock) continue;
    if (at(position) >= kSteeper * at(position - 1)) marks[position] |= kFromBefore;
    if (at(position) >= kSteeper * at(position + 1)) marks[position] |= kFromBehind;
  }
}

std::vector<int> EdgeBlocks::lines(const Marks& marks, int length, int blocks) {
  std::vector<int> counts(static_cast<size_t>(length) + 1);
  for (int block = 0; block < blocks; ++block) {
    for (int position = 0; position <= length; ++position) {
      if ((marks[at(position, block, length)] & kExact) != 0) ++counts[static_cast<size_t>(position)];
    }
  }
  return counts;
}

}  // namespace quillmere::CapturedWindows
