#include "formats/ImageOperations.h"

#include "formats/ImageFile.h"

namespace quillmere {

Result<QImage, ImageOperations::OperationError> ImageOperations::loadImage(const FileURL& url) {
  QImage image = ImageFile::picture(url);
  if (image.isNull()) return OperationError::unreadable;
  return image;
}

}  // namespace quillmere
