#include "popup/PanelPlacement.h"

#include <gtest/gtest.h>

namespace quillmere {

inline void PrintTo(const PanelScreen& screen, std::ostream* out) {
  *out << screen.frame.x() << "," << screen.frame.y() << " " << screen.frame.width() << "x" << screen.frame.height();
}

namespace {

using PanelPlacement::chooseScreen;
using PanelPlacement::followScreen;
using PanelPlacement::place;

// --- place ---

const QRectF kVisible(0, 40, 1920, 1000);

TEST(PlaceTest, TheCardSits24PointsInFromTheRightAndTheBottom) {
  const auto placement = place(300, kVisible);
  EXPECT_EQ(placement.card, QRectF(1920 - 24 - 440, 64, 440, 300));
  EXPECT_EQ(placement.window, QRectF(1920 - 48 - 440, 40, 488, 348));
  EXPECT_FALSE(placement.scrolls);
}

TEST(PlaceTest, ItGrowsUpwards) {
  EXPECT_EQ(place(300, kVisible).card.y(), place(700, kVisible).card.y());
}

TEST(PlaceTest, AFractionOfAPointTakesAWholeOne) {
  EXPECT_EQ(place(300.01, kVisible).card.height(), 301);
}

TEST(PlaceTest, ACardThatJustFitsDoesNotScroll) {
  const auto placement = place(952, kVisible);
  EXPECT_EQ(placement.card, QRectF(1456, 64, 440, 952));
  EXPECT_FALSE(placement.scrolls);
}

TEST(PlaceTest, ACardTooTallTakesWhatThereIsAndScrolls) {
  const auto placement = place(952.5, kVisible);
  EXPECT_EQ(placement.card.height(), 952);
  EXPECT_TRUE(placement.scrolls);
  EXPECT_EQ(place(1e9, kVisible).card.height(), 952);
}

TEST(PlaceTest, OnANarrowScreenItKeepsToTheLeftEdge) {
  EXPECT_EQ(place(300, QRectF(100, 0, 464, 1000)).card.x(), 100);
  EXPECT_EQ(place(300, QRectF(100, 0, 463, 1000)).card.x(), 100);
  EXPECT_EQ(place(300, QRectF(100, 0, 465, 1000)).card.x(), 101);
}

TEST(PlaceTest, OnAShortScreenItKeepsToTheBottomEdge) {
  const auto placement = place(300, QRectF(0, 500, 1920, 30));
  EXPECT_EQ(placement.card.height(), 1) << "never 0 or less";
  EXPECT_EQ(placement.card.y(), 524);
  EXPECT_TRUE(placement.scrolls);
  EXPECT_EQ(place(300, QRectF(0, 500, 1920, 20)).card.y(), 519) << "its top stays on the screen";
  EXPECT_EQ(place(300, QRectF(0, 500, 1920, 0)).card.y(), 500);
}

TEST(PlaceTest, AnEmptyCardIsOnePointHigh) {
  for (const qreal height : {0.0, -5.0}) EXPECT_EQ(place(height, kVisible).card.height(), 1);
}

TEST(PlaceTest, ScreensLeftAndBelowOfTheFirstServeAlike) {
  EXPECT_EQ(place(300, QRectF(-1280, -800, 1280, 760)).card, QRectF(-464, -776, 440, 300));
}

// --- Choosing the screen ---

class FakeScreens final : public PanelScreenProviding {
 public:
  std::vector<PanelScreen> screens() const override { return all; }
  std::optional<PanelScreen> mainScreen() const override { return main; }
  QPointF mouseLocation() const override { return mouse; }
  std::vector<PanelScreen> all;
  std::optional<PanelScreen> main;
  QPointF mouse{-10000, -10000};
};

PanelScreen screen(qreal x, qreal y, qreal width, qreal height) {
  return {QRectF(x, y, width, height), QRectF(x, y + 40, width, height - 70)};
}

class ChooseScreenTest : public ::testing::Test {
 protected:
  ChooseScreenTest() {
    screens.all = {left, right};
    screens.main = right;
  }
  const PanelScreen left = screen(0, 0, 1000, 800);
  const PanelScreen right = screen(1000, 0, 1000, 800);
  FakeScreens screens;
};

TEST_F(ChooseScreenTest, TheOneWithTheLargerPartOfTheCapture) {
  EXPECT_EQ(chooseScreen(QRectF(900, 100, 300, 100), screens), right.visibleFrame);
  EXPECT_EQ(chooseScreen(QRectF(700, 100, 400, 100), screens), left.visibleFrame);
}

TEST_F(ChooseScreenTest, OfEqualPartsTheFirst) {
  EXPECT_EQ(chooseScreen(QRectF(900, 100, 200, 100), screens), left.visibleFrame);
  std::swap(screens.all[0], screens.all[1]);
  EXPECT_EQ(chooseScreen(QRectF(900, 100, 200, 100), screens), right.visibleFrame);
}

TEST_F(ChooseScreenTest, TheCapturesOriginIsTheTopLeftOfTheFirstScreen) {
  const PanelScreen above = screen(0, 800, 1000, 600);
  const PanelScreen below = screen(0, -900, 1000, 900);
  screens.all = {left, above, below};
  EXPECT_EQ(chooseScreen(QRectF(100, -500, 100, 100), screens), above.visibleFrame);
  EXPECT_EQ(chooseScreen(QRectF(100, 10, 100, 100), screens), left.visibleFrame);
  EXPECT_EQ(chooseScreen(QRectF(100, 1000, 100, 100), screens), below.visibleFrame);
}

TEST_F(ChooseScreenTest, WithoutACaptureTheOneUnderThePointer) {
  screens.mouse = {10, 10};
  EXPECT_EQ(chooseScreen(std::nullopt, screens), left.visibleFrame);
  screens.mouse = {1500, 10};
  EXPECT_EQ(chooseScreen(std::nullopt, screens), right.visibleFrame);
}

TEST_F(ChooseScreenTest, ACaptureOffEveryScreenCountsAsNone) {
  screens.mouse = {10, 10};
  EXPECT_EQ(chooseScreen(QRectF(5000, 5000, 100, 100), screens), left.visibleFrame);
  EXPECT_EQ(chooseScreen(QRectF(2000, 100, 100, 100), screens), left.visibleFrame) << "it only touches";
  EXPECT_EQ(chooseScreen(QRectF(1500, 100, 0, 0), screens), left.visibleFrame) << "it has no area";
}

/// The pixel under the pointer lies right of its point and, with y upward, below it.
TEST_F(ChooseScreenTest, APointerOnTheBorderOfTwoScreensIsOnItsPixelsScreen) {
  screens.mouse = {1000, 400};
  EXPECT_EQ(chooseScreen(std::nullopt, screens), right.visibleFrame);
  const PanelScreen above = screen(0, 800, 1000, 600);
  screens.all = {above, left};
  screens.mouse = {500, 800};
  EXPECT_EQ(chooseScreen(std::nullopt, screens), left.visibleFrame);
}

TEST_F(ChooseScreenTest, WithThePointerOffEveryScreenTheMainOne) {
  EXPECT_EQ(chooseScreen(std::nullopt, screens), right.visibleFrame);
  screens.main.reset();
  EXPECT_EQ(chooseScreen(std::nullopt, screens), left.visibleFrame) << "with no main screen the first";
}

TEST_F(ChooseScreenTest, WithoutScreensTheMainOneOrNone) {
  screens.all.clear();
  EXPECT_EQ(chooseScreen(QRectF(0, 0, 10, 10), screens), right.visibleFrame);
  screens.main.reset();
  EXPECT_EQ(chooseScreen(QRectF(0, 0, 10, 10), screens), std::nullopt);
}

// --- Following the screens ---

using FollowScreenTest = ChooseScreenTest;

TEST_F(FollowScreenTest, TheOneThatHoldsMostOfTheOldFrame) {
  screens.main = left;
  EXPECT_EQ(followScreen(QRectF(900, 40, 1000, 700), screens), right.visibleFrame);
  EXPECT_EQ(followScreen(QRectF(100, 40, 1000, 700), screens), left.visibleFrame);
}

TEST_F(FollowScreenTest, OfEqualPartsTheFirst) {
  EXPECT_EQ(followScreen(QRectF(500, 40, 1000, 700), screens), left.visibleFrame);
}

TEST_F(FollowScreenTest, WithItsScreenGoneTheMainOne) {
  EXPECT_EQ(followScreen(QRectF(2000, 0, 1000, 800), screens), right.visibleFrame);
  EXPECT_EQ(followScreen(std::nullopt, screens), right.visibleFrame);
  screens.main.reset();
  EXPECT_EQ(followScreen(QRectF(2000, 0, 1000, 800), screens), left.visibleFrame);
}

TEST_F(FollowScreenTest, WithoutScreensTheMainOneOrNone) {
  screens.all.clear();
  EXPECT_EQ(followScreen(left.visibleFrame, screens), right.visibleFrame);
  screens.main.reset();
  EXPECT_EQ(followScreen(left.visibleFrame, screens), std::nullopt);
}

}  // namespace
}  // namespace quillmere
