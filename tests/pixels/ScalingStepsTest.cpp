#include "pixels/ScalingSteps.h"

#include <gtest/gtest.h>
#include <random>
#include <set>

namespace quillmere {
namespace {

constexpr size_t kChannels = ScalingSteps::kChannels;

/// The fast forms against the plain ones, bit for bit, at widths around those of vectors.
class ScalingStepsTest : public ::testing::TestWithParam<Instructions> {
 protected:
  /// Exactly as long, so that a sanitizer sees what reads beyond.
  std::vector<QRgb> row(size_t width) {
    std::vector<QRgb> pixels(width);
    for (QRgb& pixel : pixels) {
      pixel = static_cast<QRgb>(random());
      const auto way = random() % 4;
      if (way == 0) pixel |= 0xFF000000;
      if (way == 1) pixel = 0xFFFFFFFF;
      if (way == 2) pixel &= 0x00FFFFFF;
    }
    return pixels;
  }
  std::vector<int16_t> levels(size_t count) {
    std::vector<int16_t> values(count);
    // As far as overshooting goes.
    for (int16_t& value : values) value = static_cast<int16_t>(static_cast<int>(random() % 26000) - 5000);
    return values;
  }

  std::mt19937 random{7};
  const ScalingSteps& fast = scalingSteps(GetParam());
  const ScalingSteps& plain = plainScalingSteps();
};

/// Those that this processor has.
const std::set<Instructions> kEach{Instructions::baseline, bestInstructions()};
INSTANTIATE_TEST_SUITE_P(Each, ScalingStepsTest, ::testing::ValuesIn(kEach));

TEST_P(ScalingStepsTest, Premultiplying) {
  for (size_t width = 1; width < 70; ++width) {
    const auto pixels = row(width);
    std::vector<QRgb> expected(width);
    std::vector<QRgb> result(width);
    plain.premultiply(pixels.data(), width, expected.data());
    fast.premultiply(pixels.data(), width, result.data());
    ASSERT_EQ(result, expected) << width;
  }
}

TEST_P(ScalingStepsTest, EveryColourAtEveryAlpha) {
  for (uint32_t alpha = 0; alpha < 256; ++alpha) {
    std::vector<QRgb> pixels;
    for (uint32_t level = 0; level < 256; ++level) pixels.push_back(alpha << 24 | level << 16 | level << 8 | level);
    std::vector<QRgb> result(pixels.size());
    fast.premultiply(pixels.data(), pixels.size(), result.data());
    for (size_t i = 0; i < pixels.size(); ++i) ASSERT_EQ(result[i], qPremultiply(pixels[i]));
  }
}

TEST_P(ScalingStepsTest, SumsOfRows) {
  for (size_t width = 1; width < 70; ++width) {
    for (const int count : {1, 2, 3, 6, 255, 256}) {
      std::vector<std::vector<QRgb>> rows;
      std::vector<const QRgb*> places;
      for (int i = 0; i < count; ++i) rows.push_back(count > 200 ? std::vector<QRgb>(width, 0xFFFFFFFF) : row(width));
      for (const auto& one : rows) places.push_back(one.data());
      std::vector<uint16_t> expected(kChannels * width);
      std::vector<uint16_t> result(kChannels * width);
      plain.sumRows(places.data(), count, width, expected.data());
      fast.sumRows(places.data(), count, width, result.data());
      ASSERT_EQ(result, expected) << width << " of " << count;
    }
  }
}

TEST_P(ScalingStepsTest, MeansOfCells) {
  for (const int cell : {1, 2, 3, 5, 6, 15, 16, 17, 100, 256}) {
    for (const int rows : {1, 3, 16, 256}) {
      constexpr size_t kCells = 9;
      std::vector<uint16_t> sums(kChannels * kCells * static_cast<size_t>(cell));
      for (uint16_t& sum : sums) sum = static_cast<uint16_t>(random() % static_cast<uint32_t>(255 * rows + 1));
      std::fill_n(sums.begin(), kChannels * static_cast<size_t>(cell), static_cast<uint16_t>(255 * rows));
      std::vector<int16_t> expected(kChannels * kCells);
      std::vector<int16_t> result(kChannels * kCells);
      plain.average(sums.data(), cell, rows, kCells, expected.data());
      fast.average(sums.data(), cell, rows, kCells, result.data());
      ASSERT_EQ(result, expected) << cell << " by " << rows;
      EXPECT_EQ(result[0], 255 << ScalingSteps::kLevelBits);
    }
  }
}

TEST_P(ScalingStepsTest, RowsAsLevels) {
  for (size_t width = 1; width < 40; ++width) {
    const auto pixels = row(width);
    std::vector<int16_t> expected(kChannels * width);
    std::vector<int16_t> result(kChannels * width);
    plain.widen(pixels.data(), width, expected.data());
    fast.widen(pixels.data(), width, result.data());
    ASSERT_EQ(result, expected) << width;
  }
}

TEST_P(ScalingStepsTest, MixedRows) {
  for (size_t count = 1; count < 40; ++count) {
    for (const int taps : {2, 4, 14}) {
      std::vector<std::vector<int16_t>> rows;
      std::vector<const int16_t*> places;
      for (int i = 0; i < taps; ++i) rows.push_back(levels(kChannels * count));
      for (const auto& one : rows) places.push_back(one.data());
      const auto weights = levels(static_cast<size_t>(taps));
      std::vector<int16_t> expected(kChannels * count);
      std::vector<int16_t> result(kChannels * count);
      plain.mixRows(places.data(), weights.data(), taps, count, expected.data());
      fast.mixRows(places.data(), weights.data(), taps, count, result.data());
      ASSERT_EQ(result, expected) << count << " of " << taps;
    }
  }
}

TEST_P(ScalingStepsTest, MixedPixels) {
  for (const auto& [from, to] : {std::pair(1, 1), {2, 1}, {40, 39}, {100, 30}, {101, 13}, {3, 2}}) {
    const auto plan = ScalingWeights::of(from, to);
    const auto row = levels(kChannels * static_cast<size_t>(plan.cells + plan.taps));
    std::vector<QRgb> expected(static_cast<size_t>(to));
    std::vector<QRgb> result(static_cast<size_t>(to));
    plain.mixPixels(row.data(), plan, expected.data());
    fast.mixPixels(row.data(), plan, result.data());
    ASSERT_EQ(result, expected) << from << " to " << to;
  }
}

}  // namespace
}  // namespace quillmere
