#include "platform/linux/passing/PassedPicture.h"

#include <gtest/gtest.h>
#include <QtGui/QColorSpace>
#include <limits>

namespace quillmere {
namespace {

using ReaderMessages::PictureShape;

QImage painted(QImage::Format format) {
  QImage image(33, 17, format);
  if (format == QImage::Format_Indexed8) {
    image.setColorTable({qRgb(1, 2, 3), qRgb(200, 100, 50)});
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) image.setPixel(x, y, static_cast<uint>((x + y) % 2));
    }
    return image;
  }
  image.fill(Qt::red);
  image.setPixelColor(32, 16, QColor(1, 2, 3));
  return image;
}

QImage passed(const QImage& image) {
  const PassedPicture picture(image);
  const auto bytes = PassedPicture::bytesOf(picture.shape());
  const auto memory = SealedMemory::of(picture.parts());
  EXPECT_TRUE(bytes && memory);
  return PassedPicture::in(SealedMemory::mapped(*memory, *bytes), picture.shape());
}

TEST(PassedPicture, ArrivesAsItWas) {
  for (const auto format :
       {QImage::Format_RGB32, QImage::Format_ARGB32, QImage::Format_ARGB32_Premultiplied, QImage::Format_Grayscale8,
        QImage::Format_Indexed8, QImage::Format_Mono, QImage::Format_RGB888, QImage::Format_RGBA64}) {
    QImage image = painted(format);
    image.setColorSpace(QColorSpace(QColorSpace::DisplayP3));
    image.setDotsPerMeterX(5669);
    const QImage result = passed(image);
    EXPECT_EQ(result, image) << format;
    EXPECT_EQ(result.format(), format);
    EXPECT_EQ(result.colorSpace(), image.colorSpace());
    EXPECT_EQ(result.dotsPerMeterX(), 5669);
  }
}

TEST(PassedPicture, IsNotCopied) {
  const PassedPicture picture(painted(QImage::Format_RGB32));
  const auto memory =
      SealedMemory::mapped(*SealedMemory::of(picture.parts()), *PassedPicture::bytesOf(picture.shape()));
  const QImage image = PassedPicture::in(memory, picture.shape());
  EXPECT_EQ(reinterpret_cast<const char*>(image.constBits()), memory->bytes().data());
}

TEST(PassedPicture, CanBePaintedOnInACopy) {
  QImage image = passed(painted(QImage::Format_RGB32));
  image.setPixelColor(0, 0, Qt::blue);
  EXPECT_EQ(image.pixelColor(0, 0), QColor(Qt::blue));
}

TEST(PassedPicture, OfNothingTakesNothing) {
  const PassedPicture picture{QImage()};
  EXPECT_TRUE(picture.parts().empty());
  EXPECT_EQ(PassedPicture::bytesOf(picture.shape()), uint64_t{0});
}

TEST(PassedPicture, OfNoPossibleShapeIsRefused) {
  const PictureShape fit = PassedPicture(painted(QImage::Format_RGB32)).shape();
  const auto isRefused = [&](auto change) {
    PictureShape shape = fit;
    change(shape);
    return !PassedPicture::bytesOf(shape);
  };
  constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
  EXPECT_TRUE(PassedPicture::bytesOf(fit));
  EXPECT_TRUE(isRefused([](PictureShape& shape) { shape.width = 0; }));
  EXPECT_TRUE(isRefused([](PictureShape& shape) { shape.height = -1; }));
  EXPECT_TRUE(isRefused([](PictureShape& shape) { shape.width = kMost; }));
  EXPECT_TRUE(isRefused([](PictureShape& shape) { shape.height = kMost; }));
  EXPECT_TRUE(isRefused([](PictureShape& shape) { shape.format = QImage::NImageFormats; }));
  EXPECT_TRUE(isRefused([](PictureShape& shape) { shape.format = -1; }));
  EXPECT_TRUE(isRefused([](PictureShape& shape) { shape.bytesPerLine = 33 * 4 - 4; }));
  EXPECT_TRUE(isRefused([](PictureShape& shape) { shape.bytesPerLine = 33 * 4 + 1; }));
  EXPECT_TRUE(isRefused([](PictureShape& shape) { shape.bytesPerLine = ~uint64_t{0} - 3; }));
  EXPECT_TRUE(isRefused([](PictureShape& shape) { shape.colours = 1; })) << "which pixels of 32 bits have not";
  EXPECT_TRUE(isRefused([](PictureShape& shape) { shape.profileBytes = ~uint32_t{0}; }));
  EXPECT_TRUE(isRefused([](PictureShape& shape) { shape.format = QImage::Format_Indexed8; })) << "without colours";
  EXPECT_TRUE(isRefused([](PictureShape& shape) {
    shape.format = QImage::Format_Indexed8;
    shape.colours = 257;
  }));
}

TEST(PassedPicture, IsRefusedWhereTheMemoryIsShorter) {
  const PassedPicture picture(painted(QImage::Format_RGB32));
  const auto memory = SealedMemory::of({"too short"});
  EXPECT_TRUE(PassedPicture::in(SealedMemory::mapped(*memory, 9), picture.shape()).isNull());
  EXPECT_TRUE(PassedPicture::in(nullptr, picture.shape()).isNull());
}

}  // namespace
}  // namespace quillmere
