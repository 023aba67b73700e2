#include "formats/HeifFile.h"

#include <libheif/heif.h>
#include <QtGui/QColorSpace>

#include "formats/Pictures.h"

namespace quillmere {
namespace {

using testing::isAlike;
using testing::kBlue;
using testing::kRed;
using testing::redAndBlue;

struct Settings {
  heif_orientation orientation = heif_orientation_normal;
  int depth = 8;
};

/// By the library itself, with what our own encoder never writes.
std::string encodedHeif(const QImage& source, const Settings& settings) {
  const int bytesPerPixel = settings.depth > 8 ? 6 : 3;
  const QImage image = source.convertToFormat(QImage::Format_RGB888);
  heif_context* context = heif_context_alloc();
  heif_encoder* encoder = nullptr;
  EXPECT_EQ(heif_context_get_encoder_for_format(context, heif_compression_HEVC, &encoder).code, heif_error_Ok);
  heif_image* pixels = nullptr;
  heif_image_create(image.width(), image.height(), heif_colorspace_RGB,
                    settings.depth > 8 ? heif_chroma_interleaved_RRGGBB_LE : heif_chroma_interleaved_RGB, &pixels);
  heif_image_add_plane(pixels, heif_channel_interleaved, image.width(), image.height(), settings.depth);
  int stride = 0;
  uint8_t* plane = heif_image_get_plane(pixels, heif_channel_interleaved, &stride);
  for (int y = 0; y < image.height(); ++y) {
    for (int i = 0; i < image.width() * 3; ++i) {
      const int value = image.constScanLine(y)[i] << (settings.depth - 8);
      uint8_t* place = plane + y * stride + i * (bytesPerPixel / 3);
      place[0] = static_cast<uint8_t>(value);
      if (settings.depth > 8) place[1] = static_cast<uint8_t>(value >> 8);
    }
  }
  heif_encoding_options* options = heif_encoding_options_alloc();
  options->image_orientation = settings.orientation;
  options->macOS_compatibility_workaround_no_nclx_profile = 0;
  EXPECT_EQ(heif_context_encode_image(context, pixels, encoder, options, nullptr).code, heif_error_Ok);
  std::string bytes;
  heif_writer writer{1, [](heif_context*, const void* data, size_t size, void* out) {
                       static_cast<std::string*>(out)->assign(static_cast<const char*>(data), size);
                       return heif_error{heif_error_Ok, heif_suberror_Unspecified, ""};
                     }};
  heif_context_write(context, &writer, &bytes);
  heif_encoding_options_free(options);
  heif_image_release(pixels);
  heif_encoder_release(encoder);
  heif_context_free(context);
  return bytes;
}

std::string encodedByUs(const QImage& image) {
  const auto bytes = encodedHeic(image, 95);
  EXPECT_TRUE(bytes);
  return bytes ? bytes->toStdString() : std::string();
}

TEST(HeifFile, IsKnownByItsFirst16Bytes) {
  const std::string bytes = encodedByUs(redAndBlue(64, 64));
  EXPECT_TRUE(HeifFile::isHeif(bytes));
  EXPECT_TRUE(HeifFile::isHeif(std::string_view(bytes).substr(0, 16)));
  EXPECT_FALSE(HeifFile::isHeif({}));
  EXPECT_FALSE(HeifFile::isHeif("This is a text, and a long one."));
}

TEST(HeifFile, IsUprightByItsOwnTransformations) {
  for (int i = heif_orientation_normal; i <= heif_orientation_rotate_270_cw; ++i) {
    const std::string bytes = encodedHeif(redAndBlue(128, 64), {.orientation = static_cast<heif_orientation>(i)});
    const bool isSideways = i >= heif_orientation_rotate_90_cw_then_flip_horizontally;
    const QSize upright = isSideways ? QSize(64, 128) : QSize(128, 64);
    const HeifFile file(bytes);
    EXPECT_EQ(file.size(), upright) << i;
    EXPECT_EQ(file.decoded().size(), upright) << i;
  }
  const std::string turned = encodedHeif(redAndBlue(128, 64), {.orientation = heif_orientation_rotate_90_cw});
  const QImage picture = HeifFile(turned).decoded();
  EXPECT_TRUE(isAlike(picture.pixel(32, 16), kRed)) << "the left becomes the top";
  EXPECT_TRUE(isAlike(picture.pixel(32, 112), kBlue));
}

TEST(HeifFile, OfTenBitsComesWithEight) {
  const std::string bytes = encodedHeif(redAndBlue(64, 64), {.depth = 10});
  const QImage picture = HeifFile(bytes).decoded();
  ASSERT_EQ(picture.format(), QImage::Format_RGB32);
  EXPECT_TRUE(isAlike(picture.pixel(16, 32), kRed));
  EXPECT_TRUE(isAlike(picture.pixel(48, 32), kBlue));
}

TEST(HeifFile, ADisplaysColoursAreNamed) {
  std::string bytes = encodedHeif(redAndBlue(64, 64), {});
  const size_t place = bytes.find("colrnclx");
  ASSERT_NE(place, std::string::npos);
  const auto spaceOf = [&](heif_color_primaries primaries) {
    bytes[place + 9] = static_cast<char>(primaries);
    bytes[place + 11] = static_cast<char>(heif_transfer_characteristic_IEC_61966_2_1);
    return HeifFile(bytes).decoded().colorSpace();
  };
  EXPECT_EQ(spaceOf(heif_color_primaries_ITU_R_BT_709_5), QColorSpace(QColorSpace::SRgb));
  EXPECT_EQ(spaceOf(heif_color_primaries_SMPTE_EG_432_1), QColorSpace(QColorSpace::DisplayP3));
  EXPECT_FALSE(spaceOf(heif_color_primaries_ITU_R_BT_2020_2_and_2100_0).isValid()) << "none that Qt knows";
}

TEST(HeifFile, IsOpaqueWithoutAlphaAndNotWithIt) {
  const std::string opaque = encodedByUs(redAndBlue(64, 64));
  EXPECT_EQ(HeifFile(opaque).decoded().format(), QImage::Format_RGB32);
  QImage clear(64, 64, QImage::Format_ARGB32_Premultiplied);
  clear.fill(Qt::transparent);
  const std::string bytes = encodedByUs(clear);
  EXPECT_EQ(HeifFile(bytes).decoded().format(), QImage::Format_ARGB32);
}

TEST(HeifFile, ThatPromisesMoreThanAGigabyteIsNotDecoded) {
  std::string bytes = encodedByUs(redAndBlue(64, 64));
  const std::string promised("\0\0\x75\x30\0\0\x75\x30", 8);  // 30,000 × 30,000
  size_t changed = 0;
  for (size_t place = bytes.find("ispe"); place != std::string::npos;
       place = bytes.find("ispe", place + 1), ++changed) {
    bytes.replace(place + 8, promised.size(), promised);
  }
  ASSERT_GT(changed, 0u);
  const HeifFile file(bytes);
  EXPECT_TRUE(file.decoded().isNull());
}

/// Of an odd size, the encoder makes a grid of one picture. One that is made of itself keeps the library busy until
/// there is no memory left.
TEST(HeifFile, ThatIsMadeOfItselfIsNotDecoded) {
  std::string bytes = encodedByUs(redAndBlue(9, 5));
  EXPECT_FALSE(HeifFile(bytes).decoded().isNull());
  const size_t reference = bytes.find("dimg");
  ASSERT_NE(reference, std::string::npos);
  char* from = bytes.data() + reference + 4;
  char* to = from + 4;
  std::copy_n(from, 2, to);
  EXPECT_TRUE(HeifFile(bytes).decoded().isNull());
}

TEST(HeifFile, ABetterQualityTakesMoreBytes) {
  QImage image(64, 64, QImage::Format_RGB32);
  for (int y = 0; y < 64; ++y) {
    for (int x = 0; x < 64; ++x) image.setPixel(x, y, qRgb(x * 37 % 256, y * 59 % 256, x * y % 256));
  }
  const auto fine = encodedHeic(image, 95), usual = encodedHeic(image, 50), coarse = encodedHeic(image, 10);
  ASSERT_TRUE(fine && usual && coarse);
  EXPECT_GT(fine->size(), usual->size());
  EXPECT_GT(usual->size(), coarse->size());
}

TEST(HeifFile, HasNoCameraDataUnlessWritten) {
  const std::string bytes = encodedByUs(redAndBlue(64, 64));
  EXPECT_TRUE(HeifFile(bytes).exif().isEmpty());
  EXPECT_TRUE(HeifFile("no picture").exif().isEmpty());
}

}  // namespace
}  // namespace quillmere
