#include "formats/ImageFile.h"

#include <libheif/heif.h>
#include <sys/stat.h>

#include "formats/PictureFile.h"
#include "formats/Pictures.h"
#include "pixels/Downscaler.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::encoded;
using testing::isAlike;
using testing::kBlue;
using testing::kRed;
using testing::oriented;
using testing::orientedPng;
using testing::redAndBlue;
using testing::TemporaryFolder;
using testing::writeFile;

/// By the encoder of the library that reads it.
std::string encodedHeif(const QImage& source) {
  const QImage image = source.convertToFormat(QImage::Format_RGB888);
  heif_context* context = heif_context_alloc();
  heif_encoder* encoder = nullptr;
  heif_image* pixels = nullptr;
  std::string bytes;
  bool works = heif_context_get_encoder_for_format(context, heif_compression_HEVC, &encoder).code == heif_error_Ok;
  EXPECT_TRUE(works) << "the library has no HEVC encoder here: libx265 is missing";
  if (works) {
    heif_image_create(image.width(), image.height(), heif_colorspace_RGB, heif_chroma_interleaved_RGB, &pixels);
    heif_image_add_plane(pixels, heif_channel_interleaved, image.width(), image.height(), 8);
    int stride = 0;
    uint8_t* plane = heif_image_get_plane(pixels, heif_channel_interleaved, &stride);
    for (int y = 0; y < image.height(); ++y) {
      std::copy_n(image.constScanLine(y), image.width() * 3, plane + y * stride);
    }
    works = heif_context_encode_image(context, pixels, encoder, nullptr, nullptr).code == heif_error_Ok;
    EXPECT_TRUE(works);
    heif_writer writer{1, [](heif_context*, const void* data, size_t size, void* out) {
                         static_cast<std::string*>(out)->assign(static_cast<const char*>(data), size);
                         return heif_error{heif_error_Ok, heif_suberror_Unspecified, ""};
                       }};
    heif_context_write(context, &writer, &bytes);
    heif_image_release(pixels);
    heif_encoder_release(encoder);
  }
  heif_context_free(context);
  return bytes;
}

std::string bytesOf(PictureFormat format, const QImage& image) {
  switch (format) {
    case PictureFormat::png:
      return encoded(image, "PNG");
    case PictureFormat::jpeg:
      return encoded(image, "JPEG");
    case PictureFormat::heif:
      return encodedHeif(image);
  }
  return {};
}

class ImageFileTest : public ::testing::Test {
 protected:
  FileURL write(std::string_view bytes, std::string_view name = "a.png") {
    const FileURL url = folder.file(name);
    writeFile(url, bytes);
    return url;
  }
  TemporaryFolder folder;
};

class FormatTest : public ImageFileTest, public ::testing::WithParamInterface<PictureFormat> {
 protected:
  std::string bytes(int width = 320, int height = 200) { return bytesOf(GetParam(), redAndBlue(width, height)); }
};

std::string nameOf(const ::testing::TestParamInfo<PictureFormat>& format) {
  return fileExtension(format.param);
}

INSTANTIATE_TEST_SUITE_P(Formats, FormatTest, ::testing::ValuesIn(kPictureFormats), &nameOf);

TEST_P(FormatTest, AWholePictureDecodesCompletely) {
  EXPECT_TRUE(ImageFile::decodesCompletely(write(bytes())));
}

TEST_P(FormatTest, ATruncatedPictureNeverDoes) {
  const std::string whole = bytes();
  constexpr size_t kPlaces = 40;
  for (size_t i = 0; i < kPlaces; ++i) {
    const size_t length = whole.size() * i / kPlaces;
    EXPECT_FALSE(ImageFile::decodesCompletely(write(std::string_view(whole).substr(0, length)))) << length;
  }
  for (size_t missing = 1; missing <= 16; ++missing) {
    const auto part = std::string_view(whole).substr(0, whole.size() - missing);
    EXPECT_FALSE(ImageFile::decodesCompletely(write(part))) << missing << " bytes missing";
  }
}

TEST_P(FormatTest, IsToldByItsFirstBytes) {
  EXPECT_EQ(ImageFile::formatOf(bytes().substr(0, 16)), GetParam());
}

TEST_P(FormatTest, ItsSizeComesFromItsHeader) {
  const FileURL url = write(bytes(320, 200));
  EXPECT_EQ(ImageFile::pixelSize(url), QSize(320, 200));
  const auto head = ImageFile::head(url);
  ASSERT_TRUE(head);
  EXPECT_EQ(head->format, GetParam());
  EXPECT_EQ(head->size, QSize(320, 200));
}

TEST_P(FormatTest, AnOpenFileTellsTheSame) {
  const std::string whole = bytes();
  const FileURL url = write(whole);
  const PictureFile file(url);
  EXPECT_EQ(ImageFile::head(file.descriptor()), ImageFile::head(url));
  EXPECT_EQ(ImageFile::bytesToDecode(file.descriptor()).value(), whole);
  EXPECT_EQ(ImageFile::head(-1), std::nullopt);
  EXPECT_EQ(ImageFile::bytesToDecode(-1).reason(), PictureError::unreadable);
}

TEST_F(ImageFileTest, NoMoreIsReadOfWhatIsNotWorthIt) {
  const auto reason = [this](std::string_view bytes, const PictureBudget& budget = {}) {
    const FileURL url = write(bytes);
    return ImageFile::bytesToDecode(PictureFile(url).descriptor(), budget).reason();
  };
  const std::string rest(100'000, 'x');
  EXPECT_EQ(reason("no picture" + rest), PictureError::noPicture);
  EXPECT_EQ(reason(encoded(redAndBlue(40, 20), "PNG") + rest, {.besidesPixels = 1000}), PictureError::tooCostly);
  EXPECT_EQ(reason(encoded(redAndBlue(40, 20), "JPEG") + rest, {.fileBytes = 1000}), PictureError::tooCostly);
}

TEST_P(FormatTest, AThumbnailFitsAndKeepsTheShape) {
  const FileURL url = write(bytes(320, 200));
  const QImage thumbnail = ImageFile::thumbnail(url, 160);
  EXPECT_EQ(thumbnail.size(), QSize(160, 100));
  EXPECT_TRUE(isAlike(thumbnail.pixel(20, 50), kRed));
  EXPECT_TRUE(isAlike(thumbnail.pixel(140, 50), kBlue));
  EXPECT_EQ(ImageFile::thumbnail(testing::readBytes(url), 160), thumbnail) << "and of bytes the same";
}

TEST_P(FormatTest, AThumbnailOfATallPictureIsBoundByItsHeight) {
  EXPECT_EQ(ImageFile::thumbnail(write(bytes(100, 400)), 200).size(), QSize(50, 200));
}

TEST_P(FormatTest, AThumbnailIsNeverEnlarged) {
  EXPECT_EQ(ImageFile::thumbnail(write(bytes(320, 200)), 1000).size(), QSize(320, 200));
  EXPECT_EQ(ImageFile::thumbnail(write(bytes(320, 200)), 320).size(), QSize(320, 200));
}

TEST_P(FormatTest, TheNameDoesNotMatter) {
  for (const char* name : {"a.png", "a.jpg", "a.heic", "no extension", "caf\xe9\xff.png"}) {
    const FileURL url = write(bytes(64, 64), name);
    EXPECT_TRUE(ImageFile::decodesCompletely(url)) << name;
    EXPECT_EQ(ImageFile::pixelSize(url), QSize(64, 64)) << name;
  }
}

/// As a program that sets the length first leaves it for a moment. The decoder of HEIF conceals such damage.
TEST_F(ImageFileTest, ALinkToAPictureIsNotRead) {
  const FileURL picture = write(bytesOf(PictureFormat::png, redAndBlue(32, 20)));
  const FileURL link = folder.file("link.png");
  std::filesystem::create_symlink(picture.path(), link.path());
  EXPECT_TRUE(ImageFile::bytesOf(picture));
  EXPECT_FALSE(ImageFile::bytesOf(link));
  EXPECT_FALSE(ImageFile::decodesCompletely(link));
}

TEST_F(ImageFileTest, APngOrJpegWhoseSecondHalfIsNotWrittenYetIsIncomplete) {
  for (const PictureFormat format : {PictureFormat::png, PictureFormat::jpeg}) {
    std::string bytes = bytesOf(format, redAndBlue(320, 200));
    std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(bytes.size() / 2), bytes.end(), '\0');
    EXPECT_FALSE(ImageFile::decodesCompletely(write(bytes)));
  }
}

// --- What is no picture ---

class NoPictureTest : public ImageFileTest {
 protected:
  static void expectNone(const FileURL& url) {
    EXPECT_FALSE(ImageFile::decodesCompletely(url)) << url.path();
    EXPECT_EQ(ImageFile::pixelSize(url), std::nullopt) << url.path();
    EXPECT_TRUE(ImageFile::thumbnail(url, 100).isNull()) << url.path();
  }
};

TEST_F(NoPictureTest, AnEmptyFile) {
  expectNone(write(""));
}

TEST_F(NoPictureTest, Zeros) {
  expectNone(write(std::string(100000, '\0')));
}

TEST_F(NoPictureTest, Garbage) {
  expectNone(write("This is a text."));
  expectNone(write("\x89PNG\r\n\x1a\n and then nothing of the kind"));
  expectNone(write("\xff\xd8\xff and then nothing of the kind"));
  expectNone(
      write(std::string("\0\0\0\x18"
                        "ftypheic\0\0\0\0mif1heic and then nothing",
                        41)));
}

TEST_F(NoPictureTest, AFilmInTheBoxesThatHeifHas) {
  EXPECT_EQ(ImageFile::formatOf(std::string_view("\0\0\0\x18"
                                                 "ftypisom\0\0\2\0",
                                                 16)),
            std::nullopt);
}

TEST_F(NoPictureTest, AFolderAndAMissingFile) {
  expectNone(folder.url());
  expectNone(folder.file("missing.png"));
  expectNone(FileURL());
}

/// Each is a picture to Qt; none was ever a screenshot, and fewer decoders mean fewer ways in.
TEST_F(NoPictureTest, OtherFormats) {
  expectNone(write("<svg xmlns='http://www.w3.org/2000/svg' width='8' height='8'><rect width='8' height='8'/></svg>"));
  expectNone(write(encoded(redAndBlue(8, 8), "BMP")));
  expectNone(write("P3 1 1 255 1 2 3\n"));
  expectNone(write(std::string("GIF89a\1\0\1\0\0\0\0,\0\0\0\0\1\0\1\0\0\2\2D\1\0;", 26)));
}

TEST_F(NoPictureTest, AJpegWhoseHeaderPromisesMuchMoreThanItHolds) {
  std::string bytes = encoded(redAndBlue(16, 16), "JPEG");
  const size_t size = bytes.find("\xff\xc0") + 5;
  bytes.replace(size, 4, "\x3f\xff\x3f\xff");
  const FileURL url = write(bytes);
  EXPECT_FALSE(ImageFile::decodesCompletely(url));
  EXPECT_TRUE(ImageFile::picture(url).isNull());
}

TEST_F(NoPictureTest, ANamedPipeHoldsNobody) {
  const FileURL pipe = folder.file("pipe.png");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  expectNone(pipe);
}

// --- Orientation ---

/// The number in the camera data, and the format.
class OrientationTest : public ImageFileTest, public ::testing::WithParamInterface<std::tuple<int, const char*>> {
 protected:
  static int orientation() { return std::get<0>(GetParam()); }
  FileURL writeOriented(const QImage& stored) {
    const char* format = std::get<1>(GetParam());
    const std::string bytes = encoded(stored, format);
    return write(std::string_view(format) == "JPEG" ? oriented(bytes, static_cast<char>(orientation()))
                                                    : orientedPng(bytes, orientation()));
  }
};

INSTANTIATE_TEST_SUITE_P(Values, OrientationTest,
                         ::testing::Combine(::testing::Range(1, 9), ::testing::Values("JPEG", "PNG")));

TEST_P(OrientationTest, FromFiveOnTheSidesAreSwapped) {
  const FileURL url = writeOriented(redAndBlue(320, 200));
  const bool isSideways = orientation() >= 5;
  EXPECT_EQ(ImageFile::pixelSize(url), isSideways ? QSize(200, 320) : QSize(320, 200));
  EXPECT_EQ(ImageFile::thumbnail(url, 160).size(), isSideways ? QSize(100, 160) : QSize(160, 100));
}

TEST_F(ImageFileTest, Orientation6IsTurnedClockwise) {
  const QImage upright = ImageFile::thumbnail(write(oriented(encoded(redAndBlue(320, 200), "JPEG"), 6)), 320);
  ASSERT_EQ(upright.size(), QSize(200, 320));
  EXPECT_TRUE(isAlike(upright.pixel(100, 40), kRed)) << "the left becomes the top";
  EXPECT_TRUE(isAlike(upright.pixel(100, 280), kBlue));
}

TEST_P(OrientationTest, ThePictureIsUprightAtFullSize) {
  QImage corners(64, 48, QImage::Format_RGB32);
  corners.fill(Qt::black);
  for (int y = 0; y < 24; ++y) {
    for (int x = 0; x < 32; ++x) {
      corners.setPixel(x, y, qRgb(255, 0, 0));
      corners.setPixel(x + 32, y, qRgb(0, 255, 0));
      corners.setPixel(x, y + 24, qRgb(0, 0, 255));
    }
  }
  // Where the stored picture's top left, top right and bottom left are in the upright one (Exif, "Orientation").
  enum Corner { TL, TR, BL, BR };
  constexpr std::array<std::array<Corner, 3>, 8> kPlaces{
      {{TL, TR, BL}, {TR, TL, BR}, {BR, BL, TR}, {BL, BR, TL}, {TL, BL, TR}, {TR, BR, TL}, {BR, TR, BL}, {BL, TL, BR}}};
  const auto& places = kPlaces.at(static_cast<size_t>(orientation() - 1));
  const QImage upright = ImageFile::picture(writeOriented(corners));
  ASSERT_EQ(upright.size(), orientation() >= 5 ? QSize(48, 64) : QSize(64, 48));
  const auto at = [&](Corner corner) {
    const bool isRight = corner == TR || corner == BR;
    const bool isBottom = corner == BL || corner == BR;
    return upright.pixel(isRight ? upright.width() - 8 : 8, isBottom ? upright.height() - 8 : 8);
  };
  EXPECT_TRUE(isAlike(at(places[0]), qRgb(255, 0, 0)));
  EXPECT_TRUE(isAlike(at(places[1]), qRgb(0, 255, 0)));
  EXPECT_TRUE(isAlike(at(places[2]), qRgb(0, 0, 255)));
}

TEST_F(ImageFileTest, AVeryLongPictureStillHasAThumbnail) {
  const FileURL url = write(encoded(redAndBlue(2000, 1), "PNG"));
  EXPECT_EQ(ImageFile::thumbnail(url, 100).size(), QSize(100, 1)) << "neither side vanishes";
}

TEST_F(ImageFileTest, ACaptureOfManyLargeScreensIsRead) {
  QImage wall(12000, 3000, QImage::Format_RGB32);
  wall.fill(Qt::red);
  const FileURL url = write(encoded(wall, "PNG"));
  wall = {};
  EXPECT_TRUE(ImageFile::decodesCompletely(url));
  EXPECT_EQ(ImageFile::thumbnail(url, 100).size(), QSize(100, 25));
}

/// The decoder of JPEG divides by 2, 4 or 8 on its way, whatever rest the sides leave.
TEST_F(ImageFileTest, AJpegOfAnySidesHasTheThumbnailOfItsPicture) {
  for (const QSize sides : {QSize(640, 480), QSize(641, 479), QSize(647, 483), QSize(1025, 33), QSize(43, 900)}) {
    QImage slope(sides, QImage::Format_RGB32);
    for (int y = 0; y < sides.height(); ++y) {
      for (int x = 0; x < sides.width(); ++x) {
        slope.setPixel(x, y, qRgb(255 * x / sides.width(), 255 * y / sides.height(), 90));
      }
    }
    for (const char orientation : {char{1}, char{6}}) {
      const FileURL url = write(oriented(encoded(slope, "JPEG"), orientation));
      const QImage whole = ImageFile::picture(url);
      for (const int pixels : {320, 160, 100, 40, 20}) {
        const QImage small = ImageFile::thumbnail(url, pixels);
        const QImage expected = Downscaler::scaled(whole, Downscaler::fitting(whole.size(), pixels));
        ASSERT_EQ(small.size(), expected.size());
        const QSize stored = orientation == 6 ? small.size().transposed() : small.size();
        for (int y = 0; y < small.height(); ++y) {
          for (int x = 0; x < small.width(); ++x) {
            // Nowhere further away than half a pixel, and what the compression makes of colours.
            ASSERT_NEAR(qRed(small.pixel(x, y)), qRed(expected.pixel(x, y)), 8 + 128.0 / stored.width());
            ASSERT_NEAR(qGreen(small.pixel(x, y)), qGreen(expected.pixel(x, y)), 8 + 128.0 / stored.height());
          }
        }
      }
    }
  }
}

TEST_P(FormatTest, AThumbnailIsWhatTheScreenWants) {
  const FileURL url = write(bytes());
  for (const int pixels : {50, 1000}) {
    EXPECT_EQ(ImageFile::thumbnail(url, pixels).format(), QImage::Format_RGB32);
  }
}

TEST_F(ImageFileTest, AThumbnailOfNoSizeIsNone) {
  const FileURL url = write(encoded(redAndBlue(64, 64), "PNG"));
  EXPECT_TRUE(ImageFile::thumbnail(url, 0).isNull());
  EXPECT_TRUE(ImageFile::thumbnail(url, -5).isNull());
}

TEST_F(ImageFileTest, TransparencySurvives) {
  QImage clear(100, 100, QImage::Format_ARGB32);
  clear.fill(Qt::transparent);
  const FileURL url = write(encoded(clear, "PNG"));
  for (const int pixels : {50, 1000}) {
    const QImage thumbnail = ImageFile::thumbnail(url, pixels);
    EXPECT_EQ(thumbnail.format(), QImage::Format_ARGB32_Premultiplied);
    EXPECT_EQ(qAlpha(thumbnail.pixel(25, 25)), 0);
  }
}

TEST_F(ImageFileTest, WhatFollowsAPictureDoesNotMakeItIncomplete) {
  EXPECT_TRUE(ImageFile::decodesCompletely(write(encoded(redAndBlue(64, 64), "PNG") + "appended by a tool")));
}

}  // namespace
}  // namespace quillmere
