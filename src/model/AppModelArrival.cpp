#include "foundation/FileStatus.h"
#include "model/AppModel.h"

namespace quillmere {

void AppModel::record(const FileURL& url, Origin origin) {
  const bool arrivedFromElsewhere = origin == Origin::elsewhere;
  const auto identity = dependencies_.fileIdentity(url);
  // Thrown away since it was looked at.
  if (!identity && isAbsent(url) && !dependencies_.isDataless(url)) {
    dependencies_.monitor->noteUnknown(url);
    return;
  }
  if (isInWork(url, identity)) {
    if (laterArrivals_.empty()) laterArrivalsSince_ = now();
    laterArrivals_.emplace_back(url, origin);
    return;
  }
  const auto known = recordIndex().atPath(pathKeyOf(url));
  if (known && !hasLeft(*known, identity)) {
    // A run that found the old file gone before this one came must not take the record away.
    reconciliations_.noteArrival(*known);
    return;
  }
  if (identity && followRename(url, *identity)) return;

  ScreenshotItem item;
  item.id = UUID::createUuid();
  item.url = url;
  item.createdAt = now();
  item.fileIdentity = identity;
  item.captureKind = dependencies_.captureKind(url);
  if (arrivedFromElsewhere) {
    if (identity && identity->creationDate) item.createdAt = *identity->creationDate;
    item.state = ScreenshotItem::State::permanent;
    item.arrivedFromElsewhere = true;
  } else {
    settings_.watchFolderHasReceivedScreenshot.change(true);
  }
  const UUID id = item.id;
  insertNewest(std::move(item));
  if (known && didStart_) {
    reconcile({.ids = UUIDSet{*known}, .polite = true, .dropsUnavailableFromQueue = true, .completions = {}});
  }
  if (arrivedFromElsewhere) refreshCloudMembership(id, url);
  refreshBookmark(0, std::nullopt);
  refreshItemAccess(0, std::nullopt);
  saveInStream();
  if (arrivedFromElsewhere) return;
  if (!isRecovering_) enqueuePrompt(id);
  windowKnowledge_.noteCapture(id);
  if (*settings_.analyzeScreenshots) startAnalysis(id);
}

/// Whether what has this identity is another file than the record's, which had the name before it.
bool AppModel::hasLeft(const UUID& id, const std::optional<FileIdentity>& identity) const {
  const ScreenshotItem& item = *items_.find(id);
  if (item.hasMovedAway) return true;
  const auto& before = item.fileIdentity;
  return before && identity && before->isComplete() && identity->isComplete() && !before->isSameInode(*identity);
}

const RecordIndex& AppModel::recordIndex() {
  if (!recordIndexCache_) recordIndexCache_.emplace(items_, watchFolderPaths_);
  return *recordIndexCache_;
}

}  // namespace quillmere
