#include "png/PngChunks.h"

#include <gtest/gtest.h>

#include "support/Images.h"

namespace quillmere {
namespace {

using testing::bigEndian32;
using testing::kPNGSignature;
using testing::pngChunk;

/// The types of the chunks that are found, as one text.
std::string typesIn(const std::string& file) {
  std::string types;
  PngChunks chunks(file);
  while (const auto chunk = chunks.next()) types += std::string(chunk->type) + ' ';
  return types;
}

TEST(PngChunks, AreGivenInTheirOrderWithTheirData) {
  const std::string file = kPNGSignature + pngChunk("IHDR", "head") + pngChunk("tEXt", {}) + pngChunk("IEND", {});
  EXPECT_EQ(typesIn(file), "IHDR tEXt IEND ");
  PngChunks chunks(file);
  const auto first = chunks.next();
  ASSERT_TRUE(first);
  EXPECT_EQ(first->data, "head");
  EXPECT_EQ(first->whole, pngChunk("IHDR", "head"));
  EXPECT_EQ(first->data.data(), file.data() + 16) << "a view, no copy";
}

TEST(PngChunks, AFileWithoutTheSignatureHasNone) {
  EXPECT_EQ(typesIn({}), "");
  EXPECT_EQ(typesIn(pngChunk("IHDR", {})), "");
  EXPECT_EQ(typesIn("\x89PNG\n\n\x1a\n" + pngChunk("IHDR", {})), "") << "as a transfer of text leaves it";
}

TEST(PngChunks, EndWhereTheRestIsNoWholeChunk) {
  const std::string file = kPNGSignature + pngChunk("IHDR", "head");
  const std::string second = pngChunk("IDAT", "data");
  for (size_t length = 0; length < second.size(); ++length) {
    EXPECT_EQ(typesIn(file + second.substr(0, length)), "IHDR ") << length;
  }
  for (const uint32_t length : {5u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
    EXPECT_EQ(typesIn(file + bigEndian32(length) + second.substr(4)), "IHDR ") << length;
  }
}

TEST(PngChunks, ATypeIsFourLetters) {
  for (const char* type : {"ID4T", "ID T", "\311DAT", "IDA_", "@DAT", "IDA{"}) {
    EXPECT_EQ(typesIn(kPNGSignature + pngChunk(type, {})), "") << type;
  }
  EXPECT_EQ(typesIn(kPNGSignature + pngChunk("AZaz", {})), "AZaz ");
}

TEST(PngChunks, AChecksumIsOfTypeAndData) {
  const std::string whole = kPNGSignature + pngChunk("tEXt", "a");
  for (size_t place = kPNGSignature.size() + 4; place < whole.size(); ++place) {
    std::string changed = whole;
    changed[place] = static_cast<char>(changed[place] ^ 1);
    PngChunks chunks(changed);
    const auto chunk = chunks.next();
    ASSERT_TRUE(chunk);
    EXPECT_FALSE(chunk->isIntact()) << place;
  }
  PngChunks chunks(whole);
  EXPECT_TRUE(chunks.next()->isIntact());
}

TEST(PngChunks, AreWrittenAsTheyAreRead) {
  for (const std::string& data : {std::string(), std::string("\0\xff", 2), std::string(300, 'x')}) {
    EXPECT_EQ(encodedPngChunk("IDAT", data), pngChunk("IDAT", data));
  }
}

TEST(BigEndian32, IsOfTheFirstFourBytes) {
  EXPECT_EQ(quillmere::bigEndian32("\x12\x34\xF6\x78 and more"), 0x1234F678u);
  EXPECT_EQ(quillmere::bigEndian32("\x12\x34"), 0x1234u);
}

TEST(PngChunks, OneIsAppendedAsItIsEncoded) {
  QByteArray file("before");
  appendPngChunk(file, "IDAT", "data");
  EXPECT_EQ(file.toStdString(), "before" + pngChunk("IDAT", "data"));
  EXPECT_EQ(encodedPngChunk("IDAT", "data"), pngChunk("IDAT", "data"));
  EXPECT_EQ(encodedPngChunk("IEND", {}).size(), static_cast<size_t>(kPngChunkFrame));
}

}  // namespace
}  // namespace quillmere
