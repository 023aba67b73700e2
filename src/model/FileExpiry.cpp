#include "model/FileExpiry.h"

#include "foundation/FileStatus.h"

namespace quillmere {
namespace {

using Outcome = ExpiryReport::Outcome;

/// Whether the file could be looked at closely enough to tell it from another one. What is no regular file has no
/// identity.
bool isKnown(const std::optional<FileIdentity>& present, const FileURL& url) {
  if (present) return present->volume.has_value();
  const auto status = fileStatus(url);
  return status && !status->isRegular();
}

ExpiryReport seekMissing(const ExpiryJob& job, const FileServices& services) {
  const auto bookmarked = resolveBookmark(*services.scope, job.bookmark);
  if (bookmarked && services.isInTrash(bookmarked->url)) return {Outcome::inTrash};
  if (const auto moved = services.relocated(job.bookmark, job.url, job.watchFolder)) return {Outcome::moved, moved};
  // A placeholder stands in its stead: the sync client has the file.
  if (services.isDataless(job.url)) return {Outcome::unseen};
  // Looked at again: a look that was refused does not make it missing, nor one while the disk was away.
  const FileURL folder = job.url.parent();
  const bool isMissing = services.isFolderReachable(folder) && isAbsent(job.url) && services.isFolderReachable(folder);
  return {isMissing ? Outcome::absent : Outcome::unseen};
}

}  // namespace

ExpiryReport expireFile(const ExpiryJob& job, const FileServices& services) {
  // What another disk in the place of the folder's has under this name is not ours.
  if (!services.isVolumeMounted(job.url)) return {Outcome::unreachable};
  if (!fileExists(job.url)) return seekMissing(job, services);
  // Only what lies in the watched folder is thrown away; a file elsewhere is the person's own.
  const bool isWatched = job.watchFolder && job.watchFolder->contains(pathKey(job.url, job.watchFolder));
  if (!isWatched) return {Outcome::elsewhere};
  const auto present = services.identity(job.url);
  if (!isKnown(present, job.url)) return {Outcome::unreachable};
  using Match = FileIdentity::Match;
  const Match match = !present ? Match::different : !job.identity ? Match::unknown : job.identity->match(*present);
  if (match == Match::different) {
    // Another file has taken this name.
    const auto moved = services.relocated(job.bookmark, job.url, job.watchFolder);
    return {moved ? Outcome::moved : Outcome::replaced, moved};
  }
  // By its name alone nothing is thrown away.
  if (match == Match::unknown) return {Outcome::untold};
  if (*job.isPutOff) return {Outcome::putOff};
  FileOperations& files = *services.operations;
  switch (job.deletes ? files.remove(job.url) : files.trash(job.url)) {
    case FileOutcome::done:
      return {Outcome::removed};
    case FileOutcome::missing:
      return seekMissing(job, services);
    case FileOutcome::destinationExists:
    case FileOutcome::failed:
      break;
  }
  return {Outcome::refused};
}

}  // namespace quillmere
