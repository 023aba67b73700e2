#include "imaging/ThumbnailLoader.h"

#include "foundation/FileStatus.h"
#include "imaging/ImageFile.h"

namespace quillmere {

ThumbnailLoader::ThumbnailLoader(Executor& executor, std::function<bool(const FileURL&)> isEvicted, int64_t limit)
    : executor_(executor), isEvicted_(std::move(isEvicted)), limit_(limit) {}

Task<ThumbnailLoader::Outcome> ThumbnailLoader::load(FileURL url, int pixels) {
  const std::function<Outcome()> work = [this, url, pixels] { return loadNow(url, pixels); };
  Outcome outcome = co_await executor_.background(work);
  co_return outcome;
}

ThumbnailLoader::Outcome ThumbnailLoader::loadNow(const FileURL& url, int pixels) {
  if (isEvicted_(url)) return NotDownloaded{};
  // With its date in the key, a file that changes gets a new picture, and the old one ages out.
  const auto status = fileStatus(url);
  const std::string key =
      url.path() + "|" + std::to_string(status ? status->modified.seconds : 0) + "|" + std::to_string(pixels);
  if (const auto image = cached(key)) return *image;
  QImage image = ImageFile::thumbnail(url, pixels);
  if (image.isNull()) return Unreadable{};
  keep(key, image);
  return image;
}

int64_t ThumbnailLoader::cachedBytes() const {
  const std::lock_guard lock(mutex_);
  return bytes_;
}

std::optional<QImage> ThumbnailLoader::cached(const std::string& key) {
  const std::lock_guard lock(mutex_);
  const auto found = byKey_.find(key);
  if (found == byKey_.end()) return std::nullopt;
  entries_.splice(entries_.begin(), entries_, found->second);
  return found->second->image;
}

void ThumbnailLoader::keep(const std::string& key, const QImage& image) {
  const std::lock_guard lock(mutex_);
  if (byKey_.contains(key)) return;
  entries_.push_front({key, image});
  byKey_[key] = entries_.begin();
  bytes_ += image.sizeInBytes();
  while (bytes_ > limit_ && !entries_.empty()) {
    bytes_ -= entries_.back().image.sizeInBytes();
    byKey_.erase(entries_.back().key);
    entries_.pop_back();
  }
}

}  // namespace quillmere
