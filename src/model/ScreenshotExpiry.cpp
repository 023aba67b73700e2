#include "model/ScreenshotExpiry.h"

#include <algorithm>
#include <utility>

namespace quillmere {
namespace {

constexpr double kLaterRetry = 10.0;

}  // namespace

ScreenshotExpiry::ScreenshotExpiry(const AppModelDependencies& dependencies, const ScreenshotList& items,
                                   DecisionsUnderWay& decisions, FileWorker& fileWorker, ExpiringRecords& records)
    : dependencies_(dependencies),
      items_(items),
      decisions_(decisions),
      fileWorker_(fileWorker),
      records_(records),
      scheduler_(*dependencies.executor, *dependencies.systemEvents, dependencies.now),
      retries_(dependencies.unavailableRetryDelay) {}

void ScreenshotExpiry::start() {
  scheduler_.start([this](const UUID& id) { due_.push_back(id); }, [this] { expireDue(); });
}

void ScreenshotExpiry::expire(const UUID& id) {
  due_.push_back(id);
  expireDue();
}

/// What fell due together is saved together: a record whose file has gone to the Trash is found out at the next start
/// even if the program ends before.
void ScreenshotExpiry::expireDue() {
  run(lifetime_.weak(this), std::exchange(due_, {})).detach();
}

Task<> ScreenshotExpiry::run(Weak<ScreenshotExpiry> self, std::vector<UUID> ids) {
  constexpr size_t kMostTogether = 100;
  for (size_t done = 0; done < ids.size(); done += kMostTogether) {
    const size_t end = std::min(ids.size(), done + kMostTogether);
    std::vector<UUID> claimed;
    for (size_t i = done; i < end; ++i) {
      if (self->canExpireNow(ids[i])) claimed.push_back(ids[i]);
    }
    if (claimed.empty()) continue;
    const auto claiming = self->records_.claimFiles(claimed);
    const auto hold = co_await claiming;
    if (!self) co_return;
    const auto jobs = std::make_shared<std::vector<ExpiryJob>>();
    for (const UUID& id : claimed) self->prepare(id, *jobs);
    if (jobs->empty()) continue;
    for (const ExpiryJob& job : *jobs) {
      self->decisions_.begin(job.id);
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
    for (size_t i = 0; i < jobs->size(); ++i) self->adopt((*jobs)[i], reports[i], forgotten);
    if (!forgotten.empty()) {
      self->records_.removeRecords(forgotten);
      self->hasChangedRecords_ = true;
    }
    for (const ExpiryJob& job : *jobs) self->decisions_.end(job.id);
  }
  if (std::exchange(self->hasChangedRecords_, false)) self->records_.saveNow();
}

void ScreenshotExpiry::putOff(const UUID& id) {
  const auto found = expiring_.find(id);
  if (found != expiring_.end()) *found->second = true;
}

void ScreenshotExpiry::putOffAll() {
  for (const auto& [id, isPutOff] : expiring_) *isPutOff = true;
}

void ScreenshotExpiry::forget(const UUIDSet& ids) {
  bool wasRefused = false;
  for (const UUID& id : ids) {
    scheduler_.cancel(id);
    wasRefused = retries_.forget(id) || wasRefused;
  }
  if (wasRefused) records_.tellOfRefused(retries_.refusedCount());
}

void ScreenshotExpiry::retryRefused() {
  UUIDMap<Date> again;
  for (const UUID& id : retries_.restart()) again[id] = dependencies_.now();
  scheduler_.schedule(again);
}

/// What is being done to the file comes first; the record's time is looked at again after it.
bool ScreenshotExpiry::canExpireNow(const UUID& id) {
  if (!fileWorker_.isBusy(id)) return true;
  lookLater(id, kLaterRetry);
  return false;
}

/// Adds what is to be done about the record's file, unless the program has it open.
void ScreenshotExpiry::prepare(const UUID& id, std::vector<ExpiryJob>& jobs) {
  if (decisions_.isProtected(id)) {
    lookLater(id, kLaterRetry);
    return;
  }
  const ScreenshotItem* item = items_.find(id);
  if (!item || item->state != ScreenshotItem::State::temporary || !item->expiresAt) return;
  if (*item->expiresAt > dependencies_.now()) return;
  ExpiryJob job;
  job.id = id;
  job.url = item->url;
  job.identity = item->fileIdentity;
  job.bookmark = item->fileBookmark;
  job.watchFolder = records_.accessibleWatchFolder();
  job.deletes = records_.deletesExpired();
  jobs.push_back(std::move(job));
}

/// Whatever happened to the record meanwhile, a file that is in Trash is none's any more. Everything else is true of
/// the record only as it was.
void ScreenshotExpiry::adopt(const ExpiryJob& job, const ExpiryReport& report, UUIDSet& forgotten) {
  const ScreenshotItem* item = items_.find(job.id);
  if (!item) return;
  using Outcome = ExpiryReport::Outcome;
  if (report.outcome == Outcome::removed) {
    forgotten.insert(job.id);
    return;
  }
  if (item->state != ScreenshotItem::State::temporary) return;
  if (item->url != job.url || report.outcome == Outcome::putOff) {
    lookLater(job.id, kLaterRetry);
    return;
  }
  switch (report.outcome) {
    case Outcome::removed:
    case Outcome::putOff:
      return;
    case Outcome::refused:
      noteRefusal(job.id);
      return;
    case Outcome::inTrash:
    case Outcome::replaced:
      forgotten.insert(job.id);
      return;
    case Outcome::moved:
      // A screenshot that was moved was wanted.
      records_.expiredHasMoved(job.id, *report.place);
      hasChangedRecords_ = true;
      return;
    case Outcome::absent:
    case Outcome::unseen:
      adoptMissing(job.id, report.outcome == Outcome::absent, forgotten);
      return;
    case Outcome::unreachable:
      retryUnreachable(job.id);
      return;
    case Outcome::elsewhere:
      records_.keepExpired(job.id);
      hasChangedRecords_ = true;
      return;
    case Outcome::untold:
      records_.keepExpired(job.id);
      records_.tellOfKept();
      hasChangedRecords_ = true;
      return;
  }
}

void ScreenshotExpiry::adoptMissing(const UUID& id, bool isAbsent, UUIDSet& forgotten) {
  if (records_.noteExpiredLeft(id)) {
    records_.expiredIsUnavailable(id);
    hasChangedRecords_ = true;
  } else if (isAbsent && records_.hasAccess(id)) {
    forgotten.insert(id);
  } else {
    retryUnreachable(id);
  }
}

void ScreenshotExpiry::retryUnreachable(const UUID& id) {
  records_.expiredIsUnavailable(id);
  lookLater(id, retries_.afterUnreachable(id));
}

void ScreenshotExpiry::noteRefusal(const UUID& id) {
  if (const auto delay = retries_.afterRefusal(id)) lookLater(id, *delay);
  records_.tellOfRefused(retries_.refusedCount());
  hasChangedRecords_ = true;
}

}  // namespace quillmere
