#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillmere::testing {

inline uint32_t pngChecksum(std::string_view bytes) {
  uint32_t sum = 0xFFFFFFFFu;
  for (const char c : bytes) {
    sum ^= static_cast<unsigned char>(c);
    for (int bit = 0; bit < 8; ++bit) sum = (sum >> 1) ^ ((sum & 1) ? 0xEDB88320u : 0u);
  }
  return ~sum;
}

inline std::string bigEndian32(uint32_t number) {
  return {static_cast<char>(number >> 24), static_cast<char>(number >> 16), static_cast<char>(number >> 8),
          static_cast<char>(number)};
}

inline std::string pngChunk(std::string_view type, std::string_view data) {
  const std::string body = std::string(type) + std::string(data);
  return bigEndian32(static_cast<uint32_t>(data.size())) + body + bigEndian32(pngChecksum(body));
}

inline const std::string kPNGSignature("\x89PNG\r\n\x1a\n", 8);
/// One pixel, 8-bit gray.
inline const std::string kPNGHeader = pngChunk("IHDR", std::string_view("\0\0\0\1\0\0\0\1\x08\0\0\0\0", 13));
/// One filter byte and one pixel, as an uncompressed deflate block in a zlib stream.
inline const std::string kPNGData =
    pngChunk("IDAT", std::string_view("\x78\x01\x01\x02\x00\xfd\xff\x00\x80\x00\x82\x00\x81", 13));

/// A valid picture with these chunks before its data.
inline std::string pngWith(std::string_view chunks) {
  return kPNGSignature + kPNGHeader + std::string(chunks) + kPNGData + pngChunk("IEND", {});
}
inline std::string smallPNG() {
  return pngWith({});
}

inline std::string textChunk(std::string_view key, std::string_view value) {
  return pngChunk("tEXt", std::string(key) + '\0' + std::string(value));
}
inline std::string internationalTextChunk(std::string_view key, std::string_view value, char isCompressed = 0) {
  return pngChunk("iTXt", std::string(key) + '\0' + isCompressed + '\0' + '\0' + '\0' + std::string(value));
}

}  // namespace quillmere::testing
