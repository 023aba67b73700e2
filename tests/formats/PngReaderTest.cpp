#include "formats/PngReader.h"

#include <libdeflate.h>
#include <QtCore/QBuffer>
#include <QtGui/QColorSpace>
#include <QtGui/QImageReader>
#include <random>

#include "formats/ImageFile.h"
#include "formats/Pictures.h"
#include "pixels/Downscaler.h"
#include "support/Files.h"
#include "support/Images.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::bigEndian32;
using testing::kPNGSignature;
using testing::pngChunk;
using testing::TemporaryFolder;

enum ColourType : char { kGray = 0, kRgb = 2, kPalette = 3, kGrayAlpha = 4, kRgba = 6 };

int channelsOf(ColourType type) {
  return type == kRgb ? 3 : type == kRgba ? 4 : type == kGrayAlpha ? 2 : 1;
}

struct Form {
  ColourType type = kRgb;
  int depth = 8;
  uint32_t width = 5;
  uint32_t height = 4;
  bool isInterlaced = false;
};

std::string compressed(std::string_view bytes, int level = 6) {
  libdeflate_compressor* compressor = libdeflate_alloc_compressor(level);
  std::string result(libdeflate_zlib_compress_bound(compressor, bytes.size()), '\0');
  result.resize(libdeflate_zlib_compress(compressor, bytes.data(), bytes.size(), result.data(), result.size()));
  libdeflate_free_compressor(compressor);
  return result;
}

std::string header(const Form& form) {
  return pngChunk("IHDR", bigEndian32(form.width) + bigEndian32(form.height) + static_cast<char>(form.depth) +
                              static_cast<char>(form.type) + std::string(2, '\0') +
                              static_cast<char>(form.isInterlaced));
}

/// Random rows, with any filter: as good a picture as any other.
std::string filteredRows(const Form& form, std::mt19937& random) {
  std::string result;
  const auto pass = [&](uint32_t width, uint32_t height) {
    if (width == 0) return;
    const size_t bytes = (size_t{width} * static_cast<size_t>(channelsOf(form.type) * form.depth) + 7) / 8;
    for (uint32_t y = 0; y < height; ++y) {
      result.push_back(static_cast<char>(random() % 5));
      for (size_t i = 0; i < bytes; ++i) result.push_back(static_cast<char>(random()));
    }
  };
  if (!form.isInterlaced) {
    pass(form.width, form.height);
    return result;
  }
  constexpr uint32_t kStarts[7][2] = {{0, 0}, {4, 0}, {0, 4}, {2, 0}, {0, 2}, {1, 0}, {0, 1}};
  constexpr uint32_t kSteps[7][2] = {{8, 8}, {8, 8}, {4, 8}, {4, 4}, {2, 4}, {2, 2}, {1, 2}};
  for (int i = 0; i < 7; ++i) {
    pass((form.width + kSteps[i][0] - 1 - kStarts[i][0]) / kSteps[i][0],
         (form.height + kSteps[i][1] - 1 - kStarts[i][1]) / kSteps[i][1]);
  }
  return result;
}

/// With a colour for every number that a pixel can have.
std::string palette(const Form& form) {
  if (form.type != kPalette) return {};
  std::string colours;
  for (int i = 0; i < 1 << form.depth; ++i) colours += {static_cast<char>(i), static_cast<char>(3 * i), '\x40'};
  return pngChunk("PLTE", colours);
}

std::string file(const Form& form, std::string_view stream, std::string_view before = {}, std::string_view after = {}) {
  return kPNGSignature + header(form) + std::string(before) + palette(form) + pngChunk("IDAT", stream) +
         std::string(after) + pngChunk("IEND", {});
}

QImage readGenerally(const std::string& bytes) {
  QByteArray copy = QByteArray::fromStdString(bytes);
  QBuffer buffer(&copy);
  QImageReader reader(&buffer, "png");
  reader.setAutoDetectImageFormat(false);
  return reader.read();
}

::testing::AssertionResult areTheSame(const QImage& a, const QImage& b) {
  if (a.size() != b.size()) return ::testing::AssertionFailure() << "sizes";
  if (a.format() != b.format()) return ::testing::AssertionFailure() << "formats " << a.format() << " " << b.format();
  if (a != b) return ::testing::AssertionFailure() << "pixels";
  if (a.colorSpace() != b.colorSpace()) return ::testing::AssertionFailure() << "colour spaces";
  if (a.dotsPerMeterX() != b.dotsPerMeterX() || a.dotsPerMeterY() != b.dotsPerMeterY()) {
    return ::testing::AssertionFailure() << "resolutions " << a.dotsPerMeterX() << " " << b.dotsPerMeterX();
  }
  return ::testing::AssertionSuccess();
}

class PngReaderTest : public ::testing::Test {
 protected:
  static constexpr unsigned kSeed = 7;

  std::string randomRows(const Form& form) { return filteredRows(form, random); }

  void expectFast(const std::string& bytes) {
    const auto picture = PngReader::read(bytes);
    ASSERT_TRUE(picture) << "seed " << kSeed;
    EXPECT_TRUE(areTheSame(*picture, readGenerally(bytes))) << "seed " << kSeed;
    EXPECT_TRUE(PngReader::canRead(bytes));
    expectSmallAlike(bytes, *picture);
  }
  /// Made smaller row by row or as a whole.
  static void expectSmallAlike(const std::string& bytes, const QImage& picture) {
    const int longest = std::max(picture.width(), picture.height());
    for (const int pixels : {1, 2, 3, longest / 5, longest / 2, longest - 1, longest, longest + 1}) {
      if (pixels < 1) continue;
      const auto small = PngReader::readSmall(bytes, pixels);
      ASSERT_TRUE(small);
      const QImage expected = Downscaler::scaled(picture, Downscaler::fitting(picture.size(), pixels));
      EXPECT_EQ(small->format(), expected.format());
      EXPECT_EQ(*small, expected) << pixels << ", seed " << kSeed;
      EXPECT_EQ(small->colorSpace(), picture.colorSpace());
    }
  }
  /// Whatever becomes of it, it becomes the same by either way.
  void expectAgreement(const std::string& bytes) {
    const QImage general = readGenerally(bytes);
    const auto picture = PngReader::read(bytes);
    EXPECT_EQ(PngReader::canRead(bytes), picture.has_value());
    EXPECT_EQ(PngReader::readSmall(bytes, 3).has_value(), picture.has_value());
    if (picture) {
      EXPECT_TRUE(areTheSame(*picture, general)) << "seed " << kSeed;
    }
    testing::writeFile(url, bytes);
    EXPECT_TRUE(areTheSame(ImageFile::picture(url), general)) << "seed " << kSeed;
  }
  void expectLeftToTheGeneralReader(const std::string& bytes) {
    EXPECT_FALSE(PngReader::read(bytes)) << "seed " << kSeed;
    EXPECT_FALSE(PngReader::canRead(bytes));
    expectAgreement(bytes);
  }

  std::mt19937 random{kSeed};
  TemporaryFolder folder;
  FileURL url = folder.file("a.png");
};

TEST_F(PngReaderTest, PlainPicturesOfEverySizeAreThoseOfTheGeneralReader) {
  for (const ColourType type : {kRgb, kRgba}) {
    for (uint32_t width = 1; width <= 40; ++width) {
      for (const uint32_t height : {1u, 2u, 3u, 7u, 16u}) {
        SCOPED_TRACE(::testing::Message() << width << " x " << height);
        const Form form{type, 8, width, height};
        expectFast(file(form, compressed(randomRows(form))));
      }
    }
  }
}

TEST_F(PngReaderTest, LargePicturesAreThoseOfTheGeneralReader) {
  for (const ColourType type : {kRgb, kRgba}) {
    const Form form{type, 8, 1201, 907};
    expectFast(file(form, compressed(randomRows(form), 1)));
  }
}

TEST_F(PngReaderTest, WhatQtWritesIsReadFast) {
  QImage image = testing::redAndBlue(333, 222);
  expectFast(testing::encoded(image, "PNG"));
  image.setColorSpace(QColorSpace::DisplayP3);
  expectFast(testing::encoded(image, "PNG"));
  expectFast(testing::encoded(image.convertToFormat(QImage::Format_ARGB32), "PNG"));
}

TEST_F(PngReaderTest, OtherFormsAreLeftToTheGeneralReader) {
  constexpr std::pair<ColourType, int> kForms[] = {
      {kGray, 1},    {kGray, 2},    {kGray, 4},    {kGray, 8},      {kGray, 16},      {kRgb, 16}, {kPalette, 1},
      {kPalette, 2}, {kPalette, 4}, {kPalette, 8}, {kGrayAlpha, 8}, {kGrayAlpha, 16}, {kRgba, 16}};
  for (const auto& [type, depth] : kForms) {
    for (const bool isInterlaced : {false, true}) {
      for (const uint32_t width : {1u, 3u, 9u, 17u}) {
        SCOPED_TRACE(::testing::Message() << "type " << int{type} << ", depth " << depth << ", width " << width);
        const Form form{type, depth, width, 6, isInterlaced};
        const std::string bytes = file(form, compressed(randomRows(form)));
        EXPECT_FALSE(readGenerally(bytes).isNull());
        expectLeftToTheGeneralReader(bytes);
      }
    }
  }
}

TEST_F(PngReaderTest, InterlacedPicturesAreLeftToTheGeneralReader) {
  for (const ColourType type : {kRgb, kRgba}) {
    for (const uint32_t width : {1u, 5u, 8u, 33u}) {
      const Form form{type, 8, width, 9, true};
      const std::string bytes = file(form, compressed(randomRows(form)));
      EXPECT_FALSE(readGenerally(bytes).isNull());
      expectLeftToTheGeneralReader(bytes);
    }
  }
}

TEST_F(PngReaderTest, ATransparentColourIsLeftToTheGeneralReader) {
  const Form form;
  const std::string colour = pngChunk("tRNS", std::string("\0\x10\0\x20\0\x30", 6));
  expectLeftToTheGeneralReader(file(form, compressed(randomRows(form)), colour));
}

TEST_F(PngReaderTest, ColourSpaceAndResolutionAreThoseOfTheGeneralReader) {
  const std::string srgb = pngChunk("sRGB", std::string(1, '\0'));
  const std::string gamma = pngChunk("gAMA", bigEndian32(45455));
  const std::string otherGamma = pngChunk("gAMA", bigEndian32(100000));
  const auto chromaticities = [](const std::vector<uint32_t>& numbers) {
    std::string data;
    for (const uint32_t number : numbers) data += bigEndian32(number);
    return pngChunk("cHRM", data);
  };
  const std::string standard = chromaticities({31270, 32900, 64000, 33000, 30000, 60000, 15000, 6000});
  const std::string wide = chromaticities({31270, 32900, 68000, 32000, 26500, 69000, 15000, 6000});
  const std::string nonsense = chromaticities({0, 0, 0, 0, 0, 0, 0, 0});
  const std::string profile = pngChunk(
      "iCCP", std::string("p\0\0", 3) + compressed(QColorSpace(QColorSpace::AdobeRgb).iccProfile().toStdString()));
  const std::string brokenProfile = pngChunk("iCCP", std::string("p\0\0", 3) + compressed("no profile"));
  const auto resolution = [](uint32_t across, uint32_t down, char unit) {
    return pngChunk("pHYs", bigEndian32(across) + bigEndian32(down) + unit);
  };
  for (const std::string& chunks : {srgb,
                                    gamma,
                                    otherGamma,
                                    standard,
                                    wide,
                                    nonsense,
                                    profile,
                                    brokenProfile,
                                    srgb + gamma + standard,
                                    gamma + standard + srgb,
                                    otherGamma + srgb,
                                    wide + srgb,
                                    srgb + wide,
                                    gamma + wide,
                                    otherGamma + wide,
                                    gamma + nonsense,
                                    profile + gamma,
                                    profile + srgb,
                                    srgb + profile,
                                    srgb + srgb,
                                    pngChunk("sRGB", "\x09"),
                                    pngChunk("gAMA", bigEndian32(0)),
                                    pngChunk("gAMA", "x"),
                                    resolution(5669, 5669, 1),
                                    resolution(2835, 5669, 1),
                                    resolution(5669, 5669, 0),
                                    resolution(0, 0, 1),
                                    resolution(0xFFFFFFFF, 1, 1),
                                    resolution(5669, 5669, 1) + resolution(1, 1, 1)}) {
    for (const ColourType type : {kRgb, kRgba}) {
      const Form form{type};
      expectFast(file(form, compressed(randomRows(form)), chunks));
    }
  }
}

TEST_F(PngReaderTest, ChunksThatChangeNoPixelAreNoObstacle) {
  const Form form;
  const std::string text = testing::textChunk("Software", "a capture tool");
  const std::string bits = pngChunk("sBIT", "\x08\x08\x08");
  const std::string ground = pngChunk("bKGD", std::string(6, '\0'));
  const std::string time = pngChunk("tIME", std::string("\x07\xEA\x0B\x15\x0A\0\0", 7));
  const std::string own = pngChunk("prVt", "anything");
  expectFast(file(form, compressed(randomRows(form)), bits + ground + time + text + own, text + time + own));
}

TEST_F(PngReaderTest, DataMayBeCutIntoManyPartsAndEmptyOnes) {
  const Form form{kRgba, 8, 31, 17};
  const std::string stream = compressed(randomRows(form));
  std::string parts = pngChunk("IDAT", {});
  for (size_t begin = 0; begin < stream.size(); begin += 3) parts += pngChunk("IDAT", stream.substr(begin, 3));
  expectFast(kPNGSignature + header(form) + parts + pngChunk("IDAT", {}) + pngChunk("IEND", {}));
}

TEST_F(PngReaderTest, DataThatIsInterruptedIsLeftToTheGeneralReader) {
  const Form form;
  const std::string stream = compressed(randomRows(form));
  const std::string parts =
      pngChunk("IDAT", stream.substr(0, 9)) + testing::textChunk("a", "b") + pngChunk("IDAT", stream.substr(9));
  expectLeftToTheGeneralReader(kPNGSignature + header(form) + parts + pngChunk("IEND", {}));
}

TEST_F(PngReaderTest, DataOfAnotherLengthThanTheHeaderSaysIsLeftToTheGeneralReader) {
  const Form form;
  const std::string rows = randomRows(form);
  expectLeftToTheGeneralReader(file(form, compressed(rows + "more")));
  expectLeftToTheGeneralReader(file(form, compressed(rows.substr(0, rows.size() - 1))));
  expectLeftToTheGeneralReader(file(form, compressed({})));
  expectLeftToTheGeneralReader(file(form, compressed(rows) + "more"));
  expectLeftToTheGeneralReader(file(form, {}));
}

TEST_F(PngReaderTest, AFilterThatDoesNotExistIsLeftToTheGeneralReader) {
  const Form form;
  for (const char filter : {'\5', '\x7F', '\xFF'}) {
    std::string rows = randomRows(form);
    rows[rows.size() - 1 - 5 * 3] = filter;
    expectLeftToTheGeneralReader(file(form, compressed(rows)));
  }
}

/// A stream says how far back it may refer; neither reader holds it to that.
TEST_F(PngReaderTest, AStreamThatDeclaresASmallWindowIsReadAlike) {
  const Form form{kRgb, 8, 300, 100};
  std::string rows = randomRows(form);
  std::copy(rows.begin(), rows.begin() + 901, rows.end() - 901);
  std::string stream = compressed(rows);
  for (int bits = 0; bits < 16; ++bits) {
    const int method = bits << 4 | 8;
    stream[0] = static_cast<char>(method);
    stream[1] = static_cast<char>(31 - method * 256 % 31);
    SCOPED_TRACE(bits);
    expectAgreement(file(form, stream));
  }
}

TEST_F(PngReaderTest, TrailingBytesDoNotMatter) {
  const Form form;
  expectFast(file(form, compressed(randomRows(form))) + "appended by a tool");
}

TEST_F(PngReaderTest, AFileThatEndsEarlyIsNeverReadFast) {
  const Form form;
  const std::string whole = file(form, compressed(randomRows(form)), pngChunk("pHYs", std::string(9, '\1')));
  for (size_t length = 0; length < whole.size(); ++length) {
    expectLeftToTheGeneralReader(whole.substr(0, length));
  }
}

TEST_F(PngReaderTest, AnyChangedByteIsReadAlike) {
  const Form form;
  const std::string whole = file(form, compressed(randomRows(form)), pngChunk("pHYs", std::string(9, '\1')),
                                 testing::textChunk("key", "value"));
  for (size_t i = 0; i < whole.size(); ++i) {
    for (const int change : {0x01, 0x20, 0x80, 0xFF}) {
      std::string bytes = whole;
      bytes[i] = static_cast<char>(bytes[i] ^ change);
      SCOPED_TRACE(::testing::Message() << "byte " << i << ", change " << change);
      expectAgreement(bytes);
    }
  }
}

/// With the checksum made right again, as by somebody who means harm.
TEST_F(PngReaderTest, AnyChangedByteInsideAChunkIsReadAlike) {
  const Form form;
  const std::string stream = compressed(randomRows(form));
  const auto tryEach = [&](const std::string& data, const std::function<std::string(const std::string&)>& make) {
    for (size_t i = 0; i < data.size(); ++i) {
      for (const int change : {0x01, 0x02, 0x08, 0x20, 0x80, 0xFF}) {
        std::string changed = data;
        changed[i] = static_cast<char>(changed[i] ^ change);
        SCOPED_TRACE(::testing::Message() << "byte " << i << ", change " << change);
        expectAgreement(make(changed));
      }
    }
  };
  tryEach(stream, [&](const std::string& changed) { return file(form, changed); });
  const std::string head = header(form).substr(8, 13);
  tryEach(head, [&](const std::string& changed) {
    return kPNGSignature + pngChunk("IHDR", changed) + pngChunk("IDAT", stream) + pngChunk("IEND", {});
  });
  tryEach("tEXt", [&](const std::string& changed) { return file(form, stream, pngChunk(changed, "key\0value")); });
}

TEST_F(PngReaderTest, ChunksOutOfPlaceAreReadAlike) {
  const Form form;
  const std::string stream = compressed(randomRows(form));
  const std::string data = pngChunk("IDAT", stream);
  const std::string end = pngChunk("IEND", {});
  const std::string colours = pngChunk("PLTE", std::string(9, '\x55'));
  for (const std::string& chunks :
       {data + end, header(form) + end, header(form) + header(form) + data + end,
        header(form) + data + header(form) + end, header(form) + colours + data + end,
        header(form) + data + colours + end, header(form) + data + data + end, header(form) + data,
        header(form) + data + pngChunk("IEND", "x"), header(form) + pngChunk("ABCD", {}) + data + end,
        header(form) + data + pngChunk("ABCD", {}) + end, header(form) + data + end + end,
        testing::textChunk("a", "b") + header(form) + data + end, header(form) + data + pngChunk("sRGB", "\1") + end}) {
    expectAgreement(kPNGSignature + chunks);
  }
}

TEST_F(PngReaderTest, AHeaderThatPromisesMoreThanTheFileCanHoldIsABomb) {
  const Form form{kRgb, 8, 15000, 15000};
  const std::string bomb = file(form, compressed(std::string(1000, '\0')));
  EXPECT_TRUE(PngReader::isBomb(bomb));
  EXPECT_FALSE(PngReader::read(bomb));
  testing::writeFile(url, bomb);
  EXPECT_TRUE(ImageFile::picture(url).isNull());
  for (const ColourType type : {kGray, kRgb, kPalette, kGrayAlpha, kRgba}) {
    EXPECT_TRUE(PngReader::isBomb(file({type, 16, 0x7FFFFFFF, 0x7FFFFFFF}, {})));
    EXPECT_TRUE(PngReader::isBomb(file({type, 8, 0xFFFFFFFF, 0xFFFFFFFF}, {})));
    EXPECT_FALSE(PngReader::isBomb(file({type, 8, 30, 30}, {})));
  }
}

TEST_F(PngReaderTest, WhatCompressesBestIsNoBomb) {
  const Form form{kRgba, 8, 4000, 2000};
  expectFast(file(form, compressed(std::string(2000 * (1 + 4 * 4000), '\0'), 12)));
}

TEST_F(PngReaderTest, DataOfFarMoreThanThePictureAreEndless) {
  // Not compressed, so that they are as many in the file.
  const auto with = [](const Form& form, size_t bytes) { return file(form, compressed(std::string(bytes, '\0'), 0)); };
  const Form large{kRgb, 8, 1300, 1300};
  constexpr size_t kRows = 1300 * (1 + 3 * 1300);
  // An eighth more is what interlacing may take, and a megabyte nobody minds.
  constexpr size_t kRoom = kRows + kRows / 8 + (1 << 20);
  EXPECT_FALSE(PngReader::hasEndlessData(with(large, kRows)));
  EXPECT_FALSE(PngReader::hasEndlessData(with(large, kRoom)));
  EXPECT_TRUE(PngReader::hasEndlessData(with(large, kRoom + 1)));
  // What is soon read to its end is not looked at.
  const Form small{kRgb, 8, 30, 30};
  EXPECT_FALSE(PngReader::hasEndlessData(with(small, 4'000'000)));
  EXPECT_TRUE(PngReader::hasEndlessData(with(small, 4'200'000)));
  EXPECT_FALSE(PngReader::hasEndlessData(std::string(5'000'000, 'x')));
  // Those that cannot be unpacked are damaged, which the general reader finds soon.
  EXPECT_FALSE(PngReader::hasEndlessData(file(small, std::string(5'000'000, 'x'))));
}

TEST_F(PngReaderTest, EndlessDataAreNotReadToTheirEnd) {
  const Form small{kGray, 8, 30, 30};
  const std::string rows = compressed(std::string(30 * 31, '\0') + std::string(5'000'000, '\0'), 0);
  // A reader that takes the rows and leaves the rest would find nothing wrong.
  EXPECT_TRUE(ImageFile::picture(std::string_view(file(small, rows))).isNull());
  EXPECT_FALSE(
      ImageFile::picture(std::string_view(file(small, compressed(std::string(30 * 31 + 99, '\0'), 0)))).isNull());
}

TEST_F(PngReaderTest, AHundredMegapixelsAreRead) {
  const Form form{kRgb, 8, 10000, 10000};
  std::string rows(10000 * (1 + 3 * 10000), '\0');
  rows.back() = '\x7F';
  const std::string bytes = file(form, compressed(rows, 1));
  rows = {};
  EXPECT_TRUE(PngReader::canRead(bytes));
  const auto picture = PngReader::read(bytes);
  ASSERT_TRUE(picture);
  EXPECT_EQ(picture->size(), QSize(10000, 10000));
  EXPECT_EQ(picture->pixel(0, 0), qRgb(0, 0, 0));
  EXPECT_EQ(picture->pixel(9999, 9999), qRgb(0, 0, 0x7F));
}

TEST_F(PngReaderTest, ThePictureIsAnOrdinaryOne) {
  const Form form{kRgb, 8, 9, 9};
  auto picture = PngReader::read(file(form, compressed(randomRows(form))));
  ASSERT_TRUE(picture);
  const QImage copy = *picture;
  picture->setPixel(3, 3, copy.pixel(3, 3) ^ 0x00FFFFFF);
  EXPECT_NE(*picture, copy) << "a copy keeps its pixels";
  EXPECT_EQ(copy.copy(2, 2, 4, 4).pixel(1, 1), copy.pixel(3, 3));
}

}  // namespace
}  // namespace quillmere
