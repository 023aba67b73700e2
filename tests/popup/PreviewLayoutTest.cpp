#include "popup/PreviewLayout.h"

#include <gtest/gtest.h>

#include "support/Printing.h"

namespace quillmere {
namespace {

constexpr QSize kWell(408, 230);
constexpr QSize kLowWell(408, 96);
constexpr QSize kActions(100, 28);
constexpr QRect kInTheWellsCorner(300, 8, 100, 28);
/// Beside the actions and below them.
constexpr QRect kBeside(0, 0, 292, 230);
constexpr QRect kBelow(0, 44, 408, 186);

QRect all(const QSize& well) {
  return {QPoint(), well};
}
PreviewLayout screenshot(const QSizeF& size, QSize well = kWell) {
  return PreviewLayout::of(well, kActions, size, std::nullopt);
}
PreviewLayout window(const QSizeF& size, const QSizeF& of = {1920, 1080}) {
  return PreviewLayout::of(kWell, kActions, of, size);
}

TEST(PreviewLayoutTest, AScreenshotThatFillsTheWellHasThemInItsCorner) {
  EXPECT_EQ(screenshot({1920, 1080}), (PreviewLayout{all(kWell), kInTheWellsCorner}));
  EXPECT_EQ(PreviewLayout::of(kWell, kActions, std::nullopt, std::nullopt),
            (PreviewLayout{all(kWell), kInTheWellsCorner}))
      << "one of unknown size too";
}

TEST(PreviewLayoutTest, OneThatNearlyFillsItHasThemInItsOwnCorner) {
  // 368 points wide, 20 on each side of it.
  const PreviewLayout layout = screenshot({1920, 1200});
  EXPECT_EQ(layout.picture, all(kWell));
  EXPECT_EQ(layout.actions.right(), 388 - 8 - 1);
}

TEST(PreviewLayoutTest, ANarrowOneStandsBesideThem) {
  EXPECT_EQ(screenshot({900, 1000}), (PreviewLayout{kBeside, kInTheWellsCorner})) << "207 points wide";
  EXPECT_EQ(screenshot({400, 1000}), (PreviewLayout{all(kWell), kInTheWellsCorner}))
      << "in the middle, with room for both";
}

TEST(PreviewLayoutTest, ALowOneStandsBelowThem) {
  EXPECT_EQ(screenshot({2000, 200}, kLowWell), (PreviewLayout{QRect(0, 44, 408, 52), kInTheWellsCorner}));
  EXPECT_EQ(screenshot({2000, 10}, kLowWell).picture, all(kLowWell)) << "in the middle, with room for both";
}

TEST(PreviewLayoutTest, NothingIsEnlarged) {
  EXPECT_EQ(screenshot({150, 60}), (PreviewLayout{all(kWell), kInTheWellsCorner}));
  EXPECT_EQ(screenshot({280, 180}), (PreviewLayout{kBelow, kInTheWellsCorner}));
  EXPECT_EQ(screenshot({280, 220}), (PreviewLayout{kBeside, kInTheWellsCorner}));
}

TEST(PreviewLayoutTest, AWindowIsNeverUnderThem) {
  EXPECT_EQ(window({1900, 700}).picture, kBelow) << "wide";
  EXPECT_EQ(window({800, 800}).picture, kBeside) << "as high as wide";
  EXPECT_EQ(window({100, 100}).picture, all(kWell)) << "small";
}

TEST(PreviewLayoutTest, ExtractingAWindowMovesNoButton) {
  for (const QSizeF of : {QSizeF(1920, 1080), QSizeF(1920, 1200), QSizeF(900, 1000), QSizeF(500, 100)}) {
    for (const QSizeF size : {QSizeF(400, 100), QSizeF(300, 300), QSizeF(20, 90)}) {
      EXPECT_EQ(window(size, of).actions, screenshot(of).actions);
    }
  }
}

}  // namespace
}  // namespace quillmere
