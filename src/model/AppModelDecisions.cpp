#include <algorithm>

#include "model/AppModel.h"

namespace quillmere {

bool AppModel::isBeingDecided(const UUID& id) const {
  return decisions_.contains(id) || extraction_.isSaving(id);
}

bool AppModel::isUndecided(const UUID& id) const {
  const ScreenshotItem* item = items_.find(id);
  return item && item->state == ScreenshotItem::State::pending;
}

// --- While a decision is carried out ---

bool AppModel::isInPopups(const UUID& id) const {
  const auto& queue = *prompts_.queue;
  return std::find(queue.begin(), queue.end(), id) != queue.end();
}

void AppModel::decisionEnded(const UUID& id, Ended ended) {
  if (!items_.find(id)) return;
  if (ended.isKept) keepBatch({id});
  // Nothing came of it: the person is asked again.
  if (ended.hasLeftPopup && isUndecided(id) && !unavailableItemIDs->contains(id)) enqueuePrompt(id);
}

/// What leaves the screen at once is on the disk: a disk that takes longer than a moment is not waited for, and what it
/// has not got yet comes back as a popup when the program is killed.
Task<> AppModel::leavePrompt(Weak<AppModel> self, UUID id) {
  constexpr Duration kLongest = std::chrono::milliseconds(250);
  self->popupAutoSaveScheduler_.drop(id);
  self->saveNow();
  if (!self->recordsReadOnly_ && self->prompts_.front() == id) {
    auto saving = self->saver_.whenSaved(kLongest);
    if (!saving.await_ready()) {
      setMember(self->leavingPrompts, id, true);
      co_await saving;
      if (!self) co_return;
      setMember(self->leavingPrompts, id, false);
    }
  }
  self->resolvePrompts({id});
}

Task<> AppModel::markTemporary(UUID id, TemporaryDuration duration, std::optional<QString> name) {
  return runMarkTemporary(lifetime_.weak(this), id, duration, std::move(name));
}

Task<> AppModel::runMarkTemporary(Weak<AppModel> self, UUID id, TemporaryDuration duration,
                                  std::optional<QString> name) {
  if (!self->isUndecided(id) || self->isBeingDecided(id)) co_return;
  const auto committing = self->commitPromptExtraction(id);
  const bool isCommitted = co_await committing;
  if (!isCommitted || !self || !self->isUndecided(id)) co_return;
  {
    const DecisionsUnderWay::Guard guard(self->decisions_, id);
    if (name) {
      const auto renaming = renameBeforeDecision(self, id, *name);
      co_await renaming;
      if (!self) co_return;
    }
    // Its file turned out to have been moved away by the person, which keeps it.
    if (!self->isUndecided(id)) co_return;
    self->settings_.lastTemporaryDuration.choose(duration);
    self->makeTemporary(*self->items_.indexOf(id), duration, self->now());
  }
  const auto leaving = leavePrompt(self, id);
  co_await leaving;
}

void AppModel::markTemporaryBatch(const std::vector<UUID>& ids, TemporaryDuration duration) {
  UUIDSet decided;
  for (const UUID& id : ids) {
    const ScreenshotItem* item = items_.find(id);
    // The decision that is being carried out in the popup came first.
    if (!item || isBeingDecided(id) || unavailableItemIDs->contains(id)) continue;
    if (item->state == ScreenshotItem::State::pending) decided.insert(id);
  }
  if (decided.empty()) return;
  settings_.lastTemporaryDuration.choose(duration);
  const Date moment = now();
  changeTogether([&] {
    for (const UUID& id : decided) makeTemporary(*items_.indexOf(id), duration, moment);
  });
  resolvePrompts(decided);
  saveNow();
}

void AppModel::makeTemporary(size_t index, TemporaryDuration duration, Date moment) {
  const Date expiresAt = expiry(duration, moment, dependencies_.timeZone());
  updateItem(index, [&](ScreenshotItem& item) {
    item.state = ScreenshotItem::State::temporary;
    item.expiresAt = expiresAt;
  });
  expiry_.schedule(items_[index].id, expiresAt);
}

void AppModel::keepItem(size_t index) {
  updateItem(index, [](ScreenshotItem& item) {
    item.state = ScreenshotItem::State::permanent;
    item.expiresAt.reset();
  });
  expiry_.forget({items_[index].id});
}

Task<> AppModel::keepPrompt(UUID id, std::optional<QString> name) {
  return runKeepPrompt(lifetime_.weak(this), id, std::move(name));
}

Task<> AppModel::runKeepPrompt(Weak<AppModel> self, UUID id, std::optional<QString> name) {
  if (!self->isUndecided(id) || self->isBeingDecided(id)) co_return;
  const auto committing = self->commitPromptExtraction(id);
  const bool isCommitted = co_await committing;
  if (!isCommitted || !self || !self->isUndecided(id)) co_return;
  {
    const DecisionsUnderWay::Guard guard(self->decisions_, id);
    if (name) {
      const auto renaming = renameBeforeDecision(self, id, *name);
      co_await renaming;
      if (!self) co_return;
    }
    const auto index = self->items_.indexOf(id);
    if (!index) co_return;
    self->keepItem(*index);
  }
  const auto leaving = leavePrompt(self, id);
  co_await leaving;
}

void AppModel::keepBatch(const std::vector<UUID>& ids) {
  UUIDSet kept;
  changeTogether([&] {
    for (const UUID& id : ids) {
      const auto index = items_.indexOf(id);
      // It counts if nothing comes of what is being done.
      decisions_.keepAfterwards(id);
      expiry_.putOff(id);
      if (!index || isBeingDecided(id) || unavailableItemIDs->contains(id)) continue;
      if (items_[*index].state == ScreenshotItem::State::permanent) continue;
      keepItem(*index);
      kept.insert(id);
    }
  });
  if (kept.empty()) return;
  resolvePrompts(kept);
  saveNow();
}

}  // namespace quillmere
