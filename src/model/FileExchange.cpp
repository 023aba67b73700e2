#include "model/FileExchange.h"

#include <string>

#include "foundation/FileStatus.h"
#include "reading/OperationError.h"

namespace quillmere {
namespace {

using ImageOperations::OperationError;

/// Another program may have put a file of its own there after the last look at it. Where a disk tells no file from
/// another, that look has to do.
bool isAnother(const FileStamp& trashed, const FileStamp& readFrom) {
  return trashed.identity && readFrom.identity && trashed != readFrom;
}

/// Under a numbered name where another file has taken its own in that moment; gives that place.
std::optional<FileURL> takeBack(FileOperations& files, const FileURL& original, const FileURL& placeInTrash) {
  constexpr int kMostNumber = 999;
  const std::string extension = original.pathExtension();
  FileURL target = original;
  for (int number = 1; number <= kMostNumber; ++number) {
    const FileOutcome outcome = files.restore(placeInTrash, target);
    if (outcome == FileOutcome::done && target != original) return target;
    if (outcome != FileOutcome::destinationExists) break;
    target = original.parent().appending(original.stem() + " (" + std::to_string(number) + ")" +
                                         (extension.empty() ? "" : "." + extension));
  }
  return std::nullopt;
}

/// The two renames that matter, in one go.
ExchangeReport exchangeNoted(const ExchangeJob& job, const FileServices& services) {
  FileOperations& files = *services.operations;
  TrashReport trashed;
  const FileOutcome outcome = files.trash(job.original, trashed);
  if (outcome == FileOutcome::missing) return {.reason = description(OperationError::unreadable)};
  if (outcome != FileOutcome::done) return {.reason = trashed.reason};
  const auto& place = trashed.place;
  if (place && isAnother(fileStamp(*place, services.identity), job.readFrom)) {
    return {.reason = description(OperationError::unreadable), .putAt = takeBack(files, job.original, *place)};
  }
  QString refusal;
  if (files.move(job.temporary, job.original, refusal) == FileOutcome::done) return {};
  return {.reason = refusal, .putAt = place ? takeBack(files, job.original, *place) : std::nullopt};
}

}  // namespace

ExchangeReport exchangeFile(const ExchangeJob& job, const FileServices& services, ReplacementJournal& journal) {
  // What was written meanwhile is not to be thrown away for a part of what stood there before; nor is a placeholder,
  // with which the picture itself would go from the cloud.
  if (fileStamp(job.original, services.identity) != job.readFrom || services.isDataless(job.original)) {
    services.operations->remove(job.temporary);
    return {.reason = description(OperationError::unreadable)};
  }
  const auto status = fileStatus(job.temporary);
  const Replacement note{job.id, job.original, job.temporary, status ? status->inode : 0};
  if (!status || !journal.add(note)) {
    services.operations->remove(job.temporary);
    return {.reason = description(OperationError::encoding)};
  }
  ExchangeReport report = exchangeNoted(job, services);
  report.noted = note;
  // Otherwise the save of the list that tells of it has it flushed first.
  if (report.reason) services.operations->flush();
  if (report.reason) services.operations->remove(job.temporary);
  return report;
}

}  // namespace quillmere
