#include "analysis/ModelPicture.h"

#include <algorithm>

#include "formats/ImageEncoding.h"
#include "formats/ImageFile.h"
#include "formats/ImageOperations.h"

namespace quillmere {
namespace {

/// Beyond this even a small picture carries something else with it.
constexpr qsizetype kMostOwnBytes = 4 * 1024 * 1024;

bool isReadByEveryServer(PictureFormat format) {
  switch (format) {
    case PictureFormat::png:
    case PictureFormat::jpeg:
      return true;
    case PictureFormat::heif:
      return false;
  }
  return false;
}

ModelPicture made(QByteArray bytes, PictureFormat format) {
  return {std::move(bytes), traits(format).contentType};
}

}  // namespace

std::optional<ModelPicture> ModelPicture::read(const FileURL& url) {
  const auto file = ImageFile::bytesOf(url);
  const auto size = ImageFile::pixelSize(url);
  if (!file || !size) return std::nullopt;
  const auto format = ImageFile::formatOf(*file);
  const bool isSmall =
      std::max(size->width(), size->height()) <= kLongestSide && static_cast<qsizetype>(file->size()) <= kMostOwnBytes;
  if (isSmall && format && isReadByEveryServer(*format)) return made(QByteArray::fromStdString(*file), *format);

  const QImage image = ImageFile::thumbnail(url, kLongestSide);
  if (image.isNull()) return std::nullopt;
  auto encoded = ImageOperations::encode(image, PictureFormat::png);
  if (!encoded) return std::nullopt;
  return made(*std::move(encoded), PictureFormat::png);
}

}  // namespace quillmere
