#include "foundation/FileStatus.h"
#include "model/AppModel.h"

namespace quillmere {

void AppModel::record(const FileURL& url, Origin origin) {
  const bool arrivedFromElsewhere = origin == Origin::elsewhere;
  if (const auto known = recordIndex().atPath(pathKeyOf(url))) {
    // A run that found the old file gone before this one came must not take the record away.
    reconciliations_.noteArrival(*known);
    return;
  }
  const auto identity = dependencies_.fileIdentity(url);
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
  if (arrivedFromElsewhere) refreshCloudMembership(id, url);
  refreshBookmark(0, std::nullopt);
  refreshItemAccess(0, std::nullopt);
  saveNow();
  if (arrivedFromElsewhere) return;
  if (!isRecovering_) enqueuePrompt(id);
  if (*settings_.analyzeScreenshots) startAnalysis(id);
}

/// Whether the file is a known one under a new name; its record then follows it.
bool AppModel::followRename(const FileURL& url, const FileIdentity& identity) {
  if (!identity.isComplete()) return false;
  for (const UUID& id : recordIndex().withFileNumber(identity.file)) {
    const auto index = items_.indexOf(id);
    if (!index) continue;
    const ScreenshotItem& item = items_[*index];
    if (!item.fileIdentity || !item.fileIdentity->isSameFile(identity)) continue;
    // A second link to the file is no rename; another file that has taken the old name does not matter.
    const auto atOldPlace = dependencies_.fileIdentity(item.url);
    const bool isAnother = atOldPlace && atOldPlace->isComplete() && !atOldPlace->isSameFile(identity);
    if (fileExists(item.url) && !isAnother) continue;

    const auto oldBookmark = item.fileBookmark;
    updateItem(*index, [&](ScreenshotItem& record) { record.fileIdentity = identity; });
    setMember(unavailableItemIDs, id, false);
    refreshCloudMembership(id, url);
    updateLocation(*index, url, std::nullopt);
    refreshBookmark(*index, oldBookmark);
    refreshItemAccess(*index, std::nullopt);
    saveNow();
    return true;
  }
  return false;
}

const RecordIndex& AppModel::recordIndex() {
  if (!recordIndexCache_) recordIndexCache_.emplace(items_, watchFolderPaths_);
  return *recordIndexCache_;
}

}  // namespace quillmere
