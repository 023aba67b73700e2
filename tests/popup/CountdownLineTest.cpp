#include "popup/CountdownLine.h"

#include <gtest/gtest.h>
#include <QtTest/QTest>

#include "controls/AppearanceStyle.h"
#include "controls/Theme.h"

namespace quillmere {
namespace {

class CountdownLineTest : public ::testing::Test {
 protected:
  CountdownLineTest() {
    style.setMotionReduced(true);
    line.setStyle(&style);
    parent.resize(200, 20);
    line.setGeometry(0, 0, 200, CountdownLine::kThickness);
    parent.show();
  }
  /// How many columns of it have the line's colour.
  int drawnWidth() {
    const QImage image = line.grab().toImage();
    const QColor wanted = Theme(line.palette()).focusRing;
    int count = 0;
    for (int x = 0; x < image.width(); ++x) count += image.pixelColor(x, 1).rgb() == wanted.rgb();
    return count;
  }

  AppearanceStyle style;
  QWidget parent;
  CountdownLine line{&parent};
};

TEST_F(CountdownLineTest, ItIsNotThereWhereNoTimeRunsDown) {
  EXPECT_TRUE(line.isHidden());
  line.show(0.5);
  EXPECT_FALSE(line.isHidden());
  line.show(std::nullopt);
  EXPECT_TRUE(line.isHidden());
}

TEST_F(CountdownLineTest, ItIsAsLongAsWhatIsLeft) {
  line.show(1);
  EXPECT_NEAR(drawnWidth(), 200, 2);
  line.show(0.25);
  EXPECT_NEAR(drawnWidth(), 50, 2);
  line.show(-1);
  EXPECT_EQ(line.shown(), 0);
}

TEST_F(CountdownLineTest, ItRunsTowardsTheSideWhereLinesBegin) {
  line.show(0.5);
  const QColor wanted = Theme(line.palette()).focusRing;
  EXPECT_EQ(line.grab().toImage().pixelColor(10, 1).rgb(), wanted.rgb());
  line.setLayoutDirection(Qt::RightToLeft);
  EXPECT_EQ(line.grab().toImage().pixelColor(190, 1).rgb(), wanted.rgb());
  EXPECT_NE(line.grab().toImage().pixelColor(10, 1).rgb(), wanted.rgb());
}

TEST_F(CountdownLineTest, BetweenTwoTimesItMovesAndATimeThatStandsStillIsShownSo) {
  style.setMotionReduced(false);
  line.show(1);
  line.show(0.9);
  EXPECT_GT(line.shown(), 0.9) << "on its way";
  EXPECT_TRUE(QTest::qWaitFor([this] { return line.shown() == 0.9; }));
  line.show(0.9);
  QTest::qWait(20);
  EXPECT_EQ(line.shown(), 0.9);
}

TEST_F(CountdownLineTest, ATimeThatBeginsAnewIsFullAtOnce) {
  style.setMotionReduced(false);
  line.show(0.1);
  line.show(1);
  EXPECT_EQ(line.shown(), 1);
}

}  // namespace
}  // namespace quillmere
