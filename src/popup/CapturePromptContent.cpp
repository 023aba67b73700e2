#include "popup/CapturePromptContent.h"

#include <algorithm>
#include <cmath>

#include "foundation/Localized.h"

namespace quillmere {
namespace {

constexpr int kDefaultThumbnailHeight = 160;
constexpr int kMostThumbnailHeight = 230;

}  // namespace

std::optional<CapturePromptContent> CapturePromptContent::make(
    const AppModel& model, const std::function<std::optional<QSizeF>(const ScreenshotItem&)>& pixelSize) {
  const ScreenshotItem* head = model.promptedItem();
  if (!head) return std::nullopt;
  CapturePromptContent content;
  content.item = *head;
  content.queuedCount = static_cast<int>(model.prompts().queue->size()) - 1;
  content.showThumbnail = *model.settings().showPopupThumbnail;
  const auto& extraction = *model.windowExtraction().state;
  if (extraction && extraction->itemID == head->id) content.windowExtraction = extraction->phase;
  const auto part = content.shownPart();
  content.screenshotPixelSize = pixelSize(*head);
  content.previewPixelSize = part ? std::optional(part->size()) : content.screenshotPixelSize;
  // Of the whole screenshot: a card that changed its height with the window would move the button that was pressed.
  content.thumbnailHeight = heightOfThumbnail(content.screenshotPixelSize);
  content.error = *model.promptError;
  content.focusRequest = *model.prompts().focusRequest;
  content.contentGeneration = *model.prompts().contentGeneration;
  content.naming = *model.settings().screenshotNaming;
  content.deletesChosen = *model.settings().deletesChosenImmediately;
  content.isEvicted = model.evictedItemIDs->contains(head->id);
  content.canReadImage = !content.isEvicted && !model.unavailableItemIDs->contains(head->id);
  content.isAnalyzing = model.analyzingIDs->contains(head->id);
  content.isDecided = model.isLeavingPrompt(head->id);
  content.isDiskSlow = model.isDiskSlow();
  content.availability = model.analysisAvailability();
  return content;
}

std::optional<QRectF> CapturePromptContent::shownPart() const {
  return windowExtraction ? PromptWindowExtraction::shownPart(*windowExtraction) : std::nullopt;
}

bool CapturePromptContent::isSaving() const {
  return windowExtraction && std::holds_alternative<PromptWindowExtraction::Saving>(*windowExtraction);
}

int CapturePromptContent::heightOfThumbnail(const std::optional<QSizeF>& pixels) {
  if (!pixels || pixels->width() <= 0 || pixels->height() <= 0) return kDefaultThumbnailHeight;
  const double height = std::round(pixels->height() * kPreviewWidth / pixels->width());
  return static_cast<int>(std::clamp<double>(height, kLeastThumbnailHeight, kMostThumbnailHeight));
}

std::optional<QString> nameNote(const QString& nameText) {
  if (sanitizedFileStem(nameText)) return std::nullopt;
  if (nameText.trimmed().isEmpty()) {
    return localized("No name typed, so the screenshot keeps its current filename.");
  }
  return localized("That name can’t be used, so the screenshot keeps its current filename.");
}

QString nameCaption(const QString& nameText) {
  return nameNote(nameText).value_or(localized("Filename"));
}

}  // namespace quillmere
