#include <algorithm>
#include <cmath>
#include <utility>

#include "foundation/FileStatus.h"
#include "model/AppModel.h"

namespace quillmere {
namespace {

constexpr double kProtectedRetry = 10.0;
constexpr double kFirstFailureRetry = 60.0;
constexpr double kLongestRetry = 3600.0;
/// From this many failures on nothing is retried until the person or the next launch asks.
constexpr int kMaxFailures = 8;
/// Keeps the power below from overflowing.
constexpr int kMaxDoublings = 12;

double backOff(double first, int attempt) {
  return std::min(first * std::pow(2.0, std::min(attempt, kMaxDoublings) - 1), kLongestRetry);
}

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
  const bool hasAccess = access_.folder() || access_.item(item.id);
  // A placeholder stands in its stead: the sync client has the file.
  const bool isEvicted = dependencies_.isDataless(item.url);
  // Looked at again: a look that was refused does not make it missing.
  const bool isMissing = isAbsent(item.url) && dependencies_.isFolderReachable(item.url.parent());
  if (!hasAccess || isEvicted || !isMissing) {
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
  if (item.fileIdentity && item.fileIdentity->isComplete()) {
    const auto present = dependencies_.fileIdentity(item.url);
    if (!isKnown(present, item.url)) {
      retryUnreachable(item.id);
      return;
    }
    if (!present || !present->isSameFile(*item.fileIdentity)) {
      // Another file has taken this name.
      if (const auto moved = relocateByBookmark(index)) {
        updateLocation(index, *moved, std::nullopt);
        expiryChangedRecords_ = true;
      } else {
        forget(item.id);
      }
      return;
    }
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

void AppModel::forget(const UUID& id) {
  removeRecords({id});
  expiryChangedRecords_ = true;
}

void AppModel::retryUnreachable(const UUID& id) {
  setMember(unavailableItemIDs, id, true);
  const int attempt = ++unreachableExpirations_[id];
  expirationScheduler_.schedule(id, now() + backOff(dependencies_.unavailableRetryDelay, attempt));
}

void AppModel::recordExpirationFailure(const UUID& id) {
  const int attempt = ++expirationFailures_[id];
  if (attempt < kMaxFailures) expirationScheduler_.schedule(id, now() + backOff(kFirstFailureRetry, attempt));
  refreshExpirationBanner();
  expiryChangedRecords_ = true;
}

void AppModel::dismissBackgroundIssue() {
  if (!*backgroundIssue) return;
  switch ((*backgroundIssue)->kind) {
    case BackgroundIssue::Kind::expiredScreenshotsNotTrashed: {
      // Dismissing is an immediate retry with a fresh count.
      UUIDMap<Date> retries;
      for (auto& [id, count] : expirationFailures_) {
        count = 0;
        retries[id] = now();
      }
      expirationScheduler_.schedule(retries);
      backgroundIssue.set(std::nullopt);
      return;
    }
    case BackgroundIssue::Kind::recordsReadOnly: {
      const auto& store = dependencies_.recordStore;
      const bool isSafe =
          store.backup(ScreenshotRecordStore::BackupReason::backup, now()) || !fileExists(store.fileURL);
      if (!isSafe) return;
      recordsReadOnly_ = false;
      backgroundIssue.set(std::nullopt);
      saveNow();
      return;
    }
    default:
      backgroundIssue.set(std::nullopt);
  }
}

}  // namespace quillmere
