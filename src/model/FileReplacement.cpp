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
      journal_(
          std::make_shared<ReplacementJournal>(dependencies.recordStore.fileURL.parent().appending("replacing.json"))) {
}

Task<std::optional<QString>> FileReplacement::replace(UUID id, QImage image, QRectF rect, FileStamp readFrom) {
  return run(lifetime_.weak(this), id, std::move(image), rect, std::move(readFrom));
}

/// Encoding and writing take long and come first; nobody else has the file while the other takes its place.
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
    const std::vector<UUID> only(1, id);
    const auto claiming = self->records_.claimFiles(only);
    hold = co_await claiming;
  }
  if (!self) {
    std::error_code ignored;  // the next start removes it
    if (temporary) std::filesystem::remove(temporary->path(), ignored);
    co_return description(OperationError::unreadable);
  }
  self->records_.unprotect(id);
  if (!temporary) co_return description(temporary.reason());
  const ExchangeJob job{id, original, *temporary, std::move(readFrom)};
  const auto exchanging = exchange(self, job);
  const auto reason = co_await exchanging;
  co_return reason;
}

Task<std::optional<QString>> FileReplacement::exchange(Weak<FileReplacement> self, ExchangeJob job) {
  const ScreenshotItem* item = self->items_.find(job.id);
  const bool isStillThere = item && item->url == job.original;
  const std::function<ExchangeReport()> work = [job, isStillThere, journal = self->journal_,
                                                services = FileServices::of(self->dependencies_)] {
    if (isStillThere) return exchangeFile(job, services, *journal);
    services.operations->remove(job.temporary);
    return ExchangeReport{.reason = description(OperationError::unreadable)};
  };
  auto working = self->dependencies_.executor->background(work);
  const ExchangeReport report = co_await working;
  // Otherwise the next start finds the note.
  if (!self) co_return report.reason;
  const bool isKnown = self->items_.find(job.id) != nullptr;
  if (isKnown && !report.reason) self->records_.fileWasReplaced(job.id);
  if (isKnown && report.putAt) self->records_.fileWasPutAt(job.id, *report.putAt);
  if (report.noted) forget(self, {*report.noted}).detach();
  co_return report.reason;
}

void FileReplacement::finishBegun(const std::optional<FileURL>& watchFolder) {
  std::vector<Replacement> left;
  std::vector<Replacement> over;
  for (const Replacement& one : journal_->load()) (finish(one) ? over : left).push_back(one);
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
  self->dependencies_.executor->runInBackground([journal = self->journal_, over] { journal->remove(over); }, [] {});
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
