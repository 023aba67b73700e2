#include "formats/ImageScale.h"

#include <libheif/heif.h>
#include <cmath>

#include "formats/ImageEncoding.h"
#include "formats/Pictures.h"
#include "formats/Tiffs.h"
#include "support/Files.h"
#include "support/Images.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::bigEndian32;
using testing::pngChunk;
using testing::TemporaryFolder;
using testing::tiff;

std::string resolutionChunk(double dpi, char unit = 1) {
  const std::string number = bigEndian32(static_cast<uint32_t>(std::lround(dpi / 0.0254)));
  return pngChunk("pHYs", number + number + unit);
}

/// A JPEG whose own head says so many dots; unit 1 is the inch, 2 the centimetre.
std::string jpeg(int unit, int dots) {
  std::string bytes = testing::encoded(testing::redAndBlue(16, 16), "JPEG");
  bytes[13] = static_cast<char>(unit);
  for (const size_t place : {size_t{14}, size_t{16}}) {
    bytes[place] = static_cast<char>(dots >> 8);
    bytes[place + 1] = static_cast<char>(dots);
  }
  return bytes;
}

class ImageScale : public ::testing::Test {
 protected:
  std::optional<double> scaleOf(std::string_view bytes) {
    const FileURL url = folder.file("a");
    testing::writeFile(url, bytes);
    return ImageOperations::imageScale(url);
  }
  std::optional<double> scaleOfPng(double dpi) { return scaleOf(testing::pngWith(resolutionChunk(dpi))); }
  std::optional<double> scaleOfJpeg(int dpi) { return scaleOf(jpeg(1, dpi)); }
  TemporaryFolder folder;
};

TEST_F(ImageScale, IsOneTwoOrThreeTimes72DotsPerInch) {
  EXPECT_EQ(scaleOfPng(72), 1);
  EXPECT_EQ(scaleOfPng(144), 2);
  EXPECT_EQ(scaleOfPng(216), 3);
  EXPECT_EQ(scaleOfJpeg(72), 1);
  EXPECT_EQ(scaleOfJpeg(144), 2);
  EXPECT_EQ(scaleOfJpeg(216), 3);
}

TEST_F(ImageScale, IsNoneOfOtherMultiples) {
  EXPECT_EQ(scaleOfPng(288), std::nullopt);
  EXPECT_EQ(scaleOfJpeg(288), std::nullopt);
  EXPECT_EQ(scaleOfJpeg(0), std::nullopt);
  EXPECT_EQ(scaleOfJpeg(36), std::nullopt) << "rounds to one, and is far from it";
  EXPECT_EQ(scaleOfJpeg(96), std::nullopt);
  EXPECT_EQ(scaleOfJpeg(300), std::nullopt);
  EXPECT_EQ(scaleOfJpeg(65535), std::nullopt);
}

TEST_F(ImageScale, MayBeOffByLessThanOneDot) {
  EXPECT_EQ(scaleOfPng(143.5), 2);
  EXPECT_EQ(scaleOfPng(144.9), 2);
  EXPECT_EQ(scaleOfPng(145), std::nullopt);
  EXPECT_EQ(scaleOfJpeg(143), std::nullopt) << "off by exactly one";
  EXPECT_EQ(scaleOfJpeg(145), std::nullopt);
  EXPECT_EQ(scaleOfJpeg(71), std::nullopt);
  EXPECT_EQ(scaleOfPng(71.5), 1);
  EXPECT_EQ(scaleOfPng(216.9), 3);
}

TEST_F(ImageScale, IsNoneWhereTheFileDoesNotSay) {
  EXPECT_EQ(scaleOf(testing::smallPNG()), std::nullopt);
  EXPECT_EQ(scaleOf(testing::pngWith(resolutionChunk(144, 0))), std::nullopt) << "only the shape of a pixel";
  EXPECT_EQ(scaleOf(jpeg(0, 144)), std::nullopt) << "only the shape of a pixel";
  EXPECT_EQ(scaleOf(""), std::nullopt);
  EXPECT_EQ(scaleOf("no picture"), std::nullopt);
  EXPECT_EQ(ImageOperations::imageScale(folder.file("missing")), std::nullopt);
  EXPECT_EQ(ImageOperations::imageScale(folder.url()), std::nullopt);
}

TEST_F(ImageScale, ADamagedChunkSaysNothing) {
  std::string chunk = resolutionChunk(144);
  chunk[9] = static_cast<char>(chunk[9] ^ 1);
  EXPECT_EQ(scaleOf(testing::pngWith(chunk)), std::nullopt);
  EXPECT_EQ(scaleOf(testing::pngWith(pngChunk("pHYs", "short"))), std::nullopt);
  EXPECT_EQ(scaleOf(testing::kPNGSignature + testing::kPNGHeader + testing::kPNGData + resolutionChunk(144)),
            std::nullopt)
      << "behind the data it is not allowed";
}

TEST_F(ImageScale, OfAJpegInCentimetres) {
  EXPECT_EQ(scaleOf(jpeg(2, 28)), 1) << "71.12 dpi";
  EXPECT_EQ(scaleOf(jpeg(2, 57)), 2) << "144.78 dpi";
  EXPECT_EQ(scaleOf(jpeg(2, 85)), 3) << "215.9 dpi";
  EXPECT_EQ(scaleOf(jpeg(2, 72)), std::nullopt) << "182.88 dpi";
}

TEST_F(ImageScale, OfAJpegComesFromItsCameraDataWhereItsHeadHasNoUnit) {
  EXPECT_EQ(scaleOf(testing::withExif(jpeg(0, 1), tiff(144, 1, 2))), 2);
  EXPECT_EQ(scaleOf(testing::withExif(jpeg(1, 72), tiff(144, 1, 2))), 1) << "the head says it first";
}

TEST_F(ImageScale, OfAJpegThatEndsAnywhereIsNoCrash) {
  const std::string whole = testing::withExif(jpeg(0, 1), tiff(144, 1, 2));
  for (size_t length = 0; length < 150; ++length) {
    const auto scale = scaleOf(whole.substr(0, length));
    EXPECT_TRUE(!scale || scale == 2);
  }
}

TEST_F(ImageScale, OfAHeicComesFromItsCameraData) {
  const auto plain = ImageOperations::encode(testing::redAndBlue(64, 64), PictureFormat::heif);
  ASSERT_TRUE(plain);
  EXPECT_EQ(scaleOf(plain->toStdString()), std::nullopt);

  // The same with camera data, added by the library.
  heif_context* context = heif_context_alloc();
  ASSERT_EQ(
      heif_context_read_from_memory(context, plain->constData(), static_cast<size_t>(plain->size()), nullptr).code,
      heif_error_Ok);
  heif_image_handle* handle = nullptr;
  ASSERT_EQ(heif_context_get_primary_image_handle(context, &handle).code, heif_error_Ok);
  const std::string exif = tiff(144, 1, 2);
  EXPECT_EQ(heif_context_add_exif_metadata(context, handle, exif.data(), static_cast<int>(exif.size())).code,
            heif_error_Ok);
  std::string bytes;
  heif_writer writer{1, [](heif_context*, const void* data, size_t size, void* out) {
                       static_cast<std::string*>(out)->assign(static_cast<const char*>(data), size);
                       return heif_error{heif_error_Ok, heif_suberror_Unspecified, ""};
                     }};
  heif_context_write(context, &writer, &bytes);
  heif_image_handle_release(handle);
  heif_context_free(context);
  EXPECT_EQ(scaleOf(bytes), 2);
}

}  // namespace
}  // namespace quillmere
