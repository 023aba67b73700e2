#include "controls/PictureDrawing.h"

#include <gtest/gtest.h>
#include <QtGui/QPainter>

namespace quillmere {
namespace {

constexpr QRect kScreen(0, 0, 100, 80);

/// No two neighbours are alike, and each pixel tells where it is.
QImage telling(int width, int height) {
  QImage image(width, height, QImage::Format_RGB32);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) image.setPixel(x, y, qRgb(x % 256, y % 256, (x / 256) * 16 + y / 256));
  }
  return image;
}

QImage smooth(const QImage& image, const QRect& place) {
  QImage screen(kScreen.size(), QImage::Format_RGB32);
  screen.fill(Qt::white);
  QPainter painter(&screen);
  drawSmoothly(painter, image, place, kScreen);
  return screen;
}

TEST(PictureDrawingTest, AtItsOwnSizeEachPixelIsItself) {
  const QImage image = telling(500, 400);
  const QImage screen = smooth(image, QRect(-123, -45, 500, 400));
  EXPECT_EQ(screen, image.copy(123, 45, 100, 80));
}

TEST(PictureDrawingTest, BesideThePictureNothingIsPainted) {
  QImage red(10, 10, QImage::Format_RGB32);
  red.fill(Qt::red);
  const QImage screen = smooth(red, QRect(20, 20, 30, 30));
  for (int y = 0; y < screen.height(); ++y) {
    for (int x = 0; x < screen.width(); ++x) {
      const bool isInside = QRect(20, 20, 30, 30).contains(x, y);
      ASSERT_EQ(screen.pixelColor(x, y), QColor(isInside ? Qt::red : Qt::white)) << x << ", " << y;
    }
  }
  EXPECT_EQ(smooth(red, QRect(200, 200, 30, 30)), smooth({}, kScreen)) << "out of sight";
}

/// What is seen is the same whether all is drawn or only what is seen.
TEST(PictureDrawingTest, APartIsWhereThePainterWouldHaveIt) {
  const QImage image = telling(200, 150);
  for (const QRect place : {QRect(-300, -200, 500, 375), QRect(-20, -10, 150, 112), QRect(-31, 7, 333, 251)}) {
    const QImage screen = smooth(image, place);
    QImage whole(kScreen.size(), QImage::Format_RGB32);
    whole.fill(Qt::white);
    QPainter painter(&whole);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(QRectF(place), image);
    painter.end();
    for (int y = 0; y < screen.height(); ++y) {
      for (int x = 0; x < screen.width(); ++x) {
        ASSERT_NEAR(qRed(screen.pixel(x, y)), qRed(whole.pixel(x, y)), 2) << x << ", " << y;
        ASSERT_NEAR(qGreen(screen.pixel(x, y)), qGreen(whole.pixel(x, y)), 2) << x << ", " << y;
      }
    }
  }
}

TEST(PictureDrawingTest, FarBeyondAPaintersReachItIsStillThere) {
  QImage image(10'000, 2, QImage::Format_RGB32);
  image.fill(Qt::blue);
  image.setPixelColor(9'990, 0, Qt::red);
  image.setPixelColor(9'990, 1, Qt::red);
  // 20 pixels of the screen for each of the picture.
  const QImage screen = smooth(image, QRect(-199'750, 0, 200'000, 40));
  EXPECT_GT(screen.pixelColor(60, 20).red(), 240);
  EXPECT_EQ(screen.pixelColor(20, 20), QColor(Qt::blue));
}

TEST(PictureDrawingTest, SquaresAreSharpAndWhereTheyBelong) {
  const QImage image = telling(500, 400);
  // Seven and a half times.
  const QRect place(-1234, -567, 3750, 3000);
  const QImage squares = asSquares(image, place, kScreen);
  ASSERT_EQ(squares.size(), kScreen.size());
  for (int y = 0; y < squares.height(); ++y) {
    for (int x = 0; x < squares.width(); ++x) {
      const auto column = static_cast<int>((x + 0.5 - place.x()) / 7.5);
      const auto row = static_cast<int>((y + 0.5 - place.y()) / 7.5);
      ASSERT_EQ(squares.pixel(x, y), image.pixel(column, row)) << x << ", " << y;
    }
  }
}

TEST(PictureDrawingTest, SquaresEndWhereThePictureEnds) {
  const QImage image = telling(10, 10);
  const QImage squares = asSquares(image, QRect(60, 40, 80, 80), kScreen);
  ASSERT_EQ(squares.size(), QSize(40, 40));
  EXPECT_EQ(squares.pixel(0, 0), image.pixel(0, 0));
  EXPECT_EQ(squares.pixel(39, 39), image.pixel(4, 4));
  EXPECT_TRUE(asSquares(image, QRect(200, 40, 80, 80), kScreen).isNull());
  EXPECT_TRUE(asSquares({}, QRect(0, 0, 80, 80), kScreen).isNull());
}

TEST(PictureDrawingTest, CheckersGoWithThePicture) {
  const auto checkers = [](const QRect& place) {
    QImage screen(kScreen.size(), QImage::Format_RGB32);
    screen.fill(Qt::white);
    QPainter painter(&screen);
    drawCheckers(painter, place, kScreen, 8, Qt::black, Qt::gray);
    return screen;
  };
  const QImage here = checkers(QRect(10, 20, 40, 40));
  EXPECT_EQ(here.pixelColor(10, 20), QColor(Qt::black));
  EXPECT_EQ(here.pixelColor(18, 20), QColor(Qt::gray));
  EXPECT_EQ(here.pixelColor(18, 28), QColor(Qt::black));
  EXPECT_EQ(here.pixelColor(9, 20), QColor(Qt::white));
  EXPECT_EQ(here.pixelColor(50, 59), QColor(Qt::white));
  const QImage moved = checkers(QRect(-3, 20, 90, 40));
  EXPECT_EQ(moved.pixelColor(4, 20), QColor(Qt::black));
  EXPECT_EQ(moved.pixelColor(5, 20), QColor(Qt::gray));
}

}  // namespace
}  // namespace quillmere
