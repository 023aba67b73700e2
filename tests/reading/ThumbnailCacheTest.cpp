#include "reading/ThumbnailCache.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

QImage picture(int side, QColor colour = Qt::red) {
  QImage image(side, side, QImage::Format_RGB32);
  image.fill(colour);
  return image;
}

class ThumbnailCacheTest : public ::testing::Test {
 protected:
  static constexpr int64_t kBytes = 10 * 10 * 4;
  ThumbnailCache cache{3 * kBytes};
};

TEST_F(ThumbnailCacheTest, GivesWhatItKept) {
  EXPECT_EQ(cache.find("a"), std::nullopt);
  cache.keep("a", picture(10));
  EXPECT_EQ(cache.find("a"), picture(10));
  EXPECT_EQ(cache.bytes(), kBytes);
}

TEST_F(ThumbnailCacheTest, CostsAreTheBytesOfTheRowsAsTheyLie) {
  QImage odd(3, 5, QImage::Format_RGB888);
  odd.fill(Qt::red);
  cache.keep("a", odd);
  EXPECT_EQ(cache.bytes(), odd.bytesPerLine() * 5);
  EXPECT_GT(cache.bytes(), 3 * 5 * 3) << "rows are padded";
}

TEST_F(ThumbnailCacheTest, WhatWasUsedLeastRecentlyGoesFirst) {
  for (const char* key : {"a", "b", "c"}) cache.keep(key, picture(10));
  cache.find("a");
  cache.keep("d", picture(10));
  EXPECT_EQ(cache.find("b"), std::nullopt);
  cache.keep("e", picture(10));
  EXPECT_EQ(cache.find("c"), std::nullopt);
  for (const char* key : {"a", "d", "e"}) EXPECT_TRUE(cache.find(key)) << key;
}

TEST_F(ThumbnailCacheTest, AsManyGoAsAreNeeded) {
  for (const char* key : {"a", "b", "c"}) cache.keep(key, picture(10));
  cache.keep("d", picture(17));
  EXPECT_TRUE(cache.find("d"));
  EXPECT_EQ(cache.bytes(), 17 * 17 * 4) << "289 pixels leave no room for 100 more of 300";
}

TEST_F(ThumbnailCacheTest, AsMuchAsTheLimitFits) {
  for (const char* key : {"a", "b", "c"}) cache.keep(key, picture(10));
  EXPECT_EQ(cache.bytes(), 3 * kBytes);
}

TEST_F(ThumbnailCacheTest, ASecondPictureTakesTheFirstOnesPlace) {
  cache.keep("a", picture(10, Qt::red));
  cache.keep("a", picture(5, Qt::blue));
  EXPECT_EQ(cache.find("a"), picture(5, Qt::blue));
  EXPECT_EQ(cache.bytes(), kBytes / 4);
}

TEST_F(ThumbnailCacheTest, APictureLargerThanTheLimitDrivesNothingOut) {
  cache.keep("a", picture(10));
  cache.keep("b", picture(100));
  EXPECT_TRUE(cache.find("a"));
  EXPECT_EQ(cache.find("b"), std::nullopt);
  cache.keep("a", picture(100));
  EXPECT_EQ(cache.find("a"), std::nullopt) << "the earlier one is not that key's any more";
  EXPECT_EQ(cache.bytes(), 0);
}

}  // namespace
}  // namespace quillmere
