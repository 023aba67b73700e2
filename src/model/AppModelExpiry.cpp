#include "model/AppModel.h"

namespace quillmere {

void AppModel::setDeletesExpiredImmediately(bool isOn) {
  settings_.deletesExpiredImmediately.change(isOn);
  // What was to be deleted for good goes to Trash then, or the other way round.
  expiry_.putOffAll();
}

std::optional<WatchFolderPaths> AppModel::accessibleWatchFolder() const {
  return access_.folder() ? watchFolderPaths_ : std::nullopt;
}

bool AppModel::hasAccess(const UUID& id) const {
  return access_.folder() || access_.item(id);
}

bool AppModel::noteExpiredLeft(const UUID& id) {
  const size_t index = *items_.indexOf(id);
  if (!dependencies_.monitor->hasMovedOut(items_[index].url)) return false;
  noteMovedAway(index);
  return true;
}

void AppModel::tellOfKept() {
  using Kind = BackgroundIssue::Kind;
  const auto& issue = *backgroundIssue;
  const int before = issue && issue->kind == Kind::expiredScreenshotsKept ? issue->count : 0;
  backgroundIssue.set(BackgroundIssue{Kind::expiredScreenshotsKept, before + 1});
}

void AppModel::tellOfRefused(int count) {
  using Kind = BackgroundIssue::Kind;
  if (count > 0) {
    backgroundIssue.set(BackgroundIssue{Kind::expiredScreenshotsNotTrashed, count});
  } else if (*backgroundIssue && (*backgroundIssue)->kind == Kind::expiredScreenshotsNotTrashed) {
    backgroundIssue.set(std::nullopt);
  }
}

}  // namespace quillmere
