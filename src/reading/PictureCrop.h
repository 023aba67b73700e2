#pragma once

#include <QtCore/QRectF>
#include <QtGui/QImage>

#include "foundation/Result.h"
#include "reading/OperationError.h"

namespace quillmere::ImageOperations {

/// The part inside `rect`, which grows outward to whole pixels. Coordinates are pixels of the picture, origin top-left,
/// y downward. Fails as an invalid crop. Any thread.
Result<QImage, OperationError> crop(const QImage& image, const QRectF& rect);

}  // namespace quillmere::ImageOperations
