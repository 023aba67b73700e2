#pragma once

#include <QtCore/QByteArray>
#include <QtGui/QImage>
#include <optional>

namespace quillmere {

/// Writes the pictures that captures are, RGB and RGBA with 8 bits a channel, in less than half of the time that the
/// general writer needs and in about as few bytes. The colour space is told as the general writer tells it. A file has
/// nothing else: no resolution, texts or offset.
///
/// It takes memory for the rows as they are in the file, 3 or 4 bytes a pixel, and for the file: 45 MB and the file for
/// 5120 x 2880 opaque pixels.
namespace PngWriter {

/// RGB32 and ARGB32, also premultiplied, of up to a gigabyte. All others are for the general writer.
bool canWrite(const QImage& image);

/// None where the general writer fails at the colour space or memory is not to be had; std::bad_alloc where that is
/// little memory.
std::optional<QByteArray> write(const QImage& image);

}  // namespace PngWriter
}  // namespace quillmere
