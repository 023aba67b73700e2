#include "detection/WindowRanking.h"

#include <gtest/gtest.h>

#include "support/DrawnPictures.h"

namespace quillmere::WindowDetector {
namespace {

Candidate drawn(const QRectF& frame, double support = 1) {
  return {{support, support, support, support}, frame};
}
/// Three sides whole.
Candidate openBelow(const QRectF& frame, double bottom) {
  return {{1, 1, 1, bottom}, frame};
}

class WindowRankingTest : public ::testing::Test {
 protected:
  WindowRankingTest() : gray(1000, 600, 200) {}

  void dots(double left, double top) {
    pictures::titleBarDots(gray, static_cast<int64_t>(left) + 10, static_cast<int64_t>(top) + 10, 10, 16, 80);
  }
  std::vector<Ranked> rank(const std::vector<Candidate>& candidates) {
    return ranked(pictures::grayImage(gray), candidates, [this](const GrayImage&) {
      ++asked;
      return seen;
    });
  }
  std::vector<QRectF> order(const std::vector<Candidate>& candidates) {
    std::vector<QRectF> frames;
    for (const Ranked& one : rank(candidates)) frames.push_back(one.frame());
    return frames;
  }

  plain::Gray gray;
  std::vector<QRectF> seen;
  int asked = 0;
};

const QRectF kA(0, 0, 200, 150);
const QRectF kB(300, 0, 200, 150);
const QRectF kC(600, 0, 200, 150);

TEST_F(WindowRankingTest, TheStrongestComesFirstAndEqualsKeepTheirOrder) {
  EXPECT_EQ(order({drawn(kA, 0.8), drawn(kB, 0.9), drawn(kC, 0.8)}), (std::vector<QRectF>{kB, kA, kC}));
}

TEST_F(WindowRankingTest, ButtonsAreWorthAQuarter) {
  dots(300, 0);
  EXPECT_EQ(order({drawn(kA), drawn(kB, 0.8)}), (std::vector<QRectF>{kB, kA}));
  EXPECT_EQ(order({drawn(kA), drawn(kB, 0.751)}), (std::vector<QRectF>{kB, kA}));
  EXPECT_EQ(order({drawn(kA), drawn(kB, 0.749)}), (std::vector<QRectF>{kA, kB}));
  EXPECT_EQ(order({drawn(kA), drawn(kB, 0.75)}), (std::vector<QRectF>{kA, kB})) << "a tie";
  const auto all = rank({drawn(kA), drawn(kB, 0.8)});
  EXPECT_TRUE(all[0].hasTitleBarButtons);
  EXPECT_FALSE(all[1].hasTitleBarButtons);
}

TEST_F(WindowRankingTest, OnlyTheTwentyFourStrongestAreLookedAtForButtons) {
  dots(300, 0);
  for (const int before : {23, 24}) {
    std::vector<Candidate> candidates{drawn(kB, 0.9)};
    for (int i = 0; i < before; ++i) candidates.push_back(drawn(QRectF(i, 300, 200, 150), 0.91 + 0.001 * i));
    const auto all = rank(candidates);
    EXPECT_EQ(all.front().frame() == kB, before == 23);
    EXPECT_EQ(std::count_if(all.begin(), all.end(), [](const Ranked& one) { return one.hasTitleBarButtons; }),
              before == 23 ? 1 : 0);
  }
}

TEST_F(WindowRankingTest, TheOtherDetectorBreaksExactTies) {
  seen = {kB};
  EXPECT_EQ(order({drawn(kA), drawn(kB), drawn(kC)}), (std::vector<QRectF>{kB, kA, kC}));
  EXPECT_EQ(order({drawn(kA), drawn(kB, 0.999999999)}), (std::vector<QRectF>{kA, kB})) << "and nothing else";
  seen = {kC, kB};
  EXPECT_EQ(order({drawn(kA), drawn(kB), drawn(kC)}), (std::vector<QRectF>{kB, kC, kA}));
  EXPECT_EQ(asked, 2);
}

TEST_F(WindowRankingTest, TheTieOfAButtonedWindowIsBrokenToo) {
  dots(300, 0);
  seen = {kB};
  EXPECT_EQ(order({drawn(kA), drawn(kB, 0.75)}), (std::vector<QRectF>{kB, kA}));
}

TEST_F(WindowRankingTest, TheOtherDetectorIsNotAskedWithoutATie) {
  EXPECT_EQ(order({drawn(kA), drawn(kB, 0.9)}), (std::vector<QRectF>{kA, kB}));
  EXPECT_EQ(asked, 0);
  EXPECT_TRUE(order({}).empty());
  EXPECT_EQ(asked, 0);
}

TEST_F(WindowRankingTest, WithoutRectanglesTiesKeepTheirOrder) {
  EXPECT_EQ(order({drawn(kA), drawn(kB), drawn(kC)}), (std::vector<QRectF>{kA, kB, kC}));
}

TEST_F(WindowRankingTest, ARectangleMatchesWithinTwoInAHundredOfThePicture) {
  // 20 pixels of 1000.
  for (const auto& [dx, dy, dw, dh] : std::vector<std::array<double, 4>>{
           {20, 0, -20, 0},
           {-20, 0, 20, 0},
           {0, 20, 0, -20},
           {0, -20, 0, 20},
           {0, 0, 20, 0},
           {0, 0, -20, 0},
           {0, 0, 0, 20},
           {0, 0, 0, -20},
       }) {
    const auto away = [&, x = dx, y = dy, w = dw, h = dh](double share) {
      return QRectF(kB.x() + x * share, kB.y() + y * share, kB.width() + w * share, kB.height() + h * share);
    };
    seen = {away(1)};
    EXPECT_EQ(order({drawn(kA), drawn(kB)}).front(), kB);
    seen = {away(1.01)};
    EXPECT_EQ(order({drawn(kA), drawn(kB)}).front(), kA);
  }
  gray = plain::Gray(600, 1000, 200);
  seen = {kB.adjusted(20, 0, 0, 0)};
  EXPECT_EQ(order({drawn(kA), drawn(kB)}).front(), kB) << "of the longer side";
}

TEST_F(WindowRankingTest, ATieBeyondTheTwentyFourthIsNotBroken) {
  std::vector<Candidate> candidates;
  for (int i = 0; i < 24; ++i) candidates.push_back(drawn(QRectF(i, 300, 200, 150), 0.999 - 0.001 * i));
  candidates.push_back(drawn(kA, 0.9));
  candidates.push_back(drawn(kB, 0.9));
  seen = {kB};
  EXPECT_EQ(order(candidates)[24], kA);
  candidates.erase(candidates.begin());
  candidates.push_back(drawn(kC, 0.9));
  seen = {kA, kC};
  EXPECT_EQ(order(candidates)[23], kA) << "the 24th is tested";
  EXPECT_EQ(order(candidates)[24], kB) << "the third of the tied ones is not";
}

std::vector<QRectF> merge(const std::vector<Candidate>& inOrder) {
  std::vector<Ranked> all;
  for (const Candidate& candidate : inOrder) all.push_back({&candidate, 0});
  std::vector<QRectF> frames;
  for (const Ranked& one : merged(all)) frames.push_back(one.frame());
  return frames;
}

TEST(WindowMergeTest, RectanglesThatOverlapByMoreThanFortyFiveInAHundredAreOneWindow) {
  // Moved by 110 of 290: 180 in common of 400 together.
  EXPECT_EQ(merge({drawn({0, 0, 290, 200}), drawn({110, 0, 290, 200})}).size(), 2u);
  EXPECT_EQ(merge({drawn({0, 0, 290, 200}), drawn({109, 0, 290, 200})}), (std::vector<QRectF>{{0, 0, 290, 200}}));
  // 460 of 1000.
  EXPECT_EQ(merge({drawn({0, 0, 730, 200}), drawn({270, 0, 730, 200})}).size(), 1u);
}

TEST(WindowMergeTest, RectanglesThatAreApartAreTwoWindows) {
  EXPECT_EQ(merge({drawn(kA), drawn(kB)}), (std::vector<QRectF>{kA, kB}));
  EXPECT_EQ(merge({drawn(kA), drawn(kA.translated(0, 400))}).size(), 2u);
  EXPECT_EQ(merge({drawn(kA), drawn(kA.translated(200, 0))}).size(), 2u) << "side by side";
}

TEST(WindowMergeTest, AFullyDrawnWindowTakesThePlaceOfWhatItHolds) {
  const QRectF inner(10, 10, 180, 130);
  EXPECT_EQ(merge({drawn(kB), drawn(inner), drawn(kC), drawn(kA, 0.75)}), (std::vector<QRectF>{kB, kA, kC}));
  EXPECT_EQ(merge({drawn(inner), openBelow(kA, 0.75)}), std::vector<QRectF>{kA});
  EXPECT_EQ(merge({drawn(inner), openBelow(kA, 0.74)}), std::vector<QRectF>{inner});
}

TEST(WindowMergeTest, OneThatReachesOutOnAnySideIsNotHeld) {
  for (const QRectF& inner :
       {QRectF(-1, 10, 190, 130), QRectF(10, -1, 180, 140), QRectF(10, 10, 191, 130), QRectF(10, 10, 180, 141)}) {
    EXPECT_EQ(merge({drawn(inner), drawn(kA)}), std::vector<QRectF>{inner});
  }
  for (const QRectF& inner :
       {QRectF(0, 10, 190, 130), QRectF(10, 0, 180, 140), QRectF(10, 10, 190, 130), QRectF(10, 10, 180, 140)}) {
    EXPECT_EQ(merge({drawn(inner), drawn(kA)}), std::vector<QRectF>{kA}) << "an edge in common is inside";
  }
}

TEST(WindowMergeTest, TheFirstThatOverlapsDecidesAlone) {
  // The third overlaps both others much and holds only the second.
  const QRectF first(0, 0, 200, 200);
  const QRectF second(120, 0, 100, 200);
  const QRectF third(60, 0, 160, 200);
  ASSERT_EQ(merge({drawn(first), drawn(second)}).size(), 2u);
  ASSERT_EQ(merge({drawn(second), drawn(third)}), std::vector<QRectF>{third});
  EXPECT_EQ(merge({drawn(first), drawn(second), drawn(third)}), (std::vector<QRectF>{first, second}));
}

TEST(WindowMergeTest, OneThatTookAPlaceIsComparedFromThenOn) {
  const QRectF inner(50, 0, 120, 150);
  const QRectF beside(115, 0, 200, 150);
  ASSERT_EQ(merge({drawn(kA), drawn(beside)}).size(), 2u);
  ASSERT_EQ(merge({drawn(inner), drawn(beside)}).size(), 2u);
  const QRectF most(0, 0, 110, 150);
  ASSERT_EQ(merge({drawn(inner), drawn(most)}).size(), 2u);
  EXPECT_EQ(merge({drawn(inner), drawn(kA), drawn(most)}), std::vector<QRectF>{kA});
}

TEST(WindowMergeTest, NoMoreThan512AreKept) {
  std::vector<Candidate> candidates;
  for (int i = 0; i < 600; ++i) candidates.push_back(drawn(QRectF(200 * (i % 30), 200 * (i / 30), 150, 150)));
  const auto kept = merge(candidates);
  ASSERT_EQ(kept.size(), 512u);
  for (size_t i = 0; i < kept.size(); ++i) EXPECT_EQ(kept[i], candidates[i].frame) << "the first ones";
  // One that holds another takes its place also then.
  const QRectF around(0, 0, 180, 180);
  candidates.push_back(drawn(around));
  EXPECT_EQ(merge(candidates).size(), 512u);
  EXPECT_EQ(merge(candidates).front(), around);
}

TEST(WindowMergeTest, EmptyFramesAreNeverOne) {
  EXPECT_EQ(merge({drawn({5, 5, 0, 0}), drawn({5, 5, 0, 0})}).size(), 2u);
}

}  // namespace
}  // namespace quillmere::WindowDetector
