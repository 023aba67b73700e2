#include "monitor/ScreenshotInboxMonitor.h"

namespace quillmere {
namespace {

constexpr Duration kQuickLookInterval = std::chrono::milliseconds(100);
/// Looks at a file that does not decode; after them only full scans look again.
constexpr int kMaxQuickLooks = 20;

}  // namespace

/// The table, made this monitor's own again if a scan still holds it.
URLSet& ScreenshotInboxMonitor::knownURLs() {
  if (knownURLs_.use_count() > 1) knownURLs_ = std::make_shared<URLSet>(*knownURLs_);
  return *knownURLs_;
}

void ScreenshotInboxMonitor::apply(ScanResult result, Snapshot& snapshot) {
  if (!result.observations) {
    report(result.unavailable.value_or(WatcherStatus::notFound));
    return;
  }
  snapshot.known.reset();
  if (snapshot.baselineStart) {
    needsBaseline_ = false;
    arrivalsSince_.reset();
    knownURLs_ = std::make_shared<URLSet>(std::move(result.baseline));
  }
  const int generation = generation_;
  if (snapshot.full) {
    if (directorySource_) report(WatcherStatus::watching);
    forgetAbsent(result);
    if (!result.removed.empty() && onRemoval) onRemoval(result.removed);
  }
  const Date now = now_();
  for (const Observation& seen : *result.observations) {
    // A callback may have put another folder in this one's place.
    if (generation != generation_) return;
    applyObservation(seen, snapshot.full, now);
  }
  for (const auto& [url, pending] : pendingFiles_) {
    if (pending.attempts >= kMaxQuickLooks && !pending.completeSince && !pending.unmarkedSince) continue;
    scheduleScan(kQuickLookInterval, ScanScope::partial);
    break;
  }
}

void ScreenshotInboxMonitor::forgetAbsent(const ScanResult& result) {
  if (!result.removed.empty()) {
    URLSet& known = knownURLs();
    for (const FileURL& url : result.removed) known.erase(url);
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
  const Date firstSeen = now_();
  pendingFiles_[seen.url] = {*seen.fingerprint, firstSeen, 1, std::nullopt};
  // A file that keeps growing keeps its first sighting.
  arrivalEvidence_.try_emplace(seen.url, ArrivalEvidence{firstSeen, 0, false});
}

void ScreenshotInboxMonitor::applyRepeatedLook(const Observation& seen, Pending& pending, Date now) {
  pending.attempts += 1;
  if (!pending.completeSince && seen.fingerprint->size > 0 && seen.decodesCompletely == true) {
    pending.completeSince = now;
  }
  const bool isUnmarked = seen.isScreenCapture == false && !seen.decodesCompletely && !seen.isPlaceholder;
  if (!isUnmarked) pending.unmarkedSince.reset();
  if (isUnmarked && !pending.unmarkedSince) pending.unmarkedSince = now;
  const bool isReady = pending.completeSince || seen.isPlaceholder;
  if (isReady && (includesNonCaptureImages_ || seen.isScreenCapture == true)) {
    accept(seen.url);
    return;
  }
  // The tag may be written a moment after the file.
  const auto since = pending.completeSince ? pending.completeSince : pending.unmarkedSince;
  if (!since || now - *since < screenCaptureTagGracePeriod) return;
  ignoredFiles_[seen.url] = *seen.fingerprint;
  pendingFiles_.erase(seen.url);
}

void ScreenshotInboxMonitor::noteKnown(const FileURL& url) {
  if (!directory_ || url.parent() != *directory_) return;
  pendingFiles_.erase(url);
  ignoredFiles_.erase(url);
  arrivalEvidence_.erase(url);
  knownURLs().insert(url);
}

void ScreenshotInboxMonitor::noteUnknown(const FileURL& url) {
  if (!directory_ || !knownURLs_->contains(url)) return;
  knownURLs().erase(url);
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
  knownURLs().insert(url);
  const auto& callback = isFromElsewhere ? onArrivedScreenshot : onScreenshot;
  if (callback) callback(url);
}

}  // namespace quillmere
