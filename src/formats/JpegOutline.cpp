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
  kScan = 0xDA,
  kFirstApplication = 0xE0,
  kCameraData = 0xE1,
  kColourProfile = 0xE2,
  kColourTransform = 0xEE,
  kLastApplication = 0xEF,
  kComment = 0xFE
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

/// Calls `visit` with each marker that has a segment, its place, and what stands in the segment. Returns the place of
/// the end's marker; none where the file ends early.
template <typename Visit>
std::optional<size_t> visitSegments(std::string_view file, const Visit& visit) {
  constexpr size_t kLength = 2;
  if (!file.starts_with("\xFF\xD8")) return std::nullopt;
  size_t place = 2;
  while (const auto found = nextMarker(file, place)) {
    const uint8_t marker = byteAt(file, *found);
    place = *found + 1;
    if (marker == kEnd) return *found;
    if (hasNoLength(marker)) continue;
    if (file.size() - place < kLength) break;
    const size_t length = shortAt(file, place);
    if (length < kLength || length > file.size() - place) break;
    visit(marker, *found, file.substr(place + kLength, length - kLength));
    place += length;
  }
  return std::nullopt;
}

bool isText(uint8_t marker) {
  const bool isOfPicture =
      marker == kFirstApplication || marker == kCameraData || marker == kColourProfile || marker == kColourTransform;
  return marker == kComment || (marker >= kFirstApplication && marker <= kLastApplication && !isOfPicture);
}

}  // namespace

std::optional<JpegOutline> JpegOutline::of(std::string_view file) {
  JpegOutline outline;
  const auto end = visitSegments(file, [&](uint8_t marker, size_t, std::string_view segment) {
    if (isFrame(marker)) readFrame(segment, marker, outline);
    if (marker == kScan && outline.scans++ == 0 && !segment.empty()) {
      outline.componentsOfFirstScan = byteAt(segment, 0);
    }
    ++outline.segments;
    outline.besidesPixels += static_cast<int64_t>(segment.size());
  });
  outline.isWhole = end.has_value();
  if (outline.scans == 0 || outline.width == 0 || outline.height == 0 || outline.components == 0) return std::nullopt;
  return outline;
}

bool JpegOutline::hasManySegments(std::string_view file) {
  constexpr int kMany = 1024;
  const auto outline = of(file);
  return outline && outline->segments > kMany;
}

std::string withoutJpegTexts(std::string_view file) {
  std::string result;
  result.reserve(file.size());
  size_t copied = 0;
  bool hasCamera = false;
  visitSegments(file, [&](uint8_t marker, size_t place, std::string_view segment) {
    const bool isCamera = marker == kCameraData;
    const bool isLeftOut = isText(marker) || (isCamera && hasCamera);
    hasCamera = hasCamera || isCamera;
    if (!isLeftOut) return;
    // With the byte before the marker's letter.
    result += file.substr(copied, place - 1 - copied);
    copied = static_cast<size_t>(segment.data() - file.data()) + segment.size();
  });
  result += file.substr(copied);
  return result;
}

}  // namespace quillmere
