#include "model/FileReplacement.h"

#include <algorithm>
#include <filesystem>

#include "foundation/FileStatus.h"
#include "reading/ImageWriting.h"
#include "reading/PictureCrop.h"

namespace quillmere {
namespace {

using ImageOperations::Failure;
using ImageOperations::OperationError;

/// The crop beside the original, in the original's format.
Result<FileURL, Failure> writeCropBeside(PictureReading& pictures, const FileURL& original, const QImage& image,
                                         const QRectF& rect) {
  const auto cropped = ImageOperations::crop(image, rect);
  if (!cropped) return Failure(cropped.reason());
  const auto data = pictures.encoded(*cropped, ImageOperations::imageType(original));
  if (!data) return Failure(data.reason());
  return ImageOperations::writeReplacement(*data, original);
}

void sweepFolder(const FileURL& folder, const std::vector<Replacement>& awaited) {
  std::error_code error;
  for (std::filesystem::directory_iterator entry(folder.path(), error), end; !error && entry != end;
       entry.increment(error)) {
    const FileURL url = folder.appending(entry->path().filename().native());
    const bool isAwaited =
        std::any_of(awaited.begin(), awaited.end(), [&](const Replacement& one) { return one.temporary == url; });
    if (!url.lastPathComponent().starts_with(ImageOperations::kReplacementPrefix) || isAwaited) continue;
    std::error_code ignored;  // the others go all the same
    std::filesystem::remove(url.path(), ignored);
  }
}

}  // namespace

FileReplacement::FileReplacement(const AppModelDependencies& dependencies, const ScreenshotList& items,
                                 ReplacedRecords& records)
    : dependencies_(dependencies),
      items_(items),
      records_(records),
      journal_(dependencies.recordStore.fileURL.parent().appending("replacing.json")) {}

Task<std::optional<QString>> FileReplacement::replace(UUID id, QImage image, QRectF rect, FileStamp readFrom) {
  return run(lifetime_.weak(this), id, std::move(image), rect, std::move(readFrom));
}

/// Encoding and writing take long and come first, in the background; the two renames that matter follow in one go.
Task<std::optional<QString>> FileReplacement::run(Weak<FileReplacement> self, UUID id, QImage image, QRectF rect,
                                                  FileStamp readFrom) {
  const ScreenshotItem* item = self->items_.find(id);
  if (!item) co_return description(OperationError::unreadable);
  const FileURL original = item->url;
  self->records_.protect(id);
  const Task<> sweeping = self->sweep_;
  if (sweeping) co_await sweeping;
  if (!self) co_return description(OperationError::unreadable);
  const std::function<Result<FileURL, Failure>()> work = [original, image, rect,
                                                          pictures = self->dependencies_.pictures] {
    return writeCropBeside(*pictures, original, image, rect);
  };
  auto writing = self->dependencies_.executor->background(work);
  const auto temporary = co_await writing;
  FileWorker::Hold hold;
  if (self) {
    const auto claiming = self->records_.claimFile(id);
    hold = co_await claiming;
  }
  if (!self) {
    std::error_code ignored;  // the next start removes it
    if (temporary) std::filesystem::remove(temporary->path(), ignored);
    co_return description(OperationError::unreadable);
  }
  self->records_.unprotect(id);
  if (!temporary) co_return description(temporary.reason());
  const auto reason = self->putInPlace(id, original, *temporary, readFrom);
  if (reason) self->dependencies_.fileOperations->remove(*temporary);
  co_return reason;
}

/// Gives why it failed; the original is then where it was, unless it could not be taken back out of Trash.
std::optional<QString> FileReplacement::putInPlace(const UUID& id, const FileURL& original, const FileURL& temporary,
                                                   const FileStamp& readFrom) {
  const ScreenshotItem* item = items_.find(id);
  if (!item || item->url != original) return description(OperationError::unreadable);
  // What was written meanwhile is not to be thrown away for a part of what stood there before; nor is a placeholder,
  // with which the picture itself would go from the cloud.
  if (fileStamp(original, dependencies_.fileIdentity) != readFrom || dependencies_.isDataless(original)) {
    return description(OperationError::unreadable);
  }
  const auto status = fileStatus(temporary);
  if (!status) return description(OperationError::encoding);

  const Replacement note{id, original, temporary, status->inode};
  std::vector<Replacement> begun = journal_.load();
  begun.push_back(note);
  if (!journal_.save(begun)) return description(OperationError::encoding);

  FileOperations& files = *dependencies_.fileOperations;
  TrashReport trashed;
  std::optional<QString> reason;
  const FileOutcome outcome = files.trash(original, trashed);
  if (outcome == FileOutcome::missing) {
    reason = description(OperationError::unreadable);
  } else if (outcome != FileOutcome::done) {
    reason = trashed.reason;
  } else if (trashed.place && isAnother(*trashed.place, readFrom)) {
    takeBack(id, original, *trashed.place);
    reason = description(OperationError::unreadable);
  } else if (QString refusal; files.move(temporary, original, refusal) != FileOutcome::done) {
    if (trashed.place) takeBack(id, original, *trashed.place);
    reason = refusal;
  }
  if (!reason) records_.fileWasReplaced(id);
  // Otherwise the save of the list that tells of it has it flushed first.
  if (reason) files.flush();
  forget(lifetime_.weak(this), {note}).detach();
  return reason;
}

/// Another program may have put a file of its own there after the last look at it. Where a disk tells no file from
/// another, that look has to do.
bool FileReplacement::isAnother(const FileURL& placeInTrash, const FileStamp& readFrom) const {
  const FileStamp trashed = fileStamp(placeInTrash, dependencies_.fileIdentity);
  return trashed.identity && readFrom.identity && trashed != readFrom;
}

/// Under a numbered name where another file has taken its own in that moment; the record goes with it.
void FileReplacement::takeBack(const UUID& id, const FileURL& original, const FileURL& placeInTrash) {
  constexpr int kMostNumber = 999;
  const std::string extension = original.pathExtension();
  FileURL target = original;
  for (int number = 1; number <= kMostNumber; ++number) {
    const FileOutcome outcome = dependencies_.fileOperations->restore(placeInTrash, target);
    if (outcome == FileOutcome::done && target != original) records_.fileWasPutAt(id, target);
    if (outcome != FileOutcome::destinationExists) return;
    target = original.parent().appending(original.stem() + " (" + std::to_string(number) + ")" +
                                         (extension.empty() ? "" : "." + extension));
  }
}

void FileReplacement::finishBegun(const std::optional<FileURL>& watchFolder) {
  std::vector<Replacement> left;
  std::vector<Replacement> over;
  for (const Replacement& one : journal_.load()) (finish(one) ? over : left).push_back(one);
  dependencies_.fileOperations->flush();
  forget(lifetime_.weak(this), std::move(over)).detach();
  // Records have their files in other folders, too.
  std::set<FileURL> folders;
  if (watchFolder) folders.insert(*watchFolder);
  items_.forEach([&](const ScreenshotItem& item) { folders.insert(item.url.parent()); });
  sweep_ = sweep(*dependencies_.executor, std::move(folders), left);
}

/// Not before the list tells what has come of them: a start that finds a note tells it again.
Task<> FileReplacement::forget(Weak<FileReplacement> self, std::vector<Replacement> over) {
  const auto saving = self->records_.whenReplacedIsSaved();
  const bool isSaved = co_await saving;
  if (!isSaved || !self) co_return;
  std::vector<Replacement> left = self->journal_.load();
  std::erase_if(left, [&](const Replacement& one) { return std::find(over.begin(), over.end(), one) != over.end(); });
  self->journal_.save(left);
}

/// False where that cannot be done yet.
bool FileReplacement::finish(const Replacement& one) {
  if (!dependencies_.isFolderReachable(one.original.parent())) return false;
  FileOperations& files = *dependencies_.fileOperations;
  const bool wasTrashed = fileExists(one.temporary) && isAbsent(one.original);
  if (wasTrashed && files.move(one.temporary, one.original) != FileOutcome::done) return false;
  const auto status = fileStatus(one.original);
  if (status && status->inode == one.file) {
    const ScreenshotItem* item = items_.find(one.id);
    if (item && item->url == one.original) records_.fileWasReplaced(one.id);
  } else if (fileExists(one.temporary)) {
    // The original never left, or is back.
    files.remove(one.temporary);
  }
  return true;
}

/// Removes files that an earlier run had not even finished writing; their originals never left.
Task<> FileReplacement::sweep(Executor& executor, std::set<FileURL> folders, std::vector<Replacement> awaited) {
  const std::function<bool()> work = [folders, awaited] {
    for (const FileURL& folder : folders) sweepFolder(folder, awaited);
    return true;
  };
  auto sweeping = executor.background(work);
  co_await sweeping;
}

}  // namespace quillmere
