#include "model/PictureTransfers.h"

#include "foundation/Localized.h"

namespace quillmere {
namespace {

using ImageOperations::Failure;

QString message(CopyFailure failure, const QString& name) {
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

/// Whether another file stands in the place of the one that is meant: it must not be sent in its stead.
bool isAnother(const PromptPreviewTransfer& transfer,
               const std::function<std::optional<FileIdentity>(const FileURL&)>& identity) {
  if (transfer.crop || !transfer.identity || !transfer.identity->isComplete()) return false;
  const auto present = identity(transfer.url);
  return present && present->isComplete() && !present->isSameInode(*transfer.identity);
}

}  // namespace

PromptPreviewTransfer PictureTransfers::transfer(const ScreenshotItem& item, const std::optional<QString>& name) const {
  PromptPreviewTransfer transfer;
  transfer.url = item.url;
  transfer.crop = source_.extractedWindow(item.id);
  transfer.identity = item.fileIdentity;
  transfer.filename = transferName(name, item.url, transfer.crop.has_value());
  return transfer;
}

// --- Copies that are left ---

void PictureTransfers::forget(const UUIDSet& records) {
  for (const UUID& id : records) {
    if (prepared_.erase(id) > 0) removeCopies(id);
  }
}

void PictureTransfers::removeCopies(const UUID& id) {
  dependencies_.executor->runInBackground([files = dependencies_.transferFiles, id] { files.remove(id); }, [] {});
}

void PictureTransfers::removeLeftCopies() {
  dependencies_.executor->runInBackground([files = dependencies_.transferFiles] { files.removeAll(); }, [] {});
}

// --- Copy ---

Task<bool> PictureTransfers::copy(ScreenshotItem item, ErrorScope scope) {
  return runCopy(lifetime_.weak(this), std::move(item), scope);
}

Task<bool> PictureTransfers::runCopy(Weak<PictureTransfers> self, ScreenshotItem item, ErrorScope scope) {
  const int number = ++self->copies_;
  CopyFailure failure = CopyFailure::unreadable;
  if (const auto obstacle = self->source_.knownObstacle(item.id)) {
    failure = *obstacle;
  } else {
    PromptPreviewTransfer transfer = self->transfer(item, std::nullopt);
    const auto reading = self->reading(transfer);
    auto copying = self->dependencies_.executor->background(reading);
    auto copied = co_await copying;
    if (!self) co_return false;
    // A decision may have given the file its name meanwhile.
    const ScreenshotItem* present = self->items_.find(item.id);
    if (!copied && present && present->url != transfer.url) {
      transfer.url = present->url;
      const auto readingAgain = self->reading(transfer);
      auto copyingAgain = self->dependencies_.executor->background(readingAgain);
      copied = co_await copyingAgain;
      if (!self) co_return false;
    }
    if (number != self->copies_) co_return false;
    if (copied) {
      self->dependencies_.pasteboard->write(*copied);
      self->dependencies_.announcer->announce(
          transfer.crop ? localized("Window copied.") : localized("Screenshot copied."), AnnouncementPriority::low);
      co_return true;
    }
    failure = copied.reason();
  }
  self->source_.showTransferFailure(scope, item.id, localized("Couldn’t Copy Screenshot"),
                                    message(failure, item.url.displayName()));
  co_return false;
}

Task<bool> PictureTransfers::copyCrop(QImage image, QRectF rect) {
  return runCropCopy(lifetime_.weak(this), std::move(image), rect);
}

Task<bool> PictureTransfers::runCropCopy(Weak<PictureTransfers> self, QImage image, QRectF rect) {
  const int number = ++self->copies_;
  PromptPreviewTransfer transfer;
  transfer.crop = PromptPreviewTransfer::Crop{std::move(image), rect};
  auto encoding = self->dependencies_.executor->background(
      [transfer, pictures = self->dependencies_.pictures] { return transfer.data(*pictures); });
  const auto data = co_await encoding;
  if (!self) co_return false;
  if (number != self->copies_) co_return true;
  if (!data) co_return false;
  self->dependencies_.pasteboard->write(ScreenshotPasteboardItem{std::nullopt, transfer.contentType(), *data});
  self->dependencies_.announcer->announce(localized("Cropped image copied."), AnnouncementPriority::low);
  co_return true;
}

std::function<Result<ScreenshotPasteboardItem, CopyFailure>()> PictureTransfers::reading(
    const PromptPreviewTransfer& transfer) const {
  return [transfer, pictures = dependencies_.pictures, isDataless = dependencies_.isDataless,
          identity = dependencies_.fileIdentity]() -> Result<ScreenshotPasteboardItem, CopyFailure> {
    // Reading it would download it.
    if (!transfer.crop && isDataless(transfer.url)) return CopyFailure::evicted;
    if (isAnother(transfer, identity)) return CopyFailure::unreadable;
    const auto data = transfer.data(*pictures);
    // Once more: it may have been put there in between.
    if (!data || isAnother(transfer, identity)) return CopyFailure::unreadable;
    // The window is in no file yet.
    const auto url = transfer.crop ? std::nullopt : std::optional(transfer.url);
    return ScreenshotPasteboardItem{url, transfer.contentType(), *data};
  };
}

// --- Drag and share ---

Task<std::optional<PreparedTransfer>> PictureTransfers::prepare(ScreenshotItem item, std::optional<QString> name) {
  return runPreparation(lifetime_.weak(this), std::move(item), std::move(name));
}

Task<std::optional<PreparedTransfer>> PictureTransfers::runPreparation(Weak<PictureTransfers> self, ScreenshotItem item,
                                                                       std::optional<QString> name) {
  const PromptPreviewTransfer transfer = self->transfer(item, name);
  self->prepared_.insert(item.id);
  const std::function<Result<FileURL, Failure>()> work =
      [transfer, id = item.id, files = self->dependencies_.transferFiles, pictures = self->dependencies_.pictures,
       isDataless = self->dependencies_.isDataless,
       identity = self->dependencies_.fileIdentity]() -> Result<FileURL, Failure> {
    const Failure unreadable(ImageOperations::OperationError::unreadable);
    if (!transfer.crop && isDataless(transfer.url)) return unreadable;
    if (isAnother(transfer, identity)) return unreadable;
    auto file = files.file(id, transfer, *pictures);
    return isAnother(transfer, identity) ? Result<FileURL, Failure>(unreadable) : file;
  };
  auto preparing = self->dependencies_.executor->background(work);
  const auto file = co_await preparing;
  if (!self) co_return std::nullopt;
  if (!self->items_.find(item.id)) {
    self->removeCopies(item.id);
    co_return std::nullopt;
  }
  if (!file) {
    self->source_.showTransferFailure(ErrorScope::popup, item.id, localized("Couldn’t Share Screenshot"),
                                      description(file.reason()));
    co_return std::nullopt;
  }
  co_return PreparedTransfer{*file, transfer.contentType()};
}

}  // namespace quillmere
