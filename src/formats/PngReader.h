#pragma once

#include <QtGui/QImage>
#include <optional>
#include <string_view>

#include "formats/PixelMemory.h"

namespace quillmere {

/// Reads the forms of PNG that capture tools write, several times as fast as the general reader: 8 bits a channel, RGB
/// or RGBA, neither interlaced nor with a transparent colour. Gives the very picture that the general reader gives, its
/// texts apart.
///
/// It leaves to the general reader, by giving nothing, what is of another form or in any way doubtful: a wrong
/// checksum, data too short or too long, an order of chunks that is not allowed.
namespace PngReader {

/// Deflate's best: a back reference of 258 bytes in two bits.
inline constexpr int kBestCompression = 1032;

/// The picture is made in `memory` where that gives some; it must then not be used any longer than that.
std::optional<QImage> read(std::string_view file, PixelMemory* memory = nullptr);

/// The same picture made smaller, as `Downscaler` does, where it has a side above `maxPixels`; without memory for the
/// large one.
std::optional<QImage> readSmall(std::string_view file, int maxPixels);

/// Whether `read` gives a picture, told without making it.
bool canRead(std::string_view file);

/// Whether the header promises more than the file can hold however well it was compressed. Such a file is refused
/// before memory is taken for its picture.
bool isBomb(std::string_view file);

/// Whether far more data are compressed in it than its picture has. The general reader unpacks them all, to its end; it
/// is asked of much data only, for the answer costs as much as reading them.
bool hasEndlessData(std::string_view file);

}  // namespace PngReader
}  // namespace quillmere
