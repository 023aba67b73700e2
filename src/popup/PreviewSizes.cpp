#include "popup/PreviewSizes.h"

namespace quillmere {
namespace {

constexpr size_t kMostSizes = 32;

}  // namespace

std::optional<QSizeF> PreviewSizes::size(const ScreenshotItem& item) {
  const MeasuredImage image{item.url, item.fileIdentity};
  const auto known = sizes_.find(image);
  if (known != sizes_.end()) return known->second;
  if (sought_.insert(image).second) find(lifetime_.weak(this), image).detach();
  return std::nullopt;
}

Task<> PreviewSizes::find(Weak<PreviewSizes> self, MeasuredImage image) {
  auto measuring = self->thumbnails_.pixelSize(image.url);
  const auto size = co_await measuring;
  if (!self) co_return;
  // What could not be read now may be readable at the next look.
  self->sought_.erase(image);
  if (self->sizes_.size() > kMostSizes) self->sizes_.clear();
  if (size) self->sizes_.emplace(image, *size);
  if (self->onLooked) self->onLooked(size.has_value());
}

}  // namespace quillmere
