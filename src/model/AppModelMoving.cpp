#include <algorithm>

#include "foundation/FileStatus.h"
#include "foundation/Localized.h"
#include "model/AppModel.h"

namespace quillmere {

void AppModel::moveAndRename(UUID id) {
  const ScreenshotItem* item = items_.find(id);
  if (!item) return;
  const SavePanelStart start{item->url.parent(), item->url.lastPathComponent(), item->url.pathExtension()};
  // It must not run out of time under the open save panel.
  protect(id);
  const auto destination = dependencies_.fileChooser->chooseDestination(start);
  if (destination) move(id, *destination);
  unprotect(id);
}

void AppModel::move(const UUID& id, const FileURL& destination) {
  const auto index = items_.indexOf(id);
  if (!index) return;
  const FileURL before = items_[*index].url;
  // Where it cannot be noted it is made all the same: only a run that ends in this moment would miss the note.
  std::vector<BegunMove> begun = waitingMoves_;
  begun.push_back({id, before, destination});
  moveJournal_.save(begun);
  QString reason;
  const auto outcome = dependencies_.fileOperations->move(before, destination, reason);
  if (outcome != FileOutcome::done) {
    moveJournal_.save(waitingMoves_);
    const bool isTaken = outcome == FileOutcome::destinationExists;
    show(ErrorScope::inbox, localized("Couldn’t Move Screenshot"),
         isTaken ? localized("A file already exists with that name. Choose a different name to avoid replacing it.")
                 : localized("%@ The screenshot wasn’t moved. Choose a different folder or name, then try again.",
                             {reason}));
    return;
  }
  const bool hasBookmark = adoptMove(*index, destination);
  saveNow();
  waitingMoves_ = std::move(begun);
  forgetMoves(lifetime_.weak(this), {waitingMoves_.back()}).detach();
  if (!hasBookmark) {
    show(
        ErrorScope::inbox, localized("Access Not Saved"),
        localized("The screenshot was moved and kept, but access couldn’t be saved for the next launch. If it shows as "
                  "unavailable later, move it again with Move and Rename."));
  }
}

/// The record's file has a place of its own, by which it is decided. Answers whether that place has a bookmark.
bool AppModel::adoptMove(size_t index, const FileURL& url) {
  const UUID id = items_[index].id;
  const FileURL before = items_[index].url;
  const auto oldBookmark = items_[index].fileBookmark;
  const auto bookmark = dependencies_.securityScope->makeBookmark(url);
  const auto identity = dependencies_.fileIdentity(url);
  updateItem(index, [&](ScreenshotItem& item) {
    item.url = url;
    item.fileBookmark = bookmark ? bookmark : oldBookmark;
    if (identity) item.fileIdentity = identity;  // another one on another disk
  });
  dependencies_.monitor->noteUnknown(before);
  dependencies_.monitor->noteKnown(url);
  refreshItemAccess(index, std::nullopt);
  setMember(unavailableItemIDs, id, false);
  refreshCloudMembership(id, url);
  keepItem(index);
  resolvePrompts({id});
  return bookmark.has_value();
}

/// Has the records follow files that an earlier run had moved when it ended.
void AppModel::finishMoves() {
  const auto begun = moveJournal_.load();
  std::vector<BegunMove> over;
  waitingMoves_ = begun;
  for (const BegunMove& move : begun) {
    const bool isThere = dependencies_.isFolderReachable(move.to.parent());
    if (isThere) dependencies_.fileOperations->finishMove(move.from, move.to);
    const auto index = items_.indexOf(move.id);
    // Otherwise it was saved, or decided otherwise since.
    const bool isOpen = index && items_[*index].url == move.from && !fileExists(move.from);
    if (isOpen && (!isThere || !dependencies_.isFolderReachable(move.from.parent()))) {
      // Its disk may come back.
      noteMovedAway(*index);
      continue;
    }
    if (isOpen && isMovedFile(items_[*index], move.to)) adoptMove(*index, move.to);
    over.push_back(move);
  }
  if (begun.empty()) {
    // What a run that was cut off had not even finished noting goes all the same.
    moveJournal_.save(waitingMoves_);
    return;
  }
  saveNow();
  forgetMoves(lifetime_.weak(this), std::move(over)).detach();
}

/// Only a list that tells the new places can do without their notes.
Task<> AppModel::forgetMoves(Weak<AppModel> self, std::vector<BegunMove> moves) {
  const auto saving = self->whenSaved();
  const bool isSaved = co_await saving;
  if (!isSaved || !self) co_return;
  std::erase_if(self->waitingMoves_, [&](const BegunMove& waiting) {
    return std::find(moves.begin(), moves.end(), waiting) != moves.end();
  });
  self->moveJournal_.save(self->waitingMoves_);
}

/// Whether a file that is the record's by its size stands at the new place, which was free when the move began.
bool AppModel::isMovedFile(const ScreenshotItem& item, const FileURL& url) {
  const auto status = fileStatus(url);
  if (!status || !status->isRegular()) return false;
  return !item.fileIdentity || !item.fileIdentity->size || item.fileIdentity->size == status->size;
}

}  // namespace quillmere
