#include "foundation/FileStatus.h"
#include "foundation/Localized.h"
#include "model/AppModel.h"

namespace quillmere {

bool AppModel::canFollowWatchFolder() const {
  return !*watchFolderURL || dependencies_.keepsIdentities(**watchFolderURL);
}

FolderPanelStart AppModel::folderPanelStart(const std::optional<FileURL>& preferred) {
  refreshScreenshotLocation();
  FolderPanelStart start;
  const auto& saved = *macOSScreenshotFolder;
  for (const auto& candidate : {preferred, *watchFolderURL, saved, dependencies_.defaultScreenshotFolder()}) {
    if (!candidate || !fileExists(*candidate)) continue;
    start.directory = candidate;
    break;
  }
  start.isMacOSScreenshotFolder = start.directory && saved && isSameFolder(*start.directory, *saved);
  start.message = start.isMacOSScreenshotFolder
                      ? localized("macOS saves screenshots here. Choose it to let Quillmere watch it.")
                      : localized("Quillmere will watch this folder for new screenshots.");
  return start;
}

void AppModel::chooseWatchFolder(const std::optional<FileURL>& preferred, ErrorScope scope) {
  const auto chosen = dependencies_.fileChooser->chooseFolder(folderPanelStart(preferred));
  if (chosen && dependencies_.confirmWatching(*chosen)) adoptWatchFolder(*chosen, scope);
}

void AppModel::adoptWatchFolder(const FileURL& url, ErrorScope scope) {
  const auto bookmark = dependencies_.securityScope->makeBookmark(url);
  // One that cannot be stored would be forgotten with the next start.
  if (!bookmark || !dependencies_.watchFolderStore->setBookmark(*bookmark)) {
    show(scope, localized("Couldn’t Use Folder"),
         localized("Quillmere couldn’t save access to “%@”. It is still watching the previous folder. Choose the "
                   "folder again.",
                   {url.displayName()}));
    return;
  }
  // While the old folder can still be reached: afterwards its files may not be.
  for (size_t i = 0; i < items_.size(); ++i) {
    if (!items_[i].fileBookmark) refreshBookmark(i, std::nullopt);
  }
  // The old access ends last, so that no file is without access in between.
  access_.retireFolder();
  setWatchFolder(url);
  itemAccessTask_.cancel();
  itemAccessTask_ = refreshEveryItemAccess(lifetime_.weak(this));
  dependencies_.monitor->expectArrivalsSince(std::nullopt);
  dependencies_.monitor->watch(url);
  settings_.watchFolderHasReceivedScreenshot.change(false);
  refreshScreenshotLocation();
  checkLocationRegularly();
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
  // Renamed or moved while the program was closed: its files have not been moved one by one, which would keep them.
  if (resolved && resolved->previous && *watcherStatus == WatcherStatus::watching) {
    moveRecords(*resolved->previous, resolved->url);
    saveNow();
  }
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
  access_.retireFolder();
  access_.openFolder(**watchFolderURL);
  access_.endRetired();
  watchFolderPaths_ = watchFolderPaths(**watchFolderURL);
  recordIndexCache_.reset();
  // Whether it is watched again is the monitor's to say: being there is not enough.
  dependencies_.monitor->refresh();
  return true;
}

void AppModel::followMovedFolder(const FileURL& folder) {
  const FileURL before = **watchFolderURL;
  access_.retireFolder();
  setWatchFolder(folder);
  moveRecords(before, folder);
  access_.endRetired();
  dependencies_.monitor->follow(folder);
  saveNow();
}

}  // namespace quillmere
