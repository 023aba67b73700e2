#include "recognition/TextMarks.h"

#include <gtest/gtest.h>

#include "recognition/DrawnText.h"

namespace quillmere {
namespace {

using testing::DrawnText;

/// Of the first line of the drawing.
std::vector<TextMark> marks(const DrawnText& drawn) {
  const auto lines = drawn.lines();
  return lines.empty() ? std::vector<TextMark>() : textMarks(lines[0]);
}
using Marks = std::vector<TextMark>;

/// Two words of letters 12 high, at 20 and 60, with room between them.
DrawnText words() {
  return DrawnText({300, 200}).word(20, 20, 2).word(60, 20, 2);
}

TEST(TextMarks, ABarBelowTheLettersIsAnUnderscore) {
  EXPECT_EQ(marks(words().fill({38, 34, 18, 1})), (Marks{{{38, 34, 18, 1}, u'_'}}));
}

TEST(TextMarks, ABarInTheMiddleIsADash) {
  EXPECT_EQ(marks(words().fill({40, 26, 6, 2})), (Marks{{{40, 26, 6, 2}, u'-'}}));
}

TEST(TextMarks, TwoBarsAboveEachOtherAreAnEqualsSign) {
  EXPECT_EQ(marks(words().fill({40, 24, 7, 1}).fill({40, 28, 7, 1})), (Marks{{{40, 24, 7, 5}, u'='}}));
}

TEST(TextMarks, AFullStopIsNoDash) {
  EXPECT_EQ(marks(words().fill({40, 30, 3, 2})), Marks());
}

TEST(TextMarks, DotsInARowAreALeaderAndThreeAreNot) {
  const auto dots = [](int count) {
    DrawnText drawn = DrawnText({300, 200}).word(20, 20, 2).word(72, 20, 2);
    for (int i = 0; i < count; ++i) drawn.fill({38 + 4 * i, 30, 2, 2});
    return marks(drawn).size();
  };
  EXPECT_EQ(dots(7), 7u);
  EXPECT_EQ(dots(3), 0u);
}

TEST(TextMarks, LongRowsAreLeftOutAndTheRestKeepsTheLinesHeight) {
  DrawnText drawn = DrawnText({400, 200}).word(20, 20, 2).word(300, 20, 3, 8);
  for (int x = 40; x < 290; x += 8) drawn.fill({x, 24, 5, 1});
  const auto lines = drawn.lines();
  ASSERT_EQ(lines.size(), 1u);
  const auto parts = withoutLongRows(lines[0], textMarks(lines[0]));
  ASSERT_EQ(parts.size(), 2u);
  EXPECT_EQ(parts[0].box, QRect(20, 20, 15, 12));
  EXPECT_EQ(parts[1].box, QRect(300, 20, 24, 12));
  EXPECT_EQ(parts[1].pieces.size(), 3u);
}

TEST(TextMarks, AFewMarksAreLeftToTheEngine) {
  const auto lines = words().fill({40, 26, 6, 2}).lines();
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(withoutLongRows(lines[0], textMarks(lines[0])).size(), 1u);
}

}  // namespace
}  // namespace quillmere
