#include "foundation/Localized.h"
#include "model/AppModel.h"

namespace quillmere {

using Extraction = PromptWindowExtraction;

Task<std::optional<PromptPreviewNotice>> AppModel::setPromptWindowExtraction(ScreenshotItem item, bool enabled) {
  return runWindowExtraction(lifetime_.weak(this), std::move(item), enabled);
}

Task<std::optional<PromptPreviewNotice>> AppModel::runWindowExtraction(Weak<AppModel> self, ScreenshotItem item,
                                                                       bool enabled) {
  const UUID id = item.id;
  // A decision is already putting the window in the screenshot's place.
  if (self->isSavingWindow(id)) co_return std::nullopt;
  self->clearPromptWindowExtraction();
  if (!enabled) {
    self->announce(localized("Showing the whole screenshot."), AnnouncementPriority::low);
    co_return std::nullopt;
  }
  if (item.captureKind == CaptureKind::window) co_return self->tell(PromptPreviewNotice::alreadyWindow);
  if (self->prompts_.front() != id) co_return std::nullopt;

  self->promptWindowExtraction.set(Extraction{id, Extraction::Detecting{}});
  const FileStamp file = self->stampOf(item.url);
  const auto scan = self->dependencies_.scanWindows(item.url);
  self->promptWindowScan_ = scan;
  const auto result = co_await scan;
  // The scan's own identity tells whether it is the one that is waited for.
  if (!self || self->promptWindowScan_ != scan || self->prompts_.front() != id) co_return std::nullopt;
  if (!result) {
    self->clearPromptWindowExtraction();
    self->show(ErrorScope::popup, localized("Couldn’t Extract Window"), description(result.reason()));
    co_return std::nullopt;
  }
  const auto window = ImageOperations::primaryWindow(result->windows);
  if (!window) {
    self->clearPromptWindowExtraction();
    co_return self->tell(PromptPreviewNotice::noWindow);
  }
  self->promptExtractionImage_ = result->image;
  self->promptExtractionFile_ = file;
  self->promptWindowExtraction.set(Extraction{id, Extraction::Extracted{window->frame}});
  self->announce(
      localized("Showing the extracted window. Keep, Temporary, Copy, and Share use the window instead of the "
                "whole screenshot."),
      AnnouncementPriority::low);
  co_return std::nullopt;
}

void AppModel::clearPromptWindowExtraction() {
  std::exchange(promptWindowScan_, {}).cancel();
  promptExtractionImage_ = {};
  promptExtractionFile_ = {};
  promptWindowExtraction.set(std::nullopt);
}

PromptPreviewNotice AppModel::tell(PromptPreviewNotice notice) const {
  announce(text(notice), AnnouncementPriority::low);
  return notice;
}

std::optional<PromptPreviewTransfer::Crop> AppModel::extractedWindow(const UUID& id) const {
  const auto& extraction = *promptWindowExtraction;
  if (!extraction || extraction->itemID != id || promptExtractionImage_.isNull()) return std::nullopt;
  // A file that is not here can't be replaced, and its popup offers no way to turn this off.
  if (unavailableItemIDs->contains(id) || evictedItemIDs->contains(id)) return std::nullopt;
  const auto part = Extraction::shownPart(extraction->phase);
  return part ? std::optional(PromptPreviewTransfer::Crop{promptExtractionImage_, *part}) : std::nullopt;
}

bool AppModel::isSeekingWindow(const UUID& id) const {
  const auto& extraction = *promptWindowExtraction;
  return extraction && extraction->itemID == id && std::holds_alternative<Extraction::Detecting>(extraction->phase);
}

bool AppModel::isSavingWindow(const UUID& id) const {
  const auto& extraction = *promptWindowExtraction;
  return extraction && extraction->itemID == id && std::holds_alternative<Extraction::Saving>(extraction->phase);
}

// --- In the screenshot's place ---

Task<std::optional<QString>> AppModel::saveExtractedWindow(UUID id) {
  return runWindowSaving(lifetime_.weak(this), id);
}

Task<std::optional<QString>> AppModel::runWindowSaving(Weak<AppModel> self, UUID id) {
  const auto window = self->extractedWindow(id);
  const ScreenshotItem* item = self->items_.find(id);
  if (!window || !item) co_return std::nullopt;
  self->promptWindowExtraction.set(Extraction{id, Extraction::Saving{window->rect}});
  const auto replacing = self->replaceOriginal(id, window->image, window->rect, self->promptExtractionFile_);
  const auto reason = co_await replacing;
  if (!self || !self->isSavingWindow(id)) co_return reason;
  // To be tried again, as long as the preview shows it.
  if (reason && *self->settings_.showPopupThumbnail) {
    self->promptWindowExtraction.set(Extraction{id, Extraction::Extracted{window->rect}});
  } else {
    self->clearPromptWindowExtraction();
  }
  co_return reason;
}

Task<bool> AppModel::commitPromptExtraction(UUID id) {
  return runPromptCommit(lifetime_.weak(this), id);
}

Task<bool> AppModel::runPromptCommit(Weak<AppModel> self, UUID id) {
  // The decision that came first counts.
  if (self->isSavingWindow(id)) co_return false;
  const auto saving = self->saveExtractedWindow(id);
  const auto reason = co_await saving;
  if (!reason) co_return true;
  if (!self) co_return false;
  const ScreenshotItem* item = self->items_.find(id);
  const bool isExtracted = self->extractedWindow(id).has_value();
  QString message = *reason + localized(
                                  " The screenshot hasn’t changed. Try again, or turn off Extract Window to decide "
                                  "on the whole screenshot.");
  if (item && isExtracted && self->stampOf(item->url) != self->promptExtractionFile_) {
    self->clearPromptWindowExtraction();
    message = localized(
        "Another app has changed the screenshot since its window was found. Turn on Extract Window again to "
        "find the window anew.");
  }
  self->show(self->scopeNow(ErrorScope::popup, id), localized("Couldn’t Save the Window"), message);
  co_return false;
}

}  // namespace quillmere
