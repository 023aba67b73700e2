#include "controls/PictureLevels.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

QImage ofSize(int width, int height) {
  QImage image(width, height, QImage::Format_RGB32);
  image.fill(Qt::red);
  return image;
}

TEST(PictureLevelsTest, EachHalfIsHalfAsLarge) {
  const auto halves = PictureLevels::halves(ofSize(1001, 300));
  ASSERT_EQ(halves.size(), 4U);
  EXPECT_EQ(halves[0].size(), QSize(500, 150));
  EXPECT_EQ(halves[1].size(), QSize(250, 75));
  EXPECT_EQ(halves[2].size(), QSize(125, 37));
  EXPECT_EQ(halves[3].size(), QSize(62, 18));
  EXPECT_EQ(halves[3].pixelColor(30, 9), QColor(Qt::red));
}

TEST(PictureLevelsTest, OneCopyIsHalvedAsOftenAsItStillHasAllThatIsSeen) {
  EXPECT_EQ(PictureLevels::halvings(1001, 1001), 0);
  EXPECT_EQ(PictureLevels::halvings(1001, 501), 0);
  EXPECT_EQ(PictureLevels::halvings(1001, 500), 1);
  EXPECT_EQ(PictureLevels::halvings(1001, 125), 3);
  EXPECT_EQ(PictureLevels::halvings(4, 0), 2);
  EXPECT_EQ(PictureLevels::halved(ofSize(1001, 300), 2).size(), QSize(250, 75));
  EXPECT_EQ(PictureLevels::halved(ofSize(1001, 300), 0).size(), QSize(1001, 300));
  EXPECT_TRUE(PictureLevels::halved({}, 2).isNull());
}

TEST(PictureLevelsTest, WhatIsSharedIsCountedOnce) {
  PictureLevels levels;
  const QImage full = ofSize(100, 50);
  levels.add(full);
  EXPECT_EQ(levels.bytesBeside(full), 0);
  levels.add(ofSize(50, 25));
  EXPECT_EQ(levels.bytesBeside(full), 50 * 25 * 4);
}

TEST(PictureLevelsTest, ALineKeepsAPixel) {
  const auto halves = PictureLevels::halves(ofSize(1, 200));
  ASSERT_EQ(halves.size(), 2U);
  EXPECT_EQ(halves[1].size(), QSize(1, 50));
}

TEST(PictureLevelsTest, OfNothingThereIsNothing) {
  EXPECT_TRUE(PictureLevels::halves({}).empty());
  EXPECT_TRUE(PictureLevels().nearest({10, 10}).isNull());
}

TEST(PictureLevelsTest, TheSmallestThatHasEnoughIsDrawn) {
  PictureLevels levels;
  for (const int width : {1000, 250, 500}) levels.add(ofSize(width, width / 2));
  EXPECT_EQ(levels.nearest({1000, 500}).width(), 1000);
  EXPECT_EQ(levels.nearest({501, 250}).width(), 1000);
  EXPECT_EQ(levels.nearest({500, 250}).width(), 500);
  EXPECT_EQ(levels.nearest({251, 125}).width(), 500);
  EXPECT_EQ(levels.nearest({4000, 2000}).width(), 1000) << "none has enough";
  EXPECT_EQ(levels.nearest({20, 10}).width(), 250) << "none is small enough";
}

TEST(PictureLevelsTest, OneThatIsTooLargeWaitsForItsHalves) {
  PictureLevels levels;
  levels.add(ofSize(8000, 4000));
  EXPECT_EQ(levels.nearest({1500, 750}).width(), 8000) << "there is no other";
  levels.add(ofSize(1400, 700));
  EXPECT_EQ(levels.nearest({1500, 750}).width(), 1400);
  EXPECT_EQ(levels.nearest({4000, 2000}).width(), 8000);
  for (const QImage& half : PictureLevels::halves(ofSize(8000, 4000))) levels.add(half);
  EXPECT_EQ(levels.nearest({1500, 750}).width(), 2000);
  levels.clear();
  EXPECT_TRUE(levels.isEmpty());
}

}  // namespace
}  // namespace quillmere
