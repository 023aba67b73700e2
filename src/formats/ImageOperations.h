#pragma once

#include <QtCore/QRectF>
#include <QtCore/QString>
#include <QtGui/QImage>
#include <system_error>
#include <variant>

#include "formats/PictureBudget.h"
#include "foundation/FileURL.h"
#include "foundation/Result.h"

namespace quillmere {

/// Stateless work on picture files. All coordinates are pixels of the upright picture, origin top-left, y downward. Any
/// thread.
namespace ImageOperations {

/// A failure with words of its own for the person.
enum class OperationError { unreadable, tooCostly, invalidCrop, encoding, destinationExists, noScreenshotFolder };

/// Why an operation failed: for a reason of its own, or for the file system's.
using Failure = std::variant<OperationError, std::error_code>;
QString description(OperationError error);
QString description(const Failure& failure);
/// Whether the file system said that nothing is there.
bool isFileMissing(const Failure& failure);

/// What the person is told where a picture wasn't read.
OperationError operationError(PictureError error);

/// The picture at full size, upright. Fails as unreadable, or as too costly.
Result<QImage, OperationError> loadImage(const FileURL& url);

/// The part inside `rect`, which grows outward to whole pixels. Fails as an invalid crop.
Result<QImage, OperationError> crop(const QImage& image, const QRectF& rect);

}  // namespace ImageOperations
}  // namespace quillmere
