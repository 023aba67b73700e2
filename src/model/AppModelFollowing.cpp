#include "foundation/FileStatus.h"
#include "model/AppModel.h"

namespace quillmere {

/// Whether the file is a known one under a new name; its record then follows it.
bool AppModel::followRename(const FileURL& url, const FileIdentity& identity) {
  if (!identity.isComplete()) return false;
  for (const UUID& id : recordIndex().withFileNumber(identity.file)) {
    const auto index = items_.indexOf(id);
    if (!index) continue;
    const ScreenshotItem& item = items_[*index];
    // One that was seen to move away may have been written to before it came back.
    const bool isSame = item.fileIdentity && (item.hasMovedAway ? item.fileIdentity->isSameInode(identity)
                                                                : item.fileIdentity->isSameFile(identity));
    if (!isSame) continue;
    // A second link to the file is no rename; another file that has taken the old name does not matter.
    const auto atOldPlace = dependencies_.fileIdentity(item.url);
    const bool isAnother = atOldPlace && atOldPlace->isComplete() && !atOldPlace->isSameFile(identity);
    // It may be heard of here before anybody looked again for what had moved away.
    const bool isBack = item.hasMovedAway && pathKeyOf(item.url) == pathKeyOf(url);
    if (!isBack && !isAbsent(item.url) && !isAnother) continue;

    const auto oldBookmark = item.fileBookmark;
    updateItem(*index, [&](ScreenshotItem& record) {
      record.fileIdentity = identity;
      record.hasMovedAway.reset();
    });
    setMember(unavailableItemIDs, id, false);
    refreshCloudMembership(id, url);
    updateLocation(*index, url, std::nullopt);
    refreshBookmark(*index, oldBookmark);
    refreshItemAccess(*index, std::nullopt);
    saveInStream();
    return true;
  }
  return false;
}

void AppModel::updateLocation(size_t index, const FileURL& url, const std::optional<FileURL>& scopedURL) {
  endDownload(items_[index].id);
  const auto other = recordIndex().atPath(pathKeyOf(url));
  const FileURL oldURL = items_[index].url;
  updateItem(index, [&](ScreenshotItem& item) { item.url = url; });
  dependencies_.monitor->noteUnknown(oldURL);
  // The place was another record's, whose file has gone from there.
  if (didStart_ && other && *other != items_[index].id) {
    reconcile({.ids = UUIDSet{*other}, .polite = true, .dropsUnavailableFromQueue = false, .completions = {}});
  }
  dependencies_.monitor->noteKnown(url);
  const ScreenshotItem& item = items_[index];
  const UUID id = item.id;
  const bool leftTheFolder = !watchFolderPaths_ || !watchFolderPaths_->contains(pathKeyOf(url));
  const bool isDecided =
      item.state == ScreenshotItem::State::temporary || (item.state == ScreenshotItem::State::pending && leftTheFolder);
  // What the person moved or renamed is not to be thrown away.
  if (isDecided) {
    keepItem(index);
    resolvePrompts({id});
  }
  refreshItemAccess(index, scopedURL);
}

void AppModel::moveRecords(const FileURL& from, const FileURL& to) {
  const std::string prefix = from.standardized().path() + "/";
  for (size_t i = 0; i < items_.size(); ++i) {
    const std::string path = items_[i].url.standardized().path();
    if (!path.starts_with(prefix)) continue;
    const FileURL moved = to.standardized().appending(path.substr(prefix.size()));
    updateItem(i, [&](ScreenshotItem& item) { item.url = moved; });
  }
}

}  // namespace quillmere
