#include "controls/Contrast.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

TEST(ContrastTest, BlackAndWhiteAreFarthestApart) {
  EXPECT_DOUBLE_EQ(relativeLuminance(Qt::black), 0);
  EXPECT_DOUBLE_EQ(relativeLuminance(Qt::white), 1);
  EXPECT_DOUBLE_EQ(contrastRatio(Qt::black, Qt::white), 21);
  EXPECT_DOUBLE_EQ(contrastRatio(Qt::white, Qt::black), 21);
  EXPECT_DOUBLE_EQ(contrastRatio(QColor(0x767676), QColor(0x767676)), 1);
}

TEST(ContrastTest, IsTheGuidelinesOwn) {
  // The lightest grey that passes on white, and the first that does not.
  EXPECT_NEAR(contrastRatio(QColor(0x767676), Qt::white), 4.54, 0.005);
  EXPECT_NEAR(contrastRatio(QColor(0x777777), Qt::white), 4.48, 0.005);
  EXPECT_NEAR(relativeLuminance(Qt::red), 0.2126, 1e-9);
  EXPECT_NEAR(relativeLuminance(Qt::green), 0.7152, 1e-9);
  EXPECT_NEAR(relativeLuminance(Qt::blue), 0.0722, 1e-9);
}

TEST(ContrastTest, VeryDarkChannelsCountLinearly) {
  EXPECT_NEAR(relativeLuminance(QColor(10, 10, 10)), 10 / 255.0 / 12.92, 1e-6);
}

TEST(ContrastTest, ATranslucentColourShowsItsGround) {
  QColor half(Qt::white);
  half.setAlphaF(0.5F);
  EXPECT_NEAR(painted(half, Qt::black).red(), 128, 1);
  EXPECT_EQ(painted(Qt::red, Qt::black), QColor(Qt::red));
}

TEST(ContrastTest, StandingOutGoesNoFartherThanItMust) {
  const QColor blue(0x3584e4);
  const QColor darker = standingOut(blue, Qt::white, kTextContrast, Qt::black);
  EXPECT_GE(contrastRatio(darker, Qt::white), kTextContrast);
  EXPECT_LT(contrastRatio(darker, Qt::white), kTextContrast + 0.3);
  EXPECT_EQ(standingOut(Qt::black, Qt::white, kTextContrast, Qt::red), QColor(Qt::black)) << "already does";
  EXPECT_EQ(standingOut(Qt::white, Qt::white, kTextContrast, QColor(Qt::yellow)), QColor(Qt::yellow)) << "none does";
}

}  // namespace
}  // namespace quillmere
