#include "inbox/QuickLookPlacement.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

const QuickLookRoom kRoom{QRect(100, 50, 2000, 1000), 1, 40, {}};

TEST(QuickLookPlacementTest, ASmallPictureHasItsRealSize) {
  EXPECT_EQ(quickLookSize({800, 600}, kRoom), QSize(800, 640));
  QuickLookRoom dense = kRoom;
  dense.displayScale = 2;
  EXPECT_EQ(quickLookSize({1600, 1200}, dense), QSize(800, 640));
  EXPECT_EQ(quickLookSize({1601, 1201}, dense), QSize(801, 641)) << "no pixel short of it";
}

TEST(QuickLookPlacementTest, ALargePictureKeepsItsShapeInMostOfTheScreen) {
  const QSize wide = quickLookSize({7680, 2160}, kRoom);
  EXPECT_EQ(wide, QSize(1700, 479 + 40));
  const QSize tall = quickLookSize({1000, 8100}, kRoom);
  EXPECT_EQ(tall.height(), 850);
}

TEST(QuickLookPlacementTest, ItCanAlwaysBeHandled) {
  EXPECT_EQ(quickLookSize({1, 1}, kRoom), QSize(420, 300));
  EXPECT_EQ(quickLookSize({10, 40'000}, kRoom), QSize(420, 850));
  EXPECT_EQ(quickLookSize({800, 600}, {QRect(0, 0, 320, 200), 1, 40, {}}), QSize(320, 200));
}

TEST(QuickLookPlacementTest, ItStandsAboutItsCentre) {
  EXPECT_EQ(quickLookPlace({400, 300}, {1000, 500}, kRoom).size(), QSize(400, 300));
  EXPECT_EQ(quickLookPlace({400, 300}, {1000, 500}, kRoom).center(), QPoint(1000, 500));
}

TEST(QuickLookPlacementTest, NothingOfItIsOutsideOfTheScreen) {
  QuickLookRoom framed = kRoom;
  framed.frame = {5, 30, 5, 5};
  for (const QuickLookRoom& room : {kRoom, framed}) {
    for (const QPoint centre : {QPoint(0, 0), QPoint(9'000, 9'000), QPoint(-500, 700), QPoint(110, 1'040)}) {
      for (const QSize size : {QSize(400, 300), QSize(2000, 1000), QSize(5000, 5000)}) {
        const QRect outer = quickLookPlace(size, centre, room).marginsAdded(room.frame);
        EXPECT_TRUE(room.available.contains(outer)) << size.width() << " at " << centre.x() << ", " << centre.y();
      }
    }
  }
}

}  // namespace
}  // namespace quillmere
