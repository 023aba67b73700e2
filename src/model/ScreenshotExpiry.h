#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <vector>

#include "foundation/Weak.h"
#include "model/AppModelDependencies.h"
#include "model/DecisionsUnderWay.h"
#include "model/ExpirationScheduler.h"
#include "model/ExpiryRetries.h"
#include "model/FileExpiry.h"
#include "model/FileWorker.h"
#include "records/ScreenshotList.h"

namespace quillmere {

/// The model as expiry needs it.
class ExpiringRecords {
 public:
  virtual ~ExpiringRecords() = default;
  /// Nothing else is done to these records' files as long as the hold is held.
  virtual Task<FileWorker::Hold> claimFiles(std::vector<UUID> ids) = 0;
  /// None where the program has no access to it.
  virtual std::optional<WatchFolderPaths> accessibleWatchFolder() const = 0;
  /// Whether the place of the record's file can be looked at.
  virtual bool hasAccess(const UUID& id) const = 0;
  /// Whether what is over is deleted for good, instead of moved to Trash.
  virtual bool deletesExpired() const = 0;

  /// These are kept. The one who tells saves.
  virtual void keepExpired(const UUID& id) = 0;
  virtual void expiredHasMoved(const UUID& id, const ResolvedBookmark& place) = 0;
  /// True where the file was seen to leave the folder, which is noted then.
  virtual bool noteExpiredLeft(const UUID& id) = 0;
  virtual void expiredIsUnavailable(const UUID& id) = 0;
  /// Their files are gone.
  virtual void removeRecords(const UUIDSet& ids) = 0;

  /// One more was kept, since whether its file is the screenshot cannot be told.
  virtual void tellOfKept() = 0;
  /// So many could not be thrown away; none takes the message away.
  virtual void tellOfRefused(int count) = 0;
  virtual void saveNow() = 0;
};

/// Throws Temporary screenshots away whose time is up. Main thread.
class ScreenshotExpiry {
 public:
  /// All of them outlive this.
  ScreenshotExpiry(const AppModelDependencies& dependencies, const ScreenshotList& items, DecisionsUnderWay& decisions,
                   FileWorker& fileWorker, ExpiringRecords& records);

  /// From now on, what is due goes.
  void start();
  void schedule(const UUID& id, Date moment) { scheduler_.schedule(id, moment); }
  void schedule(const UUIDMap<Date>& entries) { scheduler_.schedule(entries); }
  /// The records are gone or have been decided anew.
  void forget(const UUIDSet& ids);
  /// If its time is up, the record goes now.
  void expire(const UUID& id);
  /// A file whose turn has not come yet stays.
  void putOff(const UUID& id);
  void putOffAll();
  /// What was refused is tried again at once, with all its attempts before it.
  void retryRefused();
  const ExpirationScheduler& scheduler() const { return scheduler_; }

 private:
  void expireDue();
  static Task<> run(Weak<ScreenshotExpiry> self, std::vector<UUID> ids);
  bool canExpireNow(const UUID& id);
  void prepare(const UUID& id, std::vector<ExpiryJob>& jobs);
  void adopt(const ExpiryJob& job, const ExpiryReport& report, UUIDSet& forgotten);
  void adoptMissing(const UUID& id, bool isAbsent, UUIDSet& forgotten);
  void lookLater(const UUID& id, double seconds) { scheduler_.schedule(id, dependencies_.now() + seconds); }
  void retryUnreachable(const UUID& id);
  void noteRefusal(const UUID& id);

  const AppModelDependencies& dependencies_;
  const ScreenshotList& items_;
  DecisionsUnderWay& decisions_;
  FileWorker& fileWorker_;
  ExpiringRecords& records_;
  ExpirationScheduler scheduler_;
  ExpiryRetries retries_;
  std::vector<UUID> due_;                                 ///< their time is up, all at once
  UUIDMap<std::shared_ptr<std::atomic<bool>>> expiring_;  ///< whether each is to stay after all
  bool hasChangedRecords_ = false;
  Lifetime lifetime_;
};

}  // namespace quillmere
