#include "detection/TitleBarButtons.h"

#include <gtest/gtest.h>

#include "detection/PlainButtons.h"
#include "support/RandomPictures.h"

namespace quillmere::WindowDetector {
namespace {

constexpr int kBackground = 200;
constexpr int kDot = 100;
const QRectF kFrame(10, 10, 400, 300);

bool hasButtons(const plain::Gray& gray, const QRectF& frame = kFrame) {
  const bool found = hasTitleBarButtons(pictures::grayImage(gray), frame);
  EXPECT_EQ(found, plain::hasTitleBarButtons(gray, frame));
  return found;
}

/// A solid rectangle with its corner pixels cut: filled enough, and of exactly that many pixels.
struct Box {
  int64_t left;
  int64_t top;
  int64_t width;
  int64_t height;
  int64_t count;
};
void draw(plain::Gray& gray, const Box& box, int level = kDot) {
  int64_t left = box.count;
  // The outline first, so that the box is as wide and as high as wanted; then the inside row by row.
  const auto put = [&](int64_t x, int64_t y) {
    if (left > 0 && gray.at(x, y) == kBackground) {
      gray.at(x, y) = level;
      --left;
    }
  };
  const int64_t right = box.left + box.width - 1;
  const int64_t bottom = box.top + box.height - 1;
  for (int64_t x = box.left; x <= right; ++x) put(x, box.top);
  for (int64_t y = box.top; y <= bottom; ++y) put(box.left, y);
  for (int64_t y = box.top; y <= bottom; ++y) put(right, y);
  for (int64_t y = box.top; y <= bottom; ++y) {
    for (int64_t x = box.left; x <= right; ++x) put(x, y);
  }
}
/// The boxes are all there is.
bool haveButtons(const std::vector<Box>& boxes, const QRectF& frame = kFrame) {
  plain::Gray gray(500, 400, kBackground);
  for (const Box& box : boxes) draw(gray, box);
  return hasButtons(gray, frame);
}
/// Three boxes of one form, with ample room.
bool haveButtons(int64_t width, int64_t height, int64_t count) {
  const int64_t pitch = 12 * width / 10 + 2;
  return haveButtons({{20, 20, width, height, count},
                      {20 + pitch, 20, width, height, count},
                      {20 + 2 * pitch, 20, width, height, count}});
}

TEST(TitleBarButtonsTest, ThreeDotsInARowAreButtons) {
  plain::Gray gray(500, 400, kBackground);
  pictures::titleBarDots(gray, 24, 20, 12, 20, kDot);
  EXPECT_TRUE(hasButtons(gray));
  EXPECT_FALSE(hasButtons(plain::Gray(500, 400, kBackground)));
}

TEST(TitleBarButtonsTest, TwoDotsAreNone) {
  EXPECT_TRUE(haveButtons({{20, 20, 10, 10, 80}, {40, 20, 10, 10, 80}, {60, 20, 10, 10, 80}}));
  EXPECT_FALSE(haveButtons({{20, 20, 10, 10, 80}, {40, 20, 10, 10, 80}}));
}

TEST(TitleBarButtonsTest, AFrameBelowTheLeastSizeNeverHasThem) {
  plain::Gray gray(500, 400, kBackground);
  pictures::titleBarDots(gray, 14, 14, 8, 10, kDot);
  EXPECT_TRUE(hasButtons(gray, QRectF(10, 10, 122, 93)));
  EXPECT_FALSE(hasButtons(gray, QRectF(10, 10, 121, 93)));
  EXPECT_FALSE(hasButtons(gray, QRectF(10, 10, 122, 92)));
}

TEST(TitleBarButtonsTest, TheFrameIsCutToWholePixels) {
  plain::Gray gray(500, 400, kBackground);
  pictures::titleBarDots(gray, 14, 14, 8, 10, kDot);
  EXPECT_FALSE(hasButtons(gray, QRectF(10, 10, 121.9, 93)));
  EXPECT_FALSE(hasButtons(gray, QRectF(10, 10, 122, 92.9)));
  EXPECT_TRUE(hasButtons(gray, QRectF(-0.9, -0.9, 150, 150)));
}

TEST(TitleBarButtonsTest, TheSearchedRegionMustLieInThePicture) {
  plain::Gray gray(200, 100, kBackground);
  pictures::titleBarDots(gray, 14, 4, 8, 10, kDot);
  EXPECT_TRUE(hasButtons(gray, QRectF(0, 0, 400, 300))) << "of the frame, only the region counts";
  EXPECT_FALSE(hasButtons(gray, QRectF(0, 0, 402, 300)));
  EXPECT_FALSE(hasButtons(gray, QRectF(0, 0, 400, 303)));
  EXPECT_FALSE(hasButtons(gray, QRectF(-1, 0, 200, 200)));
  EXPECT_FALSE(hasButtons(gray, QRectF(0, -1, 200, 200)));
  EXPECT_TRUE(hasButtons(gray, QRectF(1, 1, 200, 200)));
}

/// Three buttons of 10 by 10, the last at `x` with a tail to the right: as wide as the region lets it be, and up to 12
/// one of three.
bool endAtRight(int64_t x, double frameWidth) {
  plain::Gray gray(900, 700, kBackground);
  for (const int64_t left : {x - 40, x - 20, x}) draw(gray, {left, 20, 10, 10, 80});
  pictures::fill(gray, x + 10, 20, 20, 1, kDot);
  return hasButtons(gray, QRectF(0, 0, frameWidth, 300));
}
/// Three with tails downward: as high as the region lets them be, and up to 14 square enough.
bool endAtBottom(int64_t y, double frameHeight) {
  plain::Gray gray(900, 700, kBackground);
  for (const int64_t x : {20, 40, 60}) {
    draw(gray, {x, y, 10, 10, 90});
    pictures::fill(gray, x, y + 10, 1, 20, kDot);
  }
  return hasButtons(gray, QRectF(0, 0, 400, frameHeight));
}

TEST(TitleBarButtonsTest, TheRegionIsHalfTheWidthButAtMost320) {
  EXPECT_TRUE(endAtRight(128, 280));
  EXPECT_FALSE(endAtRight(127, 280));
  EXPECT_TRUE(endAtRight(128, 281)) << "the half is cut";
  EXPECT_FALSE(endAtRight(128, 282));
  for (const int width : {640, 642, 800}) {
    EXPECT_TRUE(endAtRight(308, width));
    EXPECT_FALSE(endAtRight(307, width));
  }
  EXPECT_TRUE(endAtRight(307, 638));
}

TEST(TitleBarButtonsTest, TheRegionIsAThirdOfTheHeightButAtMost170) {
  EXPECT_TRUE(endAtBottom(86, 300));
  EXPECT_FALSE(endAtBottom(85, 300));
  EXPECT_TRUE(endAtBottom(86, 302)) << "the third is cut";
  EXPECT_FALSE(endAtBottom(86, 303));
  for (const int height : {510, 513, 650}) {
    EXPECT_TRUE(endAtBottom(156, height));
    EXPECT_FALSE(endAtBottom(155, height));
  }
  EXPECT_TRUE(endAtBottom(155, 509));
}

TEST(TitleBarButtonsTest, APixelStandsOutFromThirteenLevels) {
  for (const int sign : {-1, 1}) {
    for (const int difference : {12, 13}) {
      plain::Gray gray(500, 400, kBackground);
      pictures::titleBarDots(gray, 24, 20, 12, 20, kBackground + sign * difference);
      EXPECT_EQ(hasButtons(gray), difference == 13);
    }
  }
}

TEST(TitleBarButtonsTest, TheBackgroundIsTheMostFrequentLevelAndOfEqualsTheDarkest) {
  // Half of the region of 200 by 100 is at 100, half at 112; dots of 113 stand out from the darker half alone.
  plain::Gray gray(500, 400, 112);
  pictures::fill(gray, 0, 0, 500, 60, 100);
  pictures::titleBarDots(gray, 24, 20, 12, 20, 113);
  int64_t dark = 0;
  int64_t light = 0;
  for (int64_t y = 10; y < 110; ++y) {
    for (int64_t x = 10; x < 210; ++x) (gray.at(x, y) == 100 ? dark : light) += gray.at(x, y) == 113 ? 0 : 1;
  }
  // Dark pixels are missing where the dots are.
  pictures::fill(gray, 10, 60, light - dark, 1, 106);
  int64_t balance = 0;
  for (int64_t y = 10; y < 110; ++y) {
    for (int64_t x = 10; x < 210; ++x) balance += (gray.at(x, y) == 100 ? 1 : 0) - (gray.at(x, y) == 112 ? 1 : 0);
  }
  ASSERT_LE(balance, 0);
  pictures::fill(gray, 10, 61, -balance, 1, 106);
  EXPECT_TRUE(hasButtons(gray)) << "equal counts";
  pictures::fill(gray, 10, 12, 1, 1, 106);
  EXPECT_FALSE(hasButtons(gray)) << "one more of the lighter level";
}

TEST(TitleBarButtonsTest, AButtonHasFortyToSixThousandPixels) {
  EXPECT_TRUE(haveButtons(8, 8, 40));
  EXPECT_FALSE(haveButtons(8, 8, 39));
  for (const int64_t count : {6000, 6001}) {
    const std::vector<Box> boxes{{5, 5, 80, 88, count}, {105, 5, 80, 88, count}, {205, 5, 80, 88, count}};
    plain::Gray big(900, 700, kBackground);
    for (const Box& box : boxes) draw(big, box);
    EXPECT_EQ(hasButtons(big, QRectF(0, 0, 700, 600)), count == 6000);
  }
}

TEST(TitleBarButtonsTest, AButtonIsRoughlySquare) {
  EXPECT_TRUE(haveButtons(14, 20, 200)) << "0.7";
  EXPECT_FALSE(haveButtons(36, 52, 1200));
  EXPECT_TRUE(haveButtons(29, 20, 400)) << "1.45";
  EXPECT_FALSE(haveButtons(51, 35, 1100));
}

TEST(TitleBarButtonsTest, AButtonIsFilledLikeADisc) {
  EXPECT_TRUE(haveButtons(10, 10, 55));
  EXPECT_FALSE(haveButtons(10, 10, 54));
  EXPECT_TRUE(haveButtons(10, 10, 96));
  EXPECT_FALSE(haveButtons(10, 10, 97));
}

TEST(TitleBarButtonsTest, DiagonalNeighboursAreTwoShapes) {
  plain::Gray gray(500, 400, kBackground);
  for (const int64_t x : {20, 40, 60}) {
    draw(gray, {x, 20, 8, 8, 55});
    pictures::fill(gray, x + 8, 28, 8, 1, kDot);
  }
  EXPECT_TRUE(hasButtons(gray));
  for (const int64_t x : {20, 40, 60}) pictures::fill(gray, x + 7, 28, 1, 1, kDot);
  EXPECT_FALSE(hasButtons(gray)) << "joined by an edge, the tail belongs to the shape";
}

TEST(TitleBarButtonsTest, AShapeThatComesTogetherLaterIsOne) {
  plain::Gray gray(500, 400, kBackground);
  for (const int64_t x : {20, 50, 80}) {
    // A bowl, a ring, a fork: met as several runs, joined below.
    pictures::fill(gray, x, 20, 3, 12, kDot);
    pictures::fill(gray, x + 9, 20, 3, 12, kDot);
    pictures::fill(gray, x + 5, 22, 2, 10, kDot);
    pictures::fill(gray, x, 31, 12, 3, kDot);
  }
  EXPECT_TRUE(hasButtons(gray));
}

TEST(TitleBarButtonsTest, TheScanEndsWithFortyOneShapes) {
  for (const int specks : {38, 39}) {
    plain::Gray gray(900, 700, kBackground);
    // In three columns that are not evenly apart, and above the buttons.
    for (int i = 0; i < specks; ++i) draw(gray, {std::array{5, 105, 300}[i % 3], 2 + 8 * (i / 3), 7, 7, 42});
    for (const int64_t x : {20, 40, 60}) draw(gray, {x, 150, 10, 10, 80});
    EXPECT_EQ(hasButtons(gray, QRectF(0, 0, 800, 690)), specks == 38) << "the third button is one of the 41 or not";
  }
}

TEST(TitleBarButtonsTest, TheWidestIsBelowOneAndThreeTenthsOfTheNarrowest) {
  EXPECT_TRUE(haveButtons({{20, 20, 10, 12, 100}, {45, 20, 12, 12, 100}, {70, 20, 12, 12, 100}}));
  for (const int at : {0, 1, 2}) {
    std::vector<Box> boxes{{20, 20, 10, 10, 80}, {45, 20, 10, 10, 80}, {70, 20, 10, 10, 80}};
    boxes[at].width = 13;
    boxes[at].count = 110;
    EXPECT_FALSE(haveButtons(boxes)) << "1.3";
    for (Box& box : boxes) box.width = 20, box.height = 20, box.count = 320;
    boxes[1].left = 50;
    boxes[2].left = 80;
    boxes[at].width = 25;
    boxes[at].count = 400;
    EXPECT_TRUE(haveButtons(boxes)) << "1.25";
  }
}

TEST(TitleBarButtonsTest, HeightsAreNotCompared) {
  EXPECT_TRUE(haveButtons({{20, 20, 10, 14, 110}, {40, 23, 10, 7, 60}, {60, 20, 10, 14, 110}}));
}

TEST(TitleBarButtonsTest, TheyStandAtOneHeight) {
  // 0.4 of a width of 10: 4 pixels are too many.
  for (const int at : {0, 1, 2}) {
    for (const int64_t offset : {-4, -3, 3, 4}) {
      std::vector<Box> boxes{{20, 20, 10, 10, 80}, {40, 20, 10, 10, 80}, {60, 20, 10, 10, 80}};
      boxes[at].top += offset;
      EXPECT_EQ(haveButtons(boxes), std::abs(offset) == 3);
    }
  }
}

TEST(TitleBarButtonsTest, TheGapsExceedNineTenthsOfTheWidest) {
  EXPECT_FALSE(haveButtons({{20, 20, 10, 10, 80}, {30, 20, 10, 10, 80}, {40, 20, 10, 10, 80}})) << "touching";
  // From centre to centre 18 or 19, of a width of 20.
  for (const int64_t gap : {18, 19}) {
    EXPECT_EQ(haveButtons({{20, 20, 16, 16, 200}, {20 + gap, 20, 16, 16, 200}, {39 + gap, 20, 20, 16, 250}}),
              gap == 19);
    EXPECT_EQ(haveButtons({{20, 20, 20, 16, 250}, {43, 20, 16, 16, 200}, {43 + gap, 20, 16, 16, 200}}), gap == 19);
  }
}

TEST(TitleBarButtonsTest, TheGapsAreAlike) {
  const auto withGaps = [](int64_t first, int64_t second) {
    return haveButtons({{20, 20, 9, 9, 60}, {20 + first, 20, 9, 9, 60}, {20 + first + second, 20, 9, 9, 60}});
  };
  EXPECT_TRUE(withGaps(10, 12));
  EXPECT_TRUE(withGaps(12, 10));
  EXPECT_FALSE(withGaps(10, 13)) << "1.3";
  EXPECT_FALSE(withGaps(13, 10));
  EXPECT_FALSE(withGaps(10, 14));
  EXPECT_TRUE(withGaps(20, 25));
  EXPECT_FALSE(withGaps(20, 26));
}

TEST(TitleBarButtonsTest, OtherShapesBetweenThemAreSkipped) {
  EXPECT_TRUE(haveButtons({{20, 20, 10, 10, 80},
                           {26, 60, 20, 20, 300},
                           {40, 20, 10, 10, 80},
                           {50, 60, 20, 20, 300},
                           {60, 20, 10, 10, 80}}));
}

TEST(TitleBarButtonsTest, HundredsOfRandomCornersAreJudgedByThePlainRules) {
  int withButtons = 0;
  for (uint32_t seed = 1; seed <= 400; ++seed) {
    pictures::RandomPicture random(seed);
    plain::Gray gray(random.between(140, 700), random.between(100, 560), random.upTo(255));
    if (random.upTo(4) == 0) random.noise(gray, random.between(10, 40));
    const int diameter = random.between(6, 24);
    const int pitch = diameter + random.upTo(diameter);
    const int level = random.upTo(255);
    for (int row = random.upTo(2); row >= 0; --row) {
      pictures::titleBarDots(gray, random.between(0, 60), random.between(0, 50), diameter, pitch, level);
    }
    for (int speck = random.upTo(50); speck > 0; --speck) {
      pictures::disc(gray, random.upTo(300), random.upTo(160), random.between(2, 12), random.upTo(255));
    }
    if (random.upTo(3) == 0) random.roughen(gray, random.between(1, 14));
    for (const QRectF& frame :
         {QRectF(0, 0, static_cast<double>(gray.width), static_cast<double>(gray.height)),
          QRectF(random.upTo(20), random.upTo(20), random.between(100, 400), random.between(80, 400))}) {
      const bool wanted = plain::hasTitleBarButtons(gray, frame);
      withButtons += wanted ? 1 : 0;
      EXPECT_EQ(hasTitleBarButtons(pictures::grayImage(gray), frame), wanted) << "seed " << seed;
    }
  }
  EXPECT_GT(withButtons, 100);
  EXPECT_LT(withButtons, 700);
}

}  // namespace
}  // namespace quillmere::WindowDetector
