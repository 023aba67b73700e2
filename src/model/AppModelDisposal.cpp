#include <QtCore/QStringList>
#include <algorithm>

#include "foundation/FileStatus.h"
#include "foundation/Localized.h"
#include "model/AppModel.h"

namespace quillmere {

bool AppModel::deletes(DisposalReason reason) const {
  switch (reason) {
    case DisposalReason::chosen:
      return *settings_.deletesChosenImmediately;
    case DisposalReason::expired:
      return *settings_.deletesExpiredImmediately;
    case DisposalReason::deleteImmediately:
      return true;
  }
  return false;
}

AppModel::TrashOutcome AppModel::dispose(const UUID& id, bool deletes, const UUIDMap<FileStamp>& asked) {
  if (protectedItems_.contains(id)) return TrashOutcome::inUse;
  const ScreenshotItem* item = items_.find(id);
  if (!item) return TrashOutcome::notTracked;
  const FileURL url = item->url;
  // What another disk has under this name is not ours.
  if (!dependencies_.isVolumeMounted(url)) {
    setMember(unavailableItemIDs, id, true);
    return TrashOutcome::unreachable;
  }
  if (isReplaced(*item) || hasChanged(*item, asked)) return TrashOutcome::replaced;
  FileOperations& files = *dependencies_.fileOperations;
  switch (deletes ? files.remove(url) : files.trash(url)) {
    case FileOutcome::done:
      return TrashOutcome::removed;
    case FileOutcome::missing:
      break;
    case FileOutcome::destinationExists:
    case FileOutcome::failed:
      return TrashOutcome::failed;
  }
  // A sync client has put a placeholder in its stead: the screenshot still is.
  if (dependencies_.isDataless(url)) return TrashOutcome::failed;
  // Gone by hand, if its folder can be seen; otherwise it may come back with its disk.
  if (dependencies_.isFolderReachable(url.parent())) return TrashOutcome::removed;
  setMember(unavailableItemIDs, id, true);
  return TrashOutcome::unreachable;
}

/// Whether something else than the record's file stands in its place.
bool AppModel::isReplaced(const ScreenshotItem& item) const {
  const auto status = fileStatus(item.url);
  if (!status) return false;
  if (!status->isRegular()) return true;
  const auto present = dependencies_.fileIdentity(item.url);
  return item.fileIdentity && present && item.fileIdentity->isComplete() && present->isComplete() &&
         !present->isSameInode(*item.fileIdentity);
}

/// Whether the file is not any more what it was when the person was asked about it.
bool AppModel::hasChanged(const ScreenshotItem& item, const UUIDMap<FileStamp>& asked) const {
  const auto stamp = asked.find(item.id);
  if (stamp == asked.end()) return false;
  const FileStamp present = stampOf(item.url);
  return present != stamp->second && present.identity;
}

/// The person is asked again, now about the file that is there. That its predecessor was Temporary says nothing of it.
void AppModel::adoptReplacement(const UUID& id) {
  const auto index = items_.indexOf(id);
  const auto present = index ? dependencies_.fileIdentity(items_[*index].url) : std::nullopt;
  if (!present) return;
  const auto ids = recordIndex().withFileNumber(present->file);
  const bool isAnothers = std::any_of(ids.begin(), ids.end(), [&](const UUID& other) {
    const ScreenshotItem* item = other != id ? items_.find(other) : nullptr;
    return item && item->fileIdentity && item->fileIdentity->isSameFile(*present) &&
           pathKeyOf(item->url) == pathKeyOf(items_[*index].url);
  });
  // It has its own record. Where this one's file is can only be sought.
  if (isAnothers) {
    reconcile({.ids = UUIDSet{id}, .polite = true, .dropsUnavailableFromQueue = true, .completions = {}});
    return;
  }
  updateItem(*index, [&](ScreenshotItem& item) { item.fileIdentity = present; });
  refreshBookmark(*index, items_[*index].fileBookmark);
  if (items_[*index].state == ScreenshotItem::State::temporary) keepItem(*index);
  saveNow();
}

AppModel::ChosenDisposal AppModel::disposeChosen(const UUID& id, ErrorScope scope) {
  const ScreenshotItem* item = items_.find(id);
  if (!item) return ChosenDisposal::declined;
  const ScreenshotItem chosen = *item;
  const auto stampNow = [&] { return fileStamp(chosen.url, dependencies_.fileIdentity); };
  const bool isInPopup = scope == ErrorScope::popup && shownFile_ && shownFile_->first == id;
  const bool isAsked = deletes(DisposalReason::chosen);
  const FileStamp shown = isInPopup ? shownFile_->second : isAsked ? stampNow() : FileStamp();
  if (isAsked) {
    // The window that did not ask is still there to be clicked.
    if (!inQuestion_.insert(chosen.id).second) return ChosenDisposal::declined;
    protect(chosen.id);
    const bool isConfirmed = dependencies_.confirmDeletion(chosen.url.displayName());
    unprotect(chosen.id);
    inQuestion_.erase(chosen.id);
    if (!isConfirmed) return ChosenDisposal::declined;
  }
  // What was written or put there since the person looked is not what was decided about.
  const FileStamp present = isInPopup || isAsked ? stampNow() : shown;
  if (present != shown && present.identity && items_.find(id)) {
    if (isInPopup) shownFile_->second = present;
    adoptReplacement(id);
    showReplaced(scope, chosen.url);
    return ChosenDisposal::refused;
  }
  disposeItem(chosen, scope, DisposalReason::chosen);
  return items_.find(chosen.id) ? ChosenDisposal::refused : ChosenDisposal::done;
}

void AppModel::showReplaced(ErrorScope scope, const FileURL& url) {
  show(scope, localized("Screenshot Has Changed"),
       localized("“%@” has changed since it was shown. Look at it again, then decide.", {url.displayName()}));
}

void AppModel::disposeItem(const ScreenshotItem& item, ErrorScope scope, DisposalReason reason,
                           const UUIDMap<FileStamp>& asked) {
  const ScreenshotItem* present = items_.find(item.id);
  const FileURL place = (present ? *present : item).url;
  const QString name = place.displayName();
  const UUID id = item.id;
  const bool isDeleting = deletes(reason);
  const QString title = isDeleting ? localized("Couldn’t Delete") : localized("Couldn’t Move to Trash");
  switch (dispose(id, isDeleting, asked)) {
    case TrashOutcome::removed:
      removeRecords({id});
      saveNow();
      return;
    case TrashOutcome::notTracked:
      return;
    case TrashOutcome::replaced:
      adoptReplacement(id);
      showReplaced(scope, place);
      return;
    case TrashOutcome::inUse:
      show(scope, localized("Screenshot Is in Use"),
           localized("Close the crop editor or save dialog before deleting this screenshot."));
      return;
    case TrashOutcome::failed:
      show(scope, title,
           isDeleting ? localized("“%@” couldn’t be deleted. It is still in Quillmere. Check that you can change files "
                                  "in its folder, then try again.",
                                  {name})
                      : localized("“%@” couldn’t be moved to Trash. It is still in Quillmere. Check that you can "
                                  "change files in its folder, then try again.",
                                  {name}));
      return;
    case TrashOutcome::unreachable:
      show(scope, title,
           localized("“%@” is on a disk or in a folder that isn’t available. Connect the disk or choose the folder "
                     "again, then try again.",
                     {name}));
      return;
  }
}

void AppModel::disposeBatch(const std::vector<ScreenshotItem>& items, ErrorScope scope, DisposalReason reason,
                            const UUIDMap<FileStamp>& asked) {
  if (items.size() == 1) {
    disposeItem(items.front(), scope, reason, asked);
    return;
  }
  const bool isDeleting = deletes(reason);
  UUIDSet removed;
  int inUse = 0;
  int replaced = 0;
  int failed = 0;
  int unreachable = 0;
  for (const ScreenshotItem& item : items) {
    switch (dispose(item.id, isDeleting, asked)) {
      case TrashOutcome::removed:
        removed.insert(item.id);
        break;
      case TrashOutcome::notTracked:
        break;
      case TrashOutcome::replaced:
        ++replaced;
        adoptReplacement(item.id);
        break;
      case TrashOutcome::inUse:
        ++inUse;
        break;
      case TrashOutcome::failed:
        ++failed;
        break;
      case TrashOutcome::unreachable:
        ++unreachable;
        break;
    }
  }
  if (!removed.empty()) {
    removeRecords(removed);
    saveNow();
  }
  QStringList sentences;
  if (inUse > 0) sentences << localized("%lld screenshots are open in the crop editor or a save dialog.", {inUse});
  if (failed > 0) {
    sentences << localized("%lld screenshots couldn’t be moved. Check that you can change files in their folder.",
                           {failed});
  }
  if (unreachable > 0) {
    sentences << localized("%lld screenshots are on a disk or in a folder that isn’t available.", {unreachable});
  }
  if (replaced > 0) {
    sentences << localized("%lld screenshots have changed since they were shown. Look at them again, then decide.",
                           {replaced});
  }
  if (sentences.isEmpty()) return;
  sentences << localized("They are still in Quillmere.");
  show(
      scope,
      isDeleting ? localized("Couldn’t Delete Every Screenshot") : localized("Couldn’t Move Every Screenshot to Trash"),
      sentences.join(QLatin1Char(' ')));
}

void AppModel::clearRecords() {
  UUIDSet all;
  items_.forEach([&](const ScreenshotItem& item) { all.insert(item.id); });
  removeRecords(all);
  saveNow();
}

void AppModel::removeRecords(const UUIDSet& ids) {
  resolvePrompts(ids);
  transfers_.forget(ids);
  setMembers(selectedItemIDs, ids, false);
  bool failureWent = false;
  analysis_.cancel(std::vector<UUID>(ids.begin(), ids.end()));
  for (const UUID& id : ids) {
    expirationScheduler_.cancel(id);
    access_.closeItem(id);
    endDownload(id);
    failureWent = expiryRetries_.forget(id) || failureWent;
    protectedItems_.erase(id);
    if (const ScreenshotItem* item = items_.find(id)) forgetInIndex(*item);
  }
  setMembers(unavailableItemIDs, ids, false);
  setMembers(evictedItemIDs, ids, false);
  setMembers(iCloudItemIDs, ids, false);

  auto indices = items_.remove(ids);
  if (!indices.empty()) changed(ModelChange{ModelField::items, ModelChange::Rows::removed, std::move(indices)});
  if (failureWent) refreshExpirationBanner();
}

void AppModel::unprotect(const UUID& id) {
  const auto found = protectedItems_.find(id);
  if (found != protectedItems_.end() && --found->second == 0) protectedItems_.erase(found);
}

}  // namespace quillmere
