#include "model/AppModel.h"

namespace quillmere {

void AppModel::beginCountdown(const UUID& id) {
  if (!*popupAutoSaveEnabled || queueHead() != id) return;
  popupAutoSaveScheduler_.begin(id, *popupAutoSaveSeconds);
}

bool AppModel::isPopupPaused(const UUID& id) const {
  if (protectedItems_.contains(id)) return true;
  if (promptNameEdit_ && promptNameEdit_->id == id && (promptNameEdit_->isEdited || promptNameEdit_->isFocused)) {
    return true;
  }
  if (queueHead() != id) return false;
  return dependencies_.promptPresenter->isPointerEngaged() || promptError->has_value();
}

/// An unanswered popup always keeps: it never chooses Temporary and never moves anything to Trash.
void AppModel::popupTimedOut(const UUID& id) {
  const auto index = items_.indexOf(id);
  if (!*popupAutoSaveEnabled || !index || items_[*index].state != ScreenshotItem::State::pending) return;

  const FileURL before = items_[*index].url;
  NumberedSearchResult moved{NumberedSearchResult::Outcome::alreadyNamed, before};
  if (const auto name = timeoutName(items_[*index])) moved = moveToStem(before, *name);
  const bool hasMoved = moved.outcome == NumberedSearchResult::Outcome::moved;
  const bool hasFailed = !hasMoved && moved.outcome != NumberedSearchResult::Outcome::alreadyNamed;

  const auto oldBookmark = items_[*index].fileBookmark;
  updateItem(*index, [&](ScreenshotItem& item) {
    if (hasMoved) item.url = moved.url;
    item.state = ScreenshotItem::State::permanent;
    item.expiresAt.reset();
  });
  if (hasMoved) {
    dependencies_.monitor->noteUnknown(before);
    dependencies_.monitor->noteKnown(moved.url);
    refreshBookmark(*index, oldBookmark);
    refreshItemAccess(*index, std::nullopt);
  }
  if (hasFailed) backgroundIssue.set(BackgroundIssue{BackgroundIssue::Kind::automaticRenameFailed});
  expirationScheduler_.cancel(id);
  resolvePrompts({id});
  saveNow();
}

/// A typed name, else the suggested one where the settings ask for it; none keeps the file's own.
std::optional<QString> AppModel::timeoutName(const ScreenshotItem& item) const {
  std::optional<QString> name;
  if (promptNameEdit_ && promptNameEdit_->id == item.id && promptNameEdit_->isEdited) {
    name = sanitizedFileStem(promptNameEdit_->text);
  }
  if (!name && *screenshotNaming == ScreenshotNaming::suggested && item.imageDescription && item.suggestedName) {
    name = sanitizedFileStem(QString::fromUtf8(*item.suggestedName));
  }
  return name;
}

}  // namespace quillmere
