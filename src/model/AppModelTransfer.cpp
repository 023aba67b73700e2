#include "foundation/Localized.h"
#include "model/AppModel.h"

namespace quillmere {

using ImageOperations::Failure;

PromptPreviewTransfer AppModel::transfer(const ScreenshotItem& item, const std::optional<QString>& name) const {
  PromptPreviewTransfer transfer;
  transfer.url = item.url;
  if (const auto window = extractedWindow(item.id))
    transfer.crop = PromptPreviewTransfer::Crop{window->image, window->crop};
  transfer.filename = transferName(name, item.url, transfer.crop.has_value());
  return transfer;
}

// --- Copy ---

Task<> AppModel::copy(ScreenshotItem item, ErrorScope scope) {
  return runCopy(lifetime_.weak(this), std::move(item), scope);
}

Task<> AppModel::runCopy(Weak<AppModel> self, ScreenshotItem item, ErrorScope scope) {
  // Of several the last counts, whichever is read first.
  const int number = ++self->copyCount_;
  CopyFailure failure = CopyFailure::unreadable;
  if (self->unavailableItemIDs->contains(item.id)) {
    failure = CopyFailure::unavailable;
  } else if (self->evictedItemIDs->contains(item.id)) {
    failure = CopyFailure::evicted;
  } else {
    PromptPreviewTransfer transfer = self->transfer(item, std::nullopt);
    const auto reading = self->reading(transfer);
    auto copied = co_await self->dependencies_.executor->background(reading);
    if (!self) co_return;
    // A decision may have given the file its name meanwhile.
    const ScreenshotItem* present = self->items_.find(item.id);
    if (!copied && present && present->url != transfer.url) {
      transfer.url = present->url;
      const auto readingAgain = self->reading(transfer);
      copied = co_await self->dependencies_.executor->background(readingAgain);
      if (!self) co_return;
    }
    if (number != self->copyCount_) co_return;
    if (copied) {
      self->dependencies_.pasteboard->write(*copied);
      self->announce(transfer.crop ? localized("Window copied.") : localized("Screenshot copied."),
                     AnnouncementPriority::low);
      co_return;
    }
    failure = copied.reason();
  }
  self->show(self->scopeNow(scope, item.id), localized("Couldn’t Copy Screenshot"),
             copyMessage(failure, item.url.displayName()));
}

std::function<Result<ScreenshotPasteboardItem, AppModel::CopyFailure>()> AppModel::reading(
    const PromptPreviewTransfer& transfer) const {
  return [transfer, isDataless = dependencies_.isDataless]() -> Result<ScreenshotPasteboardItem, CopyFailure> {
    // Reading it would download it.
    if (!transfer.crop && isDataless(transfer.url)) return CopyFailure::evicted;
    const auto data = transfer.data();
    if (!data) return CopyFailure::unreadable;
    // The window is in no file yet.
    const auto url = transfer.crop ? std::nullopt : std::optional(transfer.url);
    return ScreenshotPasteboardItem{url, transfer.contentType(), *data};
  };
}

QString AppModel::copyMessage(CopyFailure failure, const QString& name) {
  switch (failure) {
    case CopyFailure::unavailable:
      return localized(
          "“%@” can’t be found, or Quillmere doesn’t have access to its folder. Nothing was copied. Choose the "
          "screenshot folder again in Settings, then try again.",
          {name});
    case CopyFailure::evicted:
      return localized(
          "“%@” isn’t on this Mac, so nothing was copied. Choose Download, or open it in Finder, then try again.",
          {name});
    case CopyFailure::unreadable:
      return localized(
          "“%@” couldn’t be read, so nothing was copied. Check that the file is still in its folder, then try again.",
          {name});
  }
  return {};
}

/// The popup shows nothing about a screenshot that it has gone on from.
ErrorScope AppModel::scopeNow(ErrorScope scope, const UUID& id) const {
  return scope == ErrorScope::popup && prompts_.front() != id ? ErrorScope::inbox : scope;
}

Task<std::optional<PromptPreviewNotice>> AppModel::copyRecognizedText(ScreenshotItem item) {
  return runTextCopy(lifetime_.weak(this), std::move(item));
}

Task<std::optional<PromptPreviewNotice>> AppModel::runTextCopy(Weak<AppModel> self, ScreenshotItem item) {
  const auto text = co_await self->recognizedText(item.id);
  if (!self || !text) co_return std::nullopt;
  if (text->isEmpty()) co_return self->tell(PromptPreviewNotice::noText);
  self->dependencies_.pasteboard->write(*text);
  co_return self->tell(PromptPreviewNotice::textCopied);
}

// --- Drag and share ---

Task<std::optional<PreparedTransfer>> AppModel::prepareTransfer(ScreenshotItem item, std::optional<QString> name) {
  return runTransfer(lifetime_.weak(this), std::move(item), std::move(name));
}

Task<std::optional<PreparedTransfer>> AppModel::runTransfer(Weak<AppModel> self, ScreenshotItem item,
                                                            std::optional<QString> name) {
  const PromptPreviewTransfer transfer = self->transfer(item, name);
  const TransferFiles files = self->dependencies_.transferFiles;
  const auto isDataless = self->dependencies_.isDataless;
  const std::function<Result<FileURL, Failure>()> work = [transfer, files, isDataless]() -> Result<FileURL, Failure> {
    if (!transfer.crop && isDataless(transfer.url)) return Failure(ImageOperations::OperationError::unreadable);
    return files.file(transfer);
  };
  const auto file = co_await self->dependencies_.executor->background(work);
  if (!self) co_return std::nullopt;
  if (!file) {
    self->show(self->scopeNow(ErrorScope::popup, item.id), localized("Couldn’t Share Screenshot"),
               description(file.reason()));
    co_return std::nullopt;
  }
  co_return PreparedTransfer{*file, transfer.contentType()};
}

}  // namespace quillmere
