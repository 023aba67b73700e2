#include "reading/ThumbnailCache.h"

#include <iterator>

namespace quillmere {

std::optional<QImage> ThumbnailCache::find(const std::string& key) {
  const std::lock_guard lock(mutex_);
  const auto found = byKey_.find(key);
  if (found == byKey_.end()) return std::nullopt;
  entries_.splice(entries_.begin(), entries_, found->second);
  return found->second->image;
}

void ThumbnailCache::keep(const std::string& key, const QImage& image) {
  const std::lock_guard lock(mutex_);
  if (const auto earlier = byKey_.find(key); earlier != byKey_.end()) remove(earlier->second);
  if (image.sizeInBytes() > limit_) return;
  while (bytes_ + image.sizeInBytes() > limit_) remove(std::prev(entries_.end()));
  entries_.push_front({key, image});
  byKey_[key] = entries_.begin();
  bytes_ += image.sizeInBytes();
}

int64_t ThumbnailCache::bytes() const {
  const std::lock_guard lock(mutex_);
  return bytes_;
}

void ThumbnailCache::remove(Entries::iterator entry) {
  bytes_ -= entry->image.sizeInBytes();
  byKey_.erase(entry->key);
  entries_.erase(entry);
}

}  // namespace quillmere
