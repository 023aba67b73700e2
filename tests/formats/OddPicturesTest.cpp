#include <gtest/gtest.h>
#include <libdeflate.h>
#include <QtGui/QColorSpace>

#include "formats/HeifFile.h"
#include "formats/ImageEncoding.h"
#include "formats/ImageFile.h"
#include "formats/ImageOperations.h"
#include "formats/Pictures.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

// Pictures that no capture tool writes today, opened, cropped and saved as a PNG.
namespace quillmere {
namespace {

using testing::encoded;
using testing::isAlike;
using testing::kBlue;
using testing::kRed;
using testing::pngChunk;
using testing::redAndBlue;

/// Of baseline JPEG in blocks of one colour each, eight by eight pixels, without subsampling: the numbers of a block,
/// one for each component, as they stand in the file.
std::string blockJpeg(const std::vector<std::vector<int>>& blocks, const std::string& applicationData) {
  const auto segment = [](char marker, const std::string& data) {
    const size_t length = data.size() + 2;
    return std::string("\xff") + marker + static_cast<char>(length >> 8) + static_cast<char>(length & 255) + data;
  };
  const auto components = static_cast<char>(blocks[0].size());
  const auto width = static_cast<char>(8 * blocks.size());
  std::string frame = std::string("\x08\0\x08\0", 4) + width + components;
  std::string scan(1, components);
  for (char i = 1; i <= components; ++i) {
    frame += {i, '\x11', '\0'};
    scan += {i, '\0'};
  }
  // Steps of 8, which for the mean of a block is a step of one. Lengths of the means' differences in four bits each,
  // and the end of a block in one.
  const std::string means =
      std::string("\0\0\0\0\x09\0\0\0\0\0\0\0\0\0\0\0\0", 17) + std::string("\0\1\2\3\4\5\6\7\x08", 9);
  const std::string rests = std::string("\x10\1", 2) + std::string(16, '\0');

  std::string bits;
  const auto put = [&](int number, int count) {
    for (int bit = count - 1; bit >= 0; --bit) bits.push_back(number >> bit & 1 ? '1' : '0');
  };
  std::vector<int> last(blocks[0].size(), 128);
  for (const auto& block : blocks) {
    for (size_t i = 0; i < block.size(); ++i) {
      const int difference = block[i] - std::exchange(last[i], block[i]);
      int length = 0;
      while (std::abs(difference) >> length) ++length;
      put(length, 4);
      put(difference > 0 ? difference : difference + (1 << length) - 1, length);
      put(0, 1);
    }
  }
  while (bits.size() % 8 != 0) bits.push_back('1');
  std::string data;
  for (size_t i = 0; i < bits.size(); i += 8) {
    data.push_back(static_cast<char>(std::stoi(bits.substr(i, 8), nullptr, 2)));
    if (data.back() == '\xff') data.push_back('\0');
  }
  return "\xff\xd8" + applicationData + segment('\xdb', std::string(1, '\0') + std::string(64, '\x08')) +
         segment('\xc0', frame) + segment('\xc4', means) + segment('\xc4', rests) +
         segment('\xda', scan + std::string("\0\x3f\0", 3)) + data + "\xff\xd9";
}

/// Eight by eight of gray, every second row a step later than in the file's order.
std::string interlacedPng() {
  constexpr int kStarts[7][2] = {{0, 0}, {4, 0}, {0, 4}, {2, 0}, {0, 2}, {1, 0}, {0, 1}};
  constexpr int kSteps[7][2] = {{8, 8}, {8, 8}, {4, 8}, {4, 4}, {2, 4}, {2, 2}, {1, 2}};
  std::string rows;
  for (int pass = 0; pass < 7; ++pass) {
    for (int y = kStarts[pass][1]; y < 8; y += kSteps[pass][1]) {
      rows.push_back('\0');
      for (int x = kStarts[pass][0]; x < 8; x += kSteps[pass][0]) rows.push_back(static_cast<char>(30 * y + x));
    }
  }
  libdeflate_compressor* compressor = libdeflate_alloc_compressor(6);
  std::string stream(libdeflate_zlib_compress_bound(compressor, rows.size()), '\0');
  stream.resize(libdeflate_zlib_compress(compressor, rows.data(), rows.size(), stream.data(), stream.size()));
  libdeflate_free_compressor(compressor);
  return testing::kPNGSignature + pngChunk("IHDR", std::string("\0\0\0\x08\0\0\0\x08\x08\0\0\0\1", 13)) +
         pngChunk("IDAT", stream) + pngChunk("IEND", {});
}

class OddPicture : public ::testing::Test {
 protected:
  QImage opened(std::string_view bytes) {
    const FileURL url = folder.file("odd");
    testing::writeFile(url, bytes);
    EXPECT_TRUE(ImageFile::decodesCompletely(url));
    const auto image = ImageOperations::loadImage(url);
    EXPECT_TRUE(image);
    return image ? *image : QImage();
  }
  /// What is in the file that the crop is saved as.
  QImage cropped(const QImage& image, const QRect& rect) {
    const auto crop = ImageOperations::crop(image, rect);
    const auto png = crop ? ImageOperations::encode(*crop, PictureFormat::png) : crop.reason();
    EXPECT_TRUE(png);
    return png ? opened(png->toStdString()) : QImage();
  }
  static QByteArray pngOf(const QImage& image) { return *ImageOperations::encode(image, PictureFormat::png); }

  testing::TemporaryFolder folder;
};

TEST_F(OddPicture, ATurnedOneIsCroppedAsItIsSeen) {
  // Both say: turn me clockwise. The red left half is then on top.
  for (const std::string& bytes : {testing::oriented(encoded(redAndBlue(64, 32), "JPEG"), 6),
                                   testing::orientedPng(encoded(redAndBlue(64, 32), "PNG"), 6)}) {
    const QImage image = opened(bytes);
    ASSERT_EQ(image.size(), QSize(32, 64));
    const QImage crop = cropped(image, {0, 28, 32, 8});
    ASSERT_EQ(crop.size(), QSize(32, 8)) << "the file that is saved says of no turn";
    EXPECT_TRUE(isAlike(crop.pixel(3, 1), kRed));
    EXPECT_TRUE(isAlike(crop.pixel(28, 6), kBlue));
  }
}

TEST_F(OddPicture, EveryAlphaAndTheColourBelowItComesThrough) {
  QImage image(256, 4, QImage::Format_ARGB32);
  for (int x = 0; x < 256; ++x) {
    for (int y = 0; y < 4; ++y) image.setPixel(x, y, qRgba(x, 255 - x, 17 * y, x));
  }
  const QImage again = opened(encoded(image, "PNG"));
  EXPECT_EQ(again, image);
  EXPECT_EQ(cropped(again, {0, 1, 256, 2}), image.copy(0, 1, 256, 2)) << "also where nothing is to be seen";
}

TEST_F(OddPicture, OfSixteenBitsAChannelKeepsThemAll) {
  for (const auto format : {QImage::Format_RGBX64, QImage::Format_RGBA64, QImage::Format_Grayscale16}) {
    QImage image(64, 64, format);
    for (int y = 0; y < 64; ++y) {
      auto* row = reinterpret_cast<quint16*>(image.scanLine(y));
      const int channels = format == QImage::Format_Grayscale16 ? 1 : 4;
      for (int i = 0; i < 64 * channels; ++i) row[i] = static_cast<quint16>(1021 * y + 37 * i);
      for (int x = 0; format == QImage::Format_RGBX64 && x < 64; ++x) row[4 * x + 3] = 0xFFFF;
    }
    const QImage again = opened(encoded(image, "PNG"));
    EXPECT_EQ(again.format(), format);
    EXPECT_EQ(again, image);
    const QImage crop = cropped(again, {7, 9, 30, 20});
    EXPECT_EQ(crop.format(), format);
    EXPECT_EQ(crop, image.copy(7, 9, 30, 20));
    EXPECT_EQ(int{pngOf(again)[24]}, 16) << "bits in a channel";
  }
}

TEST_F(OddPicture, OfGraysStaysGray) {
  QImage image(40, 30, QImage::Format_Grayscale8);
  for (int y = 0; y < 30; ++y) {
    for (int x = 0; x < 40; ++x) image.scanLine(y)[x] = static_cast<uchar>(6 * x + y);
  }
  const QImage again = opened(encoded(image, "PNG"));
  EXPECT_EQ(cropped(again, {5, 6, 20, 10}), image.copy(5, 6, 20, 10));
  EXPECT_EQ(int{pngOf(again)[25]}, 0) << "gray";
  const QImage jpeg = opened(encoded(image, "JPEG"));
  EXPECT_EQ(cropped(jpeg, {5, 6, 20, 10}), jpeg.copy(5, 6, 20, 10));
}

TEST_F(OddPicture, OfNumberedColoursKeepsEachWithItsTransparency) {
  QImage image(16, 4, QImage::Format_Indexed8);
  image.setColorTable({qRgba(200, 30, 40, 0), qRgba(20, 130, 40, 255), qRgba(20, 30, 240, 128)});
  for (int y = 0; y < 4; ++y) {
    for (int x = 0; x < 16; ++x) image.setPixel(x, y, static_cast<uint>((x + y) % 3));
  }
  const QImage again = opened(encoded(image, "PNG"));
  const QImage crop = cropped(again, {3, 1, 9, 2});
  ASSERT_EQ(crop.size(), QSize(9, 2));
  for (int y = 0; y < 2; ++y) {
    for (int x = 0; x < 9; ++x) EXPECT_EQ(crop.pixel(x, y), image.pixel(x + 3, y + 1)) << x << " " << y;
  }
}

TEST_F(OddPicture, WithATransparentColourIsClearJustThere) {
  QImage image(4, 1, QImage::Format_RGB32);
  image.fill(qRgb(1, 2, 3));
  image.setPixel(2, 0, qRgb(0x10, 0x20, 0x30));
  std::string bytes = encoded(image, "PNG");
  bytes.insert(bytes.find("IDAT") - 4, pngChunk("tRNS", std::string("\0\x10\0\x20\0\x30", 6)));
  const QImage crop = cropped(opened(bytes), {1, 0, 3, 1});
  EXPECT_EQ(qAlpha(crop.pixel(1, 0)), 0);
  EXPECT_EQ(crop.pixel(0, 0), qRgb(1, 2, 3));
  EXPECT_EQ(crop.pixel(2, 0), qRgb(1, 2, 3));
}

TEST_F(OddPicture, InterlacedIsPutInOrder) {
  const QImage image = opened(interlacedPng());
  ASSERT_EQ(image.size(), QSize(8, 8));
  for (int y = 0; y < 8; ++y) {
    for (int x = 0; x < 8; ++x) EXPECT_EQ(qGray(image.pixel(x, y)), 30 * y + x);
  }
  const QImage crop = cropped(image, {1, 2, 5, 4});
  EXPECT_EQ(qGray(crop.pixel(4, 3)), 30 * 5 + 5);
}

TEST_F(OddPicture, OfPrintersInksHasTheColoursTheyMake) {
  // Programs that write such files write the inks inverted, and say who they are.
  const std::string writer = std::string(
      "\xff\xee\0\x0e"
      "Adobe\0\x64\0\0\0\0\0",
      16);
  const QImage image =
      opened(blockJpeg({{255, 0, 0, 255}, {0, 255, 0, 255}, {255, 255, 255, 255}, {255, 255, 255, 0}}, writer));
  ASSERT_EQ(image.size(), QSize(32, 8));
  const QImage crop = cropped(image, {4, 0, 28, 8});
  EXPECT_TRUE(isAlike(crop.pixel(0, 4), qRgb(255, 0, 0)));
  EXPECT_TRUE(isAlike(crop.pixel(8, 4), qRgb(0, 255, 0)));
  EXPECT_TRUE(isAlike(crop.pixel(16, 4), qRgb(255, 255, 255)));
  EXPECT_TRUE(isAlike(crop.pixel(24, 4), qRgb(0, 0, 0)));
}

TEST_F(OddPicture, HeicIsCroppedWithoutAnotherLoss) {
  const auto bytes = encodedHeic(redAndBlue(64, 64), 95);
  ASSERT_TRUE(bytes);
  const QImage image = opened(bytes->toStdString());
  const QImage crop = cropped(image, {24, 8, 16, 16});
  EXPECT_EQ(crop, image.copy(24, 8, 16, 16));
  EXPECT_TRUE(isAlike(crop.pixel(2, 2), kRed));
  EXPECT_TRUE(isAlike(crop.pixel(13, 13), kBlue));
}

}  // namespace
}  // namespace quillmere
