#include "editor/CropSelection.h"

#include <gtest/gtest.h>
#include <array>
#include <cmath>
#include <limits>

#include "editor/CropsForTests.h"

namespace quillmere::testing {
namespace {

constexpr int kMostInt = std::numeric_limits<int>::max();
constexpr int kLeastInt = std::numeric_limits<int>::min();

/// Of a picture of 100 by 80 pixels with a window that has a shadow around it, one near the top left corner whose
/// shadow is cut off, one without a shadow and one whose shadow nobody could measure.
class CropSelectionTest : public ::testing::Test {
 protected:
  void expectOwn() const {
    EXPECT_EQ(crop.selectedCandidate(), std::nullopt);
    EXPECT_EQ(crop.candidate(), nullptr);
    EXPECT_EQ(crop.appliedShadow(), std::nullopt);
  }
  void pick(int number) { crop.pick(uuid(number)); }
  QRect selected() const { return crop.selection(); }

  enum { kFree = 1, kInCorner, kBare, kGuessed };
  CropSelection crop{
      QSize(100, 80),
      {candidate(kFree, {30, 20, 40, 30}, shadow(5, 3, 6, 9)), candidate(kInCorner, {2, 1, 20, 10}, shadow(5, 3, 6, 9)),
       candidate(kBare, {50, 50, 10, 10}, {}),
       candidate(kGuessed, {10, 40, 20, 20}, shadow(4, 4, 4, 4, WindowShadowMargin::Source::estimated))}};
};

TEST_F(CropSelectionTest, NothingIsSelectedAtFirst) {
  EXPECT_TRUE(crop.isEmpty());
  EXPECT_EQ(selected(), QRect());
  EXPECT_FALSE(crop.isWholeImage());
  EXPECT_FALSE(crop.includesShadow());
  EXPECT_FALSE(crop.canIncludeShadow());
  expectOwn();
}

TEST_F(CropSelectionTest, OfNoPictureNothingCanBeSelected) {
  for (const QSize& none : {QSize(), QSize(0, 0), QSize(0, 10), QSize(-5, 7)}) {
    crop = CropSelection(none);
    EXPECT_EQ(crop.bounds(), QRect());
    crop.selectWholeImage();
    EXPECT_EQ(selected(), QRect());
    EXPECT_FALSE(crop.isWholeImage());
    crop.drag({-4, -4}, {10, 10});
    crop.setByHand({0, 0, 5, 5});
    EXPECT_FALSE(crop.setBounds(0, 0, 1, 1));
    EXPECT_EQ(selected(), QRect());
  }
}

// --- Drags ---

TEST_F(CropSelectionTest, ADragThatLeavesThePictureIsClampedToIt) {
  crop.drag({90, 70}, {300, -5});
  EXPECT_EQ(selected(), QRect(90, 0, 10, 70));
  crop.drag({-1e300, 1e300}, {1e300, -1e300});
  EXPECT_TRUE(crop.isWholeImage());
}

TEST_F(CropSelectionTest, ADragBesideThePictureSelectsNothing) {
  crop.drag({-20, 10}, {-5, 30});
  EXPECT_EQ(selected(), QRect());
  crop.drag({10, 90}, {30, 300});
  EXPECT_EQ(selected(), QRect());
}

TEST_F(CropSelectionTest, ADragOfNoLengthSelectsNothing) {
  crop.drag({10.3, 20.6}, {10.3, 20.6});
  EXPECT_TRUE(crop.isEmpty());
  EXPECT_EQ(selected(), QRect());
  crop.drag({10, 20}, {10, 20});
  EXPECT_EQ(selected(), QRect());
}

TEST_F(CropSelectionTest, ADragStraightDownSelectsThePixelsItRunsThrough) {
  crop.drag({10.3, 20.6}, {10.3, 30.2});
  EXPECT_EQ(selected(), QRect(10, 20, 1, 11));
  crop.drag({10, 20.6}, {10, 30.2});
  EXPECT_EQ(selected(), QRect()) << "between two columns";
  crop.drag({10.5, 20}, {30, 20});
  EXPECT_EQ(selected(), QRect()) << "between two rows";
}

TEST_F(CropSelectionTest, ADragTakesEveryPixelThatItTouches) {
  crop.drag({10.9, 20.01}, {12.1, 22.0});
  EXPECT_EQ(selected(), QRect(10, 20, 3, 2));
  crop.drag({10, 20}, {12, 22});
  EXPECT_EQ(selected(), QRect(10, 20, 2, 2));
}

TEST_F(CropSelectionTest, ADragGivesTheSameInEveryDirection) {
  const std::vector<double> places{0, 0.1, 0.3, 7, 9.9, 33.3, 50, 66.7, 79.999};
  for (const double left : places) {
    for (const double right : places) {
      if (right <= left) continue;
      crop.drag({left, left}, {right, right});
      const QRect selected = crop.selection();
      EXPECT_EQ(selected.left(), static_cast<int>(left));
      EXPECT_EQ(selected.left() + selected.width(), static_cast<int>(std::ceil(right)));
      for (const auto& [start, end] : {std::pair(QPointF(right, right), QPointF(left, left)),
                                       {QPointF(left, right), QPointF(right, left)},
                                       {QPointF(right, left), QPointF(left, right)}}) {
        crop.drag(start, end);
        EXPECT_EQ(crop.selection(), selected) << left << " to " << right;
      }
    }
  }
}

TEST_F(CropSelectionTest, ADragOfWhatIsNoNumberStaysInThePicture) {
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  crop.drag({kNone, kNone}, {10, 10});
  EXPECT_TRUE(crop.bounds().contains(selected()));
  crop.drag({-kInfinity, 5}, {kInfinity, 6});
  EXPECT_EQ(selected(), QRect(0, 5, 100, 1));
}

TEST_F(CropSelectionTest, AfterADragTheSelectionIsOnesOwn) {
  pick(kFree);
  crop.setIncludesShadow(true);
  crop.drag({1, 1}, {5, 5});
  expectOwn();
  EXPECT_FALSE(crop.canIncludeShadow());
  EXPECT_TRUE(crop.includesShadow()) << "the next window comes with its shadow all the same";
}

TEST_F(CropSelectionTest, ByHandOnlyThePartInsideThePictureIsSelected) {
  pick(kFree);
  crop.setByHand({-5, 70, 20, 20});
  EXPECT_EQ(selected(), QRect(0, 70, 15, 10));
  expectOwn();
  for (const QRect& outside : {QRect(100, 0, 5, 5), QRect(0, -9, 5, 9), QRect(10, 10, 0, 5), QRect(10, 10, -5, 0)}) {
    crop.setByHand(outside);
    EXPECT_EQ(selected(), QRect());
  }
  crop.setByHand({10, 10, 5, -3});
  EXPECT_EQ(selected(), QRect(10, 7, 5, 3)) << "drawn upward";
  crop.setByHand(QRect(QPoint(kLeastInt / 4, kLeastInt / 4), QPoint(kMostInt / 4, kMostInt / 4)));
  EXPECT_TRUE(crop.isWholeImage());
}

// --- Windows ---

TEST_F(CropSelectionTest, APickedWindowIsSelectedByItsFrame) {
  pick(kInCorner);
  EXPECT_EQ(selected(), QRect(2, 1, 20, 10));
  EXPECT_EQ(crop.selectedCandidate(), uuid(kInCorner));
  EXPECT_EQ(crop.candidate()->number, kInCorner);
  EXPECT_EQ(crop.appliedShadow(), std::nullopt);
  pick(kFree);
  EXPECT_EQ(selected(), QRect(30, 20, 40, 30));
}

TEST_F(CropSelectionTest, AnUnknownWindowIsNotPicked) {
  pick(kFree);
  const CropSelection before = crop;
  pick(9);
  EXPECT_EQ(crop, before);
}

TEST_F(CropSelectionTest, TheShadowGrowsTheSelectionOnEachSide) {
  pick(kFree);
  crop.setIncludesShadow(true);
  EXPECT_EQ(selected(), QRect(25, 17, 51, 42));
  EXPECT_EQ(crop.appliedShadow(), shadow(5, 3, 6, 9));
  crop.setIncludesShadow(false);
  EXPECT_EQ(selected(), QRect(30, 20, 40, 30));
  EXPECT_EQ(crop.appliedShadow(), std::nullopt);
  EXPECT_EQ(crop.selectedCandidate(), uuid(kFree));
}

TEST_F(CropSelectionTest, OfAShadowThatThePictureCutsOffOnlyWhatWasAddedIsGivenBack) {
  pick(kInCorner);
  crop.setIncludesShadow(true);
  EXPECT_EQ(selected(), QRect(0, 0, 28, 20));
  EXPECT_EQ(crop.appliedShadow(), shadow(2, 1, 6, 9));
  crop.setIncludesShadow(false);
  EXPECT_EQ(selected(), QRect(2, 1, 20, 10));
}

TEST_F(CropSelectionTest, AFractionalShadowTakesWholePixels) {
  crop = CropSelection({100, 80}, {candidate(1, {30, 20, 40, 30}, shadow(4.2, 0.1, 6, 8.9))});
  pick(1);
  crop.setIncludesShadow(true);
  EXPECT_EQ(selected(), QRect(25, 19, 51, 40));
  EXPECT_EQ(crop.appliedShadow(), shadow(5, 1, 6, 9));
  crop.setIncludesShadow(false);
  EXPECT_EQ(selected(), QRect(30, 20, 40, 30));
}

TEST_F(CropSelectionTest, AShadowLargerThanThePictureFillsIt) {
  for (const double size : {1e3, 1e10, 1e17, 1e300, std::numeric_limits<double>::infinity()}) {
    crop = CropSelection({100, 80}, {candidate(1, {30, 20, 40, 30}, shadow(size, size, 6, size))});
    pick(1);
    crop.setIncludesShadow(true);
    EXPECT_EQ(selected(), QRect(0, 0, 76, 80)) << size;
    EXPECT_EQ(crop.appliedShadow(), shadow(30, 20, 6, 30));
    crop.setIncludesShadow(false);
    EXPECT_EQ(selected(), QRect(30, 20, 40, 30));
  }
}

TEST_F(CropSelectionTest, AWindowThatFillsThePictureGivesItsShadowNoRoom) {
  crop = CropSelection({100, 80}, {candidate(1, {0, 0, 100, 80}, shadow(5, 5, 5, 5))});
  pick(1);
  crop.setIncludesShadow(true);
  EXPECT_TRUE(crop.isWholeImage());
  EXPECT_EQ(crop.appliedShadow(), shadow(0, 0, 0, 0)) << "the box is on, although nothing could be added";
  crop.setIncludesShadow(false);
  EXPECT_TRUE(crop.isWholeImage());
}

TEST_F(CropSelectionTest, AnEstimatedShadowIsTakenInLikeAMeasuredOneAndKnownAsOne) {
  pick(kGuessed);
  crop.setIncludesShadow(true);
  EXPECT_EQ(selected(), QRect(6, 36, 28, 28));
  EXPECT_EQ(crop.appliedShadow()->source, WindowShadowMargin::Source::estimated);
}

TEST_F(CropSelectionTest, WithoutAWindowThatHasAShadowTheBoxDoesNothing) {
  for (const int number : {0, int{kBare}}) {
    pick(number);
    EXPECT_FALSE(crop.canIncludeShadow());
    const CropSelection before = crop;
    for (const bool includes : {true, false}) {
      crop.setIncludesShadow(includes);
      EXPECT_EQ(crop, before);
    }
  }
}

TEST_F(CropSelectionTest, TheNextWindowsFollowTheBox) {
  pick(kFree);
  crop.setIncludesShadow(true);
  pick(kBare);
  EXPECT_EQ(selected(), QRect(50, 50, 10, 10));
  EXPECT_EQ(crop.appliedShadow(), std::nullopt);
  pick(kInCorner);
  EXPECT_EQ(selected(), QRect(0, 0, 28, 20));
  pick(kInCorner);
  EXPECT_EQ(selected(), QRect(0, 0, 28, 20)) << "not grown twice";
  crop.setIncludesShadow(false);
  pick(kFree);
  EXPECT_EQ(selected(), QRect(30, 20, 40, 30));
}

TEST_F(CropSelectionTest, TheBoxTurnedTwiceToTheSameSideDoesNothing) {
  pick(kFree);
  crop.setIncludesShadow(true);
  const CropSelection before = crop;
  crop.setIncludesShadow(true);
  EXPECT_EQ(crop, before);
}

// --- The whole picture ---

TEST_F(CropSelectionTest, TheWholeImageCanBeSelectedAtAnyTime) {
  crop.selectWholeImage();
  EXPECT_EQ(selected(), QRect(0, 0, 100, 80));
  EXPECT_TRUE(crop.isWholeImage());
  crop.drag({1, 1}, {2, 2});
  crop.selectWholeImage();
  EXPECT_TRUE(crop.isWholeImage());
}

TEST_F(CropSelectionTest, TheWholeImageIsLessByTheShadowThatIsTakenOffIt) {
  pick(kFree);
  crop.setIncludesShadow(true);
  crop.selectWholeImage();
  EXPECT_EQ(crop.selectedCandidate(), uuid(kFree));
  EXPECT_EQ(crop.appliedShadow(), shadow(5, 3, 6, 9));
  crop.setIncludesShadow(false);
  EXPECT_EQ(selected(), QRect(5, 3, 89, 68)) << "the change in between stays in the result";
  crop.setIncludesShadow(true);
  EXPECT_EQ(selected(), QRect(25, 17, 51, 42)) << "the window and its shadow again";
}

// --- Keys ---

TEST_F(CropSelectionTest, KeysMoveTheSelectionAsFarAsThePictureGoes) {
  crop.drag({10, 10}, {30, 20});
  crop.moveBy(1, 0);
  EXPECT_EQ(selected(), QRect(11, 10, 20, 10));
  crop.moveBy(0, -10);
  EXPECT_EQ(selected(), QRect(11, 0, 20, 10));
  crop.moveBy(-100, 0);
  EXPECT_EQ(selected(), QRect(0, 0, 20, 10));
  crop.moveBy(kMostInt, kMostInt);
  EXPECT_EQ(selected(), QRect(80, 70, 20, 10));
  crop.moveBy(kLeastInt, kLeastInt);
  EXPECT_EQ(selected(), QRect(0, 0, 20, 10));
}

TEST_F(CropSelectionTest, TenPixelsAreThreeAtThreePixelsFromTheEdge) {
  crop.drag({77, 67}, {97, 77});
  crop.moveBy(10, 0);
  EXPECT_EQ(selected(), QRect(80, 67, 20, 10));
  crop.moveBy(0, 10);
  EXPECT_EQ(selected(), QRect(80, 70, 20, 10));
  crop.drag({3, 3}, {9, 9});
  crop.moveBy(-10, 0);
  crop.moveBy(0, -10);
  EXPECT_EQ(selected(), QRect(0, 0, 6, 6));
}

TEST_F(CropSelectionTest, KeysMakeASideAtLeastOnePixelAndAtMostTheRoomToTheEdge) {
  crop.drag({90, 70}, {95, 75});
  crop.resizeBy(1, 0);
  EXPECT_EQ(selected(), QRect(90, 70, 6, 5));
  crop.resizeBy(10, 0);
  EXPECT_EQ(selected(), QRect(90, 70, 10, 5));
  crop.resizeBy(0, 10);
  EXPECT_EQ(selected(), QRect(90, 70, 10, 10));
  crop.resizeBy(-10, 0);
  EXPECT_EQ(selected(), QRect(90, 70, 1, 10));
  crop.resizeBy(kLeastInt, kLeastInt);
  EXPECT_EQ(selected(), QRect(90, 70, 1, 1));
  crop.resizeBy(kMostInt, kMostInt);
  EXPECT_EQ(selected(), QRect(90, 70, 10, 10));
}

TEST_F(CropSelectionTest, WithNothingSelectedKeysDoNothing) {
  const CropSelection before = crop;
  crop.moveBy(1, 1);
  crop.resizeBy(1, 1);
  EXPECT_EQ(crop, before);
}

TEST_F(CropSelectionTest, AfterAKeyTheSelectionIsOnesOwn) {
  for (const auto key : {&CropSelection::moveBy, &CropSelection::resizeBy}) {
    pick(kFree);
    crop.setIncludesShadow(true);
    (crop.*key)(1, 0);
    expectOwn();
  }
  EXPECT_EQ(selected(), QRect(25, 17, 52, 42)) << "the shadow is a part of it like any other";
}

// --- Fields ---

TEST_F(CropSelectionTest, BoundsThatHaveASizeAndLieInsideAreTaken) {
  pick(kFree);
  crop.setIncludesShadow(true);
  EXPECT_TRUE(crop.setBounds(99, 79, 1, 1));
  EXPECT_EQ(selected(), QRect(99, 79, 1, 1));
  expectOwn();
  EXPECT_TRUE(crop.setBounds(0, 0, 100, 80));
  EXPECT_TRUE(crop.isWholeImage());
}

TEST_F(CropSelectionTest, OtherBoundsChangeNothing) {
  constexpr qint64 kMost = std::numeric_limits<qint64>::max();
  constexpr qint64 kLeast = std::numeric_limits<qint64>::min();
  pick(kFree);
  crop.setIncludesShadow(true);
  const CropSelection before = crop;
  for (const auto& [x, y, width, height] : {std::array<qint64, 4>{0, 0, 0, 5},
                                            {0, 0, 5, 0},
                                            {0, 0, -5, 5},
                                            {0, 0, 5, -1},
                                            {-1, 0, 5, 5},
                                            {0, -1, 5, 5},
                                            {0, 0, 101, 80},
                                            {0, 0, 100, 81},
                                            {1, 0, 100, 80},
                                            {0, 1, 100, 80},
                                            {100, 0, 1, 1},
                                            {0, 80, 1, 1},
                                            {kMost, kMost, kMost, kMost},
                                            {kLeast, kLeast, kLeast, kLeast},
                                            {1, 1, kMost, kMost},
                                            {kMost, 0, 1, 1},
                                            {qint64{1} << 32, 0, 5, 5},
                                            {0, 0, (qint64{1} << 32) + 5, 5}}) {
    EXPECT_FALSE(crop.setBounds(x, y, width, height)) << x << " " << y << " " << width << " " << height;
    EXPECT_EQ(crop, before);
  }
}

TEST_F(CropSelectionTest, BoundsAsTheyWereMakeTheSelectionOnesOwn) {
  pick(kFree);
  EXPECT_TRUE(crop.setBounds(30, 20, 40, 30));
  expectOwn();
}

}  // namespace
}  // namespace quillmere::testing
