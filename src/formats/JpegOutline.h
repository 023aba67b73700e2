#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillmere {

/// What the markers of a JPEG tell (ISO 10918-1, Annex B), without decoding anything.
struct JpegOutline {
  /// As far as `file` goes, of which the beginning up to its first scan is enough for all but `scans`, `besidesPixels`
  /// and `isWhole`. None without a frame and a scan.
  static std::optional<JpegOutline> of(std::string_view file);

  uint32_t width = 0;
  uint32_t height = 0;
  int components = 0;
  int componentsOfFirstScan = 0;
  bool isProgressive = false;
  int scans = 0;
  int64_t besidesPixels = 0;  ///< bytes of all segments
  int segments = 0;
  bool isWhole = false;  ///< the end was seen

  int64_t pixels() const { return int64_t{width} * height; }
  /// Of a picture that comes in several scans, the decoder keeps all coefficients until the last.
  bool comesInScans() const { return isProgressive || componentsOfFirstScan < components; }

  /// More than any camera or program writes: a reader takes them one by one, and looks at each again for the next.
  static bool hasManySegments(std::string_view file);
};

/// The JPEG with nothing but what makes its picture, the first camera data and its colour profile among it.
std::string withoutJpegTexts(std::string_view file);

}  // namespace quillmere
