#include "popup/CardShape.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

const QRectF kCard(24, 24, 440, 300);

TEST(CardShapeTest, ACornerBeginsAtTheSideWithoutAStep) {
  EXPECT_EQ(CardShape::cornerInset(CardShape::kCornerReach), 0);
  EXPECT_EQ(CardShape::cornerInset(100), 0);
  EXPECT_LT(CardShape::cornerInset(CardShape::kCornerReach - 4), 0.05);
}

TEST(CardShapeTest, AtTheEdgeACornerReachesAsFarAsAtTheSide) {
  EXPECT_DOUBLE_EQ(CardShape::cornerInset(0), CardShape::kCornerReach);
  EXPECT_DOUBLE_EQ(CardShape::cornerInset(-1), CardShape::kCornerReach);
}

TEST(CardShapeTest, OnTheDiagonalItMeetsTheCircleOfItsRadius) {
  const qreal middle = CardShape::kCornerRadius * (1 - std::sqrt(0.5));
  EXPECT_NEAR(CardShape::cornerInset(middle), middle, 1e-9);
}

TEST(CardShapeTest, EachInsetIsSmallerThanTheOneAbove) {
  for (int y = 1; y < CardShape::kCornerReach; ++y) {
    EXPECT_LT(CardShape::cornerInset(y), CardShape::cornerInset(y - 1)) << y;
  }
}

TEST(CardShapeTest, ThePathFillsTheCardAndLeavesItsCorners) {
  const QPainterPath path = CardShape::path(kCard);
  EXPECT_EQ(path.boundingRect(), kCard);
  for (const QPointF corner : {kCard.topLeft(), kCard.topRight(), kCard.bottomRight(), kCard.bottomLeft()}) {
    const QPointF inwards = kCard.center() - corner;
    const QPointF diagonal(inwards.x() > 0 ? 1 : -1, inwards.y() > 0 ? 1 : -1);
    EXPECT_FALSE(path.contains(corner + 6 * diagonal));
    EXPECT_TRUE(path.contains(corner + 7 * diagonal));
  }
  EXPECT_TRUE(path.contains(QPointF(24.5, 170)));
  EXPECT_TRUE(path.contains(QPointF(240, 24.5)));
}

TEST(CardShapeTest, ACardLowerThanTwoCornersStaysInItsRectangle) {
  for (const qreal height : {1.0, 10.0, 65.0}) {
    const QRectF card(24, 24, 440, height);
    EXPECT_EQ(CardShape::path(card).boundingRect(), card);
    EXPECT_TRUE(CardShape::path(card).contains(card.center()));
  }
}

}  // namespace
}  // namespace quillmere
