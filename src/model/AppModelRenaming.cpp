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
  switch (renameItem(*index, name)) {
    case RenameOutcome::renamed:
    case RenameOutcome::unchanged:
      if (items_[*index].url != before) saveNow();
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

}  // namespace quillmere
