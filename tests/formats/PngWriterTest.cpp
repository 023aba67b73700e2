#include "formats/PngWriter.h"

#include <QtCore/QBuffer>
#include <QtGui/QColorSpace>
#include <QtGui/QImageReader>
#include <algorithm>
#include <array>
#include <random>

#include "formats/Pictures.h"
#include "formats/PngReader.h"
#include "png/PlainPng.h"
#include "png/PngChunks.h"

namespace quillmere {
namespace {

constexpr std::array kFormats{QImage::Format_RGB32, QImage::Format_ARGB32, QImage::Format_ARGB32_Premultiplied};

std::string_view view(const QByteArray& bytes) {
  return {bytes.constData(), static_cast<size_t>(bytes.size())};
}

QByteArray written(const QImage& image) {
  const auto bytes = PngWriter::write(image);
  EXPECT_TRUE(bytes);
  return bytes.value_or(QByteArray());
}

QImage byGeneralReader(QByteArray bytes) {
  QBuffer buffer(&bytes);
  return QImageReader(&buffer, "png").read();
}

/// As they are on a screen, flat with some repeated rows, or of noise; with any alpha that the format allows.
QImage randomPicture(QSize size, QImage::Format format, std::mt19937& random) {
  QImage image(size, format == QImage::Format_RGB32 ? format : QImage::Format_ARGB32);
  const auto changes = 1 + random() % 20;
  QRgb pixel = qRgba(1, 2, 3, 255);
  for (int y = 0; y < size.height(); ++y) {
    const bool isRepeated = y > 0 && random() % 3 == 0;
    for (int x = 0; x < size.width(); ++x) {
      if (random() % changes == 0) pixel = static_cast<QRgb>(random());
      image.setPixel(x, y, isRepeated ? image.pixel(x, y - 1) : pixel);
    }
  }
  return image.convertToFormat(format);
}

/// All of a file's chunks but those that hold the size and the pixels.
std::vector<std::string> description(const QByteArray& png) {
  std::vector<std::string> result;
  PngChunks chunks(view(png));
  while (const auto chunk = chunks.next()) {
    EXPECT_TRUE(chunk->isIntact());
    if (chunk->type != "IHDR" && chunk->type != "IDAT" && chunk->type != "IEND") result.emplace_back(chunk->whole);
  }
  return result;
}

TEST(PngWriter, EveryPictureComesBackToBothReaders) {
  constexpr unsigned kSeed = 20261122;
  std::mt19937 random(kSeed);
  std::vector<QSize> sizes{{1, 1}, {1, 2}, {1, 700}, {2, 1}, {3, 1}, {700, 1}, {9000, 2}, {2, 3000}, {640, 480}};
  for (int i = 0; i < 60; ++i) sizes.emplace_back(1 + random() % 130, 1 + random() % 40);
  for (const QSize size : sizes) {
    for (const auto format : kFormats) {
      const QImage image = randomPicture(size, format, random);
      ASSERT_TRUE(PngWriter::canWrite(image));
      const QByteArray bytes = written(image);
      const QImage expected = image.hasAlphaChannel() ? image.convertToFormat(QImage::Format_ARGB32) : image;
      const auto where = [&] {
        return ::testing::Message() << "seed " << kSeed << ", " << size.width() << " x " << size.height() << ", format "
                                    << format;
      };
      ASSERT_EQ(byGeneralReader(bytes), expected) << where();
      ASSERT_EQ(byGeneralReader(bytes).format(), expected.format()) << where();
      const auto again = PngReader::read(view(bytes));
      ASSERT_TRUE(again) << where();
      ASSERT_EQ(*again, expected) << where();
    }
  }
}

TEST(PngWriter, APartOfALargerPictureIsThatPart) {
  const QImage large = testing::redAndBlue(61, 37);
  const QImage part(large.constScanLine(5) + 4 * 7, 30, 20, large.bytesPerLine(), large.format());
  EXPECT_EQ(byGeneralReader(written(part)), large.copy(7, 5, 30, 20));
}

TEST(PngWriter, WhatStandsInAlphaThatIsNoneIsLeftOut) {
  QImage image(5, 4, QImage::Format_RGB32);
  image.fill(qRgb(10, 20, 30));
  reinterpret_cast<QRgb*>(image.scanLine(2))[3] = qRgba(10, 20, 30, 77);
  const QImage again = byGeneralReader(written(image));
  EXPECT_EQ(again.format(), QImage::Format_RGB32);
  EXPECT_EQ(again.pixel(3, 2), qRgb(10, 20, 30));
}

TEST(PngWriter, AFileHasOneChunkOfDataBetweenItsHeadAndItsEnd) {
  const QByteArray bytes = written(testing::redAndBlue(300, 200));
  const auto png = PlainPng::of(view(bytes));
  ASSERT_TRUE(png);
  EXPECT_EQ(png->header.width, 300U);
  EXPECT_EQ(png->header.height, 200U);
  EXPECT_EQ(png->compressed.size(), 1U);
  EXPECT_EQ(png->description, "");
  EXPECT_EQ(description(bytes), std::vector<std::string>());
  EXPECT_TRUE(bytes.endsWith(QByteArray("\0\0\0\0IEND\xAE\x42\x60\x82", 12)));
}

TEST(PngWriter, TellsTheColourSpaceAsTheGeneralWriterDoes) {
  const std::array spaces{QColorSpace(QColorSpace::SRgb),
                          QColorSpace(QColorSpace::SRgbLinear),
                          QColorSpace(QColorSpace::DisplayP3),
                          QColorSpace(QColorSpace::AdobeRgb),
                          QColorSpace(QColorSpace::Primaries::SRgb, 1.8F),
                          QColorSpace()};
  for (const auto format : kFormats) {
    for (const QColorSpace& space : spaces) {
      QImage image = testing::redAndBlue(20, 10).convertToFormat(format);
      image.setColorSpace(space);
      const QByteArray bytes = written(image);
      std::string general = testing::encoded(image, "png");
      std::vector<std::string> expected = description(QByteArray::fromStdString(general));
      std::erase_if(expected, [](const std::string& chunk) { return chunk.substr(4, 4) == "pHYs"; });
      EXPECT_EQ(description(bytes), expected);
      EXPECT_EQ(expected.empty(), !space.isValid());
      EXPECT_EQ(byGeneralReader(bytes).colorSpace(), byGeneralReader(QByteArray::fromStdString(general)).colorSpace());
    }
  }
}

TEST(PngWriter, LeavesResolutionTextsAndOffsetOut) {
  QImage image = testing::redAndBlue(20, 10);
  image.setText(QStringLiteral("Description"), QStringLiteral("secret"));
  image.setDotsPerMeterX(5669);
  image.setOffset(QPoint(7, 8));
  EXPECT_EQ(description(written(image)), std::vector<std::string>());
}

TEST(PngWriter, LeavesOtherFormatsToTheGeneralWriter) {
  for (int i = QImage::Format_Invalid; i < QImage::NImageFormats; ++i) {
    const auto format = static_cast<QImage::Format>(i);
    const bool isOurs = std::find(kFormats.begin(), kFormats.end(), format) != kFormats.end();
    EXPECT_EQ(PngWriter::canWrite(QImage(3, 2, format)), isOurs) << i;
  }
  EXPECT_FALSE(PngWriter::canWrite(QImage(1'000'001, 1, QImage::Format_RGB32)));
  EXPECT_TRUE(PngWriter::canWrite(QImage(1'000'000, 1, QImage::Format_RGB32)));
}

TEST(PngWriter, AFlatPictureTakesAboutAsLittleAsByTheGeneralWriter) {
  QImage image(2000, 1500, QImage::Format_RGB32);
  image.fill(qRgb(40, 80, 120));
  const QByteArray bytes = written(image);
  EXPECT_LE(static_cast<size_t>(bytes.size()), testing::encoded(image, "png").size() * 11 / 10);
}

}  // namespace
}  // namespace quillmere
