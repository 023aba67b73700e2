#include "reading/PictureCrop.h"

#include <gtest/gtest.h>
#include <QtGui/QColorSpace>
#include <limits>

#include "formats/Pictures.h"

namespace quillmere {
namespace {

using ImageOperations::OperationError;
using testing::redAndBlue;

class Crop : public ::testing::Test {
 protected:
  static bool isInvalid(const QImage& image, const QRectF& rect) {
    const auto part = ImageOperations::crop(image, rect);
    return !part && part.reason() == OperationError::invalidCrop;
  }
  QImage image = redAndBlue(20, 15);
};

TEST_F(Crop, GivesThePixelsInside) {
  const auto part = ImageOperations::crop(image, QRectF(3, 4, 5, 6));
  ASSERT_TRUE(part);
  EXPECT_EQ(*part, image.copy(3, 4, 5, 6));
  EXPECT_EQ(part->size(), QSize(5, 6));
}

TEST_F(Crop, TheWholeImageAndASinglePixelAreCrops) {
  const auto whole = ImageOperations::crop(image, QRectF(0, 0, 20, 15));
  ASSERT_TRUE(whole);
  EXPECT_EQ(*whole, image);
  const auto last = ImageOperations::crop(image, QRectF(19, 14, 1, 1));
  ASSERT_TRUE(last);
  EXPECT_EQ(last->pixel(0, 0), image.pixel(19, 14));
}

TEST_F(Crop, AFractionalRectangleGrowsToWholePixels) {
  const auto part = ImageOperations::crop(image, QRectF(0.5, 0.5, 10, 10));
  ASSERT_TRUE(part);
  EXPECT_EQ(part->size(), QSize(11, 11));
  EXPECT_EQ(*part, image.copy(0, 0, 11, 11));
  EXPECT_TRUE(isInvalid(image, QRectF(10.5, 0, 10, 10))) << "at the very edge it leaves the image";
  EXPECT_TRUE(isInvalid(image, QRectF(-0.1, 0, 10, 10)));
  EXPECT_TRUE(ImageOperations::crop(image, QRectF(10.5, 0, 9.5, 10)));
}

TEST_F(Crop, MustBeAPixelWideAndHigh) {
  EXPECT_TRUE(isInvalid(image, QRectF(1, 1, 0, 5)));
  EXPECT_TRUE(isInvalid(image, QRectF(1, 1, 5, 0.999)));
  EXPECT_TRUE(isInvalid(image, QRectF(5, 5, -3, 3)));
  EXPECT_TRUE(isInvalid(image, QRectF(5, 5, 3, -3)));
  EXPECT_TRUE(ImageOperations::crop(image, QRectF(1, 1, 1, 1)));
}

TEST_F(Crop, MustLieInside) {
  for (const QRectF& rect :
       {QRectF(-1, 0, 5, 5), QRectF(0, -1, 5, 5), QRectF(16, 0, 5, 5), QRectF(0, 11, 5, 5), QRectF(0, 0, 21, 15),
        QRectF(100, 100, 5, 5), QRectF(1e300, 0, 5, 5), QRectF(0, 0, 1e300, 5), QRectF(4294967296.0, 0, 5, 5)}) {
    EXPECT_TRUE(isInvalid(image, rect)) << rect.x() << " " << rect.y();
  }
}

TEST_F(Crop, MustBeFinite) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  for (const double odd : {kInfinity, -kInfinity, kNone}) {
    EXPECT_TRUE(isInvalid(image, QRectF(odd, 0, 5, 5)));
    EXPECT_TRUE(isInvalid(image, QRectF(0, odd, 5, 5)));
    EXPECT_TRUE(isInvalid(image, QRectF(0, 0, odd, 5)));
    EXPECT_TRUE(isInvalid(image, QRectF(0, 0, 5, odd)));
  }
}

TEST_F(Crop, OfNothingIsInvalid) {
  EXPECT_TRUE(isInvalid(QImage(), QRectF(0, 0, 1, 1)));
}

TEST_F(Crop, KeepsFormatAndColourSpace) {
  image.convertTo(QImage::Format_ARGB32);
  image.setColorSpace(QColorSpace::DisplayP3);
  const auto part = ImageOperations::crop(image, QRectF(1, 1, 3, 3));
  ASSERT_TRUE(part);
  EXPECT_EQ(part->format(), QImage::Format_ARGB32);
  EXPECT_EQ(part->colorSpace(), QColorSpace(QColorSpace::DisplayP3));
}

}  // namespace
}  // namespace quillmere
