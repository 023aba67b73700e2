#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QRectF>
#include <QtCore/QString>
#include <QtGui/QImage>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <variant>

#include "foundation/FileURL.h"
#include "foundation/Result.h"
#include "records/PictureFormat.h"

namespace quillmere {

/// Stateless work on picture files. All coordinates are pixels of the upright picture, origin top-left, y downward. Any
/// thread.
namespace ImageOperations {

/// A failure with words of its own for the person.
enum class OperationError { unreadable, invalidCrop, encoding, destinationExists, noScreenshotFolder };

/// Why an operation failed: for a reason of its own, or for the file system's.
using Failure = std::variant<OperationError, std::error_code>;
QString description(OperationError error);
QString description(const Failure& failure);
/// Whether the file system said that nothing is there.
bool isFileMissing(const Failure& failure);

/// What a picture is written as under this name: what its extension stands for. A name that says nothing holds a PNG,
/// which loses nothing.
PictureFormat imageType(const FileURL& url);

/// The picture at full size, upright. Fails as unreadable.
Result<QImage, OperationError> loadImage(const FileURL& url);

/// Pixels per point, of a picture that came from a display at scale 1, 2 or 3: its resolution is within 1 dpi of 72
/// times that. None where the file does not say so.
std::optional<double> imageScale(const FileURL& url);

/// The part inside `rect`, which grows outward to whole pixels. Fails as an invalid crop.
Result<QImage, OperationError> crop(const QImage& image, const QRectF& rect);

/// The picture alone with its colour space: no resolution, text or other data of its source. Fails as encoding.
Result<QByteArray, OperationError> encode(const QImage& image, PictureFormat format);

/// Writes a PNG under the cleaned `stem`, numbered where the name is taken, in the folder of `url`; nothing is ever
/// replaced. Gives its place.
Result<FileURL, Failure> writeNewFile(const QByteArray& data, const FileURL& url, const QString& stem);

/// What the names of replacements begin with.
inline constexpr std::string_view kReplacementPrefix = ".quillmere-replacing-";
/// Writes a hidden file of the same extension beside `original`, to take its place in one move. Gives its place.
Result<FileURL, Failure> writeReplacement(const QByteArray& data, const FileURL& original);

}  // namespace ImageOperations
}  // namespace quillmere
