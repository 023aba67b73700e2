#include "recognition/FaintInk.h"

#include <gtest/gtest.h>

#include "recognition/DrawnText.h"

namespace quillmere {
namespace {

using testing::DrawnText;

constexpr QRgb gray(int level) {
  return qRgb(level, level, level);
}
/// A stroke with edges as smooth as those of faint letters, so that nowhere two neighbours differ much.
DrawnText& stroke(DrawnText& drawn, int ground, int ink) {
  for (int i = 0; i < 3; ++i) {
    const int level = ground + (ink - ground) * (i + 1) / 3;
    drawn.fill({40 + i, 40 + i, 12 - 2 * i, 12 - 2 * i}, gray(level));
  }
  return drawn;
}
TextGrounds::Ground middleOf(const DrawnText& drawn) {
  return drawn.grounds().row(46)[46];
}
TextGrounds::Ground middleOfStroke(int ground, int ink) {
  DrawnText drawn({300, 200}, gray(ground));
  return middleOf(stroke(drawn, ground, ink));
}

TEST(FaintInk, WhatDiffersGraduallyFromAFlatGroundIsInk) {
  EXPECT_EQ(middleOfStroke(240, 200), TextGrounds::kInk);
  EXPECT_EQ(middleOfStroke(43, 83), TextGrounds::kInk);
  EXPECT_EQ(middleOfStroke(30, 60), TextGrounds::kInk);
}

TEST(FaintInk, WhatCanHardlyBeSeenIsDecoration) {
  EXPECT_GE(middleOfStroke(240, 225), 0);
}

TEST(FaintInk, OnAGroundThatChangesItselfNothingIsLookedFor) {
  DrawnText drawn({300, 200});
  for (int y = 0; y < 200; ++y) {
    for (int x = 0; x < 300; ++x) drawn.image.setPixel(x, y, gray(200 + (x * 7 + y * 3) % 11));
  }
  EXPECT_GE(middleOf(stroke(drawn, 205, 175)), 0);
}

TEST(FaintInk, WhatJpegLeavesAroundLettersIsNoInk) {
  DrawnText drawn({300, 200}, gray(240));
  drawn.fill({54, 40, 3, 12}, gray(20));
  EXPECT_GE(middleOf(stroke(drawn, 240, 205)), 0);
}

TEST(FaintInk, WhatIsAsHighAsNoTextStaysGround) {
  DrawnText drawn({300, 200}, gray(240));
  for (int i = 0; i < 3; ++i) drawn.fill({40 + i, 20 + i, 100 - 2 * i, 150 - 2 * i}, gray(240 - 12 * (i + 1)));
  // Broken up, so that it is no flat area of its own.
  for (int y = 30; y < 160; y += 2) {
    for (int x = 50; x < 130; x += 2) drawn.fill({x, y, 1, 1}, gray(198));
  }
  EXPECT_GE(middleOf(drawn), 0);
}

TEST(FaintInk, AFaintThinLineIsARule) {
  DrawnText drawn({300, 200}, gray(240));
  drawn.fill({20, 46, 200, 3}, gray(228)).fill({20, 47, 200, 1}, gray(216));
  EXPECT_EQ(middleOf(drawn), TextGrounds::kRule);
}

}  // namespace
}  // namespace quillmere
