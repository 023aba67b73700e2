#include <algorithm>
#include <utility>

#include "model/AppModel.h"

namespace quillmere {

// --- Having files for itself ---

/// Gives the hold on the files of these records, wherever they are by then, and on `places`. `stem` is the name that
/// the file of one record is to get.
Task<FileWorker::Hold> AppModel::claimFiles(Weak<AppModel> self, std::vector<UUID> ids, std::set<FileURL> places,
                                            std::optional<QString> stem) {
  FileWorker::Hold hold;
  FileClaim claimed;
  while (self) {
    FileClaim claim = self->claimOf(ids, places, stem);
    // They may have other places by the time that it is this one's turn.
    if (hold && claim.places == claimed.places) co_return hold;
    hold.reset();
    claimed = claim;
    auto entering = self->fileWorker_.enter(std::move(claim));
    self->noteWriting();
    hold = co_await entering;
  }
  co_return hold;
}

FileClaim AppModel::claimOf(const std::vector<UUID>& ids, const std::set<FileURL>& places,
                            const std::optional<QString>& stem) const {
  FileClaim claim{UUIDSet(ids.begin(), ids.end()), places};
  for (const UUID& id : ids) {
    const ScreenshotItem* item = items_.find(id);
    if (!item) continue;
    claim.places.insert(item->url.standardized());
    if (stem) claim.newName = FileClaim::NewName{item->url.parent().standardized(), stem->toStdString()};
  }
  return claim;
}

// --- What is heard of files meanwhile ---

/// Whether the file at the place is one that is being worked on. What is heard of it is looked at afterwards: the file
/// is the record's under its new name, or has not come.
bool AppModel::isInWork(const FileURL& url, const std::optional<FileIdentity>& identity) {
  if (!fileWorker_.isBusy()) return false;
  if (fileWorker_.concerns(url)) return true;
  if (!identity) return false;
  const auto ids = recordIndex().withFileNumber(identity->file);
  return std::any_of(ids.begin(), ids.end(), [&](const UUID& id) {
    const ScreenshotItem* item = fileWorker_.isBusy(id) ? items_.find(id) : nullptr;
    return item && item->fileIdentity && item->fileIdentity->isSameInode(*identity);
  });
}

/// An operation on files has ended.
void AppModel::fileWorkEnded() {
  for (const auto& [url, origin] : std::exchange(laterArrivals_, {})) record(url, origin);
  UUIDSet again;
  for (const UUID& id : std::exchange(laterLooks_, {})) {
    if (!items_.find(id)) continue;
    (fileWorker_.isBusy(id) ? laterLooks_ : again).insert(id);
  }
  if (!again.empty()) {
    reconcile({.ids = std::move(again), .polite = true, .dropsUnavailableFromQueue = true, .completions = {}});
  }
  noteWriting();
}

void AppModel::noteWriting() {
  const bool isWriting = isWritingFiles();
  if (isWriting == isToldWriting_) return;
  isToldWriting_ = isWriting;
  changed(ModelChange{ModelField::unsavedWork});
  if (!isWriting && onFilesWritten) onFilesWritten();
}

}  // namespace quillmere
