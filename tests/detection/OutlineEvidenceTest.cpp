#include "detection/OutlineEvidence.h"

#include <gtest/gtest.h>

#include "detection/DrawnScreen.h"

namespace quillmere::CapturedWindows {
namespace {

OutlineEvidence evidence(std::array<std::pair<int, int>, 4> sides) {
  OutlineEvidence result;
  for (size_t i = 0; i < sides.size(); ++i) {
    result.sides[i].hits = sides[i].first;
    result.sides[i].blocks = sides[i].second;
  }
  return result;
}

TEST(OutlineEvidenceTest, AWindowThatStandsThereIsBackedAllAround) {
  DrawnScreen screen(QSize(800, 600));
  screen.add(QRect(101, 83, 407, 301));
  const auto found = evidenceOf(EdgeBlocks(screen.image), screen.stack, QPoint());
  EXPECT_EQ(found.hits, found.blocks);
  EXPECT_EQ(found.score(), found.hits);
  EXPECT_GT(found.verticalHits, 20);
  EXPECT_TRUE(found.windows[0].isEnough());
  EXPECT_FALSE(found.windows[0].isCovered);
  const auto moved = evidenceOf(EdgeBlocks(screen.image), screen.stack, QPoint(5, 5));
  EXPECT_EQ(moved.hits, 0);
  EXPECT_EQ(moved.score(), -2 * moved.blocks);
}

TEST(OutlineEvidenceTest, WhatIsCoveredIsNotLookedFor) {
  DrawnScreen screen(QSize(800, 600));
  screen.add(QRect(100, 80, 400, 300));
  screen.add(QRect(200, 150, 400, 300), QColor(230, 240, 230));
  const auto found = evidenceOf(EdgeBlocks(screen.image), screen.stack, QPoint());
  EXPECT_EQ(found.hits, found.blocks);
  EXPECT_TRUE(found.windows[0].isCovered);
  EXPECT_TRUE(found.windows[0].isEnough());
  EXPECT_FALSE(found.windows[1].isCovered);
  screen.stack.windows[1].type = WindowStack::Window::Type::cover;
  EXPECT_FALSE(evidenceOf(EdgeBlocks(screen.image), screen.stack, QPoint()).windows[0].isCovered)
      << "a menu covers for a moment";
}

TEST(OutlineEvidenceTest, OnThePicturesBorderNothingTells) {
  DrawnScreen screen(QSize(800, 600));
  screen.add(QRect(0, 30, 800, 570));
  const auto found = evidenceOf(EdgeBlocks(screen.image), screen.stack, QPoint());
  EXPECT_TRUE(found.windows[0].sides[0].isAtBorder);
  EXPECT_TRUE(found.windows[0].sides[3].isAtBorder);
  EXPECT_TRUE(found.windows[0].isEnough()) << "its top is seen, and it fills the picture from side to side";
  screen.stack.windows[0].frame = QRect(0, 0, 800, 600);
  EXPECT_FALSE(evidenceOf(EdgeBlocks(screen.image), screen.stack, QPoint()).windows[0].isEnough());
}

TEST(OutlineEvidenceTest, MoreThanHalfOfItMustBeSeen) {
  EXPECT_TRUE(evidence({{{11, 20}, {11, 20}, {11, 20}, {11, 20}}}).isEnough());
  EXPECT_FALSE(evidence({{{11, 20}, {11, 20}, {11, 20}, {10, 20}}}).isEnough());
  EXPECT_FALSE(evidence({{{0, 0}, {0, 0}, {0, 0}, {0, 0}}}).isEnough());
}

TEST(OutlineEvidenceTest, NoLongerSideIsMissing) {
  EXPECT_TRUE(evidence({{{20, 20}, {20, 20}, {20, 20}, {3, 25}}}).isEnough());
  EXPECT_FALSE(evidence({{{20, 20}, {20, 20}, {20, 20}, {2, 25}}}).isEnough());
  EXPECT_TRUE(evidence({{{20, 20}, {20, 20}, {20, 20}, {0, 3}}}).isEnough()) << "hardly anything of it is seen";
}

TEST(OutlineEvidenceTest, OneSideOfEachDirectionIsDrawn) {
  EXPECT_TRUE(evidence({{{20, 20}, {0, 0}, {20, 20}, {0, 0}}}).isEnough());
  EXPECT_FALSE(evidence({{{20, 20}, {20, 20}, {0, 0}, {0, 0}}}).isEnough());
  EXPECT_FALSE(evidence({{{9, 20}, {9, 20}, {20, 20}, {20, 20}}}).isEnough());
}

TEST(OutlineEvidenceTest, ASideThatGoesOnPastItsCornerIsALineInsideAWindow) {
  DrawnScreen screen(QSize(800, 600));
  screen.add(QRect(101, 83, 407, 301));
  const EdgeBlocks edges(screen.image);
  EXPECT_EQ(overruns(edges, screen.stack, QPoint()), 0);
  // As if the line below the title bar were its top.
  screen.stack.windows[0].frame.setTop(83 + 24);
  EXPECT_EQ(overruns(edges, screen.stack, QPoint()), 2);
}

}  // namespace
}  // namespace quillmere::CapturedWindows
