#include "model/AppModel.h"

#include <algorithm>
#include <array>

#include "foundation/FileStatus.h"

namespace quillmere {
AppModel::AppModel(AppModelDependencies dependencies)
    : dependencies_(std::move(dependencies)),
      settings_(*dependencies_.defaults, changed),
      prompts_(dependencies_, items_, *this, changed),
      extraction_(dependencies_, prompts_, changed),
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
  saver_.onEnd = [this](bool isSaved, ListSaver::Cause cause) { saveEnded(isSaved, cause); };
  saver_.onPendingChanged = [this] { followSaving(); };
  refreshLoginItemStatus();
  dependencies_.monitor->setIncludesNonCaptureImages(*settings_.includesNonCaptureImages);
  wireMonitor();
}

AppModel::~AppModel() {
  saver_.saveLast();
  locationCheckTask_.cancel();
  itemAccessTask_.cancel();
  // The monitor outlives the model and must not call it any more.
  dependencies_.monitor->onScreenshot = nullptr;
  dependencies_.monitor->onArrivedScreenshot = nullptr;
  dependencies_.monitor->onNewcomer = nullptr;
  dependencies_.monitor->onRemoval = nullptr;
  dependencies_.monitor->onStatusChange = nullptr;
  if (hotKeyToken_) dependencies_.hotKeys->unregister(*hotKeyToken_);
  transfers_.removeCopies();
}

void AppModel::wireMonitor() {
  ScreenshotMonitoring& monitor = *dependencies_.monitor;
  monitor.onScreenshot = [this](const FileURL& url) { record(url, Origin::capturedHere); };
  monitor.onArrivedScreenshot = [this](const FileURL& url) { record(url, Origin::elsewhere); };
  monitor.onNewcomer = [this](const FileURL& url) {
    if (!isRecovering_ && prompts_.queue->empty()) dependencies_.promptPresenter->expect(url, *this);
  };
  monitor.onRemoval = [this](const std::vector<FileURL>& urls) { handleRemoval(urls); };
  monitor.onStatusChange = [this](WatcherStatus status) { handleStatus(status); };
}

void AppModel::start() {
  if (didStart_) return;
  didStart_ = true;
  popupAutoSaveScheduler_.configure([this](const UUID& id) { return isPopupPaused(id); },
                                    [this](const UUID& id) { popupTimedOut(id); });
  expiry_.start();
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
  expiry_.schedule(expirations);
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
      expiry_.retryRefused();
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

ListSaver::Services AppModel::saverServices() const {
  Executor* disk = dependencies_.disk ? dependencies_.disk : dependencies_.executor;
  return {dependencies_.executor, disk, [files = dependencies_.fileOperations] { files->flush(); },
          dependencies_.recordStore.fileURL, [this] { return awaitedSince(); }};
}

std::optional<Date> AppModel::awaitedSince() const {
  const auto seen = dependencies_.monitor->awaitedSince();
  if (laterArrivals_.empty()) return seen;
  return std::min(laterArrivalsSince_, seen.value_or(laterArrivalsSince_));
}

bool AppModel::canSave() {
  if (recordsReadOnly_) backgroundIssue.set(BackgroundIssue{BackgroundIssue::Kind::recordsReadOnly});
  return !recordsReadOnly_;
}

void AppModel::saveNow() {
  if (canSave()) saver_.save();
}

void AppModel::saveInStream() {
  constexpr Duration kPause = std::chrono::seconds(1);
  if (canSave()) saver_.saveInStream(kPause);
}

void AppModel::scheduleSave() {
  if (canSave()) saver_.saveWithin(dependencies_.saveCoalescingDelay);
}

Task<bool> AppModel::whenSaved() {
  return runWhenSaved(lifetime_.weak(this));
}

Task<bool> AppModel::runWhenSaved(Weak<AppModel> self) {
  if (self->recordsReadOnly_) co_return false;
  auto saving = self->saver_.whenSaved();
  const SaveOutcome outcome = co_await saving;
  co_return outcome == SaveOutcome::saved;
}

void AppModel::saveEnded(bool isSaved, ListSaver::Cause cause) {
  using Kind = BackgroundIssue::Kind;
  if (isSaved) {
    if (*backgroundIssue == BackgroundIssue{Kind::recordsNotSaved}) backgroundIssue.set(std::nullopt);
  } else if (cause == ListSaver::Cause::asked) {
    // A failure that has been told is not told again: a banner that was dismissed stays away.
    backgroundIssue.set(BackgroundIssue{Kind::recordsNotSaved});
  }
}

void AppModel::followSaving() {
  const BackgroundIssue waiting{BackgroundIssue::Kind::recordsWaiting};
  if (isDiskSlow()) {
    if (!*backgroundIssue) backgroundIssue.set(waiting);
  } else if (*backgroundIssue == waiting) {
    backgroundIssue.set(std::nullopt);
  }
  changed(ModelChange{ModelField::unsavedWork});
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
  setMembers(set, std::array{id}, isMember);
}

/// In its place: thousands that come and go one by one would else copy the rest each time.
template <typename IDs>
void AppModel::setMembers(Field<UUIDSet>& set, const IDs& ids, bool isMember) {
  set.modify([&](UUIDSet& members) {
    const size_t before = members.size();
    for (const UUID& id : ids) {
      if (isMember) {
        members.insert(id);
      } else {
        members.erase(id);
      }
    }
    return members.size() != before;
  });
}

template void AppModel::setMembers(Field<UUIDSet>& set, const std::vector<UUID>& ids, bool isMember);
template void AppModel::setMembers(Field<UUIDSet>& set, const UUIDSet& ids, bool isMember);

}  // namespace quillmere
