#include "controls/MissingPicture.h"

#include <gtest/gtest.h>
#include <QtGui/QPainter>
#include <QtWidgets/QWidget>

namespace quillmere {
namespace {

QImage painted(const QSize& size, const QRect& place, MissingPicture missing) {
  QWidget widget;
  QImage image(size, QImage::Format_RGB32);
  image.fill(Qt::white);
  QPainter painter(&image);
  paintMissingPicture(painter, place, missing, widget);
  return image;
}

/// The part that was painted on.
QRect inked(const QImage& image) {
  QRect all;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (image.pixelColor(x, y) != QColor(Qt::white)) all |= QRect(x, y, 1, 1);
    }
  }
  return all;
}

TEST(MissingPictureTest, ASymbolStandsInTheMiddleOfThePlace) {
  const QRect place(100, 50, 200, 150);
  const QRect symbol = inked(painted({400, 300}, place, MissingPicture::unreadable));
  EXPECT_TRUE(QRect(place.center() - QPoint(24, 24), QSize(49, 49)).contains(symbol));
  EXPECT_NEAR(symbol.center().x(), place.center().x(), 2);
  EXPECT_NEAR(symbol.center().y(), place.center().y(), 2);
}

TEST(MissingPictureTest, WhatIsElsewhereHasATitleWhereThereIsRoom) {
  const QRect wide = inked(painted({400, 300}, {0, 0, 400, 300}, MissingPicture::notDownloaded));
  EXPECT_GT(wide.width(), 60) << "the title is wider than the symbol";
  const QRect narrow = inked(painted({400, 300}, {0, 0, 100, 300}, MissingPicture::notDownloaded));
  EXPECT_LE(narrow.width(), 48);
}

TEST(MissingPictureTest, WithoutRoomThereIsNothing) {
  EXPECT_TRUE(inked(painted({20, 20}, {0, 0, 15, 20}, MissingPicture::unreadable)).isEmpty());
}

TEST(MissingPictureTest, OnlyWhatIsElsewhereCanBeBroughtBack) {
  EXPECT_FALSE(adviceFor(MissingPicture::notDownloaded).isEmpty());
  EXPECT_TRUE(adviceFor(MissingPicture::unreadable).isEmpty());
}

}  // namespace
}  // namespace quillmere
