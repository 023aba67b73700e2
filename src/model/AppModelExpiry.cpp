#include <algorithm>
#include <utility>

#include "model/AppModel.h"

namespace quillmere {
namespace {

constexpr double kLaterRetry = 10.0;

}  // namespace

void AppModel::expire(const UUID& id) {
  expireOne(id);
  expireDue();
}

void AppModel::expireOne(const UUID& id) {
  due_.push_back(id);
}

/// What fell due together is saved together: a record whose file has gone to the Trash is found out at the next start
/// even if the program ends before.
void AppModel::expireDue() {
  runExpiries(lifetime_.weak(this), std::exchange(due_, {})).detach();
}

Task<> AppModel::runExpiries(Weak<AppModel> self, std::vector<UUID> ids) {
  constexpr size_t kMostTogether = 100;
  for (size_t done = 0; done < ids.size(); done += kMostTogether) {
    const size_t end = std::min(ids.size(), done + kMostTogether);
    std::vector<UUID> claimed;
    for (size_t i = done; i < end; ++i) {
      if (self->canExpireNow(ids[i])) claimed.push_back(ids[i]);
    }
    if (claimed.empty()) continue;
    const auto claiming = claimFiles(self, claimed);
    const auto hold = co_await claiming;
    if (!self) co_return;
    const auto jobs = std::make_shared<std::vector<ExpiryJob>>();
    for (const UUID& id : claimed) self->prepareExpiry(id, *jobs);
    if (jobs->empty()) continue;
    for (const ExpiryJob& job : *jobs) {
      self->beginDeciding(job.id);
      self->expiring_[job.id] = job.isPutOff;
    }
    const std::function<std::vector<ExpiryReport>()> work = [jobs, services = FileServices::of(self->dependencies_)] {
      std::vector<ExpiryReport> reports;
      for (const ExpiryJob& job : *jobs) reports.push_back(expireFile(job, services));
      // Here, where nobody waits for the disk.
      services.operations->flush();
      return reports;
    };
    const auto working = self->fileWorker_.run(work);
    const auto reports = co_await working;
    if (!self) co_return;
    for (const ExpiryJob& job : *jobs) self->expiring_.erase(job.id);
    UUIDSet forgotten;
    for (size_t i = 0; i < jobs->size(); ++i) self->adoptExpiry((*jobs)[i], reports[i], forgotten);
    if (!forgotten.empty()) self->forget(forgotten);
    for (const ExpiryJob& job : *jobs) self->endDeciding(job.id);
  }
  if (std::exchange(self->expiryChangedRecords_, false)) self->saveNow();
}

/// A file whose turn has not come yet stays.
void AppModel::putOffExpiry(const UUID& id) {
  const auto found = expiring_.find(id);
  if (found != expiring_.end()) *found->second = true;
}

void AppModel::setDeletesExpiredImmediately(bool isOn) {
  settings_.deletesExpiredImmediately.change(isOn);
  // What was to be deleted for good goes to Trash then, or the other way round.
  for (const auto& [id, isPutOff] : expiring_) *isPutOff = true;
}

/// What is being done to the file comes first; the record's time is looked at again after it.
bool AppModel::canExpireNow(const UUID& id) {
  if (!fileWorker_.isBusy(id)) return true;
  expirationScheduler_.schedule(id, now() + kLaterRetry);
  return false;
}

/// Adds what is to be done about the record's file, unless the program has it open.
void AppModel::prepareExpiry(const UUID& id, std::vector<ExpiryJob>& jobs) {
  if (protectedItems_.contains(id)) {
    expirationScheduler_.schedule(id, now() + kLaterRetry);
    return;
  }
  const ScreenshotItem* item = items_.find(id);
  if (!item || item->state != ScreenshotItem::State::temporary || !item->expiresAt || *item->expiresAt > now()) return;
  ExpiryJob job;
  job.id = id;
  job.url = item->url;
  job.identity = item->fileIdentity;
  job.bookmark = item->fileBookmark;
  if (access_.folder()) job.watchFolder = watchFolderPaths_;
  job.deletes = deletes(DisposalReason::expired);
  jobs.push_back(std::move(job));
}

/// Whatever happened to the record meanwhile, a file that is in Trash is none's any more. Everything else is true of
/// the record only as it was.
void AppModel::adoptExpiry(const ExpiryJob& job, const ExpiryReport& report, UUIDSet& forgotten) {
  const auto index = items_.indexOf(job.id);
  if (!index) return;
  using Outcome = ExpiryReport::Outcome;
  if (report.outcome == Outcome::removed) {
    forgotten.insert(job.id);
    return;
  }
  const ScreenshotItem& item = items_[*index];
  if (item.state != ScreenshotItem::State::temporary) return;
  if (item.url != job.url || report.outcome == Outcome::putOff) {
    expirationScheduler_.schedule(job.id, now() + kLaterRetry);
    return;
  }
  switch (report.outcome) {
    case Outcome::removed:
    case Outcome::putOff:
      return;
    case Outcome::refused:
      recordExpirationFailure(job.id);
      return;
    case Outcome::inTrash:
    case Outcome::replaced:
      forgotten.insert(job.id);
      return;
    case Outcome::moved:
      // A screenshot that was moved was wanted.
      adoptMovedPlace(*index, *report.place);
      expiryChangedRecords_ = true;
      return;
    case Outcome::absent:
    case Outcome::unseen:
      adoptMissing(*index, report.outcome == Outcome::absent, forgotten);
      return;
    case Outcome::unreachable:
      retryUnreachable(job.id);
      return;
    case Outcome::elsewhere:
      keepItem(*index);
      expiryChangedRecords_ = true;
      return;
    case Outcome::untold:
      keepItem(*index);
      tellOfKept();
      return;
  }
}

void AppModel::adoptMissing(size_t index, bool isAbsent, UUIDSet& forgotten) {
  const UUID id = items_[index].id;
  const bool hasAccess = access_.folder() || access_.item(id);
  if (dependencies_.monitor->hasMovedOut(items_[index].url)) {
    noteMovedAway(index);
    setMember(unavailableItemIDs, id, true);
    expiryChangedRecords_ = true;
  } else if (isAbsent && hasAccess) {
    forgotten.insert(id);
  } else {
    retryUnreachable(id);
  }
}

void AppModel::tellOfKept() {
  using Kind = BackgroundIssue::Kind;
  const auto& issue = *backgroundIssue;
  const int before = issue && issue->kind == Kind::expiredScreenshotsKept ? issue->count : 0;
  backgroundIssue.set(BackgroundIssue{Kind::expiredScreenshotsKept, before + 1});
  expiryChangedRecords_ = true;
}

void AppModel::forget(const UUIDSet& ids) {
  removeRecords(ids);
  expiryChangedRecords_ = true;
}

void AppModel::retryUnreachable(const UUID& id) {
  setMember(unavailableItemIDs, id, true);
  expirationScheduler_.schedule(id, now() + expiryRetries_.afterUnreachable(id));
}

void AppModel::recordExpirationFailure(const UUID& id) {
  if (const auto delay = expiryRetries_.afterRefusal(id)) expirationScheduler_.schedule(id, now() + *delay);
  refreshExpirationBanner();
  expiryChangedRecords_ = true;
}

void AppModel::refreshExpirationBanner() {
  using Kind = BackgroundIssue::Kind;
  if (const int count = expiryRetries_.refusedCount(); count > 0) {
    backgroundIssue.set(BackgroundIssue{Kind::expiredScreenshotsNotTrashed, count});
  } else if (*backgroundIssue && (*backgroundIssue)->kind == Kind::expiredScreenshotsNotTrashed) {
    backgroundIssue.set(std::nullopt);
  }
}

}  // namespace quillmere
