#include "formats/PngRowFilter.h"

#include <gtest/gtest.h>
#include <QtGui/QRgb>
#include <algorithm>
#include <cstdlib>
#include <random>

#include "formats/PngFilters.h"

namespace quillmere {
namespace {

using Bytes = std::vector<uint8_t>;

enum Kind : uint8_t { kNone, kSub, kUp, kAverage, kPaeth };

Bytes filtered(PngRowFilter& filter, const Bytes& row) {
  std::copy(row.begin(), row.end(), filter.row());
  Bytes target(filter.filteredBytes());
  filter.filterRow(target.data());
  return target;
}

/// By the reader's side, which has tests of its own.
Bytes undone(const Bytes& target, const Bytes& above, int channels) {
  const auto step = static_cast<size_t>(channels);
  const size_t width = above.size() / step;
  const auto alphaOf = [&](const uint8_t* pixel) { return channels == 4 ? pixel[3] : 255; };
  std::vector<QRgb> aboveRow(width + PngFilters::kSlack / sizeof(QRgb));
  for (size_t x = 0; x < width; ++x) {
    const uint8_t* pixel = above.data() + x * step;
    aboveRow[x] = qRgba(pixel[0], pixel[1], pixel[2], alphaOf(pixel));
  }
  Bytes bytes(target.begin() + 1, target.end());
  bytes.resize(bytes.size() + PngFilters::kSlack);
  std::vector<QRgb> pixels(width + PngFilters::kSlack / sizeof(QRgb));
  PngFilters::undoPlainly(target[0], channels, {bytes.data(), aboveRow.data(), pixels.data(), width});
  Bytes row;
  for (size_t x = 0; x < width; ++x) {
    for (const int value : {qRed(pixels[x]), qGreen(pixels[x]), qBlue(pixels[x]), qAlpha(pixels[x])}) {
      if (row.size() < (x + 1) * step) row.push_back(static_cast<uint8_t>(value));
    }
  }
  return row;
}

int costOf(const uint8_t* begin, const uint8_t* end) {
  int cost = 0;
  for (; begin != end; ++begin) cost += std::abs(static_cast<int8_t>(*begin));
  return cost;
}

/// What a filter makes of a row, channel by channel as the format defines it.
Bytes filteredBy(Kind kind, const Bytes& row, const Bytes& above, size_t channels) {
  Bytes result;
  for (size_t i = 0; i < row.size(); ++i) {
    const int left = i < channels ? 0 : row[i - channels];
    const int corner = i < channels ? 0 : above[i - channels];
    const int up = above[i];
    const int estimate = left + up - corner;
    int predicted = kind == kSub ? left : up;
    if (kind == kPaeth) {
      predicted = left;
      if (std::abs(estimate - up) < std::abs(estimate - predicted)) predicted = up;
      if (std::abs(estimate - corner) < std::abs(estimate - predicted)) predicted = corner;
    }
    result.push_back(static_cast<uint8_t>(row[i] - predicted));
  }
  return result;
}

TEST(PngRowFilter, ARowLikeTheOneAboveBecomesZeros) {
  PngRowFilter filter(2, 3);
  const Bytes row{10, 200, 30, 40, 250, 60};
  filtered(filter, row);
  const Bytes zeros{kUp, 0, 0, 0, 0, 0, 0};
  EXPECT_EQ(filtered(filter, row), zeros);
  Bytes target(filter.filteredBytes(), 99);
  filter.filterRepeatedRow(target.data());
  EXPECT_EQ(target, zeros);
  EXPECT_EQ(filtered(filter, row), zeros) << "still the row above";
}

TEST(PngRowFilter, ARowOfOneColourOverAnotherTakesItsPixelsFromTheLeft) {
  PngRowFilter filter(4, 3);
  filtered(filter, {9, 80, 7, 60, 5, 40, 3, 20, 1, 90, 50, 70});
  EXPECT_EQ(filtered(filter, {5, 6, 7, 5, 6, 7, 5, 6, 7, 5, 6, 7}), (Bytes{kSub, 5, 6, 7, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(PngRowFilter, WhereSomePixelsAreLikeTheLeftAndSomeLikeTheUpperOneEachTakesItsNearest) {
  PngRowFilter filter(3, 4);
  filtered(filter, {50, 50, 50, 50, 50, 50, 50, 50, 90, 90, 90, 90});
  EXPECT_EQ(filtered(filter, {70, 70, 70, 70, 70, 70, 70, 70, 90, 90, 90, 90}),
            (Bytes{kPaeth, 20, 20, 20, 20, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(PngRowFilter, TakesTheLeastOfItsFiltersAndComesBackByTheReaders) {
  constexpr unsigned kSeed = 20261122;
  std::mt19937 random(kSeed);
  for (int i = 0; i < 3000; ++i) {
    const size_t width = 1 + random() % 90;
    const size_t channels = 3 + random() % 2;
    const auto most = static_cast<unsigned>(random() % 3 == 0 ? 256 : 2 + random() % 12);
    PngRowFilter filter(width, static_cast<int>(channels));
    Bytes above(width * channels);
    for (int y = 0; y < 4; ++y) {
      Bytes row(width * channels);
      const auto from = random() % 3;
      for (size_t x = 0; x < row.size(); ++x) {
        const int base = from == 0 || x < channels ? 0 : from == 1 ? above[x] : row[x - channels];
        row[x] = static_cast<uint8_t>(static_cast<unsigned>(base) + random() % most);
      }
      const Bytes target = filtered(filter, row);
      const int taken = costOf(target.data() + 1, target.data() + target.size());
      ASSERT_TRUE(target[0] == kSub || target[0] == kUp || target[0] == kPaeth);
      for (const Kind kind : {kSub, kUp, kPaeth}) {
        const Bytes other = filteredBy(kind, row, above, channels);
        ASSERT_LE(taken, costOf(other.data(), other.data() + other.size())) << "seed " << kSeed << ", case " << i;
        if (kind == target[0]) {
          ASSERT_EQ(Bytes(target.begin() + 1, target.end()), other);
        }
      }
      ASSERT_EQ(undone(target, above, static_cast<int>(channels)), row) << "seed " << kSeed << ", case " << i;
      above = row;
    }
  }
}

}  // namespace
}  // namespace quillmere
