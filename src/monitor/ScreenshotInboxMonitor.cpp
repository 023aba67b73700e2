#include "monitor/ScreenshotInboxMonitor.h"

#include "foundation/Localized.h"

namespace quillmere {
namespace {

/// Gathers a burst of events into one scan.
constexpr Duration kEventDebounce = std::chrono::milliseconds(50);

ScanScope wider(ScanScope one, ScanScope other) {
  return one == ScanScope::full ? one : other;
}

}  // namespace

QString statusText(WatcherStatus status) {
  switch (status) {
    case WatcherStatus::notChosen:
      return localized("Choose a screenshot folder");
    case WatcherStatus::watching:
      return localized("Watching for new screenshots");
    case WatcherStatus::notFound:
      return localized("Quillmere can’t find the screenshot folder. Choose it again in Settings.");
    case WatcherStatus::volumeNotConnected:
      return localized(
          "The screenshot folder is on a disk that isn’t connected. Connect the disk and Quillmere starts watching it "
          "again.");
  }
  return {};
}

ScreenshotInboxMonitor::ScreenshotInboxMonitor(Executor& executor, SystemEvents& systemEvents,
                                               FolderEventSource& eventSource, ScanServices services,
                                               std::function<Date()> now)
    : executor_(executor),
      systemEvents_(systemEvents),
      eventSource_(eventSource),
      services_(std::move(services)),
      now_(std::move(now)) {}

ScreenshotInboxMonitor::~ScreenshotInboxMonitor() {
  reconciliationTask_.cancel();
  scanTask_.cancel();
}

void ScreenshotInboxMonitor::watch(std::optional<FileURL> directory) {
  startOver(std::move(directory));
  needsBaseline_ = directory_.has_value();
  watchedSince_ = now_();
  lookAtFolder();
}

void ScreenshotInboxMonitor::follow(const FileURL& directory) {
  const auto known = knownURLs_;
  const auto evidence = looking_ ? looking_->evidence : arrivalEvidence_;
  const auto notes = std::exchange(notes_, {});
  startOver(directory);
  for (const FileURL& url : *known) knownURLs_->insert(directory.appending(url.lastPathComponent()));
  for (const Note& note : notes) {
    const FileURL url = directory.appending(note.url.lastPathComponent());
    note.isKnown ? knownURLs_->insert(url) : knownURLs_->erase(url);
  }
  for (const auto& [url, one] : evidence) arrivalEvidence_[directory.appending(url.lastPathComponent())] = one;
  // A first look that is still owed counts from when the folder was given, or what came before its move would be old.
  if (needsBaseline_ && !arrivalsSince_) arrivalsSince_ = watchedSince_;
  lookAtFolder();
}

void ScreenshotInboxMonitor::startOver(std::optional<FileURL> directory) {
  directorySource_.reset();
  cancelScheduledScan();
  pendingFiles_.clear();
  ignoredFiles_.clear();
  arrivalEvidence_.clear();
  knownURLs_ = std::make_shared<URLSet>();
  looking_.reset();
  notes_.clear();
  awaitedSince_.reset();
  ++generation_;
  lastStatus_.reset();
  directory_ = std::move(directory);
  queuedScan_.reset();
}

void ScreenshotInboxMonitor::lookAtFolder() {
  if (isRunning_) openDirectorySource();
  if (directory_) scan(ScanScope::full);
}

void ScreenshotInboxMonitor::start() {
  if (isRunning_) return;
  isRunning_ = true;
  openDirectorySource();
  scan(ScanScope::full);
  reconciliationTask_ = reconcileRegularly(lifetime_.weak(this));
  systemObservers_.push_back(systemEvents_.didWake.connect([this] { refresh(); }));
  systemObservers_.push_back(systemEvents_.volumesDidChange.connect([this] { refresh(); }));
}

void ScreenshotInboxMonitor::setIncludesNonCaptureImages(bool includes) {
  if (includes == includesNonCaptureImages_) return;
  includesNonCaptureImages_ = includes;
  if (isRunning_) scheduleScan(Duration::zero(), ScanScope::full);
}

Task<> ScreenshotInboxMonitor::reconcileRegularly(Weak<ScreenshotInboxMonitor> self) {
  while (self) {
    auto pause = self->executor_.sleep(self->reconciliationInterval);
    const bool elapsed = co_await pause;
    if (!elapsed || !self) co_return;
    self->refresh();
  }
}

void ScreenshotInboxMonitor::refresh() {
  if (!isRunning_) return;
  if (!directorySource_) openDirectorySource();
  scheduleScan(Duration::zero(), ScanScope::full);
}

void ScreenshotInboxMonitor::openDirectorySource() {
  if (!directory_) {
    report(WatcherStatus::notChosen);
    return;
  }
  // The folder under an unmounted file system can be opened too, and is the wrong one.
  if (services_.isVolumeMounted(*directory_)) {
    directorySource_ = eventSource_.open(*directory_, [this](FolderEvent event) { handleEvent(event); });
  }
  report(directorySource_ ? WatcherStatus::watching : absenceStatus());
}

void ScreenshotInboxMonitor::handleEvent(FolderEvent event) {
  if (event == FolderEvent::lost) {
    directorySource_.reset();
    report(absenceStatus());
  }
  scheduleScan(kEventDebounce, ScanScope::full);
}

WatcherStatus ScreenshotInboxMonitor::absenceStatus() const {
  const bool isConnected = !directory_ || services_.isVolumeMounted(*directory_);
  return isConnected ? WatcherStatus::notFound : WatcherStatus::volumeNotConnected;
}

void ScreenshotInboxMonitor::report(WatcherStatus status) {
  if (lastStatus_ == status) return;
  lastStatus_ = status;
  if (onStatusChange) onStatusChange(status);
}

void ScreenshotInboxMonitor::scheduleScan(Duration after, ScanScope scope) {
  const Instant deadline = executor_.instant() + after;
  if (scanTask_ && scanDeadline_ && *scanDeadline_ <= deadline) {
    scheduledScope_ = wider(scheduledScope_, scope);
    return;
  }
  const ScanScope widest = scanTask_ ? wider(scheduledScope_, scope) : scope;
  cancelScheduledScan();
  scanDeadline_ = deadline;
  scheduledScope_ = widest;
  scanTask_ = scanLater(lifetime_.weak(this), after);
}

Task<> ScreenshotInboxMonitor::scanLater(Weak<ScreenshotInboxMonitor> self, Duration delay) {
  auto pause = self->executor_.sleep(delay);
  const bool elapsed = co_await pause;
  if (!elapsed || !self) co_return;
  const ScanScope scope = self->scheduledScope_;
  self->scanTask_ = {};
  self->scanDeadline_.reset();
  self->scheduledScope_ = ScanScope::partial;
  self->scan(scope);
}

void ScreenshotInboxMonitor::cancelScheduledScan() {
  scanTask_.cancel();
  scanTask_ = {};
  scanDeadline_.reset();
  scheduledScope_ = ScanScope::partial;
}

void ScreenshotInboxMonitor::scan(ScanScope scope) {
  if (!directory_) return;
  if (isScanning_) {
    queuedScan_ = wider(scope, queuedScan_.value_or(ScanScope::partial));
    return;
  }
  // A look at the pending files alone cannot stand in for a baseline that is owed.
  if (needsBaseline_) scope = ScanScope::full;
  if (scope == ScanScope::full) {
    cancelScheduledScan();
  } else if (pendingFiles_.empty()) {
    return;
  }
  isScanning_ = true;
  noteClock();
  runScan(lifetime_.weak(this), takeSnapshot(scope), generation_).detach();
}

void ScreenshotInboxMonitor::noteClock() {
  constexpr double kDrift = 1.0;  // what setting it slowly changes in a minute, and more
  const double offset = now_().seconds - std::chrono::duration<double>(executor_.instant().time_since_epoch()).count();
  const double jump = std::abs(offset - clockOffset_.value_or(offset));
  clockOffset_ = offset;
  if (jump < kDrift) return;
  clockJump_ = jump;
  clockJumpedAt_ = executor_.instant();
}

Task<> ScreenshotInboxMonitor::runScan(Weak<ScreenshotInboxMonitor> self, std::shared_ptr<Snapshot> snapshot,
                                       int generation) {
  auto scanning = self->executor_.background([snapshot] { return performScan(*snapshot); });
  ScanResult result = co_await scanning;
  if (!self) co_return;
  // The result of a folder that has been replaced meanwhile says nothing of the new one.
  if (generation == self->generation_) {
    self->takeBack(*snapshot);
    const auto applying = apply(self, std::move(result), std::move(snapshot));
    co_await applying;
    if (!self) co_return;
  }
  self->isScanning_ = false;
  if (!self->queuedScan_) co_return;
  const ScanScope scope = *self->queuedScan_;
  self->queuedScan_.reset();
  self->scan(scope);
}

std::shared_ptr<Snapshot> ScreenshotInboxMonitor::takeSnapshot(ScanScope scope) {
  auto snapshot = std::make_shared<Snapshot>();
  snapshot->directory = *directory_;
  snapshot->full = scope == ScanScope::full;
  if (needsBaseline_) snapshot->baselineStart = arrivalsSince_.value_or(now_());
  snapshot->known = knownURLs_;
  snapshot->pending = std::exchange(pendingFiles_, {});
  snapshot->ignored = std::exchange(ignoredFiles_, {});
  snapshot->evidence = std::exchange(arrivalEvidence_, {});
  snapshot->includesNonCaptureImages = includesNonCaptureImages_;
  snapshot->seeksNewcomer = onNewcomer && !includesNonCaptureImages_;
  snapshot->localArrivalTolerance = localArrivalTolerance;
  snapshot->recentCaptureInterval = recentCaptureInterval;
  const auto sinceJump = std::chrono::duration<double>(executor_.instant() - clockJumpedAt_).count();
  if (sinceJump < recentCaptureInterval) snapshot->recentCaptureInterval += clockJump_;
  snapshot->services = services_;
  looking_ = snapshot;
  return snapshot;
}

/// Once the scan is over nobody else reads it.
void ScreenshotInboxMonitor::takeBack(Snapshot& snapshot) {
  looking_.reset();
  snapshot.known.reset();
  pendingFiles_.swap(snapshot.pending);
  ignoredFiles_.swap(snapshot.ignored);
  arrivalEvidence_.swap(snapshot.evidence);
  for (const Note& note : std::exchange(notes_, {})) note.isKnown ? noteKnown(note.url) : noteUnknown(note.url);
}

}  // namespace quillmere
