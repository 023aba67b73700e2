#include "formats/ImageScale.h"

#include <cmath>

#include "formats/HeifFile.h"
#include "formats/ImageFile.h"
#include "formats/TiffTags.h"
#include "png/PngChunks.h"

namespace quillmere {
namespace {

constexpr double kMetresPerInch = 0.0254;
constexpr double kCentimetresPerInch = 2.54;

// All of these give dots per inch, across.

std::optional<double> pngResolution(std::string_view file) {
  PngChunks chunks(file);
  while (const auto chunk = chunks.next()) {
    if (chunk->type == "IDAT") break;
    if (chunk->type != "pHYs") continue;
    constexpr size_t kBytes = 9;
    constexpr char kMetre = 1;
    if (chunk->data.size() != kBytes || chunk->data[8] != kMetre || !chunk->isIntact()) break;
    return bigEndian32(chunk->data) * kMetresPerInch;
  }
  return std::nullopt;
}

size_t bigEndian16(std::string_view bytes) {
  return static_cast<size_t>(static_cast<uint8_t>(bytes[0]) << 8 | static_cast<uint8_t>(bytes[1]));
}

std::optional<double> jfifResolution(std::string_view data) {
  constexpr size_t kUnit = 7;  // behind the name and the version
  enum : char { kNone, kPerInch, kPerCentimetre };
  if (data.size() < kUnit + 3) return std::nullopt;
  const auto density = static_cast<double>(bigEndian16(data.substr(kUnit + 1)));
  if (data[kUnit] == kPerInch) return density;
  if (data[kUnit] == kPerCentimetre) return density * kCentimetresPerInch;
  return std::nullopt;
}

/// The file's own head says it first; camera data only where that has no unit.
std::optional<double> jpegResolution(std::string_view file) {
  constexpr std::string_view kJfif("JFIF\0", 5);
  constexpr std::string_view kExif("Exif\0\0", 6);
  constexpr char kFirstApplication = '\xE0';
  std::optional<double> fromExif;
  std::string_view rest = file.substr(2);
  while (rest.size() >= 4 && rest[0] == '\xFF') {
    const char marker = rest[1];
    if (marker == '\xFF') {  // filling
      rest.remove_prefix(1);
      continue;
    }
    const size_t length = bigEndian16(rest.substr(2));
    const bool isScan = marker == '\xDA' || marker == '\xD9';
    if (isScan || length < 2 || length + 2 > rest.size()) break;
    const std::string_view data = rest.substr(4, length - 2);
    if (marker == kFirstApplication && data.starts_with(kJfif)) {
      if (const auto resolution = jfifResolution(data)) return resolution;
    } else if (marker == kFirstApplication + 1 && data.starts_with(kExif) && !fromExif) {
      fromExif = tiffResolution(data.substr(kExif.size()));
    }
    rest.remove_prefix(length + 2);
  }
  return fromExif;
}

std::optional<double> heifResolution(std::string_view file) {
  const QByteArray exif = HeifFile(file).exif();
  return tiffResolution({exif.constData(), static_cast<size_t>(exif.size())});
}

std::optional<double> resolution(std::string_view file) {
  const auto format = ImageFile::formatOf(file);
  if (!format) return std::nullopt;
  switch (*format) {
    case PictureFormat::png:
      return pngResolution(file);
    case PictureFormat::jpeg:
      return jpegResolution(file);
    case PictureFormat::heif:
      return heifResolution(file);
  }
  return std::nullopt;
}

}  // namespace

std::optional<double> ImageOperations::imageScale(const FileURL& url) {
  constexpr int64_t kMostHead = 1 << 20;
  const auto file = ImageFile::firstBytesOf(url, kMostHead);
  return file ? imageScale(std::string_view(*file)) : std::nullopt;
}

std::optional<double> ImageOperations::imageScale(std::string_view file) {
  constexpr double kPointsPerInch = 72;
  const auto dpi = resolution(file);
  if (!dpi) return std::nullopt;
  const double scale = std::round(*dpi / kPointsPerInch);
  if (scale < 1 || scale > 3 || std::abs(*dpi - kPointsPerInch * scale) >= 1) return std::nullopt;
  return scale;
}

}  // namespace quillmere
