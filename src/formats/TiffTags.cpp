#include "formats/TiffTags.h"

#include <cstdint>

namespace quillmere {
namespace {

/// Numbers in the order of bytes that the file chose; what lies outside reads as zero.
class TiffBytes {
 public:
  explicit TiffBytes(std::string_view bytes) : bytes_(bytes), isBigEndian_(bytes.starts_with("MM")) {}

  bool has(size_t offset, size_t count) const { return offset <= bytes_.size() && count <= bytes_.size() - offset; }
  uint32_t number(size_t offset, size_t count) const {
    if (!has(offset, count)) return 0;
    uint32_t number = 0;
    for (size_t i = 0; i < count; ++i) {
      number = number << 8 | static_cast<uint8_t>(bytes_[offset + (isBigEndian_ ? i : count - 1 - i)]);
    }
    return number;
  }
  uint32_t short16(size_t offset) const { return number(offset, 2); }
  uint32_t long32(size_t offset) const { return number(offset, 4); }

 private:
  std::string_view bytes_;
  bool isBigEndian_;
};

struct TiffEntry {
  enum Type : uint32_t { kShort = 3, kRational = 5 };
  uint32_t tag;
  uint32_t type;
  size_t value;  ///< where four bytes of it are, or the place of more
};

/// Entries that lie outside the bytes end it.
template <typename Visit>
void visitFirstDirectory(std::string_view tiff, const Visit& visit) {
  constexpr uint32_t kMagic = 42;
  constexpr size_t kEntry = 12;
  if (!tiff.starts_with("MM") && !tiff.starts_with("II")) return;
  const TiffBytes bytes(tiff);
  if (bytes.short16(2) != kMagic) return;
  const size_t directory = bytes.long32(4);
  for (size_t i = 0; i < bytes.short16(directory); ++i) {
    const size_t entry = directory + 2 + i * kEntry;
    if (!bytes.has(entry, kEntry)) return;
    visit(bytes, TiffEntry{bytes.short16(entry), bytes.short16(entry + 2), entry + 8});
  }
}

}  // namespace

std::optional<double> tiffResolution(std::string_view tiff) {
  constexpr uint32_t kXResolution = 282;
  constexpr uint32_t kResolutionUnit = 296;
  enum : uint32_t { kNone = 1, kInch = 2, kCentimetre = 3 };

  double resolution = 0;
  uint32_t unit = kInch;  // unless told otherwise
  visitFirstDirectory(tiff, [&](const TiffBytes& bytes, const TiffEntry& entry) {
    if (entry.tag == kResolutionUnit) unit = bytes.short16(entry.value);
    if (entry.tag != kXResolution || entry.type != TiffEntry::kRational) return;
    const size_t place = bytes.long32(entry.value);
    const double denominator = bytes.long32(place + 4);
    if (denominator > 0) resolution = bytes.long32(place) / denominator;
  });
  if (resolution <= 0 || (unit != kInch && unit != kCentimetre)) return std::nullopt;
  return unit == kInch ? resolution : resolution * 2.54;
}

int tiffOrientation(std::string_view tiff) {
  constexpr uint32_t kOrientation = 274;
  constexpr uint32_t kLast = 8;
  uint32_t orientation = 1;
  visitFirstDirectory(tiff, [&](const TiffBytes& bytes, const TiffEntry& entry) {
    if (entry.tag == kOrientation && entry.type == TiffEntry::kShort) orientation = bytes.short16(entry.value);
  });
  return orientation >= 1 && orientation <= kLast ? static_cast<int>(orientation) : 1;
}

}  // namespace quillmere
