#include "foundation/Localized.h"
#include "model/AppModel.h"

namespace quillmere {

std::optional<CopyFailure> AppModel::knownObstacle(const UUID& id) const {
  if (unavailableItemIDs->contains(id)) return CopyFailure::unavailable;
  return evictedItemIDs->contains(id) ? std::optional(CopyFailure::evicted) : std::nullopt;
}

void AppModel::showTransferFailure(ErrorScope scope, const UUID& id, const QString& title, const QString& message) {
  show(scopeNow(scope, id), title, message);
}

void AppModel::copyText(const QString& text) const {
  dependencies_.pasteboard->write(text);
  announce(localized("Text copied"), AnnouncementPriority::low);
}

Task<std::optional<PromptPreviewNotice>> AppModel::copyRecognizedText(ScreenshotItem item) {
  return runTextCopy(lifetime_.weak(this), std::move(item));
}

Task<std::optional<PromptPreviewNotice>> AppModel::runTextCopy(Weak<AppModel> self, ScreenshotItem item) {
  const auto recognizing = self->recognizedText(item.id);
  const auto text = co_await recognizing;
  if (!self || !text) co_return std::nullopt;
  if (text->isEmpty()) co_return self->tell(PromptPreviewNotice::noText);
  self->dependencies_.pasteboard->write(*text);
  co_return self->tell(PromptPreviewNotice::textCopied);
}

}  // namespace quillmere
