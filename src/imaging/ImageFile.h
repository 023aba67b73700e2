#pragma once

#include <QtCore/QSize>
#include <QtGui/QImage>
#include <optional>

#include "foundation/FileURL.h"

namespace quillmere {

/// Reading picture files: PNG, JPEG, HEIC and HEIF. Any thread.
namespace ImageFile {

/// Whether the file is a whole picture: its format's end is there and it decodes without error.
bool decodesCompletely(const FileURL& url);

/// The upright size in pixels, from the header alone.
std::optional<QSize> pixelSize(const FileURL& url);

/// The upright picture, made small enough that neither side is above `maxPixels`; never enlarged. Null when the file
/// cannot be read.
QImage thumbnail(const FileURL& url, int maxPixels);

}  // namespace ImageFile
}  // namespace quillmere
