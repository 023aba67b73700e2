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

Task<AppModel::ChosenDisposal> AppModel::disposeChosen(UUID id, ErrorScope scope) {
  return runChosenDisposal(lifetime_.weak(this), id, scope);
}

Task<AppModel::ChosenDisposal> AppModel::runChosenDisposal(Weak<AppModel> self, UUID id, ErrorScope scope) {
  const ScreenshotItem* item = self->items_.find(id);
  // The decision that is being carried out came first.
  if (!item || self->isBeingDecided(id)) co_return ChosenDisposal::declined;
  const ScreenshotItem chosen = *item;
  const bool isInPopup = scope == ErrorScope::popup && self->shownFile_ && self->shownFile_->first == id;
  // What was written or put there since the person looked is not what was decided about.
  UUIDMap<FileStamp> asked;
  if (isInPopup) asked[id] = self->shownFile_->second;
  if (self->deletes(DisposalReason::chosen)) {
    if (!isInPopup) asked[id] = self->stampOf(chosen.url);
    if (!self->decisions_.beginQuestion(id)) co_return ChosenDisposal::declined;
    self->protect(id);
    const bool isConfirmed = self->dependencies_.confirmDeletion(chosen.url.displayName());
    if (!self) co_return ChosenDisposal::declined;
    self->unprotect(id);
    self->decisions_.endQuestion(id);
    if (!isConfirmed) co_return ChosenDisposal::declined;
  }
  const auto disposing = runDisposal(self, chosen, scope, DisposalReason::chosen, asked);
  const TrashOutcome outcome = co_await disposing;
  if (!self) co_return ChosenDisposal::done;
  const bool isShown = isInPopup && self->shownFile_ && self->shownFile_->first == id;
  if (outcome == TrashOutcome::replaced && isShown) self->shownFile_->second = self->stampOf(chosen.url);
  co_return self->items_.find(id) ? ChosenDisposal::refused : ChosenDisposal::done;
}

void AppModel::showReplaced(ErrorScope scope, const FileURL& url) {
  show(scope, localized("Screenshot Has Changed"),
       localized("“%@” has changed since it was shown. Look at it again, then decide.", {url.displayName()}));
}

// --- One ---

Task<> AppModel::disposeItem(ScreenshotItem item, ErrorScope scope, DisposalReason reason, UUIDMap<FileStamp> asked) {
  return runItemDisposal(lifetime_.weak(this), std::move(item), scope, reason, std::move(asked));
}

Task<> AppModel::runItemDisposal(Weak<AppModel> self, ScreenshotItem item, ErrorScope scope, DisposalReason reason,
                                 UUIDMap<FileStamp> asked) {
  const auto disposing = runDisposal(self, std::move(item), scope, reason, std::move(asked));
  co_await disposing;
}

Task<TrashOutcome> AppModel::runDisposal(Weak<AppModel> self, ScreenshotItem item, ErrorScope scope,
                                         DisposalReason reason, UUIDMap<FileStamp> asked) {
  const bool isDeleting = self->deletes(reason);
  const bool isInPopup = self->prompts_.front() == item.id;
  const std::vector<UUID> only(1, item.id);
  const auto disposing = runDisposals(self, only, isDeleting, std::move(asked));
  const auto outcomes = co_await disposing;
  if (!self) co_return TrashOutcome::notTracked;
  self->tellOf(outcomes.front(), item, isInPopup ? self->scopeNow(scope, item.id) : scope, isDeleting);
  co_return outcomes.front();
}

void AppModel::tellOf(TrashOutcome outcome, const ScreenshotItem& item, ErrorScope scope, bool isDeleting) {
  const ScreenshotItem* present = items_.find(item.id);
  const FileURL url = (present ? *present : item).url;
  const QString name = url.displayName();
  const QString title = isDeleting ? localized("Couldn’t Delete") : localized("Couldn’t Move to Trash");
  switch (outcome) {
    case TrashOutcome::removed:
    case TrashOutcome::gone:
    case TrashOutcome::notTracked:
      return;
    case TrashOutcome::replaced:
      showReplaced(scope, url);
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

// --- Several ---

Task<> AppModel::disposeBatch(std::vector<ScreenshotItem> items, ErrorScope scope, DisposalReason reason,
                              UUIDMap<FileStamp> asked) {
  if (items.size() == 1) return disposeItem(std::move(items.front()), scope, reason, std::move(asked));
  return runBatchDisposal(lifetime_.weak(this), std::move(items), scope, reason, std::move(asked));
}

Task<> AppModel::runBatchDisposal(Weak<AppModel> self, std::vector<ScreenshotItem> items, ErrorScope scope,
                                  DisposalReason reason, UUIDMap<FileStamp> asked) {
  const bool isDeleting = self->deletes(reason);
  std::vector<UUID> ids;
  ids.reserve(items.size());
  for (const ScreenshotItem& item : items) ids.push_back(item.id);
  const auto disposing = runDisposals(self, ids, isDeleting, std::move(asked));
  const auto outcomes = co_await disposing;
  if (self) self->tellOfAll(outcomes, scope, isDeleting);
}

void AppModel::tellOfAll(const std::vector<TrashOutcome>& outcomes, ErrorScope scope, bool isDeleting) {
  const auto count = [&](TrashOutcome outcome) {
    return static_cast<int>(std::count(outcomes.begin(), outcomes.end(), outcome));
  };
  const int inUse = count(TrashOutcome::inUse);
  const int failed = count(TrashOutcome::failed);
  const int unreachable = count(TrashOutcome::unreachable);
  const int replaced = count(TrashOutcome::replaced);
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

// --- The files ---

/// Gives what became of each, in their order. The records of files that went are forgotten by then, and that is saved.
Task<std::vector<TrashOutcome>> AppModel::runDisposals(Weak<AppModel> self, std::vector<UUID> ids, bool deletes,
                                                       UUIDMap<FileStamp> asked) {
  std::vector<TrashOutcome> outcomes(ids.size(), TrashOutcome::notTracked);
  // As the person knows them: what takes their place while this waits is not decided about, nor where they are moved.
  UUIDMap<ScreenshotItem> known;
  for (const UUID& id : ids) {
    if (const ScreenshotItem* item = self->items_.find(id)) known[id] = *item;
  }
  const auto claiming = claimFiles(self, ids);
  const auto hold = co_await claiming;
  if (!self) co_return outcomes;
  const auto jobs = std::make_shared<std::vector<DisposalJob>>();
  for (size_t i = 0; i < ids.size(); ++i) {
    const ScreenshotItem* item = self->items_.find(ids[i]);
    const bool hasMoved = item && item->url.parent() != known[ids[i]].url.parent();
    outcomes[i] = hasMoved ? TrashOutcome::replaced : self->prepareDisposal(ids[i], deletes, asked, *jobs);
  }
  if (!jobs->empty()) {
    for (DisposalJob& job : *jobs) {
      if (const auto& before = known[job.id].fileIdentity) job.identity = before;
      self->decisions_.begin(job.id);
    }
    const std::function<std::vector<TrashOutcome>()> work = [jobs, services = FileServices::of(self->dependencies_)] {
      std::vector<TrashOutcome> done;
      for (const DisposalJob& job : *jobs) done.push_back(disposeFile(job, services));
      // Here, where nobody waits for the disk.
      services.operations->flush();
      return done;
    };
    const auto working = self->fileWorker_.run(work);
    const auto done = co_await working;
    if (!self) co_return outcomes;
    self->adoptDisposals(*jobs, done, ids, outcomes);
  }
  co_return outcomes;
}

/// Adds what is to be done about the record's file; what came of it already is the answer.
TrashOutcome AppModel::prepareDisposal(const UUID& id, bool deletes, const UUIDMap<FileStamp>& asked,
                                       std::vector<DisposalJob>& jobs) {
  if (decisions_.isProtected(id)) return TrashOutcome::inUse;
  const ScreenshotItem* item = items_.find(id);
  if (!item) return TrashOutcome::notTracked;
  const auto stamp = asked.find(id);
  const auto stamped = stamp == asked.end() ? std::nullopt : std::optional(stamp->second);
  jobs.push_back({id, item->url, item->fileIdentity, stamped, deletes});
  return TrashOutcome::notTracked;
}

/// Whatever happened to the records meanwhile, a file that is in Trash is no record's any more.
void AppModel::adoptDisposals(const std::vector<DisposalJob>& jobs, const std::vector<TrashOutcome>& done,
                              const std::vector<UUID>& ids, std::vector<TrashOutcome>& outcomes) {
  UUIDMap<TrashOutcome> present;
  UUIDSet removed;
  for (size_t i = 0; i < jobs.size(); ++i) {
    const UUID& id = jobs[i].id;
    const ScreenshotItem* item = items_.find(id);
    TrashOutcome outcome = item ? done[i] : TrashOutcome::notTracked;
    // The person gave it another name in that moment, which keeps it.
    if (outcome == TrashOutcome::gone && item->url != jobs[i].url) outcome = TrashOutcome::replaced;
    if (outcome == TrashOutcome::removed || outcome == TrashOutcome::gone) removed.insert(id);
    present[id] = outcome;
  }
  for (size_t i = 0; i < ids.size(); ++i) {
    if (const auto found = present.find(ids[i]); found != present.end()) outcomes[i] = found->second;
  }
  if (!removed.empty()) {
    removeRecords(removed);
    saveNow();
  }
  for (const auto& [id, outcome] : present) {
    if (outcome == TrashOutcome::replaced) adoptReplacement(id);
    if (outcome == TrashOutcome::unreachable) setMember(unavailableItemIDs, id, true);
  }
  for (const DisposalJob& job : jobs) decisions_.end(job.id);
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
  analysis_.cancel(std::vector<UUID>(ids.begin(), ids.end()));
  for (const UUID& id : ids) {
    access_.closeItem(id);
    endDownload(id);
    decisions_.dropProtection(id);
    if (const ScreenshotItem* item = items_.find(id)) forgetInIndex(*item);
  }
  setMembers(unavailableItemIDs, ids, false);
  setMembers(evictedItemIDs, ids, false);
  setMembers(iCloudItemIDs, ids, false);

  auto indices = items_.remove(ids);
  if (!indices.empty()) changed(ModelChange{ModelField::items, ModelChange::Rows::removed, std::move(indices)});
  expiry_.forget(ids);
}

void AppModel::protect(const UUID& id) {
  decisions_.protect(id);
  expiry_.putOff(id);
}

void AppModel::unprotect(const UUID& id) {
  decisions_.unprotect(id);
}

}  // namespace quillmere
