#include "pixels/GrayImage.h"

#include <gtest/gtest.h>

#include "support/RandomPictures.h"

namespace quillmere {
namespace {

int luminanceOf(QColor color) {
  QImage image(9, 9, QImage::Format_RGB32);
  image.fill(color);
  return grayImage(image)->at(4, 4);
}

QImage colorful(int width, int height, QImage::Format format) {
  pictures::RandomPicture random(static_cast<uint32_t>(width * 1000 + height));
  QImage image(width, height, QImage::Format_ARGB32);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      image.setPixel(x, y, qRgba(random.upTo(255), random.upTo(255), random.upTo(255), 255));
    }
  }
  return image.convertToFormat(format);
}

TEST(GrayImageTest, APictureBelowNinePixelsEitherWayHasNone) {
  EXPECT_FALSE(grayImage(QImage()));
  EXPECT_FALSE(grayImage(QImage(8, 100, QImage::Format_RGB32)));
  EXPECT_FALSE(grayImage(QImage(100, 8, QImage::Format_RGB32)));
  QImage smallest(9, 9, QImage::Format_RGB32);
  smallest.fill(Qt::white);
  const auto gray = grayImage(smallest);
  ASSERT_TRUE(gray);
  EXPECT_EQ(gray->width(), 9);
  EXPECT_EQ(gray->height(), 9);
}

TEST(GrayImageTest, GreenWeighsMostAndBlueLeast) {
  EXPECT_EQ(luminanceOf(qRgb(255, 0, 0)), 54);
  EXPECT_EQ(luminanceOf(qRgb(0, 255, 0)), 183);
  EXPECT_EQ(luminanceOf(qRgb(0, 0, 255)), 18);
  EXPECT_EQ(luminanceOf(qRgb(10, 20, 30)), 19) << "18.6 rounded";
}

TEST(GrayImageTest, AGrayPictureKeepsItsLevels) {
  for (int level = 0; level < 256; ++level) EXPECT_EQ(luminanceOf(qRgb(level, level, level)), level);
}

TEST(GrayImageTest, WhatShowsThroughCountsAsBlack) {
  QImage image(9, 9, QImage::Format_ARGB32);
  image.fill(qRgba(255, 255, 255, 128));
  EXPECT_EQ(grayImage(image)->at(4, 4), 128);
  image.fill(qRgba(255, 255, 255, 0));
  EXPECT_EQ(grayImage(image)->at(4, 4), 0);
}

TEST(GrayImageTest, EveryFormGivesTheSameLevels) {
  for (const int height : {9, 63, 64, 65, 130}) {
    for (const auto format : {QImage::Format_ARGB32_Premultiplied, QImage::Format_ARGB32, QImage::Format_RGB888,
                              QImage::Format_RGBA8888, QImage::Format_RGBA64}) {
      const QImage image = colorful(35, height, format);
      const QImage plainForm = image.convertToFormat(QImage::Format_RGB32);
      const auto gray = grayImage(image);
      ASSERT_TRUE(gray);
      for (int y = 0; y < height; ++y) {
        for (int x = 0; x < 35; ++x) {
          const QRgb pixel = plainForm.pixel(x, y);
          ASSERT_EQ(gray->at(x, y), plain::luminance(qRed(pixel), qGreen(pixel), qBlue(pixel)))
              << x << ',' << y << " of " << height << " in form " << format;
        }
      }
    }
  }
}

TEST(GrayImageTest, RowsOfEveryLengthAreConvertedAlikeByAllInstructions) {
  pictures::RandomPicture random(1);
  for (const Instructions instructions : pictures::instructions()) {
    for (int count = 0; count < 140; ++count) {
      std::vector<uint32_t> pixels;
      for (int i = 0; i < count; ++i) {
        const bool isExtreme = random.upTo(3) == 0;
        pixels.push_back(isExtreme ? qRgb(255 * random.upTo(1), 255 * random.upTo(1), 255 * random.upTo(1))
                                   : qRgb(random.upTo(255), random.upTo(255), random.upTo(255)));
      }
      constexpr uint8_t kUntouched = 77;
      std::vector<uint8_t> gray(static_cast<size_t>(count) + 1, kUntouched);
      grayRow(pixels.data(), gray.data(), count, instructions);
      for (int i = 0; i < count; ++i) {
        ASSERT_EQ(gray[i], plain::luminance(qRed(pixels[i]), qGreen(pixels[i]), qBlue(pixels[i])))
            << "pixel " << i << " of " << count;
      }
      ASSERT_EQ(gray.back(), kUntouched);
    }
  }
}

TEST(GrayImageTest, WhatMayBeReadAfterTheLastPixelIsZero) {
  GrayImage gray(9, 9);
  for (int64_t i = 0; i < GrayImage::kPadding; ++i) EXPECT_EQ(gray.row(9)[i], 0);
}

}  // namespace
}  // namespace quillmere
