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

const RecordIndex& AppModel::recordIndex() {
  if (!recordIndexCache_) recordIndexCache_.emplace(items_, watchFolderPaths_);
  return *recordIndexCache_;
}

}  // namespace quillmere
