#include "detection/EdgeMaps.h"

#include <gtest/gtest.h>

#include "detection/DrawnEdges.h"
#include "support/RandomPictures.h"

namespace quillmere::WindowDetector {
namespace {

using pictures::Marks;

EdgeMaps mapsOf(const plain::Gray& gray, int threshold, Instructions instructions = bestInstructions()) {
  return edgeMaps(pictures::grayImage(gray), threshold, instructions);
}

void expectAlike(const EdgeMaps& maps, const plain::Edges& edges) {
  ASSERT_EQ(maps.width, edges.width);
  ASSERT_EQ(maps.height, edges.height);
  EXPECT_EQ(maps.columnCounts, edges.columnCounts);
  EXPECT_EQ(maps.rowCounts, edges.rowCounts);
  const int64_t end = 64 * maps.verticalEdges.wordsPerRow();
  for (int64_t y = 0; y < edges.height; ++y) {
    for (int64_t x = 0; x < end; ++x) {
      ASSERT_EQ(maps.verticalEdges.at(x, y), x < edges.width && edges.isVertical(x, y)) << x << ',' << y;
      ASSERT_EQ(maps.horizontalEdges.at(x, y), x < edges.width && edges.isHorizontal(x, y)) << x << ',' << y;
    }
  }
}

TEST(EdgeMapsTest, AChangeMustBeAboveTheThreshold) {
  for (const int threshold : {8, 16}) {
    for (const int change : {threshold, threshold + 1}) {
      for (const int sign : {-1, 1}) {
        plain::Gray gray(20, 20, 100);
        gray.at(10, 10) += sign * change;
        const EdgeMaps maps = mapsOf(gray, threshold);
        const bool isEdge = change > threshold;
        EXPECT_EQ(maps.verticalEdges.at(9, 10), isEdge);
        EXPECT_EQ(maps.verticalEdges.at(11, 10), isEdge);
        EXPECT_EQ(maps.horizontalEdges.at(10, 9), isEdge);
        EXPECT_EQ(maps.horizontalEdges.at(10, 11), isEdge);
        EXPECT_FALSE(maps.verticalEdges.at(10, 10)) << "its neighbours are alike";
        EXPECT_EQ(maps.columnCounts[9], isEdge ? 1 : 0);
        EXPECT_EQ(maps.rowCounts[11], isEdge ? 1 : 0);
      }
    }
  }
}

TEST(EdgeMapsTest, TheOutermostRingIsNeverMarked) {
  pictures::RandomPicture random(3);
  plain::Gray gray(130, 40);
  random.noise(gray, 255);
  const EdgeMaps maps = mapsOf(gray, 0);
  for (int64_t x = 0; x < 130; ++x) {
    for (const int64_t y : {0, 39}) EXPECT_FALSE(maps.verticalEdges.at(x, y) || maps.horizontalEdges.at(x, y));
  }
  for (int64_t y = 0; y < 40; ++y) {
    for (const int64_t x : {0, 129}) EXPECT_FALSE(maps.verticalEdges.at(x, y) || maps.horizontalEdges.at(x, y));
  }
  EXPECT_GT(maps.columnCounts[1], 30);
  EXPECT_GT(maps.columnCounts[128], 30);
  EXPECT_GT(maps.rowCounts[1], 100);
  EXPECT_GT(maps.rowCounts[38], 100);
}

TEST(EdgeMapsTest, ThousandsOfRowsAreCountedInFull) {
  // Counters of a byte are emptied after 255 rows.
  for (const int64_t height : {256, 257, 258, 511, 512, 513, 1100}) {
    plain::Gray gray(70, height, 100);
    pictures::fill(gray, 30, 0, 40, height, 200);
    for (const Instructions instructions : pictures::instructions()) {
      const EdgeMaps maps = mapsOf(gray, 16, instructions);
      EXPECT_EQ(maps.columnCounts[29], height - 2);
      EXPECT_EQ(maps.columnCounts[30], height - 2);
      EXPECT_EQ(maps.columnCounts[31], 0);
    }
  }
}

TEST(EdgeMapsTest, AllInstructionsAgreeWithThePlainRules) {
  for (uint32_t seed = 1; seed <= 400; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    pictures::RandomPicture random(seed);
    const plain::Gray gray = random.small();
    const int threshold = std::array{16, 8, 0, 254, random.upTo(254)}[seed % 5];
    const plain::Edges edges = plain::edges(gray, threshold);
    for (const Instructions instructions : pictures::instructions()) {
      expectAlike(mapsOf(gray, threshold, instructions), edges);
      if (HasFatalFailure()) return;
    }
  }
}

TEST(EdgeMapsTest, AMarkIsFoundInASpanThatCrossesWords) {
  Marks marks(200, 9);
  for (const int64_t x : {63, 64, 130}) marks.column(x, 4, 5);
  const EdgeMask& mask = marks.maps().verticalEdges;
  for (int64_t from = 0; from < 195; ++from) {
    for (int64_t to = from; to < std::min<int64_t>(from + 5, 200); ++to) {
      const auto isInside = [&](int64_t x) { return from <= x && x <= to; };
      EXPECT_EQ(mask.hasAny(from, to, 4), isInside(63) || isInside(64) || isInside(130)) << from << " to " << to;
      EXPECT_FALSE(mask.hasAny(from, to, 3));
    }
  }
}

}  // namespace
}  // namespace quillmere::WindowDetector
