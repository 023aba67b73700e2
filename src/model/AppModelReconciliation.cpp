#include "foundation/FileStatus.h"
#include "model/AppModel.h"

namespace quillmere {
namespace {

bool isLost(WatcherStatus status) {
  return status == WatcherStatus::notFound || status == WatcherStatus::volumeNotConnected;
}

}  // namespace

void AppModel::handleRemoval(const std::vector<FileURL>& urls) {
  if (!didStart_) return;
  UUIDSet ids;
  for (const FileURL& url : urls) {
    if (const auto id = recordIndex().atPath(pathKeyOf(url))) ids.insert(*id);
  }
  if (ids.empty()) return;
  reconcile({.ids = std::move(ids), .polite = true, .dropsUnavailableFromQueue = true, .completions = {}});
}

void AppModel::handleStatus(WatcherStatus status) {
  const WatcherStatus before = *watcherStatus;
  watcherStatus.set(status);
  if (!didStart_ || status == before) return;
  // A folder that is back may be one whose access could not be had while it was away.
  if (isLost(status) || !access_.folder()) retryWatchFolder();
  if (!isLost(before) && !isLost(status)) return;
  reconcile({.ids = std::nullopt, .polite = true, .dropsUnavailableFromQueue = isLost(status), .completions = {}});
}

ReconcileRun AppModel::prepareRun(const std::optional<UUIDSet>& ids) {
  ReconcileRun run;
  run.inputs.reserve(ids ? ids->size() : items_.size());
  items_.forEach([&](const ScreenshotItem& item) {
    if (ids && !ids->contains(item.id)) return;
    const bool hasMovedAway = item.hasMovedAway.value_or(false) || dependencies_.monitor->hasMovedOut(item.url);
    run.inputs.push_back({item.id, item.url, item.fileBookmark, item.fileIdentity, hasMovedAway});
  });
  ReconcileEnvironment& environment = run.environment;
  environment.watchFolder = *watchFolderURL;
  environment.watchFolderPaths = watchFolderPaths_;
  environment.hasFolderAccess = access_.folder() == *watchFolderURL;
  environment.trackedPaths = recordIndex().paths();
  environment.sharedPaths = recordIndex().sharedPaths();
  environment.scope = dependencies_.securityScope;
  environment.isInTrash = dependencies_.isInTrash;
  environment.fileIdentity = dependencies_.fileIdentity;
  environment.isFolderReachable = dependencies_.isFolderReachable;
  environment.isVolumeMounted = dependencies_.isVolumeMounted;
  environment.isDataless = dependencies_.isDataless;
  environment.isUbiquitous = dependencies_.isUbiquitous;
  return run;
}

void AppModel::applyRun(const ReconcileRun& run, const ReconcileRequest& request) {
  prompts_.setPriority(request.polite ? AnnouncementPriority::low : AnnouncementPriority::high);
  UUIDSet unavailable = *unavailableItemIDs;
  UUIDSet evicted = *evictedItemIDs;
  UUIDSet iCloud = *iCloudItemIDs;
  UUIDSet gone;
  bool recordsChanged = false;

  for (const ReconcileInput& input : run.inputs) {
    const auto outcome = run.outcomes.find(input.id);
    const auto index = items_.indexOf(input.id);
    // A record that changed during the run knows better.
    if (outcome == run.outcomes.end() || !index || items_[*index].url != input.url) continue;
    if (fileWorker_.isBusy(input.id)) {
      laterLooks_.insert(input.id);
      continue;
    }
    const bool isGone = std::holds_alternative<FileGone>(outcome->second);
    // A new file has taken the name during the run, and its arrival was taken for the known one.
    if (isGone && reconciliations_.hasArrived(input.id)) continue;
    if (!evicted.empty()) evicted.erase(input.id);
    if (!iCloud.empty()) iCloud.erase(input.id);
    const auto* present = std::get_if<FilePresent>(&outcome->second);
    if (!downloadStates->empty() && (!present || !present->isEvicted)) endDownload(input.id);
    if (isGone) {
      gone.insert(input.id);
    } else if (!present) {
      unavailable.insert(input.id);
      if (std::get<FileUnavailable>(outcome->second).hasMovedAway) {
        recordsChanged = noteMovedAway(*index) || recordsChanged;
      }
    } else {
      if (const auto other = otherRecordOf(*index, *present)) {
        // What the person has decided about stays; a newcomer has only been taken for another file.
        const bool isNewcomer = items_.find(*other)->state == ScreenshotItem::State::pending;
        gone.insert(isNewcomer ? *other : input.id);
        if (!isNewcomer) continue;
      }
      if (!unavailable.empty()) unavailable.erase(input.id);
      if (present->isEvicted) evicted.insert(input.id);
      if (present->isICloud) iCloud.insert(input.id);
      recordsChanged = applyPresent(*index, *present) || recordsChanged;
    }
  }

  unavailableItemIDs.set(unavailable);
  evictedItemIDs.set(std::move(evicted));
  iCloudItemIDs.set(std::move(iCloud));
  if (!gone.empty()) removeRecords(gone);
  if (request.dropsUnavailableFromQueue) {
    UUIDSet lost;
    for (const ReconcileInput& input : run.inputs) {
      if (unavailable.contains(input.id)) lost.insert(input.id);
    }
    resolvePrompts(lost);
  }
  if (recordsChanged || !gone.empty()) saveNow();
  prompts_.setPriority(AnnouncementPriority::high);
}

/// The record that the file has already where it was found: it was written to and renamed before anybody looked.
std::optional<UUID> AppModel::otherRecordOf(size_t index, const FilePresent& present) {
  const auto key = pathKeyOf(present.url);
  if (!present.identity || key == pathKeyOf(items_[index].url)) return std::nullopt;
  const auto other = recordIndex().atPath(key);
  const ScreenshotItem* item = other && *other != items_[index].id ? items_.find(*other) : nullptr;
  const bool isSame = item && item->fileIdentity && item->fileIdentity->isSameInode(*present.identity);
  return isSame ? other : std::nullopt;
}

/// What the person moved is not to be thrown away, wherever it is. Answers whether the record changed.
bool AppModel::noteMovedAway(size_t index) {
  const UUID id = items_[index].id;
  if (items_[index].hasMovedAway) return false;
  updateItem(index, [](ScreenshotItem& item) { item.hasMovedAway = true; });
  keepItem(index);
  resolvePrompts({id});
  return true;
}

/// Answers whether the record changed.
bool AppModel::applyPresent(size_t index, const FilePresent& present) {
  const bool hadCompleteIdentity = items_[index].fileIdentity && items_[index].fileIdentity->isComplete();
  const bool isInPlace = present.url == items_[index].url;
  if (items_[index].hasMovedAway) {
    updateItem(index, [](ScreenshotItem& item) { item.hasMovedAway.reset(); });
    applyPresent(index, present);
    return true;
  }
  // Nearly all of them.
  if (isInPlace && hadCompleteIdentity && !present.refreshedBookmark) return false;
  const FileURL oldURL = items_[index].url;
  bool hasChanged = false;
  if (present.refreshedBookmark) {
    hasChanged = updateItem(index, [&](ScreenshotItem& item) { item.fileBookmark = present.refreshedBookmark; });
  }
  const bool hasMoved = !isInPlace && pathKeyOf(present.url) != pathKeyOf(oldURL);
  if (hasMoved) {
    hasChanged = true;
    updateLocation(index, present.url, present.scopedURL);
  }
  // A complete identity at the same path is kept: another file under this name must not pass for the old one.
  if (present.identity && (hasMoved || !hadCompleteIdentity)) {
    hasChanged = updateItem(index, [&](ScreenshotItem& item) { item.fileIdentity = present.identity; }) || hasChanged;
  }
  return hasChanged;
}

}  // namespace quillmere
