#include "detection/EdgeBlocks.h"

#include <gtest/gtest.h>
#include <QtGui/QPainter>

namespace quillmere::CapturedWindows {
namespace {

QImage plain(int width, int height, const QColor& colour = QColor(100, 100, 100)) {
  QImage image(width, height, QImage::Format_RGB32);
  image.fill(colour);
  return image;
}

TEST(EdgeBlocksTest, ALineBelongsToTheBlocksThatItRunsThrough) {
  QImage image = plain(100, 80);
  QPainter(&image).fillRect(40, 16, 60, 32, QColor(103, 100, 100));
  const EdgeBlocks edges(image);
  EXPECT_EQ(edges.rowCount(), 5);
  EXPECT_EQ(edges.columnCount(), 6);
  for (int row = 0; row < 5; ++row) EXPECT_EQ(edges.hasVertical(40, row), row == 1 || row == 2) << row;
  for (const int near : {39, 41}) EXPECT_TRUE(edges.hasVertical(near, 1));
  for (const int far : {38, 42}) EXPECT_FALSE(edges.hasVertical(far, 1));
  for (int column = 0; column < 6; ++column) EXPECT_EQ(edges.hasHorizontal(16, column), column >= 3) << column;
  EXPECT_EQ(edges.verticalLines()[40], 2);
  EXPECT_EQ(edges.verticalLines()[41], 0) << "exactly there alone";
}

TEST(EdgeBlocksTest, ALineIsAChangeOfTwoLevelsInAnyColour) {
  for (const int channel : {0, 1, 2}) {
    for (const int change : {1, 2}) {
      std::array<int, 3> colour{100, 100, 100};
      colour[static_cast<size_t>(channel)] += change;
      QImage image = plain(64, 32);
      QPainter(&image).fillRect(30, 0, 34, 32, QColor(colour[0], colour[1], colour[2]));
      EXPECT_EQ(EdgeBlocks(image).hasVertical(30, 0), change == 2) << channel;
    }
  }
}

TEST(EdgeBlocksTest, TheSlopeOfAShadowIsNoLineButTheWindowsSideIs) {
  QImage image = plain(80, 32, QColor(200, 200, 200));
  for (int x = 20; x < 50; ++x) QPainter(&image).fillRect(x, 0, 1, 32, QColor(200 - 3 * (x - 20), 200, 200));
  QPainter(&image).fillRect(50, 0, 30, 32, Qt::white);
  const EdgeBlocks edges(image);
  for (int x = 25; x < 45; ++x) EXPECT_FALSE(edges.hasVertical(x, 0)) << x;
  EXPECT_TRUE(edges.hasVertical(50, 0));
}

TEST(EdgeBlocksTest, AtTwoPixelsAPointABorderIsTwoPixelsWide) {
  QImage image = plain(80, 32, QColor(120, 140, 160));
  QPainter painter(&image);
  painter.fillRect(38, 0, 42, 32, QColor(28, 30, 34));
  painter.fillRect(40, 0, 40, 32, QColor(27, 27, 27));
  painter.fillRect(42, 0, 38, 32, QColor(46, 52, 54));
  painter.end();
  EXPECT_FALSE(EdgeBlocks(image).hasVertical(40, 0)) << "the window begins behind its border";
  EXPECT_TRUE(EdgeBlocks(image, 2).hasVertical(40, 0));
}

TEST(EdgeBlocksTest, APictureSmallerThanABlockHasNone) {
  const EdgeBlocks edges(plain(9, 9));
  EXPECT_EQ(edges.rowCount(), 0);
  EXPECT_EQ(edges.verticalLines(), std::vector<int>(10));
}

TEST(EdgeBlocksTest, OutsideThePictureNothingChanges) {
  const EdgeBlocks edges(plain(40, 40));
  EXPECT_EQ(edges.verticalStep(-5, 10), 0);
  EXPECT_EQ(edges.verticalStep(20, 40), 0);
  EXPECT_EQ(edges.horizontalStep(20, 400), 0);
}

}  // namespace
}  // namespace quillmere::CapturedWindows
