#pragma once

#include <QtGui/QImage>

#include "foundation/FileURL.h"
#include "foundation/Result.h"
#include "reading/OperationError.h"
#include "reading/PictureCrop.h"

namespace quillmere::ImageOperations {

/// The picture at full size, upright. Fails as unreadable, or as too costly. Any thread.
Result<QImage, OperationError> loadImage(const FileURL& url);

}  // namespace quillmere::ImageOperations
