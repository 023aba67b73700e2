#include "foundation/Localized.h"
#include "model/AppModel.h"

namespace quillmere {

bool AppModel::showsLocationMismatch() const {
  // Asked first: comparing the folders looks at the disk.
  if (*settings_.watchFolderHasReceivedScreenshot) return false;
  const auto match = screenshotFolderMatch();
  return match.kind == ScreenshotFolderMatch::Kind::differs &&
         *settings_.dismissedLocationMismatchPath != match.folder->standardized().displayPath();
}

bool AppModel::canPointMacOSAtWatchFolder() const {
  return screenshotFolderMatch().kind == ScreenshotFolderMatch::Kind::differs &&
         dependencies_.screenshotLocation->canChange();
}

void AppModel::dismissLocationMismatch() {
  const auto match = screenshotFolderMatch();
  if (match.kind != ScreenshotFolderMatch::Kind::differs) return;
  settings_.dismissedLocationMismatchPath.change(match.folder->standardized().displayPath());
}

void AppModel::refreshScreenshotLocation() {
  macOSScreenshotFolder.set(dependencies_.screenshotLocation->folder());
  const auto& change = *lastScreenshotLocationChange;
  if (!change) return;
  // Changed again by the person: the undo no longer applies.
  const bool stillHolds = *macOSScreenshotFolder && isSameFolder(**macOSScreenshotFolder, change->folder);
  if (!stillHolds) lastScreenshotLocationChange.set(std::nullopt);
}

void AppModel::checkLocationRegularly() {
  if (!didStart_ || !*watchFolderURL) {
    locationCheckTask_.cancel();
    locationCheckTask_ = {};
  } else if (!locationCheckTask_) {
    locationCheckTask_ = checkLocation(lifetime_.weak(this));
  }
}

Task<> AppModel::checkLocation(Weak<AppModel> self) {
  for (;;) {
    auto pause = self->dependencies_.executor->sleep(self->dependencies_.screenshotLocationCheckInterval);
    const bool elapsed = co_await pause;
    if (!elapsed || !self) co_return;
    self->refreshScreenshotLocation();
  }
}

void AppModel::pointMacOSAtWatchFolder() {
  if (!*watchFolderURL) return;
  const FileURL folder = (*watchFolderURL)->standardized();
  ScreenshotLocationProviding& location = *dependencies_.screenshotLocation;
  const QString title = localized("Couldn’t Change Where macOS Saves Screenshots");
  if (!location.canChange()) {
    show(ErrorScope::settings, localized("Quillmere Can’t Change This Setting"),
         localized("This copy of Quillmere isn’t allowed to change where macOS saves screenshots. Change it in "
                   "Screenshot (⇧⌘5) › Options instead."));
    return;
  }
  if (!dependencies_.isFolderReachable(folder)) {
    show(ErrorScope::settings, title,
         localized("“%@” isn’t available right now. Connect the disk it’s on, or choose another folder, then try "
                   "again.",
                   {folder.displayName()}));
    return;
  }
  const auto previous = location.rawValue();
  if (!location.tryToSetRawValue(location.rawValueOf(folder))) {
    show(ErrorScope::settings, title,
         localized("macOS refused the change, and the setting is unchanged. Change it in Screenshot (⇧⌘5) › Options "
                   "instead."));
    return;
  }
  // Read back: only what the desktop then says counts.
  refreshScreenshotLocation();
  if (screenshotFolderMatch().kind != ScreenshotFolderMatch::Kind::matches) {
    show(ErrorScope::settings, title,
         localized("macOS still doesn’t save screenshots to “%@”. Change it in Screenshot (⇧⌘5) › Options instead.",
                   {folder.displayName()}));
    return;
  }
  lastScreenshotLocationChange.set(ScreenshotLocationChange{folder, previous});
}

void AppModel::undoScreenshotLocationChange() {
  const auto change = *lastScreenshotLocationChange;
  if (!change) return;
  if (!dependencies_.screenshotLocation->tryToSetRawValue(change->previousRawValue)) {
    show(ErrorScope::settings, localized("Couldn’t Undo the Change"),
         localized("macOS still saves screenshots to the folder Quillmere chose. Change it back in Screenshot (⇧⌘5) › "
                   "Options."));
    return;
  }
  lastScreenshotLocationChange.set(std::nullopt);
  refreshScreenshotLocation();
}

}  // namespace quillmere
