#include <utility>

#include "foundation/FileStatus.h"
#include "model/AppModel.h"

namespace quillmere {
namespace {

constexpr double kProtectedRetry = 10.0;

/// Whether the file could be looked at closely enough to tell it from another one. What is no regular file has no
/// identity.
bool isKnown(const std::optional<FileIdentity>& present, const FileURL& url) {
  if (present) return present->volume.has_value();
  const auto status = fileStatus(url);
  return status && !status->isRegular();
}

}  // namespace

void AppModel::expire(const UUID& id) {
  expireOne(id);
  saveAfterExpiry();
}

/// What fell due together is saved together: a record whose file has gone to the Trash is found out at the next start
/// even if the program ends before.
void AppModel::saveAfterExpiry() {
  if (std::exchange(expiryChangedRecords_, false)) saveNow();
}

void AppModel::expireOne(const UUID& id) {
  if (protectedItems_.contains(id)) {
    expirationScheduler_.schedule(id, now() + kProtectedRetry);
    return;
  }
  const auto index = items_.indexOf(id);
  if (!index) return;
  const ScreenshotItem& item = items_[*index];
  if (item.state != ScreenshotItem::State::temporary || !item.expiresAt || *item.expiresAt > now()) return;
  // What another disk in the place of the folder's has under this name is not ours.
  if (!dependencies_.isVolumeMounted(item.url)) {
    retryUnreachable(id);
    return;
  }
  if (fileExists(item.url)) {
    expirePresent(*index);
  } else {
    expireMissing(*index);
  }
}

void AppModel::expireMissing(size_t index) {
  const ScreenshotItem item = items_[index];
  const auto bookmarked = resolveBookmark(*dependencies_.securityScope, item.fileBookmark);
  if (bookmarked && dependencies_.isInTrash(bookmarked->url)) {
    forget(item.id);
    return;
  }
  // A screenshot that was moved was wanted.
  if (const auto moved = relocateByBookmark(index)) {
    updateLocation(index, *moved, std::nullopt);
    expiryChangedRecords_ = true;
    return;
  }
  if (dependencies_.monitor->hasMovedOut(item.url)) {
    noteMovedAway(index);
    setMember(unavailableItemIDs, item.id, true);
    expiryChangedRecords_ = true;
    return;
  }
  const bool hasAccess = access_.folder() || access_.item(item.id);
  // A placeholder stands in its stead: the sync client has the file.
  const bool isDataless = dependencies_.isDataless(item.url);
  // Looked at again: a look that was refused does not make it missing, nor one while the disk was away.
  const FileURL folder = item.url.parent();
  const bool isMissing =
      dependencies_.isFolderReachable(folder) && isAbsent(item.url) && dependencies_.isFolderReachable(folder);
  if (!hasAccess || isDataless || !isMissing) {
    retryUnreachable(item.id);
  } else {
    forget(item.id);
  }
}

void AppModel::expirePresent(size_t index) {
  const ScreenshotItem item = items_[index];
  // Only what lies in the watched folder is thrown away; a file elsewhere is the person's own.
  const bool isWatched = access_.folder() && watchFolderPaths_ && watchFolderPaths_->contains(pathKeyOf(item.url));
  if (!isWatched) {
    keepItem(index);
    expiryChangedRecords_ = true;
    return;
  }
  const auto present = dependencies_.fileIdentity(item.url);
  if (!isKnown(present, item.url)) {
    retryUnreachable(item.id);
    return;
  }
  using Match = FileIdentity::Match;
  const Match match = !present             ? Match::different
                      : !item.fileIdentity ? Match::unknown
                                           : item.fileIdentity->match(*present);
  if (match == Match::different) {
    // Another file has taken this name.
    if (const auto moved = relocateByBookmark(index)) {
      updateLocation(index, *moved, std::nullopt);
      expiryChangedRecords_ = true;
    } else {
      forget(item.id);
    }
    return;
  }
  // By its name alone nothing is thrown away.
  if (match == Match::unknown) {
    keepItem(index);
    tellOfKept();
    return;
  }
  FileOperations& files = *dependencies_.fileOperations;
  switch (deletes(DisposalReason::expired) ? files.remove(item.url) : files.trash(item.url)) {
    case FileOutcome::done:
      forget(item.id);
      return;
    case FileOutcome::missing:
      expireMissing(index);
      return;
    case FileOutcome::destinationExists:
    case FileOutcome::failed:
      recordExpirationFailure(item.id);
      return;
  }
}

void AppModel::tellOfKept() {
  using Kind = BackgroundIssue::Kind;
  const auto& issue = *backgroundIssue;
  const int before = issue && issue->kind == Kind::expiredScreenshotsKept ? issue->count : 0;
  backgroundIssue.set(BackgroundIssue{Kind::expiredScreenshotsKept, before + 1});
  expiryChangedRecords_ = true;
}

void AppModel::forget(const UUID& id) {
  removeRecords({id});
  expiryChangedRecords_ = true;
}

void AppModel::retryUnreachable(const UUID& id) {
  setMember(unavailableItemIDs, id, true);
  expirationScheduler_.schedule(id, now() + expiryRetries_.afterUnreachable(id));
}

void AppModel::recordExpirationFailure(const UUID& id) {
  if (const auto delay = expiryRetries_.afterRefusal(id)) expirationScheduler_.schedule(id, now() + *delay);
  refreshExpirationBanner();
  expiryChangedRecords_ = true;
}

void AppModel::refreshExpirationBanner() {
  using Kind = BackgroundIssue::Kind;
  if (const int count = expiryRetries_.refusedCount(); count > 0) {
    backgroundIssue.set(BackgroundIssue{Kind::expiredScreenshotsNotTrashed, count});
  } else if (*backgroundIssue && (*backgroundIssue)->kind == Kind::expiredScreenshotsNotTrashed) {
    backgroundIssue.set(std::nullopt);
  }
}

}  // namespace quillmere
