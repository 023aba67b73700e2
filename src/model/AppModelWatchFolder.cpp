#include "foundation/FileStatus.h"
#include "foundation/Localized.h"
#include "model/AppModel.h"

namespace quillmere {
namespace {

/// Longer than it takes to hear of a folder's move and to find it again.
constexpr double kFollowingMargin = 5.0;

}  // namespace

FolderPanelStart AppModel::folderPanelStart(const std::optional<FileURL>& preferred) const {
  const auto standard = dependencies_.defaultScreenshotFolder();
  FolderPanelStart start;
  start.message = localized("Quillmere will watch this folder for new screenshots.");
  for (const auto& candidate : {preferred, *watchFolderURL, standard}) {
    if (!candidate || !fileExists(*candidate)) continue;
    start.directory = candidate;
    break;
  }
  return start;
}

void AppModel::chooseWatchFolder(const std::optional<FileURL>& preferred, ErrorScope scope) {
  if (const auto chosen = dependencies_.folderChooser->chooseFolder(folderPanelStart(preferred))) {
    adoptWatchFolder(*chosen, scope);
  }
}

void AppModel::adoptWatchFolder(const FileURL& url, ErrorScope scope) {
  const auto bookmark = dependencies_.securityScope->makeBookmark(url);
  if (!bookmark) {
    show(scope, localized("Couldn’t Use Folder"),
         localized("Quillmere couldn’t save access to “%@”. It is still watching the previous folder. Choose the "
                   "folder again.",
                   {url.displayName()}));
    return;
  }
  dependencies_.watchFolderStore->setBookmark(*bookmark);
  // While the old folder can still be reached: afterwards its files may not be.
  for (size_t i = 0; i < items_.size(); ++i) {
    if (!items_[i].fileBookmark) refreshBookmark(i, std::nullopt);
  }
  // The old access ends last, so that no file is without access in between.
  const auto oldFolder = access_.takeFolder();
  setWatchFolder(url);
  for (size_t i = 0; i < items_.size(); ++i) refreshItemAccess(i, std::nullopt);
  access_.endAccess(oldFolder);
  dependencies_.monitor->expectArrivalsSince(std::nullopt);
  dependencies_.monitor->watch(url);
  setWatchFolderHasReceivedScreenshot(false);
  if (didStart_) reconcile({});
  saveNow();
}

void AppModel::setWatchFolder(const std::optional<FileURL>& url) {
  watchFolderURL.set(url);
  watchFolderPaths_ = url ? std::optional(watchFolderPaths(*url)) : std::nullopt;
  recordIndexCache_.reset();
  if (!url) {
    watcherStatus.set(WatcherStatus::notChosen);
  } else if (access_.openFolder(*url) && dependencies_.isFolderReachable(*url)) {
    watcherStatus.set(WatcherStatus::watching);
  } else {
    watcherStatus.set(dependencies_.isVolumeMounted(*url) ? WatcherStatus::notFound
                                                          : WatcherStatus::volumeNotConnected);
  }
}

void AppModel::restoreWatchFolder() {
  const auto stored = dependencies_.watchFolderStore->bookmark();
  const auto resolved = resolveBookmark(*dependencies_.securityScope, stored);
  if (resolved && resolved->refreshed) dependencies_.watchFolderStore->setBookmark(*resolved->refreshed);
  setWatchFolder(resolved ? std::optional(resolved->url) : std::nullopt);
}

/// Looks again for a folder that was lost: where it was, or where its bookmark says it has gone. Answers whether it is
/// there.
bool AppModel::retryWatchFolder() {
  if (!*watchFolderURL) return false;
  const auto resolved = resolveBookmark(*dependencies_.securityScope, dependencies_.watchFolderStore->bookmark());
  if (!resolved) return false;
  const FileURL folder = resolved->url.standardized();
  if (folder != (*watchFolderURL)->standardized()) {
    if (!dependencies_.isFolderReachable(folder)) return false;
    if (resolved->refreshed) dependencies_.watchFolderStore->setBookmark(*resolved->refreshed);
    followMovedFolder(folder);
    return true;
  }
  if (resolved->refreshed) dependencies_.watchFolderStore->setBookmark(*resolved->refreshed);
  if (!dependencies_.isFolderReachable(folder)) return false;
  const auto oldFolder = access_.takeFolder();
  access_.openFolder(**watchFolderURL);
  access_.endAccess(oldFolder);
  watchFolderPaths_ = watchFolderPaths(**watchFolderURL);
  recordIndexCache_.reset();
  // Whether it is watched again is the monitor's to say: being there is not enough.
  dependencies_.monitor->refresh();
  return true;
}

void AppModel::followMovedFolder(const FileURL& folder) {
  const std::string prefix = (*watchFolderURL)->standardized().path() + "/";
  const auto oldFolder = access_.takeFolder();
  setWatchFolder(folder);
  for (size_t i = 0; i < items_.size(); ++i) {
    const std::string path = items_[i].url.standardized().path();
    if (!path.starts_with(prefix)) continue;
    const FileURL moved = folder.appending(path.substr(prefix.size()));
    updateItem(i, [&](ScreenshotItem& item) { item.url = moved; });
  }
  access_.endAccess(oldFolder);
  // What was captured between the move and now is no old file.
  dependencies_.monitor->expectArrivalsSince(now() + -kFollowingMargin);
  dependencies_.monitor->watch(folder);
  saveNow();
}

void AppModel::refreshBookmark(size_t index, const std::optional<QByteArray>& oldBookmark) {
  const auto made = dependencies_.securityScope->makeBookmark(items_[index].url);
  const auto bookmark = made ? made : oldBookmark ? oldBookmark : items_[index].fileBookmark;
  updateItem(index, [&](ScreenshotItem& item) { item.fileBookmark = bookmark; });
}

void AppModel::refreshItemAccess(size_t index, const std::optional<FileURL>& resolved) {
  const ScreenshotItem& item = items_[index];
  const UUID id = item.id;
  // A file in the watched folder is reached through the folder.
  if (watchFolderPaths_ && watchFolderPaths_->contains(pathKeyOf(item.url))) {
    access_.closeItem(id);
    return;
  }
  if (resolved) {
    access_.openItem(id, *resolved);
    return;
  }
  if (const auto held = access_.item(id)) {
    if (*held == item.url || pathKeyOf(*held) == pathKeyOf(item.url)) return;
  }
  const auto bookmarked = resolveBookmark(*dependencies_.securityScope, item.fileBookmark);
  if (!bookmarked) return;
  if (bookmarked->refreshed) {
    updateItem(index, [&](ScreenshotItem& record) { record.fileBookmark = bookmarked->refreshed; });
  }
  access_.openItem(id, bookmarked->url);
}

void AppModel::refreshCloudMembership(const UUID& id, const FileURL& url) {
  const bool isEvicted = dependencies_.isDataless(url);
  setMember(evictedItemIDs, id, isEvicted);
  setMember(iCloudItemIDs, id, isEvicted && dependencies_.isUbiquitous(url));
}

}  // namespace quillmere
