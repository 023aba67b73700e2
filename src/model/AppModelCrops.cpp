#include "formats/ImageEncoding.h"
#include "formats/ImageOperations.h"
#include "formats/ImageWriting.h"
#include "foundation/Localized.h"
#include "model/AppModel.h"

namespace quillmere {
namespace {

using ImageOperations::Failure;
using ImageOperations::OperationError;

Result<FileURL, Failure> writeCropAsNew(const FileURL& folder, const QString& stem, const QImage& image,
                                        const QRectF& rect) {
  const auto cropped = ImageOperations::crop(image, rect);
  if (!cropped) return Failure(cropped.reason());
  const auto data = ImageOperations::encode(*cropped, PictureFormat::png);
  if (!data) return Failure(data.reason());
  return ImageOperations::writeNewFile(*data, folder.appending("crop"), stem);
}

}  // namespace

// --- Replace Original ---

Task<std::optional<QString>> AppModel::replaceOriginal(UUID id, QImage image, QRectF rect,
                                                       std::optional<FileStamp> readFrom) {
  const ScreenshotItem* item = items_.find(id);
  const FileStamp stamp = readFrom ? *readFrom : item ? stampOf(item->url) : FileStamp();
  return replacement_.replace(id, std::move(image), rect, stamp);
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

Task<Result<UUID, QString>> AppModel::saveAsNew(UUID id, QImage image, QRectF rect) {
  return runSaveAsNew(lifetime_.weak(this), id, std::move(image), rect);
}

Task<Result<UUID, QString>> AppModel::runSaveAsNew(Weak<AppModel> self, UUID id, QImage image, QRectF rect) {
  const ScreenshotItem* source = self->items_.find(id);
  if (!source) co_return description(OperationError::unreadable);
  const auto folder = *self->watchFolderURL;
  if (!folder) co_return description(OperationError::noScreenshotFolder);
  const QString stem = localized("%@ Crop", {source->url.displayStem()});
  const std::function<Result<FileURL, Failure>()> work = [folder, stem, image, rect] {
    return writeCropAsNew(*folder, stem, image, rect);
  };
  auto writing = self->dependencies_.executor->background(work);
  const auto written = co_await writing;
  if (!written) co_return description(written.reason());
  if (!self) co_return description(OperationError::noScreenshotFolder);
  co_return self->addDerived(*written, id);
}

/// Whoever saved it has decided to keep it.
UUID AppModel::addDerived(const FileURL& url, const UUID& source) {
  dependencies_.monitor->noteKnown(url);
  ScreenshotItem item;
  item.id = UUID::createUuid();
  item.url = url;
  item.createdAt = now();
  item.state = ScreenshotItem::State::permanent;
  item.sourceItemID = source;
  item.fileIdentity = dependencies_.fileIdentity(url);
  const UUID id = item.id;
  insertNewest(std::move(item));
  refreshBookmark(0, std::nullopt);
  refreshItemAccess(0, std::nullopt);
  saveNow();
  return id;
}

}  // namespace quillmere
