#include "png/PngChunks.h"

#include <libdeflate.h>

namespace quillmere {
namespace {

constexpr size_t kLength = 4;
constexpr size_t kType = 4;
constexpr size_t kChecksum = 4;
constexpr uint32_t kMostData = 0x7FFFFFFF;

bool isLetter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

uint32_t checksum(std::string_view typeAndData) {
  return libdeflate_crc32(0, typeAndData.data(), typeAndData.size());
}

std::string bigEndianBytes(uint32_t number) {
  return {static_cast<char>(number >> 24), static_cast<char>(number >> 16), static_cast<char>(number >> 8),
          static_cast<char>(number)};
}

}  // namespace

uint32_t bigEndian32(std::string_view bytes) {
  uint32_t number = 0;
  for (const char byte : bytes.substr(0, 4)) number = number << 8 | static_cast<uint8_t>(byte);
  return number;
}

bool PngChunk::isIntact() const {
  return checksum(whole.substr(kLength, kType + data.size())) == bigEndian32(whole.substr(whole.size() - kChecksum));
}

PngChunks::PngChunks(std::string_view file) {
  if (file.starts_with(kPngSignature)) rest_ = file.substr(kPngSignature.size());
}

std::optional<PngChunk> PngChunks::next() {
  constexpr size_t kFrame = kLength + kType + kChecksum;
  if (rest_.size() < kFrame) return std::nullopt;
  const uint32_t length = bigEndian32(rest_);
  if (length > kMostData || length > rest_.size() - kFrame) return std::nullopt;
  const PngChunk chunk{rest_.substr(kLength, kType), rest_.substr(kLength + kType, length),
                       rest_.substr(0, kFrame + length)};
  for (const char c : chunk.type) {
    if (!isLetter(c)) return std::nullopt;
  }
  rest_.remove_prefix(chunk.whole.size());
  return chunk;
}

std::string encodedPngChunk(std::string_view type, std::string_view data) {
  QByteArray chunk;
  appendPngChunk(chunk, type, data);
  return chunk.toStdString();
}

void appendPngChunk(QByteArray& file, std::string_view type, std::string_view data) {
  const auto append = [&](std::string_view bytes) { file.append(bytes.data(), static_cast<qsizetype>(bytes.size())); };
  append(bigEndianBytes(static_cast<uint32_t>(data.size())));
  const qsizetype body = file.size();
  append(type);
  append(data);
  append(bigEndianBytes(checksum({file.constData() + body, type.size() + data.size()})));
}

}  // namespace quillmere
