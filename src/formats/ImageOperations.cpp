#include "formats/ImageOperations.h"

#include "formats/ImageFile.h"

namespace quillmere {

Result<QImage, ImageOperations::OperationError> ImageOperations::loadImage(const FileURL& url) {
  auto picture = ImageFile::read(url);
  if (!picture) return operationError(picture.reason());
  return *std::move(picture);
}

}  // namespace quillmere
