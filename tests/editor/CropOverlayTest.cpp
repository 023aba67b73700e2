#include "editor/CropOverlay.h"

#include <gtest/gtest.h>
#include <random>
#include <set>

#include "controls/Appearance.h"
#include "controls/Contrast.h"
#include "controls/PictureDrawing.h"

namespace quillmere::testing {
namespace {

constexpr QRect kVisible(0, 0, 500, 400);

class CropOverlayTest : public ::testing::Test {
 protected:
  static CropScene sceneOf(const QRect& crop, qreal displayScale = 1) {
    CropScene scene;
    scene.displayScale = displayScale;
    scene.visible = scene.picture = kVisible;
    scene.crop = crop;
    scene.handles = CropScenes::handles(crop, kVisible, scene.handleRadius(), displayScale);
    return scene;
  }
  static CropBadge badge(const QString& text, QPoint at) {
    return {{at, CropOverlay::badgeSize(text, QFont(), 1)}, text};
  }
  static QImage plain(const QColor& color) {
    QImage image(kVisible.size(), QImage::Format_RGB32);
    image.fill(color);
    return image;
  }
  QImage painted(const CropScene& scene, const QColor& ground = Qt::gray) const {
    QImage image = plain(ground);
    QPainter painter(&image);
    CropOverlay::paint(painter, scene, theme, QFont());
    if (scene.loupe) CropOverlay::paintLoupe(painter, *scene.loupe, scene, picture, {5, 5, 20, 20}, theme, QFont());
    return image;
  }

  Theme theme{paletteFor({}, std::nullopt)};
  QImage picture = plain(Qt::darkCyan);
};

TEST_F(CropOverlayTest, WhatIsNotSelectedIsDimmedAndStillSeen) {
  const QImage image = painted(sceneOf({100, 100, 200, 150}), Qt::white);
  EXPECT_EQ(image.pixelColor(200, 170), QColor(Qt::white));
  const int dimmed = image.pixelColor(20, 20).lightness();
  EXPECT_GT(dimmed, 90);
  EXPECT_LT(dimmed, 160);
}

TEST_F(CropOverlayTest, WhatIsBesideThePictureIsNotDimmed) {
  CropScene scene = sceneOf({100, 100, 200, 150});
  scene.picture = QRect(50, 50, 400, 300);
  const QImage image = painted(scene, Qt::white);
  EXPECT_EQ(image.pixelColor(20, 20), QColor(Qt::white));
  EXPECT_NE(image.pixelColor(60, 60), QColor(Qt::white));
}

TEST_F(CropOverlayTest, TheEdgeIsSharpAndSeenOnEveryPicture) {
  for (const QColor& ground : {QColor(Qt::white), QColor(Qt::black), QColor(128, 128, 128)}) {
    const QImage image = painted(sceneOf({100, 100, 200, 150}), ground);
    // Beside the crop's left edge, between two handles.
    const QColor inside = image.pixelColor(100, 135);
    const QColor line = image.pixelColor(99, 135);
    const QColor beyond = image.pixelColor(98, 135);
    EXPECT_EQ(inside, ground) << "no pixel that is selected is covered";
    EXPECT_EQ(line, QColor(Qt::white));
    EXPECT_GT(contrastRatio(line, beyond), 3.0);
  }
}

TEST_F(CropOverlayTest, AtTheCanvassEndTheEdgeIsSeenToo) {
  const QImage image = painted(sceneOf(kVisible), Qt::black);
  EXPECT_EQ(image.pixelColor(0, 100), QColor(Qt::white));
  EXPECT_EQ(image.pixelColor(499, 100), QColor(Qt::white));
  EXPECT_EQ(image.pixelColor(120, 0), QColor(Qt::white));
  EXPECT_EQ(image.pixelColor(120, 399), QColor(Qt::white));
  const QImage away = painted(sceneOf(kVisible.adjusted(-30, -30, 30, 30)), Qt::black);
  EXPECT_EQ(away.pixelColor(0, 100), QColor(Qt::black)) << "the crop ends farther away";
}

TEST_F(CropOverlayTest, TheSizeCanBeReadOnEveryPicture) {
  for (const QColor& ground : {QColor(Qt::white), QColor(Qt::black), QColor(Qt::yellow)}) {
    CropScene scene = sceneOf({100, 100, 200, 150});
    scene.size = badge(QStringLiteral("1920 × 1080"), {100, 70});
    const QImage image = painted(scene, ground);
    double best = 1;
    const QColor behind = image.pixelColor(scene.size->rect.left() + 10, scene.size->rect.top() + 2);
    for (int x = scene.size->rect.left(); x <= scene.size->rect.right(); ++x) {
      best = std::max(best, contrastRatio(image.pixelColor(x, scene.size->rect.center().y()), behind));
    }
    EXPECT_GE(best, kTextContrast);
  }
}

TEST_F(CropOverlayTest, TheGridIsBetweenThePixels) {
  for (const QColor& ground : {QColor(Qt::white), QColor(Qt::black)}) {
    QImage image = plain(ground);
    QPainter painter(&image);
    const QRect place(-16, 8, 8 * 200, 8 * 100);
    CropOverlay::paintGrid(painter, place, kVisible, {200, 100});
    painter.end();
    for (int x = 0; x < 500; ++x) {
      ASSERT_EQ(image.pixelColor(x, 12) != ground, x % 8 == 0) << x;
    }
    EXPECT_EQ(image.pixelColor(4, 4), ground) << "above the picture";
    EXPECT_EQ(image.pixelColor(4, 8), ground) << "a picture's own edge is no line";
    EXPECT_NE(image.pixelColor(4, 16), ground);
    EXPECT_LT(contrastRatio(image.pixelColor(8, 12), ground), 2.5) << "quiet";
  }
}

TEST_F(CropOverlayTest, TheGridGoesWithTheSquaresAtScalesBetween) {
  QImage stripes(100, 10, QImage::Format_RGB32);
  for (int x = 0; x < 100; ++x) {
    for (int y = 0; y < 10; ++y) stripes.setPixelColor(x, y, x % 2 ? Qt::white : Qt::black);
  }
  const QRect place(-37, 0, 467, 47);
  QImage image = plain(Qt::blue);
  QPainter painter(&image);
  CropOverlay::paintGrid(painter, place, kVisible, stripes.size());
  painter.end();
  const QImage squares = asSquares(stripes, place, kVisible);
  for (int x = 1; x < 430; ++x) {
    const bool begins = squares.pixel(x, 20) != squares.pixel(x - 1, 20);
    ASSERT_EQ(image.pixelColor(x, 3) != QColor(Qt::blue), begins) << x;
  }
}

TEST_F(CropOverlayTest, TheLoupeShowsEachPixelAsASquare) {
  picture = QImage(40, 40, QImage::Format_RGB32);
  picture.fill(Qt::black);
  picture.setPixelColor(20, 20, Qt::red);
  CropScene scene = sceneOf({300, 300, 20, 20});
  scene.loupe = CropLoupe{{20, 20}, {100, 100, 128, 128}, badge(QStringLiteral("20, 20"), {140, 240})};
  const QImage image = painted(scene);
  EXPECT_EQ(image.pixelColor(166, 166), QColor(Qt::red)) << "right below the cross";
  EXPECT_EQ(image.pixelColor(171, 171), QColor(Qt::red));
  EXPECT_NE(image.pixelColor(172, 172), QColor(Qt::red));
  EXPECT_EQ(image.pixelColor(163, 110), QColor(Qt::white)) << "the cross";
}

TEST_F(CropOverlayTest, TheLoupeMayReachBeyondThePicture) {
  picture = QImage(40, 40, QImage::Format_ARGB32_Premultiplied);
  picture.fill(Qt::transparent);
  for (const QPoint& corner : {QPoint(0, 0), QPoint(40, 40)}) {
    CropScene scene = sceneOf({300, 300, 20, 20});
    scene.loupe = CropLoupe{corner, {100, 100, 128, 128}, badge(QStringLiteral("0, 0"), {140, 240})};
    EXPECT_EQ(painted(scene).pixelColor(corner.isNull() ? QPoint(110, 110) : QPoint(220, 220)), theme.card);
  }
}

/// What is not said to change looks the same before and after, whatever is painted.
TEST_F(CropOverlayTest, OnlyWhatIsSaidToChangeDoes) {
  const uint32_t seed = std::random_device()();
  SCOPED_TRACE(::testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  const auto number = [&](int from, int to) { return std::uniform_int_distribution(from, to)(random); };
  const auto anyScene = [&](qreal displayScale) {
    const QRect crop(number(-100, 500), number(-100, 400), number(0, 700), number(0, 500));
    CropScene scene = sceneOf(crop, displayScale);
    if (number(0, 1)) scene.size = badge(QString::number(number(1, 9999)), {number(0, 400), number(0, 370)});
    if (number(0, 1)) {
      scene.window = QRect(number(-50, 400), number(-50, 300), number(1, 500), number(1, 400));
      scene.windowName = badge(QStringLiteral("Window"), {number(0, 300), number(0, 370)});
    }
    if (number(0, 1)) {
      const QPoint at(number(4, 360), number(4, 250));
      scene.loupe = CropLoupe{{number(0, 40), number(0, 40)}, {at, QSize(128, 128)}, badge(QStringLiteral("1"), at)};
    }
    return scene;
  };
  for (int i = 0; i < 60; ++i) {
    const qreal displayScale = i % 2 ? 2 : 1;
    const CropScene before = anyScene(displayScale);
    CropScene after = anyScene(displayScale);
    if (number(0, 2) == 0) after.crop = before.crop, after.handles = before.handles;
    if (number(0, 2) == 0) after.size = before.size;
    const QRegion changes = after.changesFrom(before);
    const QImage one = painted(before);
    const QImage other = painted(after);
    for (int y = 0; y < one.height(); ++y) {
      for (int x = 0; x < one.width(); ++x) {
        if (one.pixel(x, y) != other.pixel(x, y)) {
          ASSERT_TRUE(changes.contains(QPoint(x, y))) << x << ' ' << y << ", scene " << i;
        }
      }
    }
  }
}

}  // namespace
}  // namespace quillmere::testing
