#include "controls/ButtonLook.h"

#include <QtGui/QPainter>

#include "controls/Contrast.h"
#include "controls/DesktopLook.h"

namespace quillmere {
namespace {

class ButtonLookTest : public testing::DesktopLook {};

TEST_F(ButtonLookTest, EachTouchOfAButtonLooksAnother) {
  for (const auto role : {ButtonRole::primary, ButtonRole::secondary}) {
    std::set<QRgb> grounds;
    for (const Touch touch : {Touch::none, Touch::hovered, Touch::pressed}) {
      grounds.insert(buttonLook(theme(), role, touch, true).ground.rgba());
    }
    EXPECT_EQ(grounds.size(), 3U);
  }
}

TEST_F(ButtonLookTest, OneThatCannotBeUsedCanBeReadAndIsNoPrimaryOne) {
  for (const Appearance& appearance :
       {of(Scheme::light), of(Scheme::dark), of(Scheme::light, true), of(Scheme::dark, true)}) {
    show(appearance);
    for (const auto role : {ButtonRole::primary, ButtonRole::secondary, ButtonRole::destructive, ButtonRole::icon}) {
      const ButtonLook made = buttonLook(theme(), role, Touch::hovered, false);
      EXPECT_NE(made.ground, theme().accent);
      EXPECT_GE(contrastRatio(made.ink, painted(made.ground, theme().card)), kMarkContrast);
    }
  }
}

TEST_F(ButtonLookTest, WhatThrowsAwayIsWrittenInItsColour) {
  EXPECT_EQ(buttonLook(theme(), ButtonRole::destructive, Touch::none, true).ink, theme().danger);
}

TEST_F(ButtonLookTest, AFocusRingStaysInside) {
  QImage image(60, 30, QImage::Format_RGB32);
  image.fill(Qt::white);
  QPainter painter(&image);
  paintFocusRing(painter, QRectF(0, 0, 60, 30), 10, Qt::red);
  painter.end();
  EXPECT_EQ(image.pixelColor(30, 0), QColor(Qt::white));
  EXPECT_EQ(image.pixelColor(30, 2), QColor(Qt::red));
  EXPECT_EQ(image.pixelColor(30, 15), QColor(Qt::white));
}

}  // namespace
}  // namespace quillmere
