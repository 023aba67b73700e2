#include "model/AppModel.h"

namespace quillmere {

void AppModel::refreshCloudMembership(const UUID& id, const FileURL& url) {
  const bool isEvicted = dependencies_.isDataless(url);
  setMember(evictedItemIDs, id, isEvicted);
  setMember(iCloudItemIDs, id, isEvicted && dependencies_.isUbiquitous(url));
}

bool AppModel::canDownload(const UUID& id) const {
  return !unavailableItemIDs->contains(id) && evictedItemIDs->contains(id) && iCloudItemIDs->contains(id);
}

void AppModel::download(const UUID& id) {
  const ScreenshotItem* item = items_.find(id);
  if (item && canDownload(id)) downloads_.start(id, item->url, item->fileBookmark);
}

void AppModel::endDownload(const UUID& id) {
  downloads_.cancel(id);
  setDownloadState(id, std::nullopt);
}

void AppModel::setDownloadState(const UUID& id, std::optional<DownloadState> state) {
  if (!state && !downloadStates->contains(id)) return;
  auto states = *downloadStates;
  if (state) {
    states[id] = *state;
  } else {
    states.erase(id);
  }
  downloadStates.set(std::move(states));
}

/// The data is here: thumbnails and sets follow by way of a look at the file.
void AppModel::refreshAfterDownload(const UUID& id) {
  if (!didStart_) return;
  reconcile({.ids = UUIDSet{id}, .polite = false, .dropsUnavailableFromQueue = false, .completions = {}});
}

}  // namespace quillmere
