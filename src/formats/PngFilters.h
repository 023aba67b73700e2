#pragma once

#include <cstddef>
#include <cstdint>

namespace quillmere {

/// Undoing the filters of PNG rows (the PNG specification, "Filter algorithms") for 8-bit RGB and RGBA.
namespace PngFilters {

inline constexpr uint8_t kKinds = 5;

/// So many bytes behind the end of each row below may be read, and of `pixels` also written, so that no kernel needs an
/// end of its own for widths that do not fill a vector.
inline constexpr size_t kSlack = 16;

struct Row {
  const uint8_t* filtered;  ///< the row's bytes without the filter's number before them
  const uint32_t* above;    ///< the finished row above; zeros above the first
  uint32_t* pixels;         ///< takes the row as QRgb; overlaps with neither of the others
  size_t width;             ///< in pixels
};

/// Undoes filter `kind`, below `kKinds`. `channels` is 3 or 4; without alpha the pixels become opaque.
void undo(uint8_t kind, int channels, const Row& row);

/// The same on any processor; what `undo` falls back to.
void undoPlainly(uint8_t kind, int channels, const Row& row);

}  // namespace PngFilters
}  // namespace quillmere
