#include "png/PlainPng.h"

#include <gtest/gtest.h>

#include "support/Images.h"

namespace quillmere {
namespace {

using testing::bigEndian32;
using testing::kPNGSignature;
using testing::pngChunk;

std::string headerData(uint32_t width, uint32_t height, int depth = 8, int colourType = 2) {
  return bigEndian32(width) + bigEndian32(height) + static_cast<char>(depth) + static_cast<char>(colourType) +
         std::string(3, '\0');
}
std::string withHeader(const std::string& data) {
  return kPNGSignature + pngChunk("IHDR", data);
}
const std::string kEnd = pngChunk("IEND", {});
/// Its data say nothing, for nobody looks into them here.
std::string plainFile(uint32_t width, uint32_t height) {
  return withHeader(headerData(width, height)) + pngChunk("IDAT", "data") + kEnd;
}

TEST(PngHeader, TellsTheFormOfTheRows) {
  struct Row {
    int depth, colourType;
    size_t rowBytes;  // of nine pixels
    const char* form;
  };
  for (const Row& row : {Row{1, 0, 2, "black and white"}, Row{4, 3, 5, "16 colours"}, Row{16, 0, 18, "deep gray"},
                         Row{8, 4, 18, "gray with alpha"}, Row{8, 2, 27, "RGB"}, Row{16, 6, 72, "deep RGBA"},
                         Row{8, 5, 0, "a form that there is not"}, Row{8, 200, 0, "another"}}) {
    const auto header = PngHeader::of(withHeader(headerData(9, 4, row.depth, row.colourType)));
    ASSERT_TRUE(header) << row.form;
    EXPECT_EQ(header->width, 9u);
    EXPECT_EQ(header->height, 4u);
    EXPECT_EQ(header->rowBytes(), row.rowBytes) << row.form;
    EXPECT_EQ(header->filteredBytes(), 4 * (1 + row.rowBytes)) << row.form;
    EXPECT_TRUE(header->isPlain);
  }
}

TEST(PngHeader, IsPlainByTheUsualMethodsOnly) {
  for (const size_t method : {10u, 11u, 12u}) {
    std::string data = headerData(9, 4);
    data[method] = 1;
    EXPECT_FALSE(PngHeader::of(withHeader(data))->isPlain) << method;
  }
}

TEST(PngHeader, MustBeTheFirstChunkWholeAndIntact) {
  const std::string data = headerData(9, 4);
  EXPECT_FALSE(PngHeader::of({}));
  EXPECT_FALSE(PngHeader::of(withHeader(data + '\0')));
  EXPECT_FALSE(PngHeader::of(withHeader(data.substr(1))));
  EXPECT_FALSE(PngHeader::of(kPNGSignature + pngChunk("tEXt", {}) + pngChunk("IHDR", data)));
  std::string damaged = withHeader(data);
  damaged.back() = static_cast<char>(damaged.back() ^ 1);
  EXPECT_FALSE(PngHeader::of(damaged));
}

TEST(PngHeader, AMillionPixelsAreTheLongestSide) {
  const auto isTooLarge = [](uint32_t width, uint32_t height) {
    return PngHeader::of(withHeader(headerData(width, height)))->isTooLarge();
  };
  EXPECT_FALSE(isTooLarge(1'000'000, 1'000'000));
  EXPECT_TRUE(isTooLarge(1'000'001, 1));
  EXPECT_TRUE(isTooLarge(1, 1'000'001));
}

TEST(PlainPng, KeepsWhatTellsColoursAndResolution) {
  const std::string gamma = pngChunk("gAMA", "1"), dots = pngChunk("pHYs", "2"), profile = pngChunk("iCCP", "3");
  const std::string text = testing::textChunk("key", "value");
  const std::string file =
      withHeader(headerData(9, 4)) + gamma + text + dots + pngChunk("IDAT", "data") + profile + kEnd;
  const auto png = PlainPng::of(file);
  ASSERT_TRUE(png);
  EXPECT_EQ(png->description, gamma + dots) << "what comes after the data is too late";
}

TEST(PlainPng, ItsDataAreInPartsInTheirOrder) {
  const std::string file =
      withHeader(headerData(9, 4)) + pngChunk("IDAT", "one") + pngChunk("IDAT", {}) + pngChunk("IDAT", "two") + kEnd;
  const auto png = PlainPng::of(file);
  ASSERT_TRUE(png);
  EXPECT_EQ(png->compressed, (std::vector<std::string_view>{"one", "", "two"}));
}

TEST(PlainPng, HasPixelsAndAGigabyteOfThemAtMost) {
  EXPECT_FALSE(PlainPng::of(plainFile(0, 4)));
  EXPECT_FALSE(PlainPng::of(plainFile(9, 0)));
  EXPECT_TRUE(PlainPng::of(plainFile(16384, 16384)));
  EXPECT_FALSE(PlainPng::of(plainFile(16385, 16384)));
  EXPECT_FALSE(PlainPng::of(plainFile(1'000'001, 1)));
}

}  // namespace
}  // namespace quillmere
