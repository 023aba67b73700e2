#include "formats/JpegOutline.h"

#include <cstring>

namespace quillmere {
namespace {

enum Marker : uint8_t {
  kFilling = 0xFF,
  kStuffed = 0x00,
  kTemporary = 0x01,
  kFirstFrame = 0xC0,
  kProgressiveFrame = 0xC2,
  kHuffmanTables = 0xC4,
  kExtension = 0xC8,
  kArithmeticConditions = 0xCC,
  kLastFrame = 0xCF,
  kFirstRestart = 0xD0,
  kLastRestart = 0xD7,
  kStart = 0xD8,
  kEnd = 0xD9,
  kScan = 0xDA
};

uint8_t byteAt(std::string_view bytes, size_t place) {
  return static_cast<uint8_t>(bytes[place]);
}
uint32_t shortAt(std::string_view bytes, size_t place) {
  return static_cast<uint32_t>(byteAt(bytes, place) << 8 | byteAt(bytes, place + 1));
}

bool isFrame(uint8_t marker) {
  return marker >= kFirstFrame && marker <= kLastFrame && marker != kHuffmanTables && marker != kExtension &&
         marker != kArithmeticConditions;
}
/// Those that stand among the data of a scan.
bool isInData(uint8_t marker) {
  return marker == kStuffed || (marker >= kFirstRestart && marker <= kLastRestart);
}
bool hasNoLength(uint8_t marker) {
  return isInData(marker) || marker == kTemporary || marker == kStart;
}

/// Where the next marker's letter stands, at or behind `from`; none at the end.
std::optional<size_t> nextMarker(std::string_view file, size_t from) {
  while (from < file.size()) {
    const void* found = std::memchr(file.data() + from, kFilling, file.size() - from);
    if (!found) return std::nullopt;
    from = static_cast<size_t>(static_cast<const char*>(found) - file.data()) + 1;
    while (from < file.size() && byteAt(file, from) == kFilling) ++from;
    if (from < file.size() && !isInData(byteAt(file, from))) return from;
  }
  return std::nullopt;
}

void readFrame(std::string_view segment, uint8_t marker, JpegOutline& outline) {
  constexpr size_t kShortest = 6;
  if (segment.size() < kShortest || outline.components != 0) return;
  outline.height = shortAt(segment, 1);
  outline.width = shortAt(segment, 3);
  outline.components = byteAt(segment, 5);
  outline.isProgressive = (marker & 3) == (kProgressiveFrame & 3);
}

}  // namespace

std::optional<JpegOutline> JpegOutline::of(std::string_view file) {
  constexpr size_t kLength = 2;
  if (!file.starts_with("\xFF\xD8")) return std::nullopt;
  JpegOutline outline;
  size_t place = 2;
  while (const auto found = nextMarker(file, place)) {
    const uint8_t marker = byteAt(file, *found);
    place = *found + 1;
    if (marker == kEnd) {
      outline.isWhole = true;
      break;
    }
    if (hasNoLength(marker)) continue;
    if (file.size() - place < kLength) break;
    const size_t length = shortAt(file, place);
    if (length < kLength || length > file.size() - place) break;
    if (isFrame(marker)) readFrame(file.substr(place + kLength, length - kLength), marker, outline);
    if (marker == kScan && outline.scans++ == 0 && length > kLength) {
      outline.componentsOfFirstScan = byteAt(file, place + kLength);
    }
    outline.besidesPixels += static_cast<int64_t>(length);
    place += length;
  }
  if (outline.scans == 0 || outline.width == 0 || outline.height == 0 || outline.components == 0) return std::nullopt;
  return outline;
}

}  // namespace quillmere
