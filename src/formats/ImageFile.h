#pragma once

#include <QtCore/QSize>
#include <QtGui/QImage>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/FileURL.h"
#include "reading/PictureReading.h"
#include "records/PictureFormat.h"

namespace quillmere {

/// Reading picture files of the formats in `PictureFormat`, whatever their names say. Any thread.
///
/// A file is read into memory once before it is decoded, so what becomes of it meanwhile changes nothing. Pictures that
/// would take more than 1 GB decoded are refused.
namespace ImageFile {

/// Whether the file is a whole picture: its format's end is there and it decodes without error.
bool decodesCompletely(const FileURL& url);
/// The same of a file that was read already.
bool isWhole(std::string_view bytes);

/// What the header alone tells.
using Head = PictureHead;
std::optional<Head> head(const FileURL& url);
/// The same of an open file, which stays open.
std::optional<Head> head(int descriptor);
/// The size of it alone.
std::optional<QSize> pixelSize(const FileURL& url);

/// The upright picture at full size. Null when the file cannot be read.
QImage picture(const FileURL& url);
/// The same of a file that was read already.
QImage picture(std::string_view bytes);

/// The upright picture, made small enough that neither side is above `maxPixels`; never enlarged. RGB32 without alpha,
/// else premultiplied: what the screen wants. Null when the file cannot be read.
QImage thumbnail(const FileURL& url, int maxPixels);
/// The same of a file that was read already.
QImage thumbnail(std::string_view bytes, int maxPixels);

/// By the first bytes; 16 are enough. None for any other file.
std::optional<PictureFormat> formatOf(std::string_view head);

/// The bytes of a regular file that is not larger than any picture.
std::optional<std::string> bytesOf(const FileURL& url);

}  // namespace ImageFile
}  // namespace quillmere
