#include "analysis/ModelPicture.h"

#include <algorithm>

#include "reading/PictureBytes.h"

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

std::optional<ModelPicture> ModelPicture::read(PictureReading& pictures, const FileURL& url) {
  const auto head = pictures.head(url);
  if (!head) return std::nullopt;
  if (isReadByEveryServer(head->format) && std::max(head->size.width(), head->size.height()) <= kLongestSide) {
    const auto file = pictureBytes(url);
    if (!file) return std::nullopt;
    if (static_cast<qsizetype>(file->size()) <= kMostOwnBytes)
      return made(QByteArray::fromStdString(*file), head->format);
  }
  const std::atomic<bool> isStopped = false;
  const auto image = pictures.thumbnail(url, kLongestSide, isStopped);
  if (!image) return std::nullopt;
  auto encoded = pictures.encoded(*image, PictureFormat::png);
  if (!encoded) return std::nullopt;
  return made(*std::move(encoded), PictureFormat::png);
}

}  // namespace quillmere
