#include "model/AppModel.h"

namespace quillmere {

void AppModel::beginCountdown(const UUID& id) {
  if (!*settings_.popupAutoSaveEnabled || prompts_.front() != id) return;
  popupAutoSaveScheduler_.begin(id, *settings_.popupAutoSaveSeconds);
}

/// The visible popup's time starts over in full.
void AppModel::restartCountdown() {
  popupAutoSaveScheduler_.reset();
  if (const auto head = prompts_.front()) beginCountdown(*head);
}

bool AppModel::isPopupPaused(const UUID& id) const {
  if (decisions_.isProtected(id) || fileWorker_.isBusy(id)) return true;
  if (promptNameEdit_ && promptNameEdit_->id == id && (promptNameEdit_->isEdited || promptNameEdit_->isFocused)) {
    return true;
  }
  if (extraction_.isSeeking(id) || isBeingDecided(id)) return true;
  if (prompts_.front() != id) return false;
  return dependencies_.promptPresenter->isPointerEngaged() || promptError->has_value();
}

void AppModel::popupTimedOut(const UUID& id) {
  keepAfterTimeout(lifetime_.weak(this), id).detach();
}

/// An unanswered popup always keeps: it never chooses Temporary and never moves anything to Trash but the whole
/// screenshot that an extracted window takes the place of.
Task<> AppModel::keepAfterTimeout(Weak<AppModel> self, UUID id) {
  if (!*self->settings_.popupAutoSaveEnabled || !self->isUndecided(id)) co_return;
  if (self->extraction_.isSeeking(id)) self->extraction_.clear();
  // Before the window is saved, which makes the suggestion one for another picture.
  const auto name = self->timeoutName(*self->items_.find(id));
  const auto saving = self->saveExtractedWindow(id);
  const auto extractionFailure = co_await saving;
  if (!self || !self->isUndecided(id)) co_return;
  const auto& extraction = *self->extraction_.state;
  if (extractionFailure && extraction && extraction->itemID == id) self->extraction_.clear();

  using Kind = BackgroundIssue::Kind;
  const DecisionsUnderWay::Guard guard(self->decisions_, id);
  RenameOutcome renamed = RenameOutcome::unchanged;
  if (name) {
    const auto renaming = renameItem(self, id, *name);
    const Renamed outcome = co_await renaming;
    if (!self) co_return;
    renamed = outcome.outcome;
  }
  const auto found = self->items_.indexOf(id);
  if (!found) co_return;
  const size_t index = *found;
  const bool hasFailed = renamed == RenameOutcome::failed || renamed == RenameOutcome::unavailable;
  self->updateItem(index, [](ScreenshotItem& item) {
    item.state = ScreenshotItem::State::permanent;
    item.expiresAt.reset();
  });
  if (extractionFailure) {
    self->backgroundIssue.set(BackgroundIssue{Kind::automaticExtractionFailed});
  } else if (hasFailed) {
    self->backgroundIssue.set(BackgroundIssue{Kind::automaticRenameFailed});
  }
  self->expiry_.forget({id});
  leavePrompt(self, id).detach();
}

/// A typed name, else the suggested one where the settings ask for it; none keeps the file's own.
std::optional<QString> AppModel::timeoutName(const ScreenshotItem& item) const {
  std::optional<QString> name;
  if (promptNameEdit_ && promptNameEdit_->id == item.id && promptNameEdit_->isEdited) {
    name = sanitizedFileStem(promptNameEdit_->text);
  }
  if (!name && *settings_.screenshotNaming == ScreenshotNaming::suggested && item.imageDescription &&
      item.suggestedName) {
    name = sanitizedFileStem(QString::fromUtf8(*item.suggestedName));
  }
  return name;
}

}  // namespace quillmere
