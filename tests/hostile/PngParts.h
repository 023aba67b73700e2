#pragma once

#include <libdeflate.h>
#include <cstdint>
#include <string>

#include "support/Images.h"

/// What PNGs are put together of, right or wrong.
namespace quillmere::testing::png {

enum Colour : char { kGray = 0, kRgb = 2, kPalette = 3, kRgba = 6 };

struct Form {
  uint32_t width = 64;
  uint32_t height = 64;
  int depth = 8;
  int colour = kRgb;
  int interlacing = 0;
  int compression = 0;
  int filtering = 0;
};

inline std::string headerData(const Form& form) {
  return bigEndian32(form.width) + bigEndian32(form.height) + static_cast<char>(form.depth) +
         static_cast<char>(form.colour) + static_cast<char>(form.compression) + static_cast<char>(form.filtering) +
         static_cast<char>(form.interlacing);
}
inline std::string header(const Form& form) {
  return kPNGSignature + pngChunk("IHDR", headerData(form));
}

inline std::string compressed(std::string_view bytes) {
  libdeflate_compressor* compressor = libdeflate_alloc_compressor(9);
  std::string result(libdeflate_zlib_compress_bound(compressor, bytes.size()), '\0');
  result.resize(libdeflate_zlib_compress(compressor, bytes.data(), bytes.size(), result.data(), result.size()));
  libdeflate_free_compressor(compressor);
  return result;
}

/// Rows of the first filter, each pixel as gray as the next.
inline std::string rows(uint32_t height, size_t rowBytes, char filter = 0) {
  std::string result;
  for (uint32_t y = 0; y < height; ++y) result += filter + std::string(rowBytes, '\x40');
  return result;
}
inline std::string usualRows() {
  return rows(64, size_t{3} * 64);
}

inline std::string pixelData(std::string_view rows) {
  return pngChunk("IDAT", compressed(rows));
}
inline const std::string kEnd = pngChunk("IEND", {});

inline std::string usual(const std::string& beforeData = {}, const std::string& behindData = {}) {
  return header({}) + beforeData + pixelData(usualRows()) + behindData + kEnd;
}

/// So many zeros, in hardly more than a thousandth of them, without having them: deflate's fixed codes, thirteen bits
/// for 258 bytes each.
inline std::string compressedZeros(uint64_t count) {
  std::string result("\x78\x01", 2);
  uint64_t bits = 0;
  int held = 0;
  // Codes have their highest bit first, all else its lowest.
  const auto put = [&](uint32_t value, int length) {
    bits |= uint64_t{value} << held;
    for (held += length; held >= 8; held -= 8, bits >>= 8) result.push_back(static_cast<char>(bits & 0xFF));
  };
  const auto putCode = [&](uint32_t code, int length) {
    for (int bit = length - 1; bit >= 0; --bit) put(code >> bit & 1, 1);
  };
  put(1, 1);  // the last block
  put(1, 2);  // of fixed codes
  uint64_t left = count;
  const auto putZero = [&] { putCode(0x30, 8), --left; };
  if (left > 0) putZero();
  // Eight of them are thirteen bytes, the same ones again and again.
  constexpr uint64_t kEight = uint64_t{8} * 258;
  const auto putEight = [&] {
    const size_t before = result.size();
    for (int i = 0; i < 8; ++i, left -= 258) putCode(0xC5, 8), putCode(0, 5);
    return result.substr(before);
  };
  if (left >= 2 * kEight) {
    putEight();
    const std::string eight = putEight();
    result.reserve(count / 150);
    for (; left >= kEight; left -= kEight) result += eight;
  }
  for (; left >= 258; left -= 258) putCode(0xC5, 8), putCode(0, 5);
  while (left > 0) putZero();
  putCode(0, 7);  // end
  put(0, (8 - held) % 8);
  return result + bigEndian32(static_cast<uint32_t>(count % 65521 << 16 | 1));
}

/// A picture of one colour in as few bytes.
inline std::string flat(const Form& form) {
  const uint64_t channels = form.colour == kRgb ? 3 : form.colour == kRgba ? 4 : 1;
  const uint64_t row = 1 + (form.width * channels * static_cast<uint64_t>(form.depth) + 7) / 8;
  return header(form) + pngChunk("IDAT", compressedZeros(row * form.height)) + kEnd;
}

}  // namespace quillmere::testing::png
