#include "reading/ScreenPicture.h"

#include <gtest/gtest.h>
#include <QtGui/QColorSpace>

namespace quillmere {
namespace {

QImage filled(QImage::Format format, const QColor& color = QColor(200, 40, 40)) {
  QImage image(4, 4, format);
  image.fill(color);
  return image;
}

TEST(ScreenPicture, WhatTheScreenWantsIsNotCopied) {
  for (const auto format : {QImage::Format_RGB32, QImage::Format_ARGB32_Premultiplied}) {
    const QImage image = filled(format);
    EXPECT_EQ(pictureForScreen(image).constBits(), image.constBits());
    QImage tagged = image;
    tagged.setColorSpace(QColorSpace::SRgb);
    EXPECT_EQ(pictureForScreen(tagged).constBits(), std::as_const(tagged).constBits());
  }
}

TEST(ScreenPicture, OtherColourSpacesAreConvertedAndTheOriginalStays) {
  QImage image = filled(QImage::Format_RGB32);
  image.setColorSpace(QColorSpace::DisplayP3);
  const QImage shown = pictureForScreen(image);
  EXPECT_GT(qRed(shown.pixel(0, 0)), 205);
  EXPECT_EQ(shown.colorSpace(), QColorSpace(QColorSpace::SRgb));
  EXPECT_EQ(image.pixelColor(0, 0), QColor(200, 40, 40));
  EXPECT_EQ(image.colorSpace(), QColorSpace(QColorSpace::DisplayP3));
}

TEST(ScreenPicture, OtherFormatsBecomeOneThatIsPaintedAsItIs) {
  EXPECT_EQ(pictureForScreen(filled(QImage::Format_RGBA64)).format(), QImage::Format_ARGB32_Premultiplied);
  EXPECT_EQ(pictureForScreen(filled(QImage::Format_ARGB32)).format(), QImage::Format_ARGB32_Premultiplied);
  EXPECT_EQ(pictureForScreen(filled(QImage::Format_RGB888)).format(), QImage::Format_RGB32);
  EXPECT_EQ(pictureForScreen(filled(QImage::Format_Grayscale8)).format(), QImage::Format_RGB32);
}

TEST(ScreenPicture, OfNothingItMakesNothing) {
  EXPECT_TRUE(pictureForScreen({}).isNull());
}

}  // namespace
}  // namespace quillmere
