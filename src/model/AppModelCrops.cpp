#include "foundation/FileStatus.h"
#include "foundation/Interruptible.h"
#include "foundation/Localized.h"
#include "foundation/OnCancel.h"
#include "model/AppModel.h"
#include "reading/ImageWriting.h"
#include "reading/PictureCrop.h"

namespace quillmere {
namespace {

using ImageOperations::Failure;
using ImageOperations::OperationError;

Result<FileURL, Failure> writeCropAsNew(PictureReading& pictures, const FileURL& folder, const QString& stem,
                                        const QImage& image, const QRectF& rect) {
  const auto cropped = ImageOperations::crop(image, rect);
  if (!cropped) return Failure(cropped.reason());
  const auto data = pictures.encoded(*cropped, PictureFormat::png);
  if (!data) return Failure(data.reason());
  return ImageOperations::writeNewFile(*data, folder.appending("crop"), stem);
}

}  // namespace

// --- A picture to take a part of ---

/// Looks for the windows in the record's file, once that is known which the window system tells of.
Task<Result<ImageOperations::WindowScan, OperationError>> AppModel::scanWindows(Weak<AppModel> self,
                                                                                ScreenshotItem item) {
  auto knowing = interruptible(self->windowKnowledge_.whenKnown(item.id));
  co_await knowing;
  const bool isUnwanted = co_await isCancelled;
  if (!self || isUnwanted) co_return OperationError::unreadable;
  const ScreenshotItem* present = self->items_.find(item.id);
  auto scanning = interruptible(self->dependencies_.scanWindows(item.url, knownWindows(present ? *present : item)));
  const auto scan = co_await scanning;
  co_return scan;
}

Task<Result<AppModel::OpenedPicture, OperationError>> AppModel::openPicture(ScreenshotItem item, bool detectsWindows) {
  return runOpening(lifetime_.weak(this), std::move(item), detectsWindows);
}

Task<Result<AppModel::OpenedPicture, OperationError>> AppModel::runOpening(Weak<AppModel> self, ScreenshotItem item,
                                                                           bool detectsWindows) {
  // Before it is read: what changes from here on makes it another file.
  auto stamping = self->dependencies_.executor->background(
      [url = item.url, identity = self->dependencies_.fileIdentity] { return fileStamp(url, identity); });
  const auto stamp = co_await stamping;
  const bool isUnwanted = co_await isCancelled;
  if (!self || isUnwanted) co_return OperationError::unreadable;
  if (detectsWindows) {
    auto scanning = interruptible(scanWindows(self, item));
    const auto scan = co_await scanning;
    if (!scan) co_return scan.reason();
    co_return OpenedPicture{scan->image, scan->windows, stamp};
  }
  const auto isStopped = std::make_shared<std::atomic<bool>>(false);
  OnCancel stopping([isStopped] { *isStopped = true; });
  co_await stopping;
  const std::function<Result<QImage, OperationError>()> work = [url = item.url, isStopped,
                                                                pictures = self->dependencies_.pictures,
                                                                isDataless = self->dependencies_.isDataless] {
    // Reading it would download it.
    if (isDataless(url)) return Result<QImage, OperationError>(OperationError::unreadable);
    auto picture = pictures->picture(url, *isStopped);
    if (!picture) return Result<QImage, OperationError>(ImageOperations::operationError(picture.reason()));
    return Result<QImage, OperationError>(*std::move(picture));
  };
  auto reading = self->dependencies_.executor->background(work);
  const auto image = co_await reading;
  if (!image) co_return image.reason();
  co_return OpenedPicture{*image, {}, stamp};
}

bool AppModel::isReplaceableAsFarAsKnown(const UUID& id, const FileURL& opened) const {
  const ScreenshotItem* item = items_.find(id);
  return item && item->url == opened && !unavailableItemIDs->contains(id) && !evictedItemIDs->contains(id);
}

Task<bool> AppModel::isReplaceable(UUID id, FileURL opened, FileStamp readFrom) {
  return runReplaceable(lifetime_.weak(this), id, std::move(opened), std::move(readFrom));
}

Task<bool> AppModel::runReplaceable(Weak<AppModel> self, UUID id, FileURL opened, FileStamp readFrom) {
  auto looking = self->dependencies_.executor->background(
      [opened, readFrom, identity = self->dependencies_.fileIdentity, isDataless = self->dependencies_.isDataless] {
        return fileStatus(opened) && fileStamp(opened, identity) == readFrom && !isDataless(opened);
      });
  const bool isThere = co_await looking;
  if (!isThere || !self) co_return false;
  co_return self->isReplaceableAsFarAsKnown(id, opened);
}

// --- Replace Original ---

Task<std::optional<QString>> AppModel::replaceOriginal(UUID id, QImage image, QRectF rect,
                                                       std::optional<FileStamp> readFrom) {
  const ScreenshotItem* item = items_.find(id);
  const FileStamp stamp = readFrom ? *readFrom : item ? stampOf(item->url) : FileStamp();
  return runReplacing(lifetime_.weak(this), id, std::move(image), rect, stamp);
}

Task<std::optional<QString>> AppModel::runReplacing(Weak<AppModel> self, UUID id, QImage image, QRectF rect,
                                                    FileStamp readFrom) {
  self->beginWritingCrop();
  const auto replacing = self->replacement_.replace(id, std::move(image), rect, std::move(readFrom));
  const auto reason = co_await replacing;
  if (self) self->endWritingCrop();
  co_return reason;
}

void AppModel::beginWritingCrop() {
  ++cropsBeingWritten_;
  noteWriting();
}

void AppModel::endWritingCrop() {
  --cropsBeingWritten_;
  noteWriting();
}

void AppModel::fileWasPutAt(const UUID& id, const FileURL& url) {
  updateLocation(*items_.indexOf(id), url, std::nullopt);
  saveNow();
}

void AppModel::fileWasReplaced(const UUID& id) {
  const size_t index = *items_.indexOf(id);
  const FileURL url = items_[index].url;
  const auto identity = dependencies_.fileIdentity(url);
  if (shownFile_ && shownFile_->first == id) shownFile_->second = fileStamp(url, dependencies_.fileIdentity);
  // Whatever is being read is the old picture.
  cancelAnalysis(id);
  updateItem(index, [&](ScreenshotItem& item) {
    item.fileIdentity = identity;
    item.fileBookmark.reset();
    item.suggestedName.reset();
    item.recognizedText.reset();
    item.imageDescription.reset();
    item.analysisFailure.reset();
    item.analysisRetryable.reset();
    item.captureKind.reset();
    item.knownWindows.reset();
  });
  // A look at the files that is under way saw the old one.
  reconciliations_.noteArrival(id);
  dependencies_.monitor->noteKnown(url);
  refreshBookmark(index, std::nullopt);
  refreshItemAccess(index, std::nullopt);
  saveNow();
  if (*settings_.analyzeScreenshots) startAnalysis(id);
}

// --- Save as New ---

Task<Result<UUID, QString>> AppModel::saveAsNew(ScreenshotItem source, QImage image, QRectF rect) {
  return runSaveAsNew(lifetime_.weak(this), std::move(source), std::move(image), rect);
}

Task<Result<UUID, QString>> AppModel::runSaveAsNew(Weak<AppModel> self, ScreenshotItem source, QImage image,
                                                   QRectF rect) {
  self->beginWritingCrop();
  const auto writing = runWriting(self, std::move(source), std::move(image), rect);
  const auto saved = co_await writing;
  if (self) self->endWritingCrop();
  co_return saved;
}

Task<Result<UUID, QString>> AppModel::runWriting(Weak<AppModel> self, ScreenshotItem source, QImage image,
                                                 QRectF rect) {
  const Task<> sweeping = self->replacement_.swept();
  if (sweeping) co_await sweeping;
  if (!self) co_return description(OperationError::noScreenshotFolder);
  // It may have another name by now.
  if (const ScreenshotItem* present = self->items_.find(source.id)) source.url = present->url;
  const auto folder = *self->watchFolderURL;
  if (!folder) co_return description(OperationError::noScreenshotFolder);
  const QString stem = localized("%@ Crop", {source.url.displayStem()});
  const std::function<Result<FileURL, Failure>()> work = [folder, stem, image, rect,
                                                          pictures = self->dependencies_.pictures] {
    return writeCropAsNew(*pictures, *folder, stem, image, rect);
  };
  auto writing = self->dependencies_.executor->background(work);
  const auto written = co_await writing;
  if (!written) co_return description(written.reason());
  if (!self) co_return description(OperationError::noScreenshotFolder);
  co_return self->addDerived(*written, source.id);
}

/// Whoever saved it has decided to keep it, also where the monitor was quicker: a disk that takes long to say that the
/// file is safe shows it before.
UUID AppModel::addDerived(const FileURL& url, const UUID& source) {
  dependencies_.monitor->noteKnown(url);
  const auto identity = dependencies_.fileIdentity(url);
  const auto known = recordIndex().atPath(pathKeyOf(url));
  if (known && !hasLeft(*known, identity)) {
    const size_t index = *items_.indexOf(*known);
    updateItem(index, [&](ScreenshotItem& item) { item.sourceItemID = source; });
    keepItem(index);
    resolvePrompts({*known});
    saveNow();
    return *known;
  }
  ScreenshotItem item;
  item.id = UUID::createUuid();
  item.url = url;
  item.createdAt = now();
  item.state = ScreenshotItem::State::permanent;
  item.sourceItemID = source;
  item.fileIdentity = identity;
  const UUID id = item.id;
  insertNewest(std::move(item));
  refreshBookmark(0, std::nullopt);
  refreshItemAccess(0, std::nullopt);
  saveNow();
  return id;
}

}  // namespace quillmere
