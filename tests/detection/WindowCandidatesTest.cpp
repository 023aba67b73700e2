#include "detection/WindowCandidates.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <numeric>

#include "detection/DrawnEdges.h"
#include "support/RandomPictures.h"

namespace quillmere::WindowDetector {
namespace {

using pictures::Marks;

std::vector<Candidate> found(const Marks& marks) {
  const auto search = candidates(marks.edges().width, marks.edges().height, marks.maps());
  return search ? search->candidates : std::vector<Candidate>();
}
std::vector<QRectF> frames(const Marks& marks) {
  std::vector<QRectF> result;
  for (const Candidate& candidate : found(marks)) result.push_back(candidate.frame);
  return result;
}
/// Whether the one rectangle of this size is accepted in a picture of that size.
bool isAccepted(int64_t width, int64_t height, int64_t imageWidth, int64_t imageHeight) {
  Marks marks(imageWidth, imageHeight);
  marks.rectangle(10, 10, width, height);
  return !found(marks).empty();
}

TEST(WindowCandidatesTest, ARectangleOfTheLeastSizeIsAccepted) {
  EXPECT_TRUE(isAccepted(120, 100, 400, 400));
  EXPECT_FALSE(isAccepted(119, 100, 400, 400));
  EXPECT_FALSE(isAccepted(120, 99, 400, 400));
}

TEST(WindowCandidatesTest, TheLeastSizeGrowsWithABigPictureWithoutAJump) {
  EXPECT_TRUE(isAccepted(120, 120, 1439, 400));
  EXPECT_TRUE(isAccepted(120, 120, 1440, 400));
  EXPECT_TRUE(isAccepted(120, 120, 1451, 400)) << "120.9 is cut";
  EXPECT_FALSE(isAccepted(120, 120, 1452, 400));
  EXPECT_TRUE(isAccepted(121, 120, 1452, 400));
  EXPECT_TRUE(isAccepted(130, 100, 400, 1199));
  EXPECT_TRUE(isAccepted(130, 100, 400, 1200));
  EXPECT_TRUE(isAccepted(130, 100, 400, 1211));
  EXPECT_FALSE(isAccepted(130, 100, 400, 1212));
  EXPECT_TRUE(isAccepted(130, 101, 400, 1212));
}

TEST(WindowCandidatesTest, AnAspectOfExactlySixOrAFifthIsRefused) {
  EXPECT_FALSE(isAccepted(600, 100, 700, 700));
  EXPECT_TRUE(isAccepted(599, 100, 700, 700));
  EXPECT_FALSE(isAccepted(120, 600, 700, 700));
  EXPECT_TRUE(isAccepted(120, 599, 700, 700));
}

/// A rectangle of 200 by 100 with sides drawn to so many pixels.
struct Sides {
  const char* name;
  int left, right, top, bottom;
  bool isAccepted;
};
class SidesTest : public ::testing::TestWithParam<Sides> {};
INSTANTIATE_TEST_SUITE_P(
    Sides, SidesTest,
    ::testing::Values(
        Sides{"AllWhole", 100, 100, 200, 200, true}, Sides{"ThreeThreeQuartersAndOneWeak", 75, 75, 150, 70, true},
        Sides{"TheLeftWeak", 35, 100, 200, 200, true}, Sides{"TheLeftTooWeak", 34, 100, 200, 200, false},
        Sides{"TheRightWeak", 100, 35, 200, 200, true}, Sides{"TheRightTooWeak", 100, 34, 200, 200, false},
        Sides{"TheTopWeak", 100, 100, 70, 200, true}, Sides{"TheTopTooWeak", 100, 100, 69, 200, false},
        Sides{"TheBottomWeak", 100, 100, 200, 70, true}, Sides{"TheBottomTooWeak", 100, 100, 200, 69, false},
        Sides{"LeftAndRightUndrawn", 74, 74, 200, 200, false}, Sides{"LeftAndTopUndrawn", 74, 100, 149, 200, false},
        Sides{"LeftAndBottomUndrawn", 74, 100, 200, 149, false}, Sides{"RightAndTopUndrawn", 100, 74, 149, 200, false},
        Sides{"RightAndBottomUndrawn", 100, 74, 200, 149, false},
        Sides{"TopAndBottomUndrawn", 100, 100, 149, 149, false}, Sides{"OnlyTheLeftUndrawn", 74, 75, 150, 150, true},
        Sides{"OnlyTheRightUndrawn", 75, 74, 150, 150, true}, Sides{"OnlyTheTopUndrawn", 75, 75, 149, 150, true},
        Sides{"OnlyTheBottomUndrawn", 75, 75, 150, 149, true}),
    [](const auto& param) { return param.param.name; });

TEST_P(SidesTest, ThreeSidesAreDrawnToThreeQuartersAndTheFourthToAThird) {
  const Sides& sides = GetParam();
  Marks marks(300, 200);
  marks.column(20, 20, 20 + sides.left);
  marks.column(220, 20, 20 + sides.right);
  marks.row(20, 20, 20 + sides.top);
  marks.row(120, 20, 20 + sides.bottom);
  const auto accepted = found(marks);
  ASSERT_EQ(accepted.size(), sides.isAccepted ? 1u : 0u);
  if (accepted.empty()) return;
  EXPECT_EQ(accepted[0].frame, QRectF(20, 20, 200, 100));
  EXPECT_EQ(accepted[0].support,
            (std::array{sides.left / 100.0, sides.right / 100.0, sides.top / 200.0, sides.bottom / 200.0}));
}

TEST(WindowCandidatesTest, StrengthIsTheMeanOfTheSides) {
  const Candidate candidate{{0.5, 1, 0.75, 0.25}, {}};
  EXPECT_EQ(candidate.strength(), 0.625);
  EXPECT_EQ(candidate.weakestSide(), 0.25);
}

TEST(WindowCandidatesTest, TheyComeByLeftThenRightThenTopThenBottom) {
  Marks marks(600, 600);
  for (const int at : {20, 150, 280}) {
    marks.column(at, 10, 590);
    marks.row(at, 10, 590);
  }
  const std::vector<QRectF> wanted{
      {20, 20, 130, 130},  {20, 20, 130, 260},  {20, 150, 130, 130},  //
      {20, 20, 260, 130},  {20, 20, 260, 260},  {20, 150, 260, 130},  //
      {150, 20, 130, 130}, {150, 20, 130, 260}, {150, 150, 130, 130},
  };
  EXPECT_EQ(frames(marks), wanted);
}

TEST(WindowCandidatesTest, FewerThanTwoLinesEitherWayGiveNoSearch) {
  Marks marks(300, 300);
  marks.column(20, 20, 250);
  marks.row(20, 20, 250);
  marks.row(200, 20, 250);
  EXPECT_FALSE(candidates(300, 300, marks.maps()));
  marks.column(200, 20, 250);
  EXPECT_TRUE(candidates(300, 300, marks.maps()));
}

TEST(WindowCandidatesTest, AnOutlineBelowThreePixelsFromTheEdgeHasNoLine) {
  Marks near(300, 300);
  near.rectangle(2, 10, 200, 150);
  EXPECT_TRUE(found(near).empty());
  Marks inside(300, 300);
  inside.rectangle(3, 10, 293, 150);
  EXPECT_EQ(found(inside).size(), 1u);
  Marks far(300, 300);
  far.rectangle(3, 10, 294, 150);
  EXPECT_TRUE(found(far).empty());
}

TEST(WindowCandidatesTest, TheSearchKeepsTheProfilesOfAllSides) {
  Marks marks(300, 300);
  marks.rectangle(20, 30, 200, 150);
  const auto search = candidates(300, 300, marks.maps());
  ASSERT_TRUE(search);
  EXPECT_EQ(search->profiles.columns.at(20).hits(0, 300), 150);
  EXPECT_EQ(search->profiles.columns.at(220).hits(0, 300), 150);
  EXPECT_EQ(search->profiles.rows.at(30).hits(0, 300), 200);
  EXPECT_EQ(search->profiles.rows.at(180).hits(0, 300), 200);
}

void expectAlike(const plain::Edges& edges) {
  std::vector<plain::Candidate> wanted = plain::candidates(edges);
  if (wanted.size() > kMostCandidates) {
    // The strongest, in their order.
    const auto strength = [&](size_t i) { return wanted[i].strength(); };
    std::vector<size_t> places(wanted.size());
    std::iota(places.begin(), places.end(), size_t{0});
    std::stable_sort(places.begin(), places.end(), [&](size_t a, size_t b) { return strength(a) > strength(b); });
    places.resize(kMostCandidates);
    std::sort(places.begin(), places.end());
    std::vector<plain::Candidate> strongest;
    for (const size_t place : places) strongest.push_back(wanted[place]);
    wanted = strongest;
  }
  const auto search = candidates(edges.width, edges.height, pictures::edgeMaps(edges));
  const std::vector<Candidate> all = search ? search->candidates : std::vector<Candidate>();
  ASSERT_EQ(all.size(), wanted.size());
  for (size_t i = 0; i < all.size(); ++i) {
    EXPECT_EQ(all[i].support, wanted[i].support);
    EXPECT_EQ(all[i].frame, wanted[i].frame);
    EXPECT_EQ(all[i].strength(), wanted[i].strength());
  }
}

TEST(WindowCandidatesTest, RandomLinesGiveWhatFourNestedLoopsGive) {
  for (uint32_t seed = 1; seed <= 60; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    pictures::RandomPicture random(seed);
    const int width = random.between(160, 700);
    const int height = random.between(130, 500);
    Marks marks(width, height);
    for (int line = random.between(2, 25); line > 0; --line) {
      const int x = random.between(3, width - 4);
      const int y = random.between(3, height - 4);
      for (int part = random.between(1, 3); part > 0; --part) {
        const int fromY = random.upTo(height / 2);
        const int fromX = random.upTo(width / 2);
        marks.column(x, fromY, random.between(fromY, height - 1));
        marks.row(y, fromX, random.between(fromX, width - 1));
      }
    }
    expectAlike(marks.edges());
  }
}

TEST(WindowCandidatesTest, OfAFullGridTheStrongestAreKept) {
  Marks marks(900, 900);
  for (int i = 0; i < 60; ++i) {
    marks.column(5 + 15 * i, 1, 899);
    marks.row(5 + 15 * i, 1, 899);
  }
  const plain::Edges& edges = marks.edges();
  ASSERT_EQ(plain::linePeaks(edges.columnCounts, 900).size(), 56u);
  expectAlike(edges);
}

}  // namespace
}  // namespace quillmere::WindowDetector
