#pragma once

#include <QtCore/QByteArray>
#include <QtGui/QImage>

#include "formats/ImageOperations.h"
#include "foundation/FileURL.h"
#include "foundation/Result.h"
#include "records/PictureFormat.h"

namespace quillmere::ImageOperations {

/// What a picture is written as under this name: what its extension stands for. A name that says nothing holds a PNG,
/// which loses nothing.
PictureFormat imageType(const FileURL& url);

/// The picture alone with its colour space: no resolution, text or other data of its source. Fails as encoding.
Result<QByteArray, OperationError> encode(const QImage& image, PictureFormat format);

}  // namespace quillmere::ImageOperations
