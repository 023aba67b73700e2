#include <QtCore/QStringList>
#include <algorithm>

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

  // Another file may have taken the name. If the record's own is nowhere else and this one no other record's, an editor
  // has saved it anew: then what stands here is renamed, but never thrown away for the old one.
  const auto present = dependencies_.fileIdentity(item.url);
  bool isAnother = present && item.fileIdentity && item.fileIdentity->isComplete() && present->isComplete() &&
                   !present->isSameInode(*item.fileIdentity);
  if (isAnother) {
    if (const auto own = relocateByBookmark(index)) {
      updateLocation(index, *own, std::nullopt);
      isAnother = false;
    } else if (isOfARecord(*present)) {
      return RenameOutcome::failed;
    }
  }
  const FileURL before = items_[index].url;
  const auto result = moveToStem(before, *stem);
  if (result.outcome == NumberedSearchResult::Outcome::alreadyNamed) return RenameOutcome::unchanged;
  if (result.outcome != NumberedSearchResult::Outcome::moved) return RenameOutcome::failed;

  const auto oldBookmark = items_[index].fileBookmark;
  const auto identity = dependencies_.fileIdentity(result.url);
  updateItem(index, [&](ScreenshotItem& record) {
    record.url = result.url;
    if (identity && !isAnother) record.fileIdentity = identity;
  });
  dependencies_.monitor->noteUnknown(before);
  dependencies_.monitor->noteKnown(result.url);
  if (!isAnother) refreshBookmark(index, oldBookmark);
  refreshItemAccess(index, std::nullopt);
  return RenameOutcome::renamed;
}

bool AppModel::isOfARecord(const FileIdentity& identity) {
  const auto ids = recordIndex().withFileNumber(identity.file);
  return std::any_of(ids.begin(), ids.end(), [&](const UUID& id) {
    const ScreenshotItem* item = items_.find(id);
    return item && item->fileIdentity && item->fileIdentity->isSameInode(identity);
  });
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
  bool hasChanged = false;
  int unavailable = 0;
  int failed = 0;
  for (const UUID& id : ids) {
    const auto name = suggestion(id);
    if (!name) continue;
    const size_t index = *items_.indexOf(id);
    const FileURL before = items_[index].url;
    const RenameOutcome outcome = renameItem(index, *name);
    hasChanged = hasChanged || items_[index].url != before;
    switch (outcome) {
      case RenameOutcome::renamed:
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
  if (hasChanged) saveNow();
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

}  // namespace quillmere
