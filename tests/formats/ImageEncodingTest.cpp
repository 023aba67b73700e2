#include "formats/ImageEncoding.h"

#include <sys/resource.h>
#include <QtGui/QColorSpace>
#include <QtGui/QImageReader>
#include <fstream>
#include <random>

#include "formats/ImageFile.h"
#include "formats/ImageOperations.h"
#include "formats/ImageScale.h"
#include "formats/Pictures.h"
#include "png/PngChunks.h"
#include "support/ChildProcess.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using ImageOperations::encode;
using testing::isAlike;
using testing::redAndBlue;
using testing::TemporaryFolder;

std::vector<PictureFormat> writableFormats() {
  std::vector<PictureFormat> formats;
  std::copy_if(kPictureFormats.begin(), kPictureFormats.end(), std::back_inserter(formats),
               [](PictureFormat format) { return traits(format).isWritable; });
  return formats;
}

std::vector<std::string> chunkTypes(const QByteArray& png) {
  std::vector<std::string> types;
  PngChunks chunks({png.constData(), static_cast<size_t>(png.size())});
  while (const auto chunk = chunks.next()) {
    EXPECT_TRUE(chunk->isIntact());
    if (types.empty() || types.back() != chunk->type) types.emplace_back(chunk->type);
  }
  return types;
}

class ImageEncoding : public ::testing::Test {
 protected:
  QByteArray bytesOf(const QImage& image, PictureFormat type) {
    const auto bytes = encode(image, type);
    EXPECT_TRUE(bytes);
    return bytes ? *bytes : QByteArray();
  }
  QImage back(const QImage& image, PictureFormat type) {
    const QByteArray bytes = bytesOf(image, type);
    testing::writeFile(url, {bytes.constData(), static_cast<size_t>(bytes.size())});
    EXPECT_TRUE(ImageFile::decodesCompletely(url));
    return ImageFile::picture(url);
  }
  /// What a capture tool and a camera leave in a picture.
  static QImage withMetadata() {
    QImage image = redAndBlue(40, 30);
    image.setText(QStringLiteral("Software"), QStringLiteral("a capture tool"));
    image.setText(QStringLiteral("Description"), QStringLiteral("secret"));
    image.setDotsPerMeterX(5669);
    image.setDotsPerMeterY(5669);
    image.setOffset(QPoint(7, 8));
    return image;
  }
  TemporaryFolder folder;
  FileURL url = folder.file("a");
};

TEST(ImageTypeOfAName, IsThatOfItsExtensionInAnyCase) {
  const auto type = [](const char* name) {
    return ImageOperations::imageType(FileURL::fromPath("/a").appending(name));
  };
  for (const char* name : {"a.png", "a.PNG", "a.jpg.png"}) EXPECT_EQ(type(name), PictureFormat::png) << name;
  for (const char* name : {"a.jpg", "a.JPG", "a.jpeg", "a.Jpeg"}) EXPECT_EQ(type(name), PictureFormat::jpeg) << name;
  for (const char* name : {"a.heic", "a.HEIC", "a.heif"}) EXPECT_EQ(type(name), PictureFormat::heif) << name;
}

TEST(ImageTypeOfAName, IsPngForAnyOther) {
  for (const char* name : {"a", "a.", ".jpg", "a.xyz", "a.tiff", "a.txt", "a.\xff\xfe", "a.jpg ", "jpg", "a.jpegs"}) {
    EXPECT_EQ(ImageOperations::imageType(FileURL::fromPath("/a.jpg").appending(name)), PictureFormat::png) << name;
  }
  EXPECT_EQ(ImageOperations::imageType(FileURL()), PictureFormat::png);
}

TEST_F(ImageEncoding, WritesTheTypeAskedFor) {
  for (const PictureFormat type : writableFormats()) {
    const QByteArray bytes = bytesOf(redAndBlue(40, 30), type);
    const auto format = ImageFile::formatOf({bytes.constData(), static_cast<size_t>(bytes.size())});
    ASSERT_TRUE(format);
    EXPECT_EQ(static_cast<int>(*format), static_cast<int>(type));
  }
}

TEST_F(ImageEncoding, APngComesBackAsItWas) {
  for (const auto format : {QImage::Format_RGB32, QImage::Format_ARGB32, QImage::Format_Grayscale8,
                            QImage::Format_RGBX64, QImage::Format_RGBA64}) {
    const QImage image = redAndBlue(41, 31).convertToFormat(format);
    const QImage again = back(image, PictureFormat::png);
    EXPECT_EQ(again.format(), format);
    EXPECT_EQ(again, image);
  }
}

/// A picture of random bytes in every format that there is.
TEST_F(ImageEncoding, EveryFormatComesBackFromAPngAsTheGeneralWriterWritesIt) {
  constexpr unsigned kSeed = 20261122;
  std::mt19937 random(kSeed);
  for (int i = QImage::Format_Invalid + 1; i < QImage::NImageFormats; ++i) {
    for (const QSize size : {QSize(1, 1), QSize(1, 9), QSize(13, 1), QSize(37, 23)}) {
      QImage noise(size, QImage::Format_RGBA64);
      for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < 8 * size.width(); ++x) noise.scanLine(y)[x] = static_cast<uchar>(random());
      }
      QImage image = noise.convertToFormat(static_cast<QImage::Format>(i));
      image.setColorSpace(QColorSpace::DisplayP3);
      const QByteArray bytes = bytesOf(image, PictureFormat::png);
      const QImage expected = QImage::fromData(QByteArray::fromStdString(testing::encoded(image, "png")));
      const QImage again = QImage::fromData(bytes);
      EXPECT_EQ(again, expected) << "seed " << kSeed << ", format " << i << ", width " << size.width();
      EXPECT_EQ(again.format(), expected.format()) << "format " << i;
      EXPECT_EQ(again.colorSpace(), expected.colorSpace()) << "format " << i;
    }
  }
}

TEST_F(ImageEncoding, APngHoldsNothingButThePicture) {
  EXPECT_EQ(chunkTypes(bytesOf(withMetadata(), PictureFormat::png)),
            (std::vector<std::string>{"IHDR", "IDAT", "IEND"}));
}

TEST_F(ImageEncoding, AnOpaqueCaptureStaysRgbOf8Bits) {
  const QByteArray png = bytesOf(redAndBlue(40, 30), PictureFormat::png);
  EXPECT_EQ(int{png[24]}, 8) << "bits in a channel";
  EXPECT_EQ(int{png[25]}, 2) << "RGB";
}

TEST_F(ImageEncoding, NoTypeKeepsTheResolutionOrAnyText) {
  for (const PictureFormat type : writableFormats()) {
    const QByteArray bytes = bytesOf(withMetadata(), type);
    EXPECT_FALSE(bytes.contains("secret"));
    EXPECT_FALSE(bytes.contains("capture tool"));
    EXPECT_FALSE(bytes.contains("Exif"));
    testing::writeFile(url, {bytes.constData(), static_cast<size_t>(bytes.size())});
    EXPECT_EQ(ImageOperations::imageScale(url), std::nullopt);
  }
  EXPECT_EQ(bytesOf(withMetadata(), PictureFormat::jpeg).mid(13, 5), QByteArray("\0\0\1\0\1", 5)) << "square pixels";
}

TEST_F(ImageEncoding, ACropOfALoadedCaptureHoldsNothingOfIt) {
  QImage capture = withMetadata();
  const std::string bytes = testing::encoded(capture, "PNG");
  EXPECT_NE(bytes.find("secret"), std::string::npos);
  testing::writeFile(url, bytes);
  EXPECT_EQ(ImageOperations::imageScale(url), 2);
  const auto crop = ImageOperations::crop(*ImageOperations::loadImage(url), QRectF(1, 1, 10, 10));
  EXPECT_EQ(chunkTypes(bytesOf(*crop, PictureFormat::png)), (std::vector<std::string>{"IHDR", "IDAT", "IEND"}));
}

TEST_F(ImageEncoding, TheColourSpaceIsKept) {
  for (const auto named : {QColorSpace::SRgb, QColorSpace::DisplayP3, QColorSpace::AdobeRgb}) {
    QImage image = redAndBlue(64, 64);
    image.setColorSpace(named);
    for (const PictureFormat type : writableFormats()) {
      const QColorSpace again = back(image, type).colorSpace();
      EXPECT_EQ(again.primaries(), image.colorSpace().primaries()) << named << " " << static_cast<int>(type);
      EXPECT_EQ(again.transferFunction(), image.colorSpace().transferFunction()) << named;
    }
  }
}

TEST_F(ImageEncoding, AlphaIsKeptWhereTheTypeHasIt) {
  QImage image(64, 64, QImage::Format_ARGB32);
  image.fill(qRgba(200, 10, 10, 255));
  for (int y = 0; y < 64; ++y) {
    for (int x = 32; x < 64; ++x) image.setPixel(x, y, qRgba(10, 10, 200, 0));
  }
  EXPECT_EQ(back(image, PictureFormat::png), image);
  const QImage heic = back(image, PictureFormat::heif);
  ASSERT_EQ(heic.format(), QImage::Format_ARGB32);
  EXPECT_GT(qAlpha(heic.pixel(8, 32)), 250);
  EXPECT_LT(qAlpha(heic.pixel(56, 32)), 5);
  const QImage jpeg = back(image, PictureFormat::jpeg);
  EXPECT_TRUE(isAlike(jpeg.pixel(8, 32), qRgb(200, 10, 10)));
  EXPECT_TRUE(isAlike(jpeg.pixel(56, 32), qRgb(255, 255, 255))) << "on white";
}

TEST_F(ImageEncoding, AnOpaquePictureComesBackOpaque) {
  for (const PictureFormat type : writableFormats())
    EXPECT_EQ(back(redAndBlue(64, 64), type).format(), QImage::Format_RGB32);
}

TEST_F(ImageEncoding, AGrayJpegStaysGray) {
  QImage gray(64, 64, QImage::Format_Grayscale8);
  gray.fill(100);
  EXPECT_EQ(QImage::fromData(bytesOf(gray, PictureFormat::jpeg)).format(), QImage::Format_Grayscale8);
}

TEST_F(ImageEncoding, EverySizeComesBack) {
  for (const QSize size : {QSize(1, 1), QSize(1, 9), QSize(3, 5), QSize(17, 2), QSize(33, 31), QSize(127, 65)}) {
    for (const PictureFormat type : writableFormats()) {
      EXPECT_EQ(back(redAndBlue(size.width(), size.height()), type).size(), size) << static_cast<int>(type);
    }
  }
}

TEST_F(ImageEncoding, LossyTypesLookTheSame) {
  const QImage image = redAndBlue(128, 96);
  for (const PictureFormat type : {PictureFormat::jpeg, PictureFormat::heif}) {
    const QImage again = back(image, type);
    for (int x = 4; x < 128; x += 24) EXPECT_TRUE(isAlike(again.pixel(x, 40), image.pixel(x, 40))) << x;
  }
}

TEST_F(ImageEncoding, WhatCannotBeWrittenIsRefusedAndNeverWrittenAsAnotherFormat) {
  for (const PictureFormat type : kPictureFormats) {
    const auto bytes = encode(redAndBlue(16, 16), type);
    EXPECT_EQ(bytes.isDone(), traits(type).isWritable) << traits(type).contentType;
  }
}

TEST_F(ImageEncoding, NothingCannotBeEncoded) {
  for (const PictureFormat type : writableFormats()) {
    const auto bytes = encode(QImage(), type);
    ASSERT_FALSE(bytes);
    EXPECT_EQ(bytes.reason(), ImageOperations::OperationError::encoding);
  }
}

TEST_F(ImageEncoding, WhatATypeCannotHoldFailsAsEncoding) {
  QImage wide(70000, 1, QImage::Format_RGB32);
  wide.fill(Qt::red);
  const auto bytes = encode(wide, PictureFormat::jpeg);
  ASSERT_FALSE(bytes) << "JPEG ends at 65,535 pixels";
  EXPECT_EQ(bytes.reason(), ImageOperations::OperationError::encoding);
  EXPECT_TRUE(encode(wide, PictureFormat::png));
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)  // they take all addresses there are
enum Outcome { kFailedAndThenDone, kNeverDone, kNeverFailed, kOtherFailure, kThrown };

/// With ever more memory left.
int outcomeWithLittleMemory(const QImage& image, PictureFormat type) {
  constexpr rlim_t kMegabyte = 1 << 20;
  rlim_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  bool hasFailed = false;
  for (rlim_t left = 0; left < 512; left += 16) {
    const rlimit limit{pages * 4096 + left * kMegabyte, RLIM_INFINITY};
    if (::setrlimit(RLIMIT_AS, &limit) != 0) return testing::kCannotSetUp;
    try {
      const auto bytes = encode(image, type);
      if (bytes) return hasFailed ? kFailedAndThenDone : kNeverFailed;
      if (bytes.reason() != ImageOperations::OperationError::encoding) return kOtherFailure;
      hasFailed = true;
    } catch (...) {
      return kThrown;
    }
  }
  return kNeverDone;
}

TEST_F(ImageEncoding, WhereMemoryRunsOutEncodingFails) {
  for (const auto format : {QImage::Format_RGB32, QImage::Format_ARGB32_Premultiplied}) {
    // Its rows need more than earlier tests have left to this process.
    QImage image(5000, 4000, format);
    image.fill(Qt::red);
    EXPECT_EQ(testing::exitCodeOfChild([&] { return outcomeWithLittleMemory(image, PictureFormat::png); }),
              kFailedAndThenDone)
        << format;
  }
}
#endif

}  // namespace
}  // namespace quillmere
