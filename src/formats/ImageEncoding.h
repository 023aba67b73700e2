#pragma once

#include <QtCore/QByteArray>
#include <QtGui/QImage>

#include "foundation/Result.h"
#include "reading/ImageWriting.h"
#include "records/PictureFormat.h"

namespace quillmere::ImageOperations {

/// The picture alone with its colour space: no resolution, text or other data of its source. Fails as encoding.
Result<QByteArray, OperationError> encode(const QImage& image, PictureFormat format);

}  // namespace quillmere::ImageOperations
