#include "formats/PngFilters.h"

#include <gtest/gtest.h>
#include <QtGui/QRgb>
#include <array>
#include <random>

#include "formats/PngFiltersVector.h"

namespace quillmere {
namespace {

using PngFilters::kKinds;
using PngFilters::kSlack;
using PngFilters::Row;

enum Kind : uint8_t { kNone, kSub, kUp, kAverage, kPaeth };

/// A row in memory of its own, to the byte as large as the filters ask for.
struct RowMemory {
  RowMemory(std::vector<uint8_t> filteredBytes, std::vector<QRgb> abovePixels, size_t pixels)
      : width(pixels), filtered(std::move(filteredBytes)), above(std::move(abovePixels)) {
    filtered.resize(filtered.size() + kSlack);
    above.resize(width + kSlack / sizeof(QRgb));
  }
  std::vector<QRgb> undone(void (*undo)(uint8_t, int, const Row&), uint8_t kind, int channels) const {
    std::vector<QRgb> pixels(width + kSlack / sizeof(QRgb));
    undo(kind, channels, {filtered.data(), above.data(), pixels.data(), width});
    pixels.resize(width);
    return pixels;
  }
  size_t width;
  std::vector<uint8_t> filtered;
  std::vector<QRgb> above;
};

std::vector<QRgb> undone(Kind kind, int channels, std::vector<uint8_t> filtered, std::vector<QRgb> above) {
  const size_t width = filtered.size() / static_cast<size_t>(channels);
  return RowMemory(std::move(filtered), std::move(above), width).undone(&PngFilters::undo, kind, channels);
}

TEST(PngFilters, WithoutFilterTheBytesAreTheChannels) {
  EXPECT_EQ(undone(kNone, 3, {1, 2, 3, 4, 5, 6}, {}), (std::vector<QRgb>{qRgb(1, 2, 3), qRgb(4, 5, 6)}));
  EXPECT_EQ(undone(kNone, 4, {1, 2, 3, 4}, {}), (std::vector<QRgb>{qRgba(1, 2, 3, 4)}));
}

TEST(PngFilters, SubAddsThePixelOnTheLeft) {
  EXPECT_EQ(undone(kSub, 3, {250, 2, 3, 10, 1, 1}, {qRgb(9, 9, 9), qRgb(9, 9, 9)}),
            (std::vector<QRgb>{qRgb(250, 2, 3), qRgb(4, 3, 4)}));
}

TEST(PngFilters, UpAddsThePixelAbove) {
  EXPECT_EQ(undone(kUp, 4, {1, 2, 3, 4}, {qRgba(255, 20, 30, 250)}), (std::vector<QRgb>{qRgba(0, 22, 33, 254)}));
}

TEST(PngFilters, AverageAddsHalfOfLeftAndAboveRoundedDown) {
  EXPECT_EQ(undone(kAverage, 3, {0, 1, 2, 0, 0, 0}, {qRgb(3, 3, 255), qRgb(254, 0, 4)}),
            (std::vector<QRgb>{qRgb(1, 2, 129), qRgb(127, 1, 66)}));
}

TEST(PngFilters, PaethAddsTheNearestNeighbour) {
  // Above and corner are equal: the estimate is the left one.
  EXPECT_EQ(undone(kPaeth, 3, {10, 10, 10, 1, 1, 1}, {qRgb(5, 5, 5), qRgb(5, 5, 5)}),
            (std::vector<QRgb>{qRgb(15, 15, 15), qRgb(16, 16, 16)}));
}

TEST(PngFilters, WithoutAlphaPixelsAreOpaque) {
  for (uint8_t kind = 0; kind < kKinds; ++kind) {
    const auto pixels = undone(static_cast<Kind>(kind), 3, std::vector<uint8_t>(21, 200), std::vector<QRgb>(7, 0));
    for (const QRgb pixel : pixels) EXPECT_EQ(qAlpha(pixel), 255);
  }
}

TEST(PngFilters, AnyFormGivesTheSameBits) {
  constexpr unsigned kSeed = 20261121;
  std::mt19937 random(kSeed);
  const auto bytes = [&](size_t count) {
    // Some rows of small differences, as in pictures, and some of any.
    const unsigned most = random() % 2 == 0 ? 256 : 1 + random() % 8;
    std::vector<uint8_t> result(count);
    for (uint8_t& byte : result) byte = static_cast<uint8_t>(random() % most - most / 2);
    return result;
  };
  for (int i = 0; i < 4000; ++i) {
    const size_t width = 1 + random() % 97;
    for (const int channels : {3, 4}) {
      const auto aboveBytes = bytes(4 * width);
      std::vector<QRgb> above(width);
      for (size_t x = 0; x < width; ++x) {
        above[x] = qRgba(aboveBytes[4 * x], aboveBytes[4 * x + 1], aboveBytes[4 * x + 2], aboveBytes[4 * x + 3]);
      }
      const RowMemory row(bytes(width * static_cast<size_t>(channels)), above, width);
      for (uint8_t kind = 0; kind < kKinds; ++kind) {
        const auto plain = row.undone(&PngFilters::undoPlainly, kind, channels);
        ASSERT_EQ(row.undone(&PngFilters::undo, kind, channels), plain)
            << "seed " << kSeed << ", case " << i << ", width " << width << ", filter " << int{kind};
        ASSERT_EQ(row.undone(&PngFiltersVector::undo, kind, channels), plain);
      }
    }
  }
}

/// Every left, upper and corner value there is.
TEST(PngFilters, PaethChoosesTheSameNeighbourInAnyForm) {
  using Two = std::array<QRgb, 2 + kSlack / sizeof(QRgb)>;
  std::array<uint8_t, 2 * 4 + kSlack> filtered{};
  Two above{};
  Two plain{};
  Two fast{};
  for (int left = 0; left < 256; ++left) {
    for (int corner = 0; corner < 256; ++corner) {
      // The first pixel has the corner above it and becomes the left one; the second is what the filter predicts.
      std::fill_n(filtered.begin(), 4, static_cast<uint8_t>(left - corner));
      above[0] = qRgba(corner, corner, corner, corner);
      for (int up = 0; up < 256; up += 4) {
        above[1] = qRgba(up, up + 1, up + 2, up + 3);
        PngFilters::undoPlainly(kPaeth, 4, {filtered.data(), above.data(), plain.data(), 2});
        PngFilters::undo(kPaeth, 4, {filtered.data(), above.data(), fast.data(), 2});
        ASSERT_EQ(qRed(plain[0]), left);
        ASSERT_EQ(plain[0], fast[0]);
        ASSERT_EQ(plain[1], fast[1]) << "left " << left << ", corner " << corner << ", above " << up << " to "
                                     << up + 3;
      }
    }
  }
}

}  // namespace
}  // namespace quillmere
