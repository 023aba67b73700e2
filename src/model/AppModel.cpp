#include "model/AppModel.h"

#include <algorithm>

#include "foundation/FileStatus.h"

namespace quillmere {
AppModel::AppModel(AppModelDependencies dependencies)
    : dependencies_(std::move(dependencies)),
      settings_(*dependencies_.defaults, changed),
      prompts_(dependencies_, items_, *this, changed),
      extraction_(dependencies_, prompts_, changed),
      expirationScheduler_(*dependencies_.executor, *dependencies_.systemEvents, dependencies_.now),
      popupAutoSaveScheduler_(*dependencies_.executor, dependencies_.now),
      access_(*dependencies_.securityScope),
      reconciliations_(*dependencies_.executor, *this),
      downloads_(dependencies_,
                 [this](const UUID& id, std::optional<DownloadState> state) {
                   setDownloadState(id, state);
                   if (!state) refreshAfterDownload(id);
                 }),
      analysis_(*dependencies_.analyzer, *dependencies_.executor, dependencies_.now, *this) {
  auto loaded = dependencies_.recordStore.load(now());
  items_ = ScreenshotList(std::move(loaded.items));
  recordsReadOnly_ = loaded.isReadOnly;
  if (recordsReadOnly_) backgroundIssue.set(BackgroundIssue{BackgroundIssue::Kind::recordsReadOnly});
  refreshLoginItemStatus();
  dependencies_.monitor->setIncludesNonCaptureImages(*settings_.includesNonCaptureImages);
  wireMonitor();
}

AppModel::~AppModel() {
  saveTask_.cancel();
  locationCheckTask_.cancel();
  itemAccessTask_.cancel();
  // The monitor outlives the model and must not call it any more.
  dependencies_.monitor->onScreenshot = nullptr;
  dependencies_.monitor->onArrivedScreenshot = nullptr;
  dependencies_.monitor->onRemoval = nullptr;
  dependencies_.monitor->onStatusChange = nullptr;
  if (hotKeyToken_) dependencies_.hotKeys->unregister(*hotKeyToken_);
  transfers_.removeCopies();
}

void AppModel::wireMonitor() {
  ScreenshotMonitoring& monitor = *dependencies_.monitor;
  monitor.onScreenshot = [this](const FileURL& url) { record(url, Origin::capturedHere); };
  monitor.onArrivedScreenshot = [this](const FileURL& url) { record(url, Origin::elsewhere); };
  monitor.onRemoval = [this](const std::vector<FileURL>& urls) { handleRemoval(urls); };
  monitor.onStatusChange = [this](WatcherStatus status) { handleStatus(status); };
}

void AppModel::start() {
  if (didStart_) return;
  didStart_ = true;
  popupAutoSaveScheduler_.configure([this](const UUID& id) { return isPopupPaused(id); },
                                    [this](const UUID& id) { popupTimedOut(id); });
  expirationScheduler_.start([this](const UUID& id) { expireOne(id); }, [this] { saveAfterExpiry(); });
  transfers_.removeLeftCopies();
  restoreWatchFolder();
  replacement_.finishBegun(*watchFolderURL);
  finishMoves();
  refreshScreenshotLocation();
  observeSystem();
  checkLocationRegularly();
  if (dependencies_.interruptedSince) {
    isRecovering_ = true;
    dependencies_.monitor->expectArrivalsSince(*dependencies_.interruptedSince);
  }
  dependencies_.monitor->watch(*watchFolderURL);
  dependencies_.monitor->start();
  observeHotKeys();
  registerHotKey();
  refreshModelAvailability();
  ReconcileRequest everything;
  everything.completions.push_back([this] { finishStart(); });
  reconcile(std::move(everything));
}

/// After the first reconciliation: what comes back from an earlier run does so only when its file has been checked.
void AppModel::finishStart() {
  UUIDMap<Date> expirations;
  items_.forEach([&](const ScreenshotItem& item) {
    if (item.state == ScreenshotItem::State::temporary && item.expiresAt) expirations[item.id] = *item.expiresAt;
  });
  expirationScheduler_.schedule(expirations);
  isRecovering_ = false;
  for (const UUID& id : pendingPrompts()) prompts_.enqueue(id);
  if (*settings_.analyzeScreenshots) startMissingAnalysis();
}

void AppModel::observeSystem() {
  SystemEvents& events = *dependencies_.systemEvents;
  const auto findsLostFolder = [this] {
    const bool isLost =
        *watcherStatus == WatcherStatus::notFound || *watcherStatus == WatcherStatus::volumeNotConnected;
    return isLost && retryWatchFolder();
  };
  observers_.push_back(events.didBecomeActive.connect([this, findsLostFolder] {
    refreshScreenshotLocation();
    refreshLoginItemStatus();
    if (*settings_.analyzeScreenshots) refreshModelAvailability();
    tryHotKeyAgain();
    // The monitor's own news of the folder will be no change any more, so its records are looked at from here.
    if (findsLostFolder()) reconcile({});
  }));
  observers_.push_back(dependencies_.loginItems->changed.connect([this] { refreshLoginItemStatus(); }));
  observers_.push_back(events.didWake.connect([this, findsLostFolder] {
    tryHotKeyAgain();
    findsLostFolder();
    reconcile({.ids = std::nullopt, .polite = true, .dropsUnavailableFromQueue = false, .completions = {}});
  }));
  const auto observe = [this](Signal<>& event, bool& flag, bool value) {
    observers_.push_back(event.connect([this, &flag, value] {
      flag = value;
      updateSystemPause();
    }));
  };
  observe(events.screensDidSleep, screensAsleep_, true);
  observe(events.screensDidWake, screensAsleep_, false);
  observe(events.sessionDidResign, sessionLocked_, true);
  observe(events.sessionDidBecomeActive, sessionLocked_, false);
}

/// A popup does not count down while nobody can see it.
void AppModel::updateSystemPause() {
  popupAutoSaveScheduler_.setSystemPaused(screensAsleep_ || sessionLocked_);
}

// --- Messages ---

void AppModel::show(ErrorScope scope, const QString& title, const QString& message) {
  const ScopedError error{UUID::createUuid(), title, message};
  switch (scope) {
    case ErrorScope::popup:
      promptError.set(error);
      announce(title + QLatin1Char(' ') + message, AnnouncementPriority::high);
      return;
    case ErrorScope::inbox:
      inboxError.set(error);
      return;
    case ErrorScope::settings:
      settingsError.set(error);
      return;
  }
}

void AppModel::dismissError(ErrorScope scope) {
  switch (scope) {
    case ErrorScope::popup:
      promptError.set(std::nullopt);
      return;
    case ErrorScope::inbox:
      inboxError.set(std::nullopt);
      return;
    case ErrorScope::settings:
      settingsError.set(std::nullopt);
      return;
  }
}

void AppModel::dismissBackgroundIssue() {
  if (!*backgroundIssue) return;
  switch ((*backgroundIssue)->kind) {
    case BackgroundIssue::Kind::expiredScreenshotsNotTrashed: {
      // Dismissing is an immediate retry with a fresh count.
      UUIDMap<Date> retries;
      for (const UUID& id : expiryRetries_.restart()) retries[id] = now();
      expirationScheduler_.schedule(retries);
      backgroundIssue.set(std::nullopt);
      return;
    }
    case BackgroundIssue::Kind::recordsReadOnly: {
      const auto& store = dependencies_.recordStore;
      const bool isSafe = store.backup(ScreenshotRecordStore::BackupReason::backup, now()) || isAbsent(store.fileURL);
      if (!isSafe) return;
      recordsReadOnly_ = false;
      backgroundIssue.set(std::nullopt);
      saveNow();
      return;
    }
    default:
      backgroundIssue.set(std::nullopt);
  }
}

void AppModel::announce(const QString& text, AnnouncementPriority priority) const {
  dependencies_.announcer->announce(text, priority);
}

// --- Saving ---

void AppModel::saveNow() {
  saveTask_.cancel();
  setSaveTask({});
  if (recordsReadOnly_) {
    backgroundIssue.set(BackgroundIssue{BackgroundIssue::Kind::recordsReadOnly});
    return;
  }
  if (!trySaving()) backgroundIssue.set(BackgroundIssue{BackgroundIssue::Kind::recordsNotSaved});
}

/// Without a word of a failure, which has been told: a banner that was dismissed stays away.
bool AppModel::trySaving() {
  constexpr int kMostDoublings = 5;
  // After a power cut the list may be older than the files, never newer: a file that the list tells gone would come
  // back.
  dependencies_.fileOperations->flush();
  if (!listWriter_.save(items_, dependencies_.recordStore.fileURL)) {
    const Duration pause = std::chrono::seconds(1 << std::min(failedSaves_++, kMostDoublings));
    setSaveTask(saveAgain(lifetime_.weak(this), pause));
    return false;
  }
  failedSaves_ = 0;
  if (*backgroundIssue == BackgroundIssue{BackgroundIssue::Kind::recordsNotSaved}) backgroundIssue.set(std::nullopt);
  return true;
}

Task<> AppModel::saveAgain(Weak<AppModel> self, Duration pause) {
  auto waiting = self->dependencies_.executor->sleep(pause);
  const bool elapsed = co_await waiting;
  if (!elapsed || !self) co_return;
  self->setSaveTask({});
  self->trySaving();
}

void AppModel::scheduleSave() {
  if (!saveTask_) setSaveTask(saveLater(lifetime_.weak(this)));
}

void AppModel::setSaveTask(Task<> task) {
  const bool wasPending = hasPendingSave();
  saveTask_ = std::move(task);
  if (hasPendingSave() != wasPending) changed(ModelChange{ModelField::unsavedWork});
}

/// Counted from the first change, so that a steady stream is saved too.
Task<> AppModel::saveLater(Weak<AppModel> self) {
  auto pause = self->dependencies_.executor->sleep(self->dependencies_.saveCoalescingDelay);
  const bool elapsed = co_await pause;
  if (elapsed && self) self->saveNow();
}

// --- Records ---

bool AppModel::updateItem(size_t index, const std::function<void(ScreenshotItem&)>& change) {
  const ScreenshotItem before = items_[index];
  if (!items_.update(index, change)) return false;
  const ScreenshotItem& after = items_[index];
  if (after.url != before.url || after.fileIdentity != before.fileIdentity) {
    forgetInIndex(before);
    if (recordIndexCache_) recordIndexCache_->add(after, watchFolderPaths_);
  }
  if (gathered_) {
    gathered_->push_back(index);
  } else {
    changed(ModelChange{ModelField::items, ModelChange::Rows::changed, {index}});
  }
  return true;
}

void AppModel::changeTogether(const std::function<void()>& changes) {
  std::vector<size_t> indices;
  gathered_ = &indices;
  changes();
  gathered_ = nullptr;
  if (indices.empty()) return;
  std::sort(indices.begin(), indices.end());
  changed(ModelChange{ModelField::items, ModelChange::Rows::changed, std::move(indices)});
}

void AppModel::forgetInIndex(const ScreenshotItem& item) {
  if (recordIndexCache_ && !recordIndexCache_->remove(item)) recordIndexCache_.reset();
}

void AppModel::insertNewest(ScreenshotItem item) {
  // Added to the index rather than rebuilding it: a burst of arrivals must not read every record's path again.
  if (recordIndexCache_) recordIndexCache_->add(item, watchFolderPaths_);
  items_.insertNewest(std::move(item));
  changed(ModelChange{ModelField::items, ModelChange::Rows::inserted, {0}});
}

void AppModel::setMember(Field<UUIDSet>& set, const UUID& id, bool isMember) {
  if (set->contains(id) == isMember) return;
  set.change([&](UUIDSet& ids) {
    if (isMember) {
      ids.insert(id);
    } else {
      ids.erase(id);
    }
  });
}

}  // namespace quillmere
