#include <algorithm>
#include <filesystem>

#include "foundation/FileStatus.h"
#include "foundation/Localized.h"
#include "imaging/ImageOperations.h"
#include "model/AppModel.h"

namespace quillmere {
namespace {

using ImageOperations::Failure;
using ImageOperations::ImageType;
using ImageOperations::OperationError;

/// The crop beside the original, in the original's format.
Result<FileURL, Failure> writeCropBeside(const FileURL& original, const QImage& image, const QRectF& rect) {
  const auto cropped = ImageOperations::crop(image, rect);
  if (!cropped) return Failure(cropped.reason());
  const auto data = ImageOperations::encode(*cropped, ImageOperations::imageType(original));
  if (!data) return Failure(data.reason());
  return ImageOperations::writeReplacement(*data, original);
}

Result<FileURL, Failure> writeCropAsNew(const FileURL& folder, const QString& stem, const QImage& image,
                                        const QRectF& rect) {
  const auto cropped = ImageOperations::crop(image, rect);
  if (!cropped) return Failure(cropped.reason());
  const auto data = ImageOperations::encode(*cropped, ImageType::png);
  if (!data) return Failure(data.reason());
  return ImageOperations::writeNewFile(*data, folder.appending("crop"), stem);
}

}  // namespace

// --- Replace Original ---

Task<std::optional<QString>> AppModel::replaceOriginal(UUID id, QImage image, QRectF rect,
                                                       std::optional<FileStamp> readFrom) {
  const ScreenshotItem* item = items_.find(id);
  const FileStamp stamp = readFrom ? *readFrom : item ? stampOf(item->url) : FileStamp();
  return runReplacement(lifetime_.weak(this), id, std::move(image), rect, stamp);
}

/// Encoding and writing take long and come first, in the background; the two renames that matter follow in one go.
Task<std::optional<QString>> AppModel::runReplacement(Weak<AppModel> self, UUID id, QImage image, QRectF rect,
                                                      FileStamp readFrom) {
  const ScreenshotItem* item = self->items_.find(id);
  if (!item) co_return description(OperationError::unreadable);
  const FileURL original = item->url;
  self->protect(id);
  if (self->sweepTask_) co_await self->sweepTask_;
  if (!self) co_return description(OperationError::unreadable);
  const std::function<Result<FileURL, Failure>()> work = [original, image, rect] {
    return writeCropBeside(original, image, rect);
  };
  const auto temporary = co_await self->dependencies_.executor->background(work);
  if (!self) {
    if (temporary) std::filesystem::remove(temporary->path());
    co_return description(OperationError::unreadable);
  }
  self->unprotect(id);
  if (!temporary) co_return description(temporary.reason());
  const auto reason = self->putInPlace(id, original, *temporary, readFrom);
  if (reason) self->dependencies_.fileOperations->remove(*temporary);
  co_return reason;
}

/// Gives why it failed; the original is then where it was, unless it could not be taken back out of Trash.
std::optional<QString> AppModel::putInPlace(const UUID& id, const FileURL& original, const FileURL& temporary,
                                            const FileStamp& readFrom) {
  const auto index = items_.indexOf(id);
  if (!index || items_[*index].url != original) return description(OperationError::unreadable);
  // What was written meanwhile is not to be thrown away for a part of what stood there before; nor is a placeholder,
  // with which the picture itself would go from the cloud.
  if (stampOf(original) != readFrom || dependencies_.isDataless(original)) {
    return description(OperationError::unreadable);
  }
  const auto status = fileStatus(temporary);
  if (!status) return description(OperationError::encoding);

  std::vector<Replacement> begun = replacementJournal_.load();
  begun.push_back({id, original, temporary, status->inode});
  if (!replacementJournal_.save(begun)) return description(OperationError::encoding);
  begun.pop_back();

  FileOperations& files = *dependencies_.fileOperations;
  TrashReport trashed;
  std::optional<QString> reason;
  const FileOutcome outcome = files.trash(original, trashed);
  if (outcome == FileOutcome::missing) {
    reason = description(OperationError::unreadable);
  } else if (outcome != FileOutcome::done) {
    reason = trashed.reason;
  } else if (QString refusal; files.move(temporary, original, refusal) != FileOutcome::done) {
    if (trashed.place) takeBackFromTrash(*index, *trashed.place);
    reason = refusal;
  }
  if (!reason) finishReplacement(*index);
  replacementJournal_.save(begun);
  return reason;
}

/// Under a numbered name where another file has taken its own in that moment; the record goes with it.
void AppModel::takeBackFromTrash(size_t index, const FileURL& place) {
  constexpr int kMostNumber = 999;
  const FileURL original = items_[index].url;
  const std::string extension = original.pathExtension();
  FileURL target = original;
  for (int number = 1; number <= kMostNumber; ++number) {
    const FileOutcome outcome = dependencies_.fileOperations->restore(place, target);
    if (outcome == FileOutcome::done && target != original) {
      dependencies_.monitor->noteKnown(target);
      updateLocation(index, target, std::nullopt);
      saveNow();
    }
    if (outcome != FileOutcome::destinationExists) return;
    target = original.parent().appending(original.stem() + " (" + std::to_string(number) + ")" +
                                         (extension.empty() ? "" : "." + extension));
  }
}

/// The record's file is another one now, of which nothing is known yet.
void AppModel::finishReplacement(size_t index) {
  const UUID id = items_[index].id;
  const FileURL url = items_[index].url;
  const auto identity = dependencies_.fileIdentity(url);
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

/// Brings replacements to their end that an earlier run had begun.
void AppModel::finishReplacements() {
  const std::vector<Replacement> begun = replacementJournal_.load();
  FileOperations& files = *dependencies_.fileOperations;
  std::vector<Replacement> left;
  for (const Replacement& one : begun) {
    if (!dependencies_.isFolderReachable(one.original.parent())) {
      left.push_back(one);
      continue;
    }
    const bool wasTrashed = fileExists(one.temporary) && isAbsent(one.original);
    if (wasTrashed && files.move(one.temporary, one.original) != FileOutcome::done) {
      left.push_back(one);
      continue;
    }
    const auto status = fileStatus(one.original);
    const auto index = items_.indexOf(one.id);
    if (status && status->inode == one.file) {
      if (index && items_[*index].url == one.original) finishReplacement(*index);
    } else if (fileExists(one.temporary)) {
      // The original never left, or is back.
      files.remove(one.temporary);
    }
  }
  replacementJournal_.save(left);
  sweepTask_ = sweepTemporaries(lifetime_.weak(this), left);
}

/// Removes files that an earlier run had not even finished writing; their originals never left.
Task<> AppModel::sweepTemporaries(Weak<AppModel> self, std::vector<Replacement> begun) {
  const auto folder = *self->watchFolderURL;
  if (!folder) co_return;
  const std::function<bool()> work = [folder, begun] {
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder->path(), error), end; !error && entry != end;
         entry.increment(error)) {
      const FileURL url = folder->appending(entry->path().filename().native());
      const bool isAwaited =
          std::any_of(begun.begin(), begun.end(), [&](const Replacement& one) { return one.temporary == url; });
      if (url.lastPathComponent().starts_with(ImageOperations::kReplacementPrefix) && !isAwaited) {
        std::filesystem::remove(url.path(), error);
      }
    }
    return true;
  };
  co_await self->dependencies_.executor->background(work);
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
  const auto written = co_await self->dependencies_.executor->background(work);
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
