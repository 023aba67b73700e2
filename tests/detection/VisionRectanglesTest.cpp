#include "detection/VisionRectangles.h"

#include <gtest/gtest.h>

#include "pixels/PixelRects.h"
#include "support/DrawnPictures.h"

namespace quillmere::WindowDetector {
namespace {

/// How well the best of them fits.
double bestOverlap(const std::vector<QRectF>& rectangles, const QRectF& wanted) {
  double best = 0;
  for (const QRectF& rectangle : rectangles) {
    const double common = rectArea(commonRect(rectangle, wanted));
    best = std::max(best, common / (rectArea(rectangle) + rectArea(wanted) - common));
  }
  return best;
}

std::vector<QRectF> rectanglesOf(const plain::Gray& gray) {
  return visionRectangles(pictures::grayImage(gray));
}

TEST(VisionRectanglesTest, ARectangleIsSeenInPixelsOfThePicture) {
  for (const int64_t size : {400, 1600}) {
    plain::Gray gray(size, size, 230);
    pictures::fill(gray, size / 4, size / 8, size / 2, size / 4, 60);
    const QRectF wanted(static_cast<double>(size) / 4, static_cast<double>(size) / 8, static_cast<double>(size) / 2,
                        static_cast<double>(size) / 4);
    EXPECT_GT(bestOverlap(rectanglesOf(gray), wanted), 0.9) << size;
  }
}

TEST(VisionRectanglesTest, NothingIsSeenInAPlainPicture) {
  EXPECT_TRUE(rectanglesOf(plain::Gray(300, 200, 120)).empty());
}

TEST(VisionRectanglesTest, SmallAndNarrowOnesAreLeftOut) {
  plain::Gray gray(400, 400, 230);
  pictures::fill(gray, 100, 100, 10, 10, 60);
  pictures::fill(gray, 50, 200, 300, 22, 60);
  for (const QRectF& rectangle : rectanglesOf(gray)) {
    EXPECT_GE(std::min(rectangle.width(), rectangle.height()), 20);
    EXPECT_GE(10 * std::min(rectangle.width(), rectangle.height()), std::max(rectangle.width(), rectangle.height()));
  }
  EXPECT_EQ(bestOverlap(rectanglesOf(gray), QRectF(50, 200, 300, 22)) > 0.5, false);
}

TEST(VisionRectanglesTest, AtMostThirtyAreGivenTheLargestFirst) {
  plain::Gray gray(640, 640, 230);
  for (int i = 0; i < 49; ++i) pictures::fill(gray, 20 + 88 * (i % 7), 20 + 88 * (i / 7), 45 + i / 2, 45 + i / 2, 60);
  const auto rectangles = rectanglesOf(gray);
  EXPECT_EQ(rectangles.size(), 30u);
  EXPECT_TRUE(std::is_sorted(rectangles.begin(), rectangles.end(),
                             [](const QRectF& a, const QRectF& b) { return rectArea(a) > rectArea(b); }));
}

TEST(VisionRectanglesTest, APictureTooNarrowToReduceHasNone) {
  plain::Gray gray(9, 30000, 230);
  pictures::fill(gray, 3, 3, 3, 29000, 60);
  EXPECT_TRUE(rectanglesOf(gray).empty());
}

}  // namespace
}  // namespace quillmere::WindowDetector
