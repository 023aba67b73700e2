#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QSize>
#include <QtGui/QImage>
#include <memory>
#include <optional>
#include <string_view>

struct heif_context;
struct heif_image_handle;

namespace quillmere {

/// A picture in the HEIF container: HEIC, and what else its library decodes.
class HeifFile {
 public:
  /// By its first bytes; 16 are enough.
  static bool isHeif(std::string_view head);

  /// `bytes` must live as long as this does.
  explicit HeifFile(std::string_view bytes);

  /// Upright, from the header alone.
  std::optional<QSize> size() const;
  /// Upright, by the file's own transformations: RGB32, or ARGB32 where it has alpha. Null when it cannot be decoded.
  QImage decoded() const;
  /// The camera data as a TIFF; empty without.
  QByteArray exif() const;

 private:
  std::unique_ptr<heif_context, void (*)(heif_context*)> context_;
  std::unique_ptr<heif_image_handle, void (*)(const heif_image_handle*)> handle_;
};

/// As HEIC, with 8 bits a channel; none where it fails.
std::optional<QByteArray> encodedHeic(const QImage& image, int quality);

}  // namespace quillmere
