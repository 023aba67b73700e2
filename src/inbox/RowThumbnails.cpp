#include "inbox/RowThumbnails.h"

namespace quillmere {
namespace {

constexpr size_t kGeneration = 200;
constexpr size_t kMostWaiting = 48;  ///< more rows are on no screen
constexpr int kMostRunning = 2;

/// Nothing is left behind of a screenshot that may be thrown away soon.
ThumbnailLoader::Sharing sharingOf(const ScreenshotItem& item) {
  using Sharing = ThumbnailLoader::Sharing;
  return item.state == ScreenshotItem::State::permanent ? Sharing::takenAndKept : Sharing::taken;
}

}  // namespace

QImage RowThumbnails::image(const ScreenshotItem& item) {
  if (Picture* known = find(item)) return known->image;
  recent_.insert_or_assign(item.id, Picture{item.url, item.fileIdentity, {}});
  waiting_.push_front({item.id, item.url, sharingOf(item)});
  if (waiting_.size() > kMostWaiting) {
    // Asked for again when it is seen again.
    const UUID forgotten = waiting_.back().id;
    waiting_.pop_back();
    recent_.erase(forgotten);
    earlier_.erase(forgotten);
  }
  loadNext();
  return {};
}

RowThumbnails::Picture* RowThumbnails::find(const ScreenshotItem& item) {
  const auto isOf = [&](const Picture& picture) {
    return picture.url == item.url && picture.identity == item.fileIdentity;
  };
  if (const auto known = recent_.find(item.id); known != recent_.end()) {
    return isOf(known->second) ? &known->second : nullptr;
  }
  const auto known = earlier_.find(item.id);
  if (known == earlier_.end() || !isOf(known->second)) return nullptr;
  Picture picture = std::move(known->second);
  earlier_.erase(known);
  if (recent_.size() >= kGeneration) earlier_ = std::exchange(recent_, {});
  return &(recent_[item.id] = std::move(picture));
}

void RowThumbnails::forget(const UUID& id) {
  recent_.erase(id);
  earlier_.erase(id);
}

void RowThumbnails::loadNext() {
  while (running_ < kMostRunning && !waiting_.empty()) {
    const Request request = waiting_.front();
    waiting_.pop_front();
    ++running_;
    load(lifetime_.weak(this), request).detach();
  }
}

Task<> RowThumbnails::load(Weak<RowThumbnails> self, Request request) {
  const auto loading = self->loader_.load(request.url, self->pixels_, request.sharing);
  const auto outcome = co_await loading;
  if (!self) co_return;
  --self->running_;
  if (self->recent_.size() >= kGeneration) self->earlier_ = std::exchange(self->recent_, {});
  for (auto* pictures : {&self->recent_, &self->earlier_}) {
    const auto picture = pictures->find(request.id);
    if (picture == pictures->end() || picture->second.url != request.url) continue;
    if (const auto* image = std::get_if<QImage>(&outcome)) picture->second.image = *image;
    if (self->onLoaded) self->onLoaded(request.id);
    break;
  }
  if (self) self->loadNext();
}

}  // namespace quillmere
