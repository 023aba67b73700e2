#pragma once

#include <QtCore/QSize>
#include <QtGui/QImage>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "formats/PictureBudget.h"
#include "formats/PixelMemory.h"
#include "foundation/FileURL.h"
#include "foundation/Result.h"
#include "reading/PictureReading.h"
#include "records/PictureFormat.h"

namespace quillmere {

/// Reading picture files of the formats in `PictureFormat`, whatever their names say. Any thread.
///
/// A file is read into memory once before it is decoded, so what becomes of it meanwhile changes nothing. What it will
/// take is told from its beginning first, and is refused beyond a budget.
namespace ImageFile {

/// Whether the file is a whole picture: its format's end is there and it decodes without error.
bool decodesCompletely(const FileURL& url);
/// The same, with the reason why not; none of a whole one.
std::optional<PictureError> failureOf(const FileURL& url, const PictureBudget& budget = {});
std::optional<PictureError> failureOf(std::string_view bytes, const PictureBudget& budget = {});

/// What the header alone tells, of which a bounded number of bytes is read.
using Head = PictureHead;
std::optional<Head> head(const FileURL& url);
/// The same of an open file, which stays open.
std::optional<Head> head(int descriptor);
/// The size of it alone.
std::optional<QSize> pixelSize(const FileURL& url);

/// The upright picture at full size, or why there is none.
using Picture = Result<QImage, PictureError>;
Picture read(const FileURL& url, const PictureBudget& budget = {});
/// Of a plain PNG it is made in `memory`, where that is given and gives some: only as long as that is there.
Picture read(std::string_view bytes, const PictureBudget& budget = {}, PixelMemory* memory = nullptr);
/// Calls `tell` with the file's bytes, too, while they are there.
Picture read(const FileURL& url, const std::function<void(std::string_view bytes)>& tell,
             const PictureBudget& budget = {});
Picture read(std::string_view bytes, const std::function<void(std::string_view bytes)>& tell,
             const PictureBudget& budget = {}, PixelMemory* memory = nullptr);
/// The same as `thumbnail` gives it.
Picture readSmall(const FileURL& url, int maxPixels, const PictureBudget& budget = {});
Picture readSmall(std::string_view bytes, int maxPixels, const PictureBudget& budget = {});

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

/// The bytes of a regular file that is not larger than any picture, and not for the most part unwritten.
std::optional<std::string> bytesOf(const FileURL& url);
/// The bytes of an open file, which stays open, as far as they are worth being decoded: of one whose beginning tells
/// that it is no picture, or beyond the budget, no more is read.
Result<std::string, PictureError> bytesToDecode(int descriptor, const PictureBudget& budget = {});
/// In bytes, while the picture of those is decoded, they themselves among it.
Result<int64_t, PictureError> memoryFor(std::string_view bytes, const PictureBudget& budget = {});
/// So many of its first bytes; all of a HEIF, whose head may lie anywhere.
std::optional<std::string> firstBytesOf(const FileURL& url, int64_t count);

}  // namespace ImageFile
}  // namespace quillmere
