#pragma once

#include <QtCore/QString>
#include <system_error>
#include <variant>

#include "reading/PictureError.h"

namespace quillmere::ImageOperations {

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

}  // namespace quillmere::ImageOperations
