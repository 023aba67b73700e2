#include "detection/OutlineScore.h"

#include <gtest/gtest.h>

#include "detection/DrawnEdges.h"
#include "support/RandomPictures.h"

namespace quillmere::WindowDetector {
namespace {

using pictures::Marks;

std::optional<double> score(const Marks& marks, const QRectF& frame, const QRectF& inside) {
  const plain::Edges& edges = marks.edges();
  std::vector<int> columns;
  std::vector<int> rows;
  for (const double x : {frame.left(), frame.right()}) columns.push_back(static_cast<int>(x));
  for (const double y : {frame.top(), frame.bottom()}) rows.push_back(static_cast<int>(y));
  const auto result = outlineScore(frame, inside, LineProfiles(marks.maps(), columns, rows), edges.width, edges.height);
  EXPECT_EQ(result, plain::outlineScore(frame, inside, edges));
  return result;
}

/// One window's right side, at 100, crosses the other's inside from 50 + 8 to 150 - 8.
const QRectF kFrame(20, 10, 80, 200);
const QRectF kInside(60, 50, 100, 100);
constexpr int64_t kBegin = 58;
constexpr int64_t kEnd = 142;

TEST(OutlineScoreTest, ASideThatIsDrawnAllAlongScoresOne) {
  Marks marks(250, 250);
  EXPECT_EQ(score(marks, kFrame, kInside), 0.0);
  marks.column(100, kBegin, kEnd);
  EXPECT_EQ(score(marks, kFrame, kInside), 1.0);
}

TEST(OutlineScoreTest, OnlyThePartInsideCounts) {
  Marks marks(250, 250);
  marks.column(100, 0, kBegin + 16);
  EXPECT_EQ(score(marks, kFrame, kInside), 16 / 84.0);
  marks.column(100, kEnd - 16, 250);
  EXPECT_EQ(score(marks, kFrame, kInside), 32 / 84.0);
  Marks outside(250, 250);
  outside.column(100, 0, kBegin + 15);
  outside.column(100, kEnd - 15, 250);
  EXPECT_EQ(score(outside, kFrame, kInside), 0.0) << "of either run only 15 are inside";
}

TEST(OutlineScoreTest, ARunOfSixteenCountsWhole) {
  Marks marks(250, 250);
  marks.column(100, 70, 85);
  EXPECT_EQ(score(marks, kFrame, kInside), 0.0);
  marks.column(100, 85, 86);
  EXPECT_EQ(score(marks, kFrame, kInside), 16 / 84.0);
  marks.column(100, 90, 105);
  EXPECT_EQ(score(marks, kFrame, kInside), 16 / 84.0) << "another of 15 adds nothing";
  marks.column(100, 110, 140);
  EXPECT_EQ(score(marks, kFrame, kInside), 46 / 84.0);
}

TEST(OutlineScoreTest, LessThanTwentyFourPointsGiveNoScore) {
  Marks marks(250, 250);
  marks.column(100, 0, 250);
  EXPECT_EQ(score(marks, kFrame, QRectF(60, 50, 100, 16 + 24)), 1.0);
  EXPECT_EQ(score(marks, kFrame, QRectF(60, 50, 100, 16 + 23)), std::nullopt);
}

TEST(OutlineScoreTest, AnInsideThatIsNoWiderThanItsMarginsGivesNoScore) {
  Marks marks(250, 250);
  marks.column(100, 0, 250);
  EXPECT_EQ(score(marks, QRectF(20, 10, 80, 200), QRectF(91, 50, 16, 100)), std::nullopt);
  EXPECT_EQ(score(marks, QRectF(20, 10, 80, 200), QRectF(91, 50, 18, 100)), 1.0);
  EXPECT_EQ(score(marks, QRectF(20, 10, 80, 200), QRectF(60, 50, 100, 16)), std::nullopt);
  EXPECT_EQ(score(marks, QRectF(20, 10, 80, 200), QRectF(60, 50, 10, 100)), std::nullopt);
  EXPECT_EQ(score(marks, QRectF(20, 10, 80, 200), QRectF(60, 50, 100, 10)), std::nullopt);
}

TEST(OutlineScoreTest, ASideOnTheMarginItselfIsSkipped) {
  Marks marks(250, 250);
  marks.column(100, 0, 250);
  EXPECT_EQ(score(marks, kFrame, QRectF(92, 50, 100, 100)), std::nullopt);
  EXPECT_EQ(score(marks, kFrame, QRectF(91, 50, 100, 100)), 1.0);
  EXPECT_EQ(score(marks, kFrame, QRectF(8, 50, 100, 100)), score(Marks(250, 250), kFrame, QRectF(8, 50, 100, 100)))
      << "only the left side, which is not drawn";
  EXPECT_EQ(score(marks, kFrame, QRectF(28, 50, 80, 100)), std::nullopt);
  EXPECT_EQ(score(marks, kFrame, QRectF(28, 50, 81, 100)), 1.0);
}

TEST(OutlineScoreTest, AllFourSidesAddUp) {
  Marks marks(250, 250);
  const QRectF frame(60, 60, 100, 50);
  const QRectF around(20, 20, 200, 200);
  marks.column(60, 60, 110);
  EXPECT_EQ(score(marks, frame, around), 50 / 300.0);
  marks.column(160, 60, 100);
  EXPECT_EQ(score(marks, frame, around), 90 / 300.0);
  marks.row(60, 60, 90);
  EXPECT_EQ(score(marks, frame, around), 120 / 300.0);
  marks.row(110, 60, 80);
  EXPECT_EQ(score(marks, frame, around), 140 / 300.0);
}

TEST(OutlineScoreTest, RowsAreMeasuredLikeColumns) {
  Marks marks(250, 250);
  const QRectF frame(10, 20, 200, 80);
  marks.row(100, 58, 74);
  EXPECT_EQ(score(marks, frame, QRectF(50, 60, 100, 100)), 16 / 84.0);
  EXPECT_EQ(score(marks, frame, QRectF(50, 92, 100, 100)), std::nullopt);
  EXPECT_EQ(score(marks, frame, QRectF(50, 91, 100, 100)), 16 / 84.0);
}

TEST(OutlineScoreTest, ASideOnThePicturesRingIsSkipped) {
  // The last pixel but one is a place for a side; the first and the last are not.
  const QRectF around(-20, -20, 200, 200);
  for (const int64_t size : {101, 102}) {
    Marks marks(size, size);
    marks.column(98, 0, size);
    marks.row(98, 0, size);
    const std::optional<double> wanted = size == 102 ? std::optional(1.0) : std::nullopt;
    EXPECT_EQ(outlineScore(QRectF(0, 10, 100, 80), around, LineProfiles(marks.maps(), {0, 100}, {}), size, size),
              wanted);
    EXPECT_EQ(outlineScore(QRectF(10, 0, 80, 100), around, LineProfiles(marks.maps(), {}, {0, 100}), size, size),
              wanted);
    marks.column(2, 0, size);
    marks.row(2, 0, size);
    EXPECT_EQ(outlineScore(QRectF(1, 10, 99, 80), around, LineProfiles(marks.maps(), {1}, {}), size, size), 1.0);
    EXPECT_EQ(outlineScore(QRectF(10, 1, 80, 99), around, LineProfiles(marks.maps(), {}, {1}), size, size), 1.0);
  }
}

TEST(OutlineScoreTest, RandomOverlapsScoreByThePlainRules) {
  for (uint32_t seed = 1; seed <= 300; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    pictures::RandomPicture random(seed);
    Marks marks(200, 160);
    const auto frame = [&] {
      const int x = random.between(3, 150);
      const int y = random.between(3, 120);
      return QRectF(x, y, random.between(5, 196 - x), random.between(5, 156 - y));
    };
    const QRectF a = frame();
    for (const double x : {a.left(), a.right()}) {
      for (int part = 3; part > 0; --part) {
        const int from = random.upTo(150);
        marks.column(static_cast<int64_t>(x) + random.between(-1, 1), from, random.between(from, 160));
      }
    }
    for (const double y : {a.top(), a.bottom()}) {
      for (int part = 3; part > 0; --part) {
        const int from = random.upTo(190);
        marks.row(static_cast<int64_t>(y) + random.between(-1, 1), from, random.between(from, 200));
      }
    }
    score(marks, a, frame());
  }
}

}  // namespace
}  // namespace quillmere::WindowDetector
