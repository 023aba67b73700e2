#include "detection/RegionPlace.h"

#include <gtest/gtest.h>

#include "detection/DrawnScreen.h"

namespace quillmere::CapturedWindows {
namespace {

std::optional<RegionPlace> placeOf(const QImage& image, const WindowStack& stack) {
  const EdgeBlocks edges(image);
  return RegionSearch(edges).place(stack);
}

DrawnScreen threeWindows() {
  DrawnScreen screen(QSize(1280, 800));
  screen.add(QRect(101, 83, 507, 401));
  screen.add(QRect(640, 120, 420, 333), QColor(235, 230, 240));
  screen.add(QRect(309, 251, 543, 407), QColor(250, 250, 235));
  return screen;
}

TEST(RegionPlaceTest, APartOfTheScreenIsFoundToThePixel) {
  const DrawnScreen screen = threeWindows();
  for (const QRect part : {QRect(60, 40, 700, 600), QRect(290, 230, 600, 460), QRect(83, 71, 901, 633)}) {
    const auto found = placeOf(screen.image.copy(part), screen.stack);
    ASSERT_TRUE(found) << part.x();
    EXPECT_EQ(found->origin, part.topLeft());
    EXPECT_TRUE(found->isSure);
    EXPECT_EQ(found->overruns, 0);
  }
}

TEST(RegionPlaceTest, WhereLinesRunInOneDirectionNothingIsSure) {
  const DrawnScreen screen = threeWindows();
  const auto found = placeOf(screen.image.copy(QRect(150, 300, 140, 300)), screen.stack);
  EXPECT_FALSE(found && found->isSure);
}

TEST(RegionPlaceTest, ACornerAloneIsNotSure) {
  const DrawnScreen screen = threeWindows();
  const auto found = placeOf(screen.image.copy(QRect(60, 40, 230, 200)), screen.stack);
  EXPECT_FALSE(found && found->isSure);
}

TEST(RegionPlaceTest, WindowsThatLookAlikeAndAreShiftedAreNotSure) {
  DrawnScreen screen(QSize(1280, 800));
  screen.add(QRect(100, 100, 300, 240));
  screen.add(QRect(500, 400, 300, 240));
  const auto found = placeOf(screen.image.copy(QRect(80, 80, 340, 280)), screen.stack);
  ASSERT_TRUE(found);
  EXPECT_FALSE(found->isSure) << "the other one, and a diagonal shift, would look the same";
}

TEST(RegionPlaceTest, OfAnotherScreenNothingIsFound) {
  QImage plain(500, 400, QImage::Format_RGB32);
  plain.fill(Qt::gray);
  EXPECT_FALSE(placeOf(plain, threeWindows().stack));
  EXPECT_FALSE(placeOf(threeWindows().image, WindowStack())) << "it is larger than that screen";
}

}  // namespace
}  // namespace quillmere::CapturedWindows
