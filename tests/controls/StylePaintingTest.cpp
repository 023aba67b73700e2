#include "controls/StylePainting.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

QStyleOption option(QStyle::State state) {
  QStyleOption option;
  option.state = state;
  return option;
}

TEST(StylePaintingTest, OnlyWhatCanBeUsedIsTouchedOrFocused) {
  const QStyle::State touched = QStyle::State_MouseOver | QStyle::State_HasFocus;
  EXPECT_EQ(touchOf(option(touched)), Touch::none);
  EXPECT_FALSE(showsFocus(option(touched)));
  EXPECT_EQ(touchOf(option(touched | QStyle::State_Enabled)), Touch::hovered);
  EXPECT_TRUE(showsFocus(option(touched | QStyle::State_Enabled)));
  EXPECT_EQ(touchOf(option(QStyle::State_Enabled | QStyle::State_MouseOver | QStyle::State_Sunken)), Touch::pressed);
}

TEST(StylePaintingTest, ASymbolStandsInTheMiddle) {
  QImage image(40, 20, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  paintSymbol(painter, image.rect(), QStringLiteral("minus"), 10, Qt::red);
  painter.end();
  EXPECT_EQ(qAlpha(image.pixel(2, 10)), 0);
  EXPECT_GT(qAlpha(image.pixel(20, 10)) + qAlpha(image.pixel(20, 9)), 150);
}

TEST(StylePaintingTest, ThePainterIsAsItWas) {
  QImage image(4, 4, QImage::Format_ARGB32_Premultiplied);
  QPainter painter(&image);
  {
    const SmoothPainting smooth(painter);
    EXPECT_TRUE(painter.testRenderHint(QPainter::Antialiasing));
  }
  EXPECT_FALSE(painter.testRenderHint(QPainter::Antialiasing));
}

}  // namespace
}  // namespace quillmere
