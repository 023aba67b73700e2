#include "detection/ShadowProfile.h"

#include <gtest/gtest.h>

#include "detection/PlainShadow.h"
#include "support/RandomPictures.h"

namespace quillmere::WindowShadow {
namespace {

std::optional<std::vector<double>> profile(Side side, const plain::Gray& gray, const QRectF& frame, int64_t depth) {
  const auto found = brightnessProfile(side, pictures::grayImage(gray), frame, depth);
  EXPECT_EQ(found, plain::brightnessProfile(side, gray, frame, depth));
  // What is farther out can be had alone.
  for (const int64_t known : {int64_t{1}, depth / 3, depth / 2, depth - 1}) {
    if (known < 1 || known >= depth) continue;
    const auto farther = brightnessProfile(side, pictures::grayImage(gray), frame, depth, known);
    EXPECT_EQ(farther, found ? std::optional(std::vector<double>(found->begin() + known, found->end())) : std::nullopt);
  }
  return found;
}

/// Level 10 * (1 + distance) around a frame of 100 by 60.
const QRectF kFrame(40, 50, 100, 60);
plain::Gray rings() {
  plain::Gray gray(200, 180);
  for (int64_t y = 0; y < 180; ++y) {
    for (int64_t x = 0; x < 200; ++x) {
      const int64_t distance = std::max<int64_t>({40 - x, x - 139, 50 - y, y - 109, 0});
      pictures::set(gray, x, y, static_cast<int>(10 * distance));
    }
  }
  return gray;
}

TEST(ShadowProfileTest, TheSampleNextToTheWindowComesFirst) {
  for (const Side side : kSides) {
    EXPECT_EQ(profile(side, rings(), kFrame, 4), (std::vector<double>{10, 20, 30, 40})) << side;
  }
}

TEST(ShadowProfileTest, AFrameIsCutToWholePixels) {
  EXPECT_EQ(profile(left, rings(), QRectF(40.9, 50, 100, 60), 1), std::vector<double>{10});
  EXPECT_EQ(profile(top, rings(), QRectF(40, 50.9, 100, 60), 1), std::vector<double>{10});
  EXPECT_EQ(profile(right, rings(), QRectF(40, 50, 100.9, 60), 1), std::vector<double>{10});
  EXPECT_EQ(profile(bottom, rings(), QRectF(40, 50, 100, 60.9), 1), std::vector<double>{10});
}

TEST(ShadowProfileTest, ASideIsSampledWithoutItsEnds) {
  // 100 pixels: the first 8 are left out, and 84 are taken; the middle half of these begins with the 21st.
  for (const bool isUpright : {false, true}) {
    plain::Gray gray(isUpright ? 50 : 150, isUpright ? 150 : 50);
    const auto put = [&](int64_t along, int level) {
      pictures::fill(gray, isUpright ? 0 : along, isUpright ? along : 0, isUpright ? 50 : 1, isUpright ? 1 : 50, level);
    };
    for (int64_t along = 0; along < 150; ++along) put(along, static_cast<int>(along));
    const QRectF frame(isUpright ? 10 : 20, isUpright ? 20 : 10, isUpright ? 30 : 100, isUpright ? 100 : 30);
    for (const Side side : isUpright ? std::array{left, right} : std::array{top, bottom}) {
      // Levels 28 to 111: from 49 up to 91.
      EXPECT_EQ(profile(side, gray, frame, 1), std::vector<double>{69.5});
    }
  }
}

TEST(ShadowProfileTest, ASideWithFewerThanTwentyFourLinesHasNone) {
  const plain::Gray gray(200, 180, 100);
  // 0.84 of 29 is 24.36; of 28 it is 23.52.
  EXPECT_TRUE(profile(left, gray, QRectF(40, 50, 100, 29), 5));
  EXPECT_FALSE(profile(left, gray, QRectF(40, 50, 100, 28), 5));
  EXPECT_TRUE(profile(bottom, gray, QRectF(40, 50, 29, 100), 5));
  EXPECT_FALSE(profile(bottom, gray, QRectF(40, 50, 28, 100), 5));
}

TEST(ShadowProfileTest, ASampleOutsideThePictureLeavesNone) {
  const plain::Gray gray(200, 180, 100);
  EXPECT_TRUE(profile(left, gray, kFrame, 40));
  EXPECT_FALSE(profile(left, gray, kFrame, 41));
  EXPECT_TRUE(profile(top, gray, kFrame, 50));
  EXPECT_FALSE(profile(top, gray, kFrame, 51));
  EXPECT_TRUE(profile(right, gray, kFrame, 60));
  EXPECT_FALSE(profile(right, gray, kFrame, 61));
  EXPECT_TRUE(profile(bottom, gray, kFrame, 70));
  EXPECT_FALSE(profile(bottom, gray, kFrame, 71));
  // Along the side: 8 of 100 before the first line, 8 after the last.
  EXPECT_TRUE(profile(top, gray, QRectF(-8, 50, 100, 60), 5));
  EXPECT_FALSE(profile(top, gray, QRectF(-9, 50, 100, 60), 5));
  EXPECT_TRUE(profile(top, gray, QRectF(108, 50, 100, 60), 5));
  EXPECT_FALSE(profile(top, gray, QRectF(109, 50, 100, 60), 5));
  EXPECT_TRUE(profile(left, gray, QRectF(40, -8, 60, 100), 5));
  EXPECT_FALSE(profile(left, gray, QRectF(40, -9, 60, 100), 5));
  EXPECT_TRUE(profile(left, gray, QRectF(40, 88, 60, 100), 5));
  EXPECT_FALSE(profile(left, gray, QRectF(40, 89, 60, 100), 5));
}

TEST(ShadowProfileTest, OfALongSideEverySecondOrThirdLineIsTaken) {
  // 0.84 of 1220 is 1024.8: the first length of which every second is taken.
  for (const int length : {1218, 1219, 1220, 1400, 1827, 1829, 1830, 2440}) {
    for (const bool isUpright : {false, true}) {
      plain::Gray gray(isUpright ? 90 : length + 20, isUpright ? length + 20 : 90);
      pictures::RandomPicture random(static_cast<uint32_t>(length));
      for (int64_t along = 0; along < length + 20; ++along) {
        const int level = random.upTo(255);
        pictures::fill(gray, isUpright ? 0 : along, isUpright ? along : 0, isUpright ? 90 : 1, isUpright ? 1 : 90,
                       level);
      }
      const QRectF frame(isUpright ? 30 : 10, isUpright ? 10 : 30, isUpright ? 30 : length, isUpright ? length : 30);
      for (const Side side : isUpright ? std::array{left, right} : std::array{top, bottom}) {
        EXPECT_TRUE(profile(side, gray, frame, 20)) << length;
      }
    }
  }
}

TEST(ShadowProfileTest, WhatCrossesAFewLinesLeavesNoMark) {
  plain::Gray gray = rings();
  pictures::fill(gray, 0, 60, 40, 10, 255);
  pictures::fill(gray, 0, 80, 40, 10, 0);
  EXPECT_EQ(profile(left, gray, kFrame, 4), (std::vector<double>{10, 20, 30, 40}));
}

TEST(ShadowProfileTest, RandomSidesGiveWhatSortingGives) {
  for (uint32_t seed = 1; seed <= 250; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    pictures::RandomPicture random(seed);
    plain::Gray gray(random.between(60, 420), random.between(60, 420), random.upTo(255));
    if (seed % 40 == 0) gray = plain::Gray(1300, 1400, 9);
    random.noise(gray, random.between(1, 255));
    const int x = random.between(1, 30);
    const int y = random.between(1, 30);
    const QRectF frame(x, y, random.between(29, static_cast<int>(gray.width) - x),
                       random.between(29, static_cast<int>(gray.height) - y));
    for (const Side side : kSides) {
      const int64_t room = plain::room(side, gray, frame);
      if (room > 0) profile(side, gray, frame, random.between(1, static_cast<int>(room)));
    }
  }
}

}  // namespace
}  // namespace quillmere::WindowShadow
