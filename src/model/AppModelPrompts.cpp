#include <algorithm>

#include "model/AppModel.h"

namespace quillmere {

const ScreenshotItem* AppModel::promptedItem() const {
  const auto front = prompts_.front();
  return front ? items_.find(*front) : nullptr;
}

std::vector<UUID> AppModel::pendingPrompts() const {
  std::vector<const ScreenshotItem*> pending;
  items_.forEach([&](const ScreenshotItem& item) {
    if (isBeingDecided(item.id)) return;
    if (item.state == ScreenshotItem::State::pending && !unavailableItemIDs->contains(item.id)) {
      pending.push_back(&item);
    }
  });
  std::stable_sort(pending.begin(), pending.end(),
                   [](const auto* a, const auto* b) { return a->createdAt < b->createdAt; });
  std::vector<UUID> ids;
  for (const ScreenshotItem* item : pending) ids.push_back(item->id);
  return ids;
}

ErrorScope AppModel::scopeNow(ErrorScope scope, const UUID& id) const {
  return scope == ErrorScope::popup && prompts_.front() != id ? ErrorScope::inbox : scope;
}

void AppModel::resolvePrompts(const UUIDSet& ids) {
  for (const UUID& id : ids) popupAutoSaveScheduler_.drop(id);
  prompts_.resolve(ids);
}

void AppModel::dismissPrompt() {
  const auto front = prompts_.front();
  // A decision that is being carried out can't be waved away any more.
  if (front && !isBeingDecided(*front)) resolvePrompts({*front});
}

void AppModel::reviewPending(FocusNews news) {
  prompts_.review([this] { return pendingPrompts(); }, news);
}

void AppModel::promptIsLeft() {
  promptNameEdit_.reset();
  extraction_.clear();
}

void AppModel::showPrompt(const ScreenshotItem& item) {
  const UUID id = item.id;
  shownFile_ = {id, fileStamp(item.url, dependencies_.fileIdentity)};
  dependencies_.promptPresenter->present(item, *this);
  beginCountdown(id);
}

}  // namespace quillmere
