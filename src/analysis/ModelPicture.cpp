#include "analysis/ModelPicture.h"

#include <algorithm>

#include "formats/ImageFile.h"
#include "formats/ImageOperations.h"

namespace quillmere {
namespace {

/// Beyond this even a small picture carries something else with it.
constexpr qsizetype kMostOwnBytes = 4 * 1024 * 1024;

}  // namespace

std::optional<ModelPicture> ModelPicture::read(const FileURL& url) {
  const auto file = ImageFile::bytesOf(url);
  const auto size = ImageFile::pixelSize(url);
  if (!file || !size) return std::nullopt;
  const auto format = ImageFile::formatOf(*file);
  const bool isSmall =
      std::max(size->width(), size->height()) <= kLongestSide && static_cast<qsizetype>(file->size()) <= kMostOwnBytes;
  if (isSmall && format == ImageFile::Format::png) return ModelPicture{QByteArray::fromStdString(*file), "image/png"};
  if (isSmall && format == ImageFile::Format::jpeg) return ModelPicture{QByteArray::fromStdString(*file), "image/jpeg"};

  const QImage image = ImageFile::thumbnail(url, kLongestSide);
  if (image.isNull()) return std::nullopt;
  auto encoded = ImageOperations::encode(image, ImageOperations::ImageType::png);
  if (!encoded) return std::nullopt;
  return ModelPicture{*std::move(encoded), "image/png"};
}

}  // namespace quillmere
