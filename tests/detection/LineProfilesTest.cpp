#include "detection/LineProfiles.h"

#include <gtest/gtest.h>

#include "detection/DrawnEdges.h"
#include "support/RandomPictures.h"

namespace quillmere::WindowDetector {
namespace {

using pictures::Marks;
using Positions = std::vector<int>;

/// Counts of 40 positions, all 0 but these.
std::vector<int> counts(std::initializer_list<std::pair<int, int>> some) {
  std::vector<int> result(40);
  for (const auto& [position, count] : some) result[position] = count;
  return result;
}
Positions peaks(const std::vector<int>& counts, int64_t lengthAcross = 100) {
  return linePeaks(counts, lengthAcross, static_cast<int64_t>(counts.size()));
}

TEST(LinePeaksTest, LinesLieAtLeastThreePositionsFromTheEdge) {
  EXPECT_EQ(peaks(counts({{2, 50}, {37, 50}})), Positions());
  EXPECT_EQ(peaks(counts({{3, 50}, {36, 50}})), (Positions{3, 36}));
}

TEST(LinePeaksTest, ALineReachesFourInAHundredOfTheLengthAcross) {
  EXPECT_EQ(peaks(counts({{10, 4}, {20, 3}}), 100), Positions{10});
  EXPECT_EQ(peaks(counts({{10, 4}, {20, 3}}), 124), Positions{10}) << "4.96 is cut to 4";
  EXPECT_EQ(peaks(counts({{10, 4}, {20, 5}}), 125), Positions{20});
}

TEST(LinePeaksTest, WithoutAnyEdgeEveryPositionOfALowPictureIsAPeak) {
  EXPECT_EQ(peaks(counts({}), 24), (Positions{3, 9, 15, 21, 27, 33}));
  EXPECT_EQ(peaks(counts({}), 25), Positions());
}

TEST(LinePeaksTest, OfAPlateauTheFirstPositionIsKept) {
  EXPECT_EQ(peaks(counts({{10, 50}, {11, 50}, {12, 50}})), Positions{10});
  EXPECT_EQ(peaks(counts({{10, 50}, {11, 51}, {12, 50}})), Positions{11});
  EXPECT_EQ(peaks(counts({{10, 50}, {11, 40}})), Positions{10}) << "a slope is no peak";
  EXPECT_EQ(peaks(counts({{10, 40}, {11, 50}, {12, 45}, {13, 42}, {14, 41}, {15, 40}, {16, 39}, {17, 38}, {18, 9}})),
            Positions{11})
      << "a slope is no peak even 6 positions away";
  EXPECT_EQ(peaks(counts({{17, 50}, {16, 45}, {15, 42}, {14, 41}, {13, 40}, {12, 39}, {11, 38}, {10, 37}, {9, 9}})),
            Positions{17});
}

TEST(LinePeaksTest, LinesCloserThanSixPositionsAreOne) {
  EXPECT_EQ(peaks(counts({{10, 50}, {15, 60}})), Positions{15}) << "the one with the larger count";
  EXPECT_EQ(peaks(counts({{10, 60}, {15, 50}})), Positions{10});
  EXPECT_EQ(peaks(counts({{10, 50}, {15, 50}})), Positions{10}) << "of equals the lower";
  EXPECT_EQ(peaks(counts({{10, 50}, {16, 60}})), (Positions{10, 16}));
}

TEST(LinePeaksTest, ALineThatGaveWayToAStrongerOneHidesNoOther) {
  EXPECT_EQ(peaks(counts({{10, 60}, {15, 50}, {20, 40}})), (Positions{10, 20}));
}

TEST(LinePeaksTest, TheStrongestFiftySixAreKeptInAscendingOrder) {
  std::vector<int> many(600);
  for (int i = 0; i < 60; ++i) many[10 + 8 * i] = 100 + i;
  const Positions kept = peaks(many);
  ASSERT_EQ(kept.size(), 56u);
  EXPECT_EQ(kept.front(), 10 + 8 * 4) << "the four weakest are left out";
  EXPECT_TRUE(std::is_sorted(kept.begin(), kept.end()));
  for (int i = 0; i < 60; ++i) many[10 + 8 * i] = 100;
  EXPECT_EQ(peaks(many).back(), 10 + 8 * 55) << "of equals the first";
}

TEST(LinePeaksTest, RandomCountsGiveWhatThePlainRulesGive) {
  for (uint32_t seed = 1; seed <= 400; ++seed) {
    pictures::RandomPicture random(seed);
    std::vector<int> some(static_cast<size_t>(random.between(9, 900)));
    const int most = std::array{2, 9, 300}[seed % 3];
    for (int& count : some) count = random.upTo(most);
    const int64_t lengthAcross = random.between(9, 300);
    EXPECT_EQ(peaks(some, lengthAcross), plain::linePeaks(some, lengthAcross)) << "seed " << seed;
  }
}

TEST(LineProfilesTest, AnEdgeWithinTwoPixelsOfALineCountsOnce) {
  Marks marks(40, 40);
  marks.column(10, 5, 6);
  marks.column(8, 7, 8);
  marks.column(12, 9, 10);
  marks.column(7, 11, 12);
  marks.column(13, 13, 14);
  for (const int x : {8, 9, 10, 11, 12}) marks.column(x, 20, 21);
  marks.row(10, 5, 6);
  marks.row(8, 7, 8);
  marks.row(12, 9, 10);
  marks.row(7, 11, 12);
  marks.row(13, 13, 14);
  for (const int y : {8, 9, 10, 11, 12}) marks.row(y, 20, 21);
  const LineProfiles profiles(marks.maps(), {10}, {10});
  for (const LineProfile& profile : {profiles.columns.at(10), profiles.rows.at(10)}) {
    for (int64_t at = 0; at < 40; ++at) {
      EXPECT_EQ(profile.isHit(at), at == 5 || at == 7 || at == 9 || at == 20) << at;
    }
    EXPECT_EQ(profile.hits(0, 40), 4);
    EXPECT_EQ(profile.hits(5, 9), 2) << "from the first point up to the last";
    EXPECT_EQ(profile.hits(5, 10), 3);
    EXPECT_EQ(profile.hits(6, 7), 0);
  }
}

TEST(LineProfilesTest, EveryLineOfRandomPicturesHasThePlainSums) {
  for (uint32_t seed = 1; seed <= 150; ++seed) {
    pictures::RandomPicture random(seed);
    const plain::Gray gray = random.small();
    const plain::Edges edges = plain::edges(gray, 16);
    Positions columns;
    Positions rows;
    for (int x = 3; x <= gray.width - 4; ++x) columns.push_back(x);
    for (int y = 3; y <= gray.height - 4; ++y) rows.push_back(y);
    const LineProfiles profiles(pictures::edgeMaps(edges), columns, rows);
    for (const int x : columns) {
      const plain::Profile sums = plain::columnProfile(edges, x);
      for (int64_t y = 0; y <= gray.height; ++y) {
        ASSERT_EQ(profiles.columns.at(x).hits(0, y), sums[y]) << "seed " << seed << " column " << x;
      }
    }
    for (const int y : rows) {
      const plain::Profile sums = plain::rowProfile(edges, y);
      for (int64_t x = 0; x <= gray.width; ++x) {
        ASSERT_EQ(profiles.rows.at(y).hits(0, x), sums[x]) << "seed " << seed << " row " << y;
      }
    }
  }
}

}  // namespace
}  // namespace quillmere::WindowDetector
