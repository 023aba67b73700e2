#include "foundation/Localized.h"
#include "model/AppModel.h"

namespace quillmere {

using ImageOperations::Failure;

PromptPreviewTransfer AppModel::transfer(const ScreenshotItem& item, const std::optional<QString>& name) const {
  PromptPreviewTransfer transfer;
  transfer.url = item.url;
  if (const auto window = extractedWindow(item.id)) transfer.crop = PromptPreviewTransfer::Crop{window->image, window->crop};
  transfer.filename = transferName(name, item.url, transfer.crop.has_value());
  return transfer;
}

// --- Copy ---

Task<> AppModel::copy(ScreenshotItem item, ErrorScope scope) {
  return runCopy(lifetime_.weak(this), std::move(item), scope);
}

Task<> AppModel::runCopy(Weak<AppModel> self, ScreenshotItem item, ErrorScope scope) {
  const QString name = item.url.displayName();
  const QString title = localized("Couldn’t Copy Screenshot");
  if (self->unavailableItemIDs->contains(item.id)) {
    self->show(
        scope, title,
        localized("“%@” can’t be found, or Quillmere doesn’t have access to its folder. Nothing was copied. Choose "
                  "the screenshot folder again in Settings, then try again.",
                  {name}));
    co_return;
  }
  if (self->evictedItemIDs->contains(item.id)) {
    self->show(
        scope, title,
        localized("“%@” isn’t on this Mac, so nothing was copied. Choose Download, or open it in Finder, then try "
                  "again.",
                  {name}));
    co_return;
  }
  const PromptPreviewTransfer transfer = self->transfer(item, std::nullopt);
  const std::function<Result<QByteArray, Failure>()> work = [transfer] { return transfer.data(); };
  const auto data = co_await self->dependencies_.executor->background(work);
  if (!self) co_return;
  if (!data) {
    self->show(
        scope, title,
        localized("“%@” couldn’t be read, so nothing was copied. Check that the file is still in its folder, then "
                  "try again.",
                  {name}));
    co_return;
  }
  ScreenshotPasteboardItem copied{item.url, transfer.contentType(), *data};
  // The window is in no file yet.
  if (transfer.crop) copied.url.reset();
  self->dependencies_.pasteboard->write(copied);
  self->announce(transfer.crop ? localized("Window copied.") : localized("Screenshot copied."),
                 AnnouncementPriority::low);
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
  const std::function<Result<FileURL, Failure>()> work = [transfer, files] { return files.file(transfer); };
  const auto file = co_await self->dependencies_.executor->background(work);
  if (!self) co_return std::nullopt;
  if (!file) {
    self->show(ErrorScope::popup, localized("Couldn’t Share Screenshot"), description(file.reason()));
    co_return std::nullopt;
  }
  co_return PreparedTransfer{*file, transfer.contentType()};
}

}  // namespace quillmere
