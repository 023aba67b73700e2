#include "png/PngTexts.h"

#include <libdeflate.h>
#include <QtGui/QImage>

#include "formats/Pictures.h"
#include "png/PngChunks.h"

namespace quillmere {
namespace {

std::string plainPng() {
  return testing::encoded(testing::redAndBlue(8, 4), "PNG");
}

std::string zlibbed(const std::string& text) {
  libdeflate_compressor* compressor = libdeflate_alloc_compressor(9);
  std::string bytes(libdeflate_zlib_compress_bound(compressor, text.size()), '\0');
  bytes.resize(libdeflate_zlib_compress(compressor, text.data(), text.size(), bytes.data(), bytes.size()));
  libdeflate_free_compressor(compressor);
  return bytes;
}

/// With these chunks behind the header.
std::string pngWith(const std::string& chunks) {
  constexpr size_t kHead = 8 + 25;
  return plainPng().insert(kHead, chunks);
}

std::string text(const std::string& keyword, const std::string& value) {
  return encodedPngChunk("tEXt", keyword + '\0' + value);
}
std::string compressedText(const std::string& keyword, const std::string& value) {
  return encodedPngChunk("zTXt", keyword + '\0' + '\0' + zlibbed(value));
}

TEST(PngTextsTest, WhatIsWrittenIsRead) {
  const PngTexts texts{{"Thumb::URI", "file:///a%20b.png"}, {"Software", "Quillmere"}, {"Empty", ""}};
  const std::string file = withPngTexts(plainPng(), texts);
  EXPECT_EQ(readPngTexts(file), texts);
  EXPECT_EQ(QImage::fromData(QByteArray::fromStdString(file)).text(QStringLiteral("Software")),
            QStringLiteral("Quillmere"))
      << "by other readers too";
  EXPECT_EQ(QImage::fromData(QByteArray::fromStdString(file)).convertToFormat(QImage::Format_RGB32),
            testing::redAndBlue(8, 4).convertToFormat(QImage::Format_RGB32));
}

TEST(PngTextsTest, TextsStandBeforeThePicture) {
  const std::string file = withPngTexts(plainPng(), {{"Software", "Quillmere"}});
  EXPECT_LT(file.find("tEXtSoftware"), file.find("IDAT"));
  EXPECT_GT(file.find("tEXtSoftware"), file.find("IHDR"));
}

TEST(PngTextsTest, CompressedTextsAreRead) {
  const std::string file = pngWith(text("a", "1") + compressedText("b", "2"));
  EXPECT_EQ(readPngTexts(file), (PngTexts{{"a", "1"}, {"b", "2"}}));
}

TEST(PngTextsTest, TheFirstOfAKeywordCounts) {
  EXPECT_EQ(readPngTexts(pngWith(text("a", "1") + text("a", "2") + compressedText("a", "3"))), (PngTexts{{"a", "1"}}));
}

TEST(PngTextsTest, DamagedTextsAreLeftOut) {
  std::string wrongChecksum = text("a", "1");
  wrongChecksum.back() = static_cast<char>(~wrongChecksum.back());
  EXPECT_EQ(readPngTexts(pngWith(wrongChecksum + text("b", "2"))), (PngTexts{{"b", "2"}}));
  EXPECT_TRUE(readPngTexts(pngWith(encodedPngChunk("tEXt", "no end of the keyword"))).empty());
  EXPECT_TRUE(readPngTexts(pngWith(encodedPngChunk("zTXt", std::string("a\0", 2)))).empty());
  EXPECT_TRUE(readPngTexts(pngWith(encodedPngChunk("zTXt", std::string("a\0\1", 3) + zlibbed("1")))).empty())
      << "a method that there is not";
  EXPECT_TRUE(readPngTexts(pngWith(encodedPngChunk("zTXt", std::string("a\0\0rubbish", 10)))).empty());
}

TEST(PngTextsTest, PromisesOfVeryMuchAreNotKept) {
  std::string tenMegabytes;
  tenMegabytes.resize(10'000'000, 'x');
  const std::string bomb = compressedText("bomb", tenMegabytes);
  ASSERT_LT(bomb.size(), 20'000u);
  EXPECT_EQ(readPngTexts(pngWith(bomb + text("long", std::string(20'000, 'x')) + text("a", "1"))),
            (PngTexts{{"a", "1"}}));
  std::string many;
  for (int i = 0; i < 1000; ++i) many += text(std::to_string(i), "x");
  EXPECT_EQ(readPngTexts(pngWith(many)).size(), 64u);
}

TEST(PngTextsTest, WhatIsNoPngHasNoTexts) {
  EXPECT_TRUE(readPngTexts("").empty());
  EXPECT_TRUE(readPngTexts("no picture").empty());
  EXPECT_EQ(withPngTexts("no picture", {{"a", "1"}}), "no picture");
}

}  // namespace
}  // namespace quillmere
