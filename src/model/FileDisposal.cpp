#include "model/FileDisposal.h"

#include "foundation/FileStatus.h"

namespace quillmere {
namespace {

/// Whether something else than the record's file stands in its place.
bool isReplaced(const DisposalJob& job, const FileServices& services) {
  const auto status = fileStatus(job.url);
  if (!status) return false;
  if (!status->isRegular()) return true;
  const auto present = services.identity(job.url);
  return job.identity && present && job.identity->isComplete() && present->isComplete() &&
         !present->isSameInode(*job.identity);
}

/// Whether the file is not any more what it was when the person was asked about it.
bool hasChanged(const DisposalJob& job, const FileServices& services) {
  if (!job.asked) return false;
  const FileStamp present = fileStamp(job.url, services.identity);
  return present != *job.asked && present.identity;
}

}  // namespace

TrashOutcome disposeFile(const DisposalJob& job, const FileServices& services) {
  // What another disk has under this name is not ours.
  if (!services.isVolumeMounted(job.url)) return TrashOutcome::unreachable;
  if (isReplaced(job, services) || hasChanged(job, services)) return TrashOutcome::replaced;
  FileOperations& files = *services.operations;
  switch (job.deletes ? files.remove(job.url) : files.trash(job.url)) {
    case FileOutcome::done:
      return TrashOutcome::removed;
    case FileOutcome::missing:
      break;
    case FileOutcome::destinationExists:
    case FileOutcome::failed:
      return TrashOutcome::failed;
  }
  // A sync client has put a placeholder in its stead: the screenshot still is.
  if (services.isDataless(job.url)) return TrashOutcome::failed;
  // Gone by hand, if its folder can be seen; otherwise it may come back with its disk.
  return services.isFolderReachable(job.url.parent()) ? TrashOutcome::gone : TrashOutcome::unreachable;
}

}  // namespace quillmere
