#include "recognition/TextLines.h"

#include <gtest/gtest.h>

#include "recognition/DrawnText.h"

namespace quillmere {
namespace {

using testing::DrawnText;

constexpr QRgb kWhite = qRgb(255, 255, 255);

std::vector<QRect> boxes(const DrawnText& drawn) {
  std::vector<QRect> boxes;
  for (const TextLine& line : drawn.lines()) boxes.push_back(line.box);
  return boxes;
}
using Boxes = std::vector<QRect>;

TEST(TextLines, LettersSideBySideAreALine) {
  const auto lines = DrawnText({300, 200}).word(20, 20, 4).lines();
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].box, QRect(20, 20, 33, 12));
  EXPECT_EQ(lines[0].pieces.size(), 4u);
}

TEST(TextLines, AGapOfOneAndAHalfHeightsPartsThem) {
  EXPECT_EQ(boxes(DrawnText({300, 200}).word(20, 20, 1).word(26 + 18, 20, 1)), (Boxes{{20, 20, 30, 12}}));
  EXPECT_EQ(boxes(DrawnText({300, 200}).word(20, 20, 1).word(26 + 19, 20, 1)),
            (Boxes{{20, 20, 6, 12}, {45, 20, 6, 12}}));
}

TEST(TextLines, AreReadByRowsAndInARowFromTheLeft) {
  const DrawnText drawn = DrawnText({400, 200}).word(20, 60).word(220, 18).word(20, 20).word(220, 62);
  EXPECT_EQ(boxes(drawn), (Boxes{{20, 20, 33, 12}, {220, 18, 33, 12}, {20, 60, 33, 12}, {220, 62, 33, 12}}));
}

TEST(TextLines, ADotAboveBelongsToItsLetter) {
  EXPECT_EQ(boxes(DrawnText({300, 200}).word(20, 20).fill({29, 16, 2, 2})), (Boxes{{20, 16, 33, 16}}));
  EXPECT_EQ(boxes(DrawnText({300, 200}).word(20, 20).fill({29, 10, 2, 2})), (Boxes{{20, 20, 33, 12}})) << "too far";
}

TEST(TextLines, WhatStandsOnAnotherGroundIsAnotherLine) {
  DrawnText drawn({400, 200});
  drawn.fill({200, 0, 200, 200}, qRgb(90, 90, 90)).word(180, 20, 2).word(204, 20, 2, 12, kWhite);
  EXPECT_EQ(boxes(drawn), (Boxes{{180, 20, 15, 12}, {204, 20, 15, 12}}));
}

TEST(TextLines, EachPieceKnowsItsGroundAndItsContrast) {
  constexpr QRgb kPaper = qRgb(240, 230, 220);
  constexpr QRgb kInk = qRgb(200, 130, 215);
  const auto lines = DrawnText({300, 200}, kPaper).word(20, 20, 2, 12, kInk).lines();
  ASSERT_EQ(lines.size(), 1u);
  for (const InkPiece& piece : lines[0].pieces) {
    EXPECT_EQ(piece.groundColor & 0xFFFFFF, kPaper & 0xFFFFFF);
    EXPECT_EQ(piece.contrast, 100) << "in green, where it is the strongest";
  }
}

TEST(TextLines, WhatIsNoTextIsLeftOut) {
  const std::pair<const char*, DrawnText> rows[] = {
      {"a rule", DrawnText({300, 200}).fill({20, 20, 65, 4})},
      {"a dotted rule",
       [] {
         DrawnText dots({300, 200});
         for (int x = 20; x < 120; x += 6) dots.fill({x, 20, 3, 3});
         return dots;
       }()},
      {"a bar", DrawnText({300, 200}).fill({20, 20, 40, 12})},
      {"a speck", DrawnText({300, 200}).fill({20, 20, 6, 6})},
      {"a low dash", DrawnText({300, 200}).fill({20, 20, 20, 4})},
      {"a tall block", DrawnText({300, 200}).fill({20, 20, 9, 121})},
  };
  for (const auto& [what, drawn] : rows) EXPECT_EQ(boxes(drawn), Boxes{}) << what;
}

TEST(TextLines, OfAFramedButtonOnlyTheWordsAreLeft) {
  DrawnText drawn({300, 200});
  drawn.fill({20, 20, 50, 24}).fill({21, 21, 48, 22}, kWhite).word(30, 26, 3);
  EXPECT_EQ(boxes(drawn), (Boxes{{30, 26, 24, 12}}));
}

TEST(TextLines, APhotographsThousandsOfPiecesAreNotLookedThrough) {
  const auto rowsOf200 = [](int rows) {
    DrawnText drawn({1220, 1420});
    for (int row = 0; row < rows; ++row) {
      for (int column = 0; column < 200; ++column) drawn.fill({10 + 6 * column, 10 + 9 * row, 4, 6});
    }
    return drawn.lines().size();
  };
  EXPECT_EQ(rowsOf200(150), 150u);
  EXPECT_EQ(rowsOf200(151), 0u);
}

TEST(ColorDistance, IsThatOfTheChannelWhereTheyDifferMost) {
  EXPECT_EQ(colorDistance(qRgb(10, 20, 30), qRgb(10, 20, 30)), 0);
  EXPECT_EQ(colorDistance(qRgb(10, 20, 30), qRgb(40, 0, 25)), 30);
  EXPECT_EQ(colorDistance(qRgb(40, 0, 25), qRgb(10, 20, 30)), 30);
  EXPECT_EQ(colorDistance(qRgba(0, 0, 255, 0), qRgba(0, 0, 0, 255)), 255) << "whatever their alpha";
}

}  // namespace
}  // namespace quillmere
