#include <algorithm>

#include "foundation/TurnLimit.h"
#include "monitor/ScreenshotInboxMonitor.h"

namespace quillmere {
namespace {

constexpr Duration kQuickLookInterval = std::chrono::milliseconds(100);
/// Looks at a file that does not decode; after them only full scans look again.
constexpr int kMaxQuickLooks = 20;
constexpr size_t kManyFiles = 1000;

}  // namespace

/// Tens of thousands of files come in many turns of the loop.
Task<> ScreenshotInboxMonitor::apply(Weak<ScreenshotInboxMonitor> self, ScanResult result,
                                     std::shared_ptr<Snapshot> snapshot) {
  if (!result.observations) {
    self->report(result.unavailable.value_or(WatcherStatus::notFound));
    co_return;
  }
  const int generation = self->generation_;
  Executor& executor = self->executor_;
  const Date now = self->now_();
  self->applyFolder(result, *snapshot);
  TurnLimit limit(executor);
  for (const Observation& seen : *result.observations) {
    if (limit.isReached()) {
      auto pause = executor.sleep(Duration::zero());
      co_await pause;
      limit.begin();
    }
    // A callback, or somebody between two turns, may have put another folder in this one's place.
    if (!self || generation != self->generation_) co_return;
    self->applyObservation(seen, snapshot->full, now);
  }
  if (!self) co_return;
  if (generation == self->generation_) self->lookAgain(result.isAnyPutOff);
  // Freeing so many texts takes as long as applying them.
  if (result.observations->size() < kManyFiles) co_return;
  auto garbage = std::make_shared<ScanResult>(std::move(result));
  executor.runInBackground([garbage = std::move(garbage)]() mutable { garbage.reset(); }, [] {});
}

/// What the scan says of the folder, and of what has left it.
void ScreenshotInboxMonitor::applyFolder(ScanResult& result, const Snapshot& snapshot) {
  if (snapshot.baselineStart) {
    needsBaseline_ = false;
    arrivalsSince_.reset();
    knownURLs_ = std::make_shared<URLSet>(std::move(result.baseline));
  }
  if (!snapshot.full) return;
  if (directorySource_) report(WatcherStatus::watching);
  forgetAbsent(result);
  if (!result.removed.empty() && onRemoval) onRemoval(result.removed);
  if (result.newcomer && onNewcomer) onNewcomer(*result.newcomer);
}

void ScreenshotInboxMonitor::lookAgain(bool isAnyPutOff) {
  awaitedSince_.reset();
  for (const auto& [url, pending] : pendingFiles_) {
    if (isAwaited(pending)) awaitedSince_ = std::min(awaitedSince_.value_or(pending.firstSeen), pending.firstSeen);
  }
  if (awaitedSince_) scheduleScan(isAnyPutOff ? Duration::zero() : kQuickLookInterval, ScanScope::partial);
}

/// Not one that was looked at in vain for long.
bool ScreenshotInboxMonitor::isAwaited(const Pending& pending) {
  return pending.attempts < kMaxQuickLooks || pending.complete || pending.unmarkedSince;
}

void ScreenshotInboxMonitor::forgetAbsent(const ScanResult& result) {
  if (!result.removed.empty()) {
    for (const FileURL& url : result.removed) knownURLs_->erase(url);
  }
  for (const FileURL& url : result.absentPending) pendingFiles_.erase(url);
  for (const FileURL& url : result.absentIgnored) ignoredFiles_.erase(url);
  for (const FileURL& url : result.absentEvidence) arrivalEvidence_.erase(url);
}

void ScreenshotInboxMonitor::applyObservation(const Observation& seen, bool isFullScan, Date now) {
  if (knownURLs_->contains(seen.url)) return;
  if (!seen.fingerprint) {
    if (!isFullScan) {
      pendingFiles_.erase(seen.url);
      arrivalEvidence_.erase(seen.url);
    }
    return;
  }
  if (const auto ignored = ignoredFiles_.find(seen.url); ignored != ignoredFiles_.end()) {
    if (ignored->second == *seen.fingerprint) return;
    ignoredFiles_.erase(ignored);  // a file that changes gets a new hearing
  }
  if (seen.evidence) arrivalEvidence_[seen.url] = *seen.evidence;

  const auto pending = pendingFiles_.find(seen.url);
  if (pending != pendingFiles_.end() && pending->second.fingerprint == *seen.fingerprint) {
    applyRepeatedLook(seen, pending->second, now);
    return;
  }
  // A file that keeps growing keeps its first sighting.
  const auto evidence = arrivalEvidence_.try_emplace(seen.url, ArrivalEvidence{now_(), 0, false}).first;
  pendingFiles_[seen.url] = Pending{.fingerprint = *seen.fingerprint, .firstSeen = evidence->second.firstSeen};
}

void ScreenshotInboxMonitor::applyRepeatedLook(const Observation& seen, Pending& pending, Date now) {
  pending.attempts += 1;
  if (!pending.complete && seen.fingerprint->size > 0 && seen.decodesCompletely == true) {
    pending.complete = true;
    pending.completeSince = now;
  }
  const bool isUnmarked = seen.isScreenCapture == false && !seen.decodesCompletely && !seen.isPlaceholder;
  if (!isUnmarked) pending.unmarkedSince.reset();
  if (isUnmarked && !pending.unmarkedSince) pending.unmarkedSince = now;
  const bool isReady = pending.complete || seen.isPlaceholder;
  if (isReady && (includesNonCaptureImages_ || seen.isScreenCapture == true)) {
    accept(seen.url);
    return;
  }
  // The tag may be written a moment after the file.
  const auto since = pending.complete ? std::optional(pending.completeSince) : pending.unmarkedSince;
  if (!since || now - *since < screenCaptureTagGracePeriod) return;
  ignoredFiles_[seen.url] = *seen.fingerprint;
  pendingFiles_.erase(seen.url);
}

void ScreenshotInboxMonitor::noteKnown(const FileURL& url) {
  if (!directory_ || url.parent() != *directory_) return;
  if (looking_) {
    notes_.push_back({url, true});
    return;
  }
  pendingFiles_.erase(url);
  ignoredFiles_.erase(url);
  arrivalEvidence_.erase(url);
  knownURLs_->insert(url);
}

void ScreenshotInboxMonitor::noteUnknown(const FileURL& url) {
  if (!directory_) return;
  if (looking_) {
    notes_.push_back({url, false});
    return;
  }
  if (!knownURLs_->contains(url)) return;
  knownURLs_->erase(url);
  // Something may stand there already.
  scheduleScan(Duration::zero(), ScanScope::full);
}

bool ScreenshotInboxMonitor::hasMovedOut(const FileURL& url) const {
  // The name first: it is asked for every record, and hardly any has moved.
  return directory_ && directorySource_ && directorySource_->hasMovedOut(url.lastPathComponent()) &&
         url.parent() == *directory_;
}

void ScreenshotInboxMonitor::accept(const FileURL& url) {
  const auto evidence = arrivalEvidence_.extract(url);
  const bool isFromElsewhere = (evidence && evidence.mapped().isFromElsewhere) ||
                               (directorySource_ && directorySource_->wasSynced(url.lastPathComponent()));
  pendingFiles_.erase(url);
  knownURLs_->insert(url);
  const auto& callback = isFromElsewhere ? onArrivedScreenshot : onScreenshot;
  if (callback) callback(url);
}

}  // namespace quillmere
