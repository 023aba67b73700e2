#include "controls/FittedPicture.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

QRectF place(QSize pixels, qreal scale, const QRect& frame, qreal displayScale = 1,
             Qt::Alignment alignment = Qt::AlignCenter) {
  return FittedPicture(QImage(pixels, QImage::Format_RGB32), scale).placeIn(frame, alignment, displayScale);
}

TEST(FittedPicture, IsNeverEnlarged) {
  EXPECT_EQ(place({100, 50}, 1, {0, 0, 400, 200}), QRectF(150, 75, 100, 50));
  EXPECT_EQ(place({100, 50}, 2, {0, 0, 400, 200}), QRectF(175, 88, 50, 25)) << "with two pixels to a point";
}

TEST(FittedPicture, IsReducedInItsShape) {
  EXPECT_EQ(place({1000, 500}, 1, {0, 0, 100, 100}), QRectF(0, 25, 100, 50));
  EXPECT_EQ(place({500, 1000}, 1, {0, 0, 100, 100}), QRectF(25, 0, 50, 100));
  EXPECT_EQ(place({1000, 1}, 1, {0, 0, 100, 100}).height(), 1) << "however thin, it is seen";
}

TEST(FittedPicture, KeepsToItsEdge) {
  const QRect frame(10, 20, 400, 200);
  EXPECT_EQ(place({100, 50}, 1, frame, 1, Qt::AlignLeft | Qt::AlignTop), QRectF(10, 20, 100, 50));
  EXPECT_EQ(place({100, 50}, 1, frame, 1, Qt::AlignRight | Qt::AlignBottom), QRectF(310, 170, 100, 50));
}

TEST(FittedPicture, BeginsAndEndsAtWholePixelsOfTheScreen) {
  for (const qreal scale : {1.25, 1.5, 1.75, 2.0}) {
    for (const QRect& frame : {QRect(0, 0, 200, 100), QRect(3, 7, 201, 99), QRect(1, 1, 33, 33)}) {
      const QRectF found = place({640, 480}, 1, frame, scale);
      for (const qreal side : {found.left(), found.top(), found.right(), found.bottom()}) {
        EXPECT_NEAR(side * scale, qRound(side * scale), 1e-9) << scale;
      }
      EXPECT_TRUE(QRectF(frame).adjusted(-1e-9, -1e-9, 1e-9, 1e-9).contains(found)) << scale;
    }
  }
}

TEST(FittedPicture, AScreenWithMorePixelsShowsItInItsPoints) {
  EXPECT_EQ(place({100, 50}, 1, {0, 0, 400, 200}, 2).size(), QSizeF(100, 50));
  EXPECT_EQ(place({100, 50}, 2, {0, 0, 400, 200}, 2).size(), QSizeF(50, 25));
}

}  // namespace
}  // namespace quillmere
