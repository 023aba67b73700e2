#include "editor/CropScene.h"

#include <gtest/gtest.h>
#include <algorithm>

namespace quillmere::testing {
namespace {

constexpr QRect kVisible(0, 0, 800, 600);

TEST(CropScene, ACropIsOnWholePixelsOfTheScreen) {
  PictureZoom zoom;
  zoom.setView({400, 300}, 1.25);
  zoom.setPicture({1000, 500});
  zoom.zoomTo(8, {200, 150});
  const QRect one = CropScenes::onScreen({500, 250, 1, 1}, zoom, 1.25);
  const QRect next = CropScenes::onScreen({501, 251, 3, 2}, zoom, 1.25);
  EXPECT_EQ(one.size(), QSize(8, 8));
  EXPECT_EQ(next.topLeft(), one.bottomRight() + QPoint(1, 1));
  EXPECT_EQ(next.size(), QSize(24, 16));
}

TEST(CropScene, HandlesComeWithTheRoomForThem) {
  const auto count = [](QSize size) { return CropScenes::handles({{100, 100}, size}, kVisible, 4, 1).size(); };
  EXPECT_EQ(count({200, 100}), 8U);
  EXPECT_EQ(count({30, 30}), 4U);
  EXPECT_EQ(count({200, 30}), 4U);
  EXPECT_EQ(count({10, 30}), 0U);
  EXPECT_EQ(CropScenes::handles({100, 100, 30, 30}, kVisible, 8, 2).size(), 0U) << "half as many points";
}

TEST(CropScene, HandlesAtTheCanvassEdgeAreWhole) {
  const auto handles = CropScenes::handles(kVisible, kVisible, 4, 1);
  ASSERT_EQ(handles.size(), 8U);
  for (const QPoint& handle : handles) {
    EXPECT_TRUE(kVisible.adjusted(4, 4, -3, -3).contains(handle)) << handle.x() << ' ' << handle.y();
  }
  const auto away = CropScenes::handles(kVisible.adjusted(-50, -50, 50, 50), kVisible, 4, 1);
  EXPECT_EQ(away.front(), QPoint(-50, -50)) << "what is out of view stays there";
}

TEST(CropScene, TheSizeStandsBesideTheCropWhereThereIsRoom) {
  constexpr QSize kText(90, 20);
  const auto badge = [&](const QRect& crop) { return CropScenes::badge(crop, kText, kVisible, 1); };
  EXPECT_EQ(badge({100, 100, 300, 200}).bottomLeft(), QPoint(100, 91)) << "above";
  EXPECT_EQ(badge({100, 10, 300, 200}).topLeft(), QPoint(100, 218)) << "below";
  EXPECT_EQ(badge({0, 0, 800, 600}).topLeft(), QPoint(8, 8)) << "inside";
  EXPECT_EQ(badge({-900, 50, 9000, 900}).topLeft(), QPoint(0, 22)) << "beside what is seen";
  EXPECT_EQ(badge({780, 100, 20, 20}).right(), kVisible.right());
  for (const QRect& crop : {QRect(-500, -500, 20, 20), QRect(2000, 100, 20, 20), QRect(300, 900, 20, 20)}) {
    EXPECT_TRUE(kVisible.contains(badge(crop)));
  }
}

TEST(CropScene, AWindowsNameStandsInItAndMakesRoom) {
  const QRect place = CropScenes::label({100, 100, 300, 200}, {120, 20}, kVisible, 1);
  EXPECT_EQ(place, QRect(108, 108, 120, 20));
  EXPECT_EQ(CropScenes::below(place, {100, 100, 90, 20}, 1), QRect(108, 126, 120, 20));
  EXPECT_EQ(CropScenes::below(place, {300, 100, 90, 20}, 1), place);
}

TEST(CropScene, TheLoupeIsWhereItFits) {
  for (const qreal displayScale : {1.0, 1.25, 1.5, 2.0}) {
    const QRect visible(QPoint(), QSize(800, 600) * displayScale);
    const CropBadge text{{0, 0, 80, 20}, QStringLiteral("10, 20")};
    for (int x = 0; x <= visible.width(); x += 50) {
      for (int y = 0; y <= visible.height(); y += 50) {
        const CropLoupe loupe = CropScenes::loupe({10, 20}, {x, y}, text, std::nullopt, visible, displayScale);
        ASSERT_TRUE(visible.contains(loupe.rect));
        ASSERT_TRUE(visible.contains(loupe.place.rect));
        ASSERT_FALSE(loupe.rect.united(loupe.place.rect).contains(x, y)) << "the pointer is on it";
        ASSERT_FALSE(loupe.rect.intersects(loupe.place.rect));
        ASSERT_EQ(loupe.rect.width() % 16, 0) << "as many whole pixels on both sides";
        ASSERT_NEAR(loupe.rect.width(), 120 * displayScale, 10);
      }
    }
  }
}

TEST(CropScene, TheLoupeLeavesTheSizeToBeRead) {
  const CropBadge size{{430, 330, 90, 20}, QStringLiteral("100 × 100")};
  const CropLoupe loupe =
      CropScenes::loupe({10, 20}, {400, 300}, {{0, 0, 80, 20}, QStringLiteral("10, 20")}, size, kVisible, 1);
  EXPECT_FALSE(loupe.rect.intersects(size.rect));
  // In the corner there is one side of the pointer alone, and the size is there.
  const CropBadge above{{700, 470, 90, 20}, QStringLiteral("100 × 100")};
  const CropLoupe away =
      CropScenes::loupe({10, 20}, {795, 595}, {{0, 0, 80, 20}, QStringLiteral("10, 20")}, above, kVisible, 1);
  EXPECT_FALSE(away.rect.intersects(above.rect));
}

TEST(CropScene, NothingChangedIsNothingToPaint) {
  CropScene scene;
  scene.visible = scene.picture = kVisible;
  scene.crop = QRect(100, 100, 200, 100);
  EXPECT_TRUE(scene.changesFrom(scene).isEmpty());
  CropScene other = scene;
  other.crop.reset();
  EXPECT_EQ(other.changesFrom(scene), QRegion(kVisible)) << "all was dimmed";
}

TEST(CropScene, OneEdgeThatMovesIsNotTheWholeCanvas) {
  CropScene before;
  before.visible = before.picture = kVisible;
  before.crop = QRect(100, 100, 200, 100);
  CropScene after = before;
  after.crop = QRect(100, 100, 210, 100);
  const QRegion changes = after.changesFrom(before);
  EXPECT_TRUE(changes.contains(QRect(300, 100, 10, 100)));
  EXPECT_FALSE(changes.intersects(QRect(120, 120, 150, 60)));
  EXPECT_FALSE(changes.intersects(QRect(400, 0, 400, 600)));
}

}  // namespace
}  // namespace quillmere::testing
