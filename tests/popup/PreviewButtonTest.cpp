#include "popup/PreviewButton.h"

#include <gtest/gtest.h>
#include <QtTest/QTest>

#include "controls/AppearanceStyle.h"
#include "controls/Theme.h"
#include "support/EventLoop.h"

namespace quillmere {
namespace {

class PreviewButtonTest : public ::testing::Test {
 protected:
  QImage picture() { return button.grab().toImage(); }
  QColor ground() { return picture().pixelColor(PreviewButton::kSide / 2, 4); }
  Theme theme() const { return Theme(button.palette()); }

  AppearanceStyle style;
  PreviewButton button{QStringLiteral("macwindow"), QStringLiteral("Extract Window"), nullptr};
};

TEST_F(PreviewButtonTest, IsRoundAndHasItsNameThoughItShowsNoText) {
  EXPECT_EQ(button.size(), QSize(32, 32));
  EXPECT_EQ(button.accessibleName(), QStringLiteral("Extract Window"));
  EXPECT_EQ(button.text(), QString());
}

TEST_F(PreviewButtonTest, WhetherItIsOnIsItsOwnersToSay) {
  int clicks = 0;
  QObject::connect(&button, &QPushButton::clicked, [&] { ++clicks; });
  EXPECT_FALSE(button.isCheckable());
  button.setOn(false);
  QTest::mouseClick(&button, Qt::LeftButton);
  EXPECT_FALSE(button.isChecked());
  button.setOn(true);
  QTest::mouseClick(&button, Qt::LeftButton);
  EXPECT_TRUE(button.isChecked());
  EXPECT_EQ(clicks, 2);
}

TEST_F(PreviewButtonTest, OnItHasTheAccentAndOffTheCardsColour) {
  EXPECT_EQ(ground(), theme().card);
  button.setOn(true);
  EXPECT_EQ(ground(), theme().accent);
}

TEST_F(PreviewButtonTest, WorkIsAnOpenRingInThePlaceOfTheSymbol) {
  const QImage idle = picture();
  style.setMotionReduced(true);
  button.setStyle(&style);
  button.setWorking(true);
  EXPECT_TRUE(button.isWorking());
  const QImage working = picture();
  EXPECT_NE(working, idle);
  EXPECT_EQ(working.pixelColor(16, 16), theme().card) << "a ring";
  button.setWorking(false);
  EXPECT_EQ(picture(), idle);
}

TEST_F(PreviewButtonTest, TheRingTurnsWhereThingsMayMove) {
  button.setStyle(&style);
  button.show();
  button.setWorking(true);
  const QImage first = picture();
  EXPECT_TRUE(testing::runLoopUntil([&] { return picture() != first; }));
}

TEST_F(PreviewButtonTest, AClickTakesNoKeyboard) {
  EXPECT_EQ(button.focusPolicy(), Qt::TabFocus);
  EXPECT_FALSE(button.autoDefault());
}

}  // namespace
}  // namespace quillmere
