#include <QtCore/QStringList>

#include "foundation/Localized.h"
#include "model/AppModel.h"

namespace quillmere {

NumberedSearchResult AppModel::moveToStem(const FileURL& url, const QString& stem) {
  return renameAvoidingCollision(url, stem, [this](const FileURL& from, const FileURL& to) {
    switch (dependencies_.fileOperations->move(from, to)) {
      case FileOutcome::done:
        return MoveResult::done;
      case FileOutcome::destinationExists:
        return MoveResult::destinationExists;
      case FileOutcome::missing:
      case FileOutcome::failed:
        return MoveResult::failed;
    }
    return MoveResult::failed;
  });
}

AppModel::RenameOutcome AppModel::renameItem(size_t index, const QString& name) {
  const ScreenshotItem& item = items_[index];
  const auto stem = sanitizedFileStem(name);
  if (!stem || stem->toStdString() == item.url.stem()) return RenameOutcome::unchanged;
  if (unavailableItemIDs->contains(item.id)) return RenameOutcome::unavailable;

  // Another file may have taken the name: it must not be taken for the record's own.
  const auto present = dependencies_.fileIdentity(item.url);
  const bool isAnother = present && item.fileIdentity && item.fileIdentity->isComplete() && present->isComplete() &&
                         !present->isSameInode(*item.fileIdentity);
  if (isAnother) {
    const auto own = relocateByBookmark(index);
    if (!own) return RenameOutcome::failed;
    updateLocation(index, *own, std::nullopt);
  }
  const auto result = moveToStem(item.url, *stem);
  if (result.outcome == NumberedSearchResult::Outcome::alreadyNamed) return RenameOutcome::unchanged;
  if (result.outcome != NumberedSearchResult::Outcome::moved) return RenameOutcome::failed;

  const auto oldBookmark = item.fileBookmark;
  const auto identity = dependencies_.fileIdentity(result.url);
  updateItem(index, [&](ScreenshotItem& record) {
    record.url = result.url;
    if (identity) record.fileIdentity = identity;
  });
  dependencies_.monitor->noteKnown(result.url);
  refreshBookmark(index, oldBookmark);
  refreshItemAccess(index, std::nullopt);
  return RenameOutcome::renamed;
}

bool AppModel::rename(const UUID& id, const QString& name, ErrorScope scope) {
  const auto index = items_.indexOf(id);
  if (!index) return false;
  const FileURL before = items_[*index].url;
  const QString title = localized("Couldn’t Rename Screenshot");
  const RenameOutcome outcome = renameItem(*index, name);
  if (items_[*index].url != before) saveNow();
  switch (outcome) {
    case RenameOutcome::renamed:
    case RenameOutcome::unchanged:
      return true;
    case RenameOutcome::unavailable:
      show(scope, title,
           localized("“%@” is on a disk or in a folder that isn’t available. Connect the disk or choose the folder "
                     "again, then try again.",
                     {before.displayName()}));
      return false;
    case RenameOutcome::failed:
      show(scope, title,
           localized("“%@” couldn’t be renamed, so it keeps its current name. Check that you can change files in its "
                     "folder, then try again.",
                     {before.displayName()}));
      return false;
  }
  return false;
}

void AppModel::applySuggestedNames(const std::vector<UUID>& ids, ErrorScope scope) {
  const auto suggestion = [this](const UUID& id) -> std::optional<QString> {
    const ScreenshotItem* item = items_.find(id);
    if (!item || !item->suggestedName || !item->imageDescription) return std::nullopt;
    return sanitizedFileStem(QString::fromUtf8(*item->suggestedName));
  };
  if (ids.size() == 1) {
    if (const auto name = suggestion(ids.front())) rename(ids.front(), *name, scope);
    return;
  }
  int renamed = 0;
  int unavailable = 0;
  int failed = 0;
  for (const UUID& id : ids) {
    const auto name = suggestion(id);
    if (!name) continue;
    switch (renameItem(*items_.indexOf(id), *name)) {
      case RenameOutcome::renamed:
        ++renamed;
        break;
      case RenameOutcome::unchanged:
        break;
      case RenameOutcome::unavailable:
        ++unavailable;
        break;
      case RenameOutcome::failed:
        ++failed;
        break;
    }
  }
  if (renamed > 0) saveNow();
  QStringList sentences;
  if (failed > 0) {
    sentences << localized("%lld screenshots couldn’t be renamed. Check that you can change files in their folder.",
                           {failed});
  }
  if (unavailable > 0) {
    sentences << localized("%lld screenshots are on a disk or in a folder that isn’t available.", {unavailable});
  }
  if (sentences.isEmpty()) return;
  sentences << localized("They keep the names they have.");
  show(scope, localized("Couldn’t Rename Every Screenshot"), sentences.join(QLatin1Char(' ')));
}

void AppModel::moveAndRename(const UUID& id) {
  const ScreenshotItem* item = items_.find(id);
  if (!item) return;
  const SavePanelStart start{item->url.parent(), item->url.lastPathComponent(), item->url.pathExtension()};
  // It must not run out of time under the open panel.
  protect(id);
  const auto destination = dependencies_.fileChooser->chooseDestination(start);
  if (destination) move(id, *destination);
  unprotect(id);
}

void AppModel::move(const UUID& id, const FileURL& destination) {
  const auto index = items_.indexOf(id);
  if (!index) return;
  QString reason;
  const auto outcome = dependencies_.fileOperations->move(items_[*index].url, destination, reason);
  if (outcome != FileOutcome::done) {
    const bool isTaken = outcome == FileOutcome::destinationExists;
    show(ErrorScope::inbox, localized("Couldn’t Move Screenshot"),
         isTaken ? localized("A file already exists with that name. Choose a different name to avoid replacing it.")
                 : localized("%@ The screenshot wasn’t moved. Choose a different folder or name, then try again.",
                             {reason}));
    return;
  }
  const auto oldBookmark = items_[*index].fileBookmark;
  const auto bookmark = dependencies_.securityScope->makeBookmark(destination);
  const auto identity = dependencies_.fileIdentity(destination);
  updateItem(*index, [&](ScreenshotItem& item) {
    item.url = destination;
    item.fileBookmark = bookmark ? bookmark : oldBookmark;
    if (identity) item.fileIdentity = identity;  // another one on another disk
  });
  dependencies_.monitor->noteKnown(destination);
  refreshItemAccess(*index, std::nullopt);
  setMember(unavailableItemIDs, id, false);
  refreshCloudMembership(id, destination);
  // A screenshot with a place of its own is decided.
  keepItem(*index);
  resolvePrompts({id});
  saveNow();
  if (!bookmark) {
    show(
        ErrorScope::inbox, localized("Access Not Saved"),
        localized("The screenshot was moved and kept, but access couldn’t be saved for the next launch. If it shows as "
                  "unavailable later, move it again with Move and Rename."));
  }
}

}  // namespace quillmere
