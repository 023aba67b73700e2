#include "recognition/TextPreparation.h"

#include <gtest/gtest.h>
#include <cmath>

#include "recognition/DrawnText.h"

namespace quillmere {
namespace {

using testing::DrawnText;

constexpr int kTopMargin = 12;

/// Of the one line that the drawing has.
std::vector<QImage> prepared(const DrawnText& drawn) {
  const auto lines = drawn.lines();
  EXPECT_EQ(lines.size(), 1u);
  std::vector<QImage> images;
  if (lines.size() != 1) return images;
  for (const PreparedPart& part : preparedLine(drawn.image, drawn.grounds(), lines[0])) images.push_back(part.image);
  return images;
}
/// How many stretches of dark columns there are: letters.
int letters(const QImage& part) {
  int count = 0;
  bool wasDark = false;
  for (int x = 0; x < part.width(); ++x) {
    bool isDark = false;
    for (int y = 0; y < part.height(); ++y) isDark = isDark || part.constScanLine(y)[x] < 128;
    count += isDark && !wasDark;
    wasDark = isDark;
  }
  return count;
}

TEST(TextPreparation, LettersAreBlackOnWhiteWhateverTheirColours) {
  const std::pair<QRgb, QRgb> looks[] = {{qRgb(255, 255, 255), qRgb(0, 0, 0)},
                                         {qRgb(20, 20, 30), qRgb(230, 230, 230)},
                                         {qRgb(236, 236, 236), qRgb(200, 200, 200)},
                                         {qRgb(0, 110, 0), qRgb(255, 60, 60)}};
  for (const auto& [ground, ink] : looks) {
    const auto parts = prepared(DrawnText({300, 200}, ground).word(20, 20, 4, 12, ink));
    ASSERT_EQ(parts.size(), 1u);
    EXPECT_EQ(letters(parts[0]), 4);
    EXPECT_EQ(parts[0].constScanLine(0)[0], 255);
    EXPECT_EQ(parts[0].constScanLine(parts[0].height() / 2)[1 + 8], 0) << "inside the first letter";
  }
}

TEST(TextPreparation, LinesOfAnyHeightComeAboutAlikeUpToFourTimesEnlarged) {
  for (const int height : {8, 14, 28, 56, 100}) {
    const auto parts = prepared(DrawnText({300, 200}).word(20, 20, 4, height));
    ASSERT_EQ(parts.size(), 1u) << height;
    EXPECT_NEAR(parts[0].height() - 2 * kTopMargin, 28, 7) << height;
  }
  EXPECT_EQ(prepared(DrawnText({300, 200}).word(20, 20, 4, 5))[0].height(), 4 * (5 + 2) + 2 * kTopMargin);
}

TEST(TextPreparation, WhatIsNotOfTheLineIsLeftOut) {
  // A separator between two words.
  const auto parts = prepared(DrawnText({300, 200}).word(20, 40, 2).fill({38, 20, 1, 80}).word(42, 40, 2));
  ASSERT_EQ(parts.size(), 1u);
  EXPECT_EQ(letters(parts[0]), 4);
}

TEST(TextPreparation, WordsOfOneLineHaveBlacksOfTheirOwn) {
  const auto parts = prepared(DrawnText({300, 200}, qRgb(30, 30, 30))
                                  .word(20, 20, 3, 12, qRgb(250, 250, 250))
                                  .word(62, 20, 3, 12, qRgb(90, 90, 90)));
  ASSERT_EQ(parts.size(), 1u);
  EXPECT_EQ(letters(parts[0]), 6);
}

TEST(TextPreparation, ALongLineIsCutBetweenWords) {
  DrawnText drawn({4000, 200});
  int count = 0;
  for (int left = 20; left < 3900; left += 50, count += 4) drawn.word(left, 20);
  const auto parts = prepared(drawn);
  ASSERT_GT(parts.size(), 1u);
  int sum = 0;
  for (const QImage& part : parts) {
    EXPECT_LE(part.width(), 2400 + 2);
    EXPECT_EQ(letters(part) % 4, 0) << "whole words";
    sum += letters(part);
  }
  EXPECT_EQ(sum, count);
}

TEST(TextPreparation, EachPartTellsWhereItStandsInThePicture) {
  DrawnText drawn({4000, 200});
  for (int left = 20; left < 3900; left += 50) drawn.word(left, 20);
  const auto parts = preparedLine(drawn.image, drawn.grounds(), drawn.lines()[0]);
  ASSERT_GT(parts.size(), 1u);
  for (const PreparedPart& part : parts) {
    int dark = 0;
    while (part.image.constScanLine(part.image.height() / 2)[dark] >= 128) ++dark;
    const double place = part.left + dark / part.scale;
    EXPECT_NEAR(std::remainder(place - 20, 50), 0, 1) << "where a word begins";
  }
}

TEST(TextPreparation, WhatHasNoGapIsNotCut) {
  DrawnText drawn({4000, 200});
  // A zigzag: no column is blank, and it is no bar.
  for (int x = 20; x < 3900; ++x) drawn.fill({x, 20 + (x / 3 % 9), 1, 4});
  const auto parts = prepared(drawn);
  ASSERT_EQ(parts.size(), 1u);
  EXPECT_GT(parts[0].width(), 2 * 2400);
}

}  // namespace
}  // namespace quillmere
