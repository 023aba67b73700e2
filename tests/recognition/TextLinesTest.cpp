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

TEST(TextLines, UnderscoresAndBarsBelongToTheLettersBesideThem) {
  const auto withBars = [](const std::vector<QRect>& bars) {
    DrawnText drawn = DrawnText({300, 200}).word(20, 20, 2).word(60, 20, 2);
    for (const QRect& bar : bars) drawn.fill(bar);
    return boxes(drawn);
  };
  EXPECT_EQ(withBars({{38, 34, 18, 1}}), (Boxes{{20, 20, 55, 15}})) << "two underscores that touch";
  EXPECT_EQ(withBars({{38, 24, 7, 1}, {38, 28, 7, 1}, {48, 24, 7, 1}, {48, 28, 7, 1}}), (Boxes{{20, 20, 55, 12}}))
      << "two equals signs";
  EXPECT_EQ(withBars({{20, 34, 20, 1}}), (Boxes{{20, 20, 15, 12}, {60, 20, 15, 12}})) << "an underline";
}

TEST(TextLines, AnIconBeforeALabelIsNoPartOfIt) {
  const auto withIcon = [](const QRect& icon) { return boxes(DrawnText({300, 200}).fill(icon).word(44, 20)); };
  EXPECT_EQ(withIcon({22, 18, 14, 15}), (Boxes{{44, 20, 33, 12}}));
  EXPECT_EQ(withIcon({32, 18, 4, 15}), (Boxes{{32, 18, 45, 15}})) << "a bracket";
  EXPECT_EQ(withIcon({27, 18, 15, 15}), (Boxes{{27, 18, 50, 15}})) << "a letter that stands close";
  EXPECT_EQ(withIcon({22, 20, 14, 12}), (Boxes{{22, 20, 55, 12}})) << "a capital";
}

TEST(TextLines, ALeaderJoinsWhatItLeadsTo) {
  DrawnText drawn = DrawnText({400, 200}).word(20, 20, 2).word(300, 20, 2);
  for (int x = 40; x < 290; x += 8) drawn.fill({x, 30, 2, 2});
  EXPECT_EQ(boxes(drawn), (Boxes{{20, 20, 295, 12}}));
}

TEST(TextLines, ARowOfDashesIsALineWhereItBeginsAsItsNeighbours) {
  const auto with = [](int left) {
    DrawnText drawn = DrawnText({300, 200}).word(20, 20);
    for (int x = left; x < left + 150; x += 9) drawn.fill({x, 44, 5, 1});
    return boxes(drawn).size();
  };
  EXPECT_EQ(with(20), 2u);
  EXPECT_EQ(with(90), 1u) << "a dashed frame";
}

TEST(ColorDistance, IsThatOfTheChannelWhereTheyDifferMost) {
  EXPECT_EQ(colorDistance(qRgb(10, 20, 30), qRgb(10, 20, 30)), 0);
  EXPECT_EQ(colorDistance(qRgb(10, 20, 30), qRgb(40, 0, 25)), 30);
  EXPECT_EQ(colorDistance(qRgb(40, 0, 25), qRgb(10, 20, 30)), 30);
  EXPECT_EQ(colorDistance(qRgba(0, 0, 255, 0), qRgba(0, 0, 0, 255)), 255) << "whatever their alpha";
}

}  // namespace
}  // namespace quillmere
