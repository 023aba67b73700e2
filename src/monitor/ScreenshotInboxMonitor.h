#pragma once

#include <memory>
#include <optional>
#include <string>

#include "foundation/Executor.h"
#include "foundation/SystemEvents.h"
#include "foundation/Weak.h"
#include "monitor/FolderScan.h"
#include "monitor/ScreenshotMonitoring.h"

namespace quillmere {

/// Tells, on the main thread, that something changed in a folder. Destroying it ends the watch.
class FolderEventWatch {
 public:
  virtual ~FolderEventWatch() = default;
  /// Whether the file of this name was last seen to be moved to another folder.
  virtual bool hasMovedOut(const std::string&) const { return false; }
  /// Whether a sync client brought the file of this name: it was renamed from the name that such a client gives to what
  /// it has not received whole.
  virtual bool wasSynced(const std::string&) const { return false; }
};
enum class FolderEvent {
  changed,
  lost,  ///< the folder itself was moved, deleted or unmounted
};
class FolderEventSource {
 public:
  virtual ~FolderEventSource() = default;
  /// Null when the folder cannot be opened.
  virtual std::unique_ptr<FolderEventWatch> open(const FileURL& folder, std::function<void(FolderEvent)> onEvent) = 0;
};

/// Watches a folder: turns every sign of change into at most one running scan at a time, and tells what the scans find.
/// An event source makes it prompt; a full scan every minute catches what events miss; wake and mounts bring a folder
/// back that was away.
class ScreenshotInboxMonitor final : public ScreenshotMonitoring {
 public:
  ScreenshotInboxMonitor(Executor& executor, SystemEvents& systemEvents, FolderEventSource& eventSource,
                         ScanServices services, std::function<Date()> now);
  ~ScreenshotInboxMonitor() override;

  void watch(std::optional<FileURL> directory) override;
  void follow(const FileURL& directory) override;
  void start() override;
  void scheduleScan(Duration after, ScanScope scope) override;
  bool includesNonCaptureImages() const override { return includesNonCaptureImages_; }
  void setIncludesNonCaptureImages(bool includes) override;
  void expectArrivalsSince(std::optional<Date> moment) override { arrivalsSince_ = moment; }
  void noteKnown(const FileURL& url) override;
  void noteUnknown(const FileURL& url) override;
  bool hasMovedOut(const FileURL& url) const override;
  std::optional<Date> awaitedSince() const override { return awaitedSince_; }
  void refresh() override;

  bool isScanning() const { return isScanning_; }
  std::optional<WatcherStatus> lastStatus() const { return lastStatus_; }

  Duration reconciliationInterval = seconds(60);
  /// How long a file that decoded completely may wait for its tag.
  double screenCaptureTagGracePeriod = 2.0;
  /// Largest gap between creation and adding of a local capture in a synced folder.
  double localArrivalTolerance = 2.0;
  /// Largest gap between a file's creation and its first sighting for it to count as captured just now.
  double recentCaptureInterval = 120.0;
  /// How long after the date that it bears itself a file counts as captured just now. Such dates are days, of the clock
  /// and time zone of whoever wrote them.
  double oldCaptureInterval = 86400.0;

 private:
  using Pending = Snapshot::PendingLook;
  /// A file that became known, or unknown again, while a scan looked.
  struct Note {
    FileURL url;
    bool isKnown = false;
  };

  // When to look.
  static Task<> reconcileRegularly(Weak<ScreenshotInboxMonitor> self);
  static Task<> scanLater(Weak<ScreenshotInboxMonitor> self, Duration delay);
  static Task<> runScan(Weak<ScreenshotInboxMonitor> self, std::shared_ptr<Snapshot> snapshot, int generation);
  void openDirectorySource();
  void handleEvent(FolderEvent event);
  void startOver(std::optional<FileURL> directory);
  void lookAtFolder();
  void cancelScheduledScan();
  void scan(ScanScope scope);
  std::shared_ptr<Snapshot> takeSnapshot(ScanScope scope);
  void takeBack(Snapshot& snapshot);
  WatcherStatus absenceStatus() const;
  void report(WatcherStatus status);
  void noteClock();

  // What a look means.
  static Task<> apply(Weak<ScreenshotInboxMonitor> self, ScanResult result, std::shared_ptr<Snapshot> snapshot);
  void applyFolder(ScanResult& result, const Snapshot& snapshot);
  void lookAgain(bool isAnyPutOff);
  static bool isAwaited(const Pending& pending);
  void forgetAbsent(const ScanResult& result);
  void applyObservation(const Observation& seen, bool isFullScan, Date now);
  void applyRepeatedLook(const Observation& seen, Pending& pending, Date now);
  void accept(const FileURL& url);

  Executor& executor_;
  SystemEvents& systemEvents_;
  FolderEventSource& eventSource_;
  ScanServices services_;
  std::function<Date()> now_;

  Task<> reconciliationTask_;
  Task<> scanTask_;
  std::optional<Instant> scanDeadline_;
  ScanScope scheduledScope_ = ScanScope::partial;
  std::unique_ptr<FolderEventWatch> directorySource_;
  std::optional<FileURL> directory_;
  bool isRunning_ = false;
  std::optional<WatcherStatus> lastStatus_;
  std::vector<Connection> systemObservers_;
  int generation_ = 0;
  bool needsBaseline_ = false;
  std::optional<Date> arrivalsSince_;
  Date watchedSince_;  ///< when the folder was given
  // The clock may be set between a capture and its first sighting: then their dates are that far apart.
  std::optional<double> clockOffset_;  ///< between the clock and the executor's time, at the last look
  double clockJump_ = 0;               ///< seconds
  Instant clockJumpedAt_{};
  bool isScanning_ = false;
  std::optional<ScanScope> queuedScan_;

  bool includesNonCaptureImages_ = false;
  // What is known of fifty thousand files takes too long to copy. While a scan looks it has all of it, the known ones
  // shared; what is noted meanwhile waits for its end.
  std::shared_ptr<const Snapshot> looking_;
  std::vector<Note> notes_;
  std::shared_ptr<URLSet> knownURLs_ = std::make_shared<URLSet>();
  URLMap<Pending> pendingFiles_;
  URLMap<Fingerprint> ignoredFiles_;
  URLMap<ArrivalEvidence> arrivalEvidence_;
  std::optional<Date> awaitedSince_;

  Lifetime lifetime_;
};

}  // namespace quillmere
