#include "recognition/TextGrounds.h"

#include <gtest/gtest.h>

#include "recognition/DrawnText.h"

namespace quillmere {
namespace {

using testing::DrawnText;

constexpr TextGrounds::Ground kInk = TextGrounds::kInk;
constexpr TextGrounds::Ground kRule = TextGrounds::kRule;

TextGrounds::Ground at(const TextGrounds& grounds, int x, int y) {
  return grounds.row(y)[x];
}
bool isGround(const TextGrounds& grounds, int x, int y) {
  return at(grounds, x, y) >= 0;
}
/// What a drawing of a block that stands by itself, 20 pixels from the corner, is taken for at its top left.
TextGrounds::Ground blockIs(QSize size) {
  return at(DrawnText({300, 200}).fill({QPoint(20, 20), size}).grounds(), 20, 20);
}

TEST(TextGrounds, AScreenIsOneGroundAndWhatStandsOnItIsInk) {
  const TextGrounds grounds = DrawnText({200, 150}).word(20, 20).grounds();
  EXPECT_EQ(grounds.width(), 200);
  EXPECT_EQ(grounds.height(), 150);
  EXPECT_TRUE(isGround(grounds, 0, 0));
  EXPECT_EQ(at(grounds, 199, 149), at(grounds, 0, 0));
  EXPECT_EQ(at(grounds, 27, 25), at(grounds, 0, 0)) << "between two letters";
  EXPECT_EQ(at(grounds, 20, 20), kInk);
}

TEST(TextGrounds, AGroundMayChangeGradually) {
  DrawnText drawn({200, 150});
  for (int y = 0; y < 150; ++y) drawn.fill({0, y, 200, 1}, qRgb(40 + y, 60, 200 - y));
  const TextGrounds grounds = drawn.grounds();
  EXPECT_EQ(at(grounds, 100, 0), at(grounds, 100, 149));
}

TEST(TextGrounds, ADifferenceThatIsSeenEndsAGround) {
  for (const auto& [level, isOne] : {std::pair(239, true), {238, false}}) {
    const TextGrounds grounds = DrawnText({300, 150}).fill({150, 0, 150, 150}, qRgb(255, level, 255)).grounds();
    EXPECT_TRUE(isGround(grounds, 0, 0) && isGround(grounds, 299, 0));
    EXPECT_EQ(at(grounds, 0, 0) == at(grounds, 299, 0), isOne) << level;
  }
}

TEST(TextGrounds, TwoColoursThatTakeTurnsAreOneGround) {
  DrawnText drawn({200, 150});
  for (int y = 0; y < 150; ++y) {
    for (int x = y % 2; x < 200; x += 2) drawn.image.setPixel(x, y, qRgb(235, 235, 235));
  }
  const TextGrounds grounds = drawn.grounds();
  const int ink = static_cast<int>(std::count(grounds.row(75), grounds.row(75) + 200, kInk));
  EXPECT_EQ(ink, 0);
  EXPECT_EQ(at(grounds, 10, 75), at(grounds, 190, 75));
}

TEST(TextGrounds, ALongThinLineIsARuleAndAShortOneIsADash) {
  EXPECT_EQ(blockIs({60, 1}), kRule);
  EXPECT_EQ(blockIs({59, 1}), kInk);
  EXPECT_EQ(blockIs({2, 100}), kRule);
  EXPECT_EQ(blockIs({8, 100}), kInk) << "too thick";
  DrawnText framed({300, 200});
  framed.fill({20, 20, 200, 40}).fill({22, 22, 196, 36}, qRgb(255, 255, 255));
  EXPECT_EQ(at(framed.grounds(), 20, 40), kRule) << "a field's frame";
  EXPECT_TRUE(isGround(framed.grounds(), 100, 40)) << "and what is in it";
}

TEST(TextGrounds, ABroadOrTallAreaIsAGroundAndOneLikeALetterIsNot) {
  EXPECT_GE(blockIs({161, 30}), 0);
  EXPECT_EQ(blockIs({160, 30}), kInk);
  EXPECT_GE(blockIs({10, 111}), 0);
  EXPECT_EQ(blockIs({9, 111}), kInk);
  EXPECT_EQ(blockIs({30, 110}), kInk);
}

TEST(TextGrounds, AButtonIsAGroundWhereSomethingIsWrittenOnIt) {
  constexpr QRgb kBlue = qRgb(40, 100, 220);
  DrawnText drawn({300, 200});
  drawn.fill({20, 20, 100, 30}, kBlue).word(50, 28, 1, 12, qRgb(255, 255, 255));
  const TextGrounds grounds = drawn.grounds();
  EXPECT_TRUE(isGround(grounds, 20, 20));
  EXPECT_NE(at(grounds, 20, 20), at(grounds, 0, 0));
  EXPECT_EQ(at(grounds, 50, 28), kInk);
}

/// Round, so that its sides do not tell it for a button.
TEST(TextGrounds, ALetterHasTwoHolesAtMost) {
  for (int holes = 0; holes <= 3; ++holes) {
    DrawnText drawn({300, 200});
    QPainter painter(&drawn.image);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    painter.drawEllipse(20, 20, 60, 60);
    painter.end();
    for (int hole = 0; hole < holes; ++hole) drawn.fill({34 + 12 * hole, 45, 6, 6}, qRgb(255, 255, 255));
    EXPECT_EQ(isGround(drawn.grounds(), 50, 30), holes > 2) << holes;
  }
}

}  // namespace
}  // namespace quillmere
