#include "pixels/PixelRects.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

TEST(PixelRectsTest, ARectangleGrowsOutwardToWholePixels) {
  EXPECT_EQ(integralRect({0.5, 0.5, 10, 10}), QRectF(0, 0, 11, 11));
  EXPECT_EQ(integralRect({-0.5, -1.5, 1, 1}), QRectF(-1, -2, 2, 2));
  EXPECT_EQ(integralRect({3, 4, 10, 20}), QRectF(3, 4, 10, 20));
}

TEST(PixelRectsTest, TheCommonPartIsEmptyWhereThereIsNone) {
  const QRectF a(0, 0, 10, 20);
  EXPECT_EQ(commonRect(a, {5, 6, 10, 20}), QRectF(5, 6, 5, 14));
  EXPECT_EQ(commonRect({5, 6, 10, 20}, a), QRectF(5, 6, 5, 14));
  EXPECT_EQ(commonRect(a, {11, 0, 10, 20}), QRectF());
  EXPECT_EQ(commonRect(a, {0, 21, 10, 20}), QRectF());
  EXPECT_EQ(commonRect(a, {-11, 0, 10, 20}), QRectF());
  EXPECT_EQ(commonRect(a, {11, 21, 10, 20}), QRectF());
  EXPECT_EQ(commonRect(a, {10, 5, 10, 5}), QRectF(10, 5, 0, 5)) << "they touch";
}

TEST(PixelRectsTest, ARectangleContainsItselfAndWhatReachesNoFarther) {
  const QRectF a(0, 0, 10, 20);
  EXPECT_TRUE(rectContains(a, a));
  EXPECT_TRUE(rectContains(a, {1, 1, 8, 18}));
  EXPECT_TRUE(rectContains(a, {10, 20, 0, 0}));
  EXPECT_FALSE(rectContains(a, {-1, 0, 5, 5}));
  EXPECT_FALSE(rectContains(a, {0, -1, 5, 5}));
  EXPECT_FALSE(rectContains(a, {0, 0, 11, 5}));
  EXPECT_FALSE(rectContains(a, {0, 0, 5, 21}));
}

}  // namespace
}  // namespace quillmere
