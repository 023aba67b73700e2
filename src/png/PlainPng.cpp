#include "png/PlainPng.h"

#include <algorithm>
#include <array>

#include "png/PngChunks.h"

namespace quillmere {
namespace {

constexpr size_t kMostBytes = size_t{1} << 30;  // decoded
/// Encoders write some kilobytes at a time; a file may have nothing but the frames of chunks.
constexpr size_t kMostParts = 1 << 17;

std::optional<PngHeader> headerOf(PngChunks& chunks) {
  constexpr size_t kBytes = 13;
  const auto first = chunks.next();
  if (!first || first->type != "IHDR" || first->data.size() != kBytes || !first->isIntact()) return std::nullopt;
  const std::string_view data = first->data;
  return PngHeader{bigEndian32(data), bigEndian32(data.substr(4)), static_cast<uint8_t>(data[8]),
                   static_cast<uint8_t>(data[9]), data[10] == 0 && data[11] == 0 && data[12] == 0};
}

bool isReadable(const PngHeader& header) {
  constexpr uint8_t kRgb = 2;
  constexpr uint8_t kRgba = 6;
  return header.isPlain && header.depth == 8 && (header.colourType == kRgb || header.colourType == kRgba) &&
         header.width >= 1 && header.height >= 1 && !header.isTooLarge() &&
         size_t{4} * header.width * header.height <= kMostBytes;
}

bool describes(std::string_view type) {
  constexpr std::array<std::string_view, 5> kTypes{"cHRM", "gAMA", "iCCP", "pHYs", "sRGB"};
  return std::find(kTypes.begin(), kTypes.end(), type) != kTypes.end();
}

/// The other critical chunks, whose names begin with a capital, and the transparent colour.
bool changesPixels(std::string_view type) {
  constexpr char kLowerCase = 0x20;
  return (type[0] & kLowerCase) == 0 || type == "tRNS";
}

}  // namespace

std::optional<PngHeader> PngHeader::of(std::string_view file) {
  PngChunks chunks(file);
  return headerOf(chunks);
}

int PngHeader::channels() const {
  constexpr std::array kChannels{1, 0, 3, 1, 2, 0, 4};
  return colourType < kChannels.size() ? kChannels[colourType] : 0;
}

bool PngHeader::isValid() const {
  constexpr uint32_t kMostPixelsOnASide = 0x7FFFFFFF;
  // By the kind of colour, a bit for each depth that it may have.
  constexpr std::array<uint32_t, 7> kDepths{1 << 1 | 1 << 2 | 1 << 4 | 1 << 8 | 1 << 16,
                                            0,
                                            1 << 8 | 1 << 16,
                                            1 << 1 | 1 << 2 | 1 << 4 | 1 << 8,
                                            1 << 8 | 1 << 16,
                                            0,
                                            1 << 8 | 1 << 16};
  constexpr uint8_t kDeepest = 16;
  return width >= 1 && height >= 1 && width <= kMostPixelsOnASide && height <= kMostPixelsOnASide &&
         colourType < kDepths.size() && depth <= kDeepest && (kDepths[colourType] >> depth & 1) != 0;
}

bool PngHeader::isTooLarge() const {
  constexpr uint32_t kMostPixelsOnASide = 1'000'000;
  return width > kMostPixelsOnASide || height > kMostPixelsOnASide;
}

std::optional<PlainPng> PlainPng::of(std::string_view file) {
  PngChunks chunks(file);
  const auto header = headerOf(chunks);
  if (!header || !isReadable(*header)) return std::nullopt;
  PlainPng png{*header, {}, {}};
  bool isDataOver = false;
  while (const auto chunk = chunks.next()) {
    if (!chunk->isIntact()) return std::nullopt;
    if (chunk->type == "IEND") {
      if (!chunk->data.empty() || png.compressed.empty()) return std::nullopt;
      return png;
    }
    if (chunk->type == "IDAT") {
      if (isDataOver || png.compressed.size() == kMostParts) return std::nullopt;
      png.compressed.push_back(chunk->data);
      continue;
    }
    if (changesPixels(chunk->type)) return std::nullopt;
    isDataOver = !png.compressed.empty();
    if (!isDataOver && describes(chunk->type)) png.description += chunk->whole;
  }
  return std::nullopt;
}

}  // namespace quillmere
