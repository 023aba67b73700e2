#include "model/AppModel.h"

namespace quillmere {

void AppModel::markTemporary(const UUID& id, TemporaryDuration duration, const std::optional<QString>& name) {
  const ScreenshotItem* item = items_.find(id);
  if (!item || item->state != ScreenshotItem::State::pending) return;
  if (name) rename(id, *name, ErrorScope::popup);
  // Its file turned out to have been moved away by the person, which keeps it.
  item = items_.find(id);
  if (!item || item->state != ScreenshotItem::State::pending) return;
  lastTemporaryDuration.set(duration);
  dependencies_.defaults->set(QStringLiteral("quillmere.last-duration"), static_cast<int>(duration));
  makeTemporary(*items_.indexOf(id), duration, now());
  resolvePrompts({id});
  saveNow();
}

void AppModel::markTemporaryBatch(const std::vector<UUID>& ids, TemporaryDuration duration) {
  UUIDSet decided;
  for (const UUID& id : ids) {
    const ScreenshotItem* item = items_.find(id);
    if (item && item->state == ScreenshotItem::State::pending && !unavailableItemIDs->contains(id)) decided.insert(id);
  }
  if (decided.empty()) return;
  lastTemporaryDuration.set(duration);
  dependencies_.defaults->set(QStringLiteral("quillmere.last-duration"), static_cast<int>(duration));
  const Date moment = now();
  for (const UUID& id : decided) makeTemporary(*items_.indexOf(id), duration, moment);
  resolvePrompts(decided);
  saveNow();
}

void AppModel::makeTemporary(size_t index, TemporaryDuration duration, Date moment) {
  const Date expiresAt = expiry(duration, moment, dependencies_.timeZone());
  updateItem(index, [&](ScreenshotItem& item) {
    item.state = ScreenshotItem::State::temporary;
    item.expiresAt = expiresAt;
  });
  expirationScheduler_.schedule(items_[index].id, expiresAt);
}

void AppModel::keepItem(size_t index) {
  updateItem(index, [](ScreenshotItem& item) {
    item.state = ScreenshotItem::State::permanent;
    item.expiresAt.reset();
  });
  const UUID id = items_[index].id;
  expirationScheduler_.cancel(id);
  unreachableExpirations_.erase(id);
  if (expirationFailures_.erase(id) > 0) refreshExpirationBanner();
}

void AppModel::keepPrompt(const UUID& id, const std::optional<QString>& name) {
  const ScreenshotItem* item = items_.find(id);
  if (!item || item->state != ScreenshotItem::State::pending) return;
  if (name) rename(id, *name, ErrorScope::popup);
  keepItem(*items_.indexOf(id));
  resolvePrompts({id});
  saveNow();
}

void AppModel::keepBatch(const std::vector<UUID>& ids) {
  UUIDSet kept;
  for (const UUID& id : ids) {
    const auto index = items_.indexOf(id);
    if (!index || items_[*index].state == ScreenshotItem::State::permanent || unavailableItemIDs->contains(id))
      continue;
    keepItem(*index);
    kept.insert(id);
  }
  if (kept.empty()) return;
  resolvePrompts(kept);
  saveNow();
}

void AppModel::refreshExpirationBanner() {
  using Kind = BackgroundIssue::Kind;
  if (!expirationFailures_.empty()) {
    const int count = static_cast<int>(expirationFailures_.size());
    backgroundIssue.set(BackgroundIssue{Kind::expiredScreenshotsNotTrashed, count});
  } else if (*backgroundIssue && (*backgroundIssue)->kind == Kind::expiredScreenshotsNotTrashed) {
    backgroundIssue.set(std::nullopt);
  }
}

void AppModel::unprotect(const UUID& id) {
  const auto found = protectedItems_.find(id);
  if (found != protectedItems_.end() && --found->second == 0) protectedItems_.erase(found);
}

}  // namespace quillmere
