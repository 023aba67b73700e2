#include "detection/ShadowProfile.h"

#include <algorithm>
#include <memory>

#include "detection/MiddleMean.h"

namespace quillmere::WindowShadow {
namespace {

// The middle part of a side is free of the window's rounded corners.
constexpr double kSkippedShare = 0.08;
constexpr double kSampledShare = 0.84;
constexpr int64_t kLeastCount = 24;
constexpr int64_t kStridePer = 512;
constexpr int64_t kFewestLines = 16;

/// The samples of one side: a row for each distance from it, the nearest first.
class Samples {
 public:
  Samples(int64_t lines, int64_t depth)
      : lines_(lines),
        stride_((lines + kSampleStep - 1) / kSampleStep * kSampleStep),
        depth_(depth),
        bytes_(std::make_unique_for_overwrite<uint8_t[]>(static_cast<size_t>(stride_ * depth))) {
    for (int64_t d = 0; d < depth; ++d) std::fill(at(d) + lines, at(d) + stride_, kPadding);
  }

  /// Of a side along which the picture's rows run: every `stride`th pixel from `first`.
  void takeRow(int64_t distance, const uint8_t* first, int64_t stride) {
    uint8_t* row = at(distance);
    if (stride == 1) {
      std::copy_n(first, lines_, row);
    } else if (stride == 2) {
      takeEverySecond(first, row, lines_);
    } else {
      for (int64_t line = 0; line < lines_; ++line) row[line] = first[line * stride];
    }
  }
  /// Of a side across which the picture's rows run, `stride` apart: `first` is the leftmost pixel of the first line and
  /// belongs to the farthest distance where the side is a left one.
  void takeColumns(const uint8_t* first, int64_t stride, bool isLeft) {
    const auto distanceOf = [&](int64_t x) { return isLeft ? depth_ - 1 - x : x; };
    for (int64_t line = 0; line < lines_; line += kBlock) {
      for (int64_t x = 0; x < depth_; x += kBlock) {
        const uint8_t* from = first + line * stride + x;
        if (x % kCacheLine == 0 && line + 2 * kBlock <= lines_) fetchAhead(from + kBlock * stride, stride);
        if (line + kBlock <= lines_ && x + kBlock <= depth_) {
          transposeBlock(from, stride, at(distanceOf(x)) + line, isLeft ? -stride_ : stride_);
          continue;
        }
        for (int64_t i = line; i < std::min(line + kBlock, lines_); ++i) {
          for (int64_t k = x; k < std::min(x + kBlock, depth_); ++k) at(distanceOf(k))[i] = first[i * stride + k];
        }
      }
    }
  }

  std::vector<double> middleMeans() const { return quillmere::middleMeans(bytes_.get(), stride_, lines_, depth_); }

 private:
  static constexpr uint8_t kPadding = 255;
  static constexpr int64_t kBlock = 16;
  static constexpr int64_t kCacheLine = 64;

  /// Short pieces of rows that are far apart in memory are no pattern that a processor foresees.
  static void fetchAhead(const uint8_t* from, int64_t stride) {
    for (int64_t i = 0; i < kBlock; ++i) __builtin_prefetch(from + i * stride + kCacheLine - 1);
  }

  uint8_t* at(int64_t distance) { return bytes_.get() + distance * stride_; }

  int64_t lines_;
  int64_t stride_;
  int64_t depth_;
  std::unique_ptr<uint8_t[]> bytes_;
};

}  // namespace

std::optional<std::vector<double>> brightnessProfile(Side side, const GrayImage& gray, const QRectF& frame,
                                                     int64_t depth, int64_t known) {
  const bool isVertical = side == left || side == right;
  const double length = isVertical ? frame.height() : frame.width();
  const auto start =
      static_cast<int64_t>(isVertical ? frame.top() : frame.left()) + static_cast<int64_t>(kSkippedShare * length);
  const auto count = static_cast<int64_t>(kSampledShare * length);
  if (count < kLeastCount) return std::nullopt;
  const int64_t stride = std::max(count, kStridePer) / kStridePer;
  const int64_t lines = (count + stride - 1) / stride;
  if (lines < kFewestLines) return std::nullopt;

  // The nearest sample's place across the side, and the way outward.
  const int64_t step = side == left || side == top ? -1 : 1;
  const int64_t beside = side == left    ? static_cast<int64_t>(frame.left()) - 1
                         : side == top   ? static_cast<int64_t>(frame.top()) - 1
                         : side == right ? static_cast<int64_t>(frame.right())
                                         : static_cast<int64_t>(frame.bottom());
  const int64_t nearest = beside + step * known;
  const int64_t farthest = beside + step * (depth - 1);
  const int64_t last = start + (lines - 1) * stride;
  const int64_t sizeAcross = isVertical ? gray.width() : gray.height();
  const int64_t sizeAlong = isVertical ? gray.height() : gray.width();
  if (std::min(nearest, farthest) < 0 || std::max(nearest, farthest) >= sizeAcross) return std::nullopt;
  if (start < 0 || last >= sizeAlong) return std::nullopt;

  const int64_t distances = depth - known;
  Samples samples(lines, distances);
  if (isVertical) {
    const int64_t leftmost = std::min(nearest, farthest);
    samples.takeColumns(gray.row(start) + leftmost, stride * gray.width(), side == left);
  } else {
    for (int64_t d = 0; d < distances; ++d) samples.takeRow(d, gray.row(nearest + step * d) + start, stride);
  }
  // The middle half: other windows, text or icons that cross a few lines leave no mark.
  return samples.middleMeans();
}

}  // namespace quillmere::WindowShadow
