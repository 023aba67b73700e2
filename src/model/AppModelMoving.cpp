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
  if (destination) move(id, *destination).detach();
  unprotect(id);
}

Task<> AppModel::move(UUID id, FileURL destination) {
  return runMove(lifetime_.weak(this), id, std::move(destination));
}

namespace {

struct MoveReport {
  FileOutcome outcome = FileOutcome::failed;
  QString reason = {};                                  ///< in the system's own words
  std::optional<FileIdentity> identity = std::nullopt;  ///< at the new place
  std::optional<QByteArray> bookmark = std::nullopt;
};

}  // namespace

Task<> AppModel::runMove(Weak<AppModel> self, UUID id, FileURL destination) {
  const std::vector<UUID> only(1, id);
  // The journal is one file for all moves.
  const std::set<FileURL> places(std::initializer_list<FileURL>{destination, self->moveJournal_.file()});
  const auto claiming = claimFiles(self, only, places);
  const auto hold = co_await claiming;
  const ScreenshotItem* item = self ? self->items_.find(id) : nullptr;
  if (!item) co_return;
  const FileURL before = item->url;
  std::vector<BegunMove> begun = self->waitingMoves_;
  begun.push_back(BegunMove{id, before, destination});
  const std::function<MoveReport()> work = [begun, waiting = self->waitingMoves_, journal = self->moveJournal_,
                                            services = FileServices::of(self->dependencies_)] {
    const BegunMove& move = begun.back();
    // Where it cannot be noted it is made all the same: only a run that ends in this moment would miss the note.
    journal.save(begun);
    MoveReport report;
    report.outcome = services.operations->move(move.from, move.to, report.reason);
    if (report.outcome == FileOutcome::done) {
      report.identity = services.identity(move.to);
      report.bookmark = services.scope->makeBookmark(move.to);
      // Here, where nobody waits for the disk.
      services.operations->flush();
    } else {
      journal.save(waiting);
    }
    return report;
  };
  const auto working = self->fileWorker_.run(work);
  const MoveReport report = co_await working;
  if (!self) co_return;
  if (report.outcome != FileOutcome::done) {
    const bool isTaken = report.outcome == FileOutcome::destinationExists;
    self->show(ErrorScope::inbox, localized("Couldn’t Move Screenshot"),
               isTaken ? localized("A file already exists with that name. Choose a different name to avoid replacing "
                                   "it.")
                       : localized("%@ The screenshot wasn’t moved. Choose a different folder or name, then try again.",
                                   {report.reason}));
    co_return;
  }
  self->dependencies_.monitor->noteUnknown(before);
  self->dependencies_.monitor->noteKnown(destination);
  if (const auto index = self->items_.indexOf(id)) {
    self->adoptMove(*index, destination, report.identity, report.bookmark);
    self->saveNow();
  }
  self->waitingMoves_ = begun;
  if (!report.bookmark) {
    self->show(ErrorScope::inbox, localized("Access Not Saved"),
               localized("The screenshot was moved and kept, but access couldn’t be saved for the next launch. If it "
                         "shows as unavailable later, move it again with Move and Rename."));
  }
  const auto forgetting = forgetMoves(self, {begun.back()});
  co_await forgetting;
}

/// The record's file has a place of its own, by which it is decided.
void AppModel::adoptMove(size_t index, const FileURL& url, const std::optional<FileIdentity>& identity,
                         const std::optional<QByteArray>& bookmark) {
  const UUID id = items_[index].id;
  updateItem(index, [&](ScreenshotItem& item) {
    item.url = url;
    if (bookmark) item.fileBookmark = bookmark;
    if (identity) item.fileIdentity = identity;  // another one on another disk
  });
  refreshItemAccess(index, std::nullopt);
  setMember(unavailableItemIDs, id, false);
  refreshCloudMembership(id, url);
  keepItem(index);
  resolvePrompts({id});
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
    if (isOpen && isMovedFile(items_[*index], move.to)) {
      dependencies_.monitor->noteUnknown(move.from);
      dependencies_.monitor->noteKnown(move.to);
      adoptMove(*index, move.to, dependencies_.fileIdentity(move.to),
                dependencies_.securityScope->makeBookmark(move.to));
    }
    over.push_back(move);
  }
  if (begun.empty()) {
    // What a run that was cut off had not even finished noting goes all the same.
    moveJournal_.save(waitingMoves_);
    return;
  }
  saveNow();
  forgetFinishedMoves(lifetime_.weak(this), std::move(over)).detach();
}

Task<> AppModel::forgetFinishedMoves(Weak<AppModel> self, std::vector<BegunMove> moves) {
  const std::set<FileURL> journal(std::initializer_list<FileURL>{self->moveJournal_.file()});
  const auto claiming = claimFiles(self, {}, journal);
  const auto hold = co_await claiming;
  if (!self) co_return;
  const auto forgetting = forgetMoves(self, std::move(moves));
  co_await forgetting;
}

/// Only a list that tells the new places can do without their notes. Whoever calls this has the journal for itself.
Task<> AppModel::forgetMoves(Weak<AppModel> self, std::vector<BegunMove> moves) {
  const auto saving = self->whenSaved();
  const bool isSaved = co_await saving;
  if (!isSaved || !self) co_return;
  std::erase_if(self->waitingMoves_, [&](const BegunMove& waiting) {
    return std::find(moves.begin(), moves.end(), waiting) != moves.end();
  });
  const std::function<bool()> noting = [waiting = self->waitingMoves_, journal = self->moveJournal_] {
    return journal.save(waiting);
  };
  const auto working = self->fileWorker_.run(noting);
  co_await working;
}

/// Whether a file that is the record's by its size stands at the new place, which was free when the move began.
bool AppModel::isMovedFile(const ScreenshotItem& item, const FileURL& url) {
  const auto status = fileStatus(url);
  if (!status || !status->isRegular()) return false;
  return !item.fileIdentity || !item.fileIdentity->size || item.fileIdentity->size == status->size;
}

}  // namespace quillmere
