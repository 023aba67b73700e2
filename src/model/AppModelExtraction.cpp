#include "foundation/Localized.h"
#include "model/AppModel.h"

namespace quillmere {

Task<std::optional<PromptPreviewNotice>> AppModel::setPromptWindowExtraction(ScreenshotItem item, bool enabled) {
  return runWindowExtraction(lifetime_.weak(this), std::move(item), enabled);
}

Task<std::optional<PromptPreviewNotice>> AppModel::runWindowExtraction(Weak<AppModel> self, ScreenshotItem item,
                                                                       bool enabled) {
  const UUID id = item.id;
  // A decision is already putting the window in the screenshot's place.
  if (self->extraction_.isSaving(id)) co_return std::nullopt;
  self->extraction_.clear();
  if (!enabled) {
    self->announce(localized("Showing the whole screenshot."), AnnouncementPriority::low);
    co_return std::nullopt;
  }
  if (item.captureKind == CaptureKind::window) co_return self->tell(PromptPreviewNotice::alreadyWindow);
  if (self->prompts_.front() != id) co_return std::nullopt;

  const auto seeking = self->extraction_.seek(id, item.url, scanWindows(self, item));
  const auto sought = co_await seeking;
  if (!self) co_return std::nullopt;
  if (!sought) {
    self->show(ErrorScope::popup, localized("Couldn’t Extract Window"), description(sought.reason()));
    co_return std::nullopt;
  }
  switch (*sought) {
    case WindowExtractionRun::Sought::overtaken:
      break;
    case WindowExtractionRun::Sought::nothing:
      co_return self->tell(PromptPreviewNotice::noWindow);
    case WindowExtractionRun::Sought::found:
      self->announce(localized("Showing the extracted window. Keep, Temporary, Copy, and Share use the window instead "
                               "of the whole screenshot."),
                     AnnouncementPriority::low);
  }
  co_return std::nullopt;
}

PromptPreviewNotice AppModel::tell(PromptPreviewNotice notice) const {
  announce(text(notice), AnnouncementPriority::low);
  return notice;
}

std::optional<PromptPreviewTransfer::Crop> AppModel::extractedWindow(const UUID& id) const {
  // A file that is not here can't be replaced, and its popup offers no way to turn this off.
  if (unavailableItemIDs->contains(id) || evictedItemIDs->contains(id)) return std::nullopt;
  return extraction_.window(id);
}

// --- In the screenshot's place ---

Task<std::optional<QString>> AppModel::saveExtractedWindow(UUID id) {
  return runWindowSaving(lifetime_.weak(this), id);
}

Task<std::optional<QString>> AppModel::runWindowSaving(Weak<AppModel> self, UUID id) {
  const auto window = self->extractedWindow(id);
  const ScreenshotItem* item = self->items_.find(id);
  if (!window || !item) co_return std::nullopt;
  self->extraction_.beginSaving(id);
  const auto replacing = self->replaceOriginal(id, window->image, window->rect, self->extraction_.readFrom());
  const auto reason = co_await replacing;
  if (!self || !self->extraction_.isSaving(id)) co_return reason;
  // To be tried again, as long as the preview shows it.
  if (reason && *self->settings_.showPopupThumbnail) {
    self->extraction_.returnFromSaving();
  } else {
    self->extraction_.clear();
  }
  co_return reason;
}

Task<bool> AppModel::commitPromptExtraction(UUID id) {
  return runPromptCommit(lifetime_.weak(this), id);
}

Task<bool> AppModel::runPromptCommit(Weak<AppModel> self, UUID id) {
  // The decision that came first counts.
  if (self->extraction_.isSaving(id)) co_return false;
  const auto saving = self->saveExtractedWindow(id);
  const auto reason = co_await saving;
  if (!reason) co_return true;
  if (!self) co_return false;
  const ScreenshotItem* item = self->items_.find(id);
  const bool isExtracted = self->extractedWindow(id).has_value();
  QString message = *reason + localized(
                                  " The screenshot hasn’t changed. Try again, or turn off Extract Window to decide "
                                  "on the whole screenshot.");
  if (item && isExtracted && self->stampOf(item->url) != self->extraction_.readFrom()) {
    self->extraction_.clear();
    message = localized(
        "Another app has changed the screenshot since its window was found. Turn on Extract Window again to "
        "find the window anew.");
  }
  self->show(self->scopeNow(ErrorScope::popup, id), localized("Couldn’t Save the Window"), message);
  co_return false;
}

}  // namespace quillmere
