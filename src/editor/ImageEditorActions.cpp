#include "editor/ImageEditor.h"
#include "foundation/Localized.h"

namespace quillmere {

void ImageEditor::begin() {
  // A drag that is under way ends where it is: what is saved is what is shown.
  history_.end();
  situation_.isWorking = true;
  error_.reset();
  message_.reset();
  tell();
}

void ImageEditor::finish(std::optional<UUID> saved) {
  close();
  if (onDone) onDone(saved);
}

/// Whether an action whose editor is still open came to its end. Where the person acted it says why not: here, or in
/// the Inbox once this is closed.
bool ImageEditor::hasSucceeded(const Weak<ImageEditor>& self, AppModel& model, const QString& title,
                               const std::optional<QString>& failure) {
  if (!self || !self->isOpen_) {
    if (failure) model.show(ErrorScope::inbox, title, *failure);
    return false;
  }
  self->situation_.isWorking = false;
  if (!failure) return true;
  self->error_ = failure;
  model.announce(*failure, AnnouncementPriority::high);
  self->tell();
  return false;
}

// --- Save as New ---

void ImageEditor::saveAsNew() {
  if (!canSave()) return;
  begin();
  runSaving(lifetime_.weak(this), model_.weak()).detach();
}

Task<> ImageEditor::runSaving(Weak<ImageEditor> self, Weak<AppModel> model) {
  const auto saving = model->saveAsNew(self->item_, self->image_, self->selection().selection());
  const auto saved = co_await saving;
  if (!model) co_return;
  const auto failure = saved ? std::nullopt : std::optional(CropNotes::saveFailure(saved.reason()));
  if (hasSucceeded(self, *model.get(), localized("Couldn’t Save Cropped Image"), failure)) self->finish(*saved);
}

// --- Replace Original ---

void ImageEditor::askToReplace() {
  if (!canReplace() || isConfirmingReplace_) return;
  begin();
  runAsking(lifetime_.weak(this)).detach();
}

Task<> ImageEditor::runAsking(Weak<ImageEditor> self) {
  const auto looking = self->watch_->look();
  const bool isReplaceable = co_await looking;
  if (!self || !self->isOpen_) co_return;
  self->situation_.isWorking = false;
  self->isConfirmingReplace_ = isReplaceable && self->canReplace();
  self->tell();
}

void ImageEditor::answerReplace(bool isConfirmed) {
  if (!isConfirmingReplace_) return;
  isConfirmingReplace_ = false;
  if (!isConfirmed || !canReplace()) {
    tell();
    return;
  }
  begin();
  runReplacing(lifetime_.weak(this), model_.weak()).detach();
}

Task<> ImageEditor::runReplacing(Weak<ImageEditor> self, Weak<AppModel> model) {
  const auto replacing =
      model->replaceOriginal(self->item_.id, self->image_, self->selection().selection(), self->readFrom_);
  const auto reason = co_await replacing;
  if (!model) co_return;
  const auto failure = reason ? std::optional(CropNotes::replaceFailure(*reason)) : std::nullopt;
  if (!failure) model->announce(localized("Original replaced and moved to Trash."), AnnouncementPriority::low);
  if (hasSucceeded(self, *model.get(), localized("Couldn’t Replace Original"), failure)) self->finish(std::nullopt);
}

// --- Copy ---

void ImageEditor::copy() {
  if (!canSave()) return;
  begin();
  runCopying(lifetime_.weak(this), model_.weak()).detach();
}

Task<> ImageEditor::runCopying(Weak<ImageEditor> self, Weak<AppModel> model) {
  const auto copying = model->copyCrop(self->image_, self->selection().selection());
  const bool isCopied = co_await copying;
  if (!model) co_return;
  const auto failure = isCopied ? std::nullopt : std::optional(localized("The cropped image couldn’t be copied."));
  // The model has announced it.
  const bool isShown = hasSucceeded(self, *model.get(), localized("Couldn’t Copy Screenshot"), failure);
  if (isShown) self->showMessage(localized("Cropped image copied."));
}

// --- Keep ---

/// As it is: an extracted window that the popup would put in its place stays out of it.
void ImageEditor::keep() {
  if (!canKeep()) return;
  model_.keepBatch({item_.id});
  const bool isDecided = !situation_.offersKeep;
  if (isDecided) finish(std::nullopt);
}

}  // namespace quillmere
