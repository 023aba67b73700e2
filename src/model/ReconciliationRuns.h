#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "foundation/Executor.h"
#include "foundation/Weak.h"
#include "model/Reconciliation.h"

namespace quillmere {

/// Which records are to be compared with the file system, and how what comes of it is told.
struct ReconcileRequest {
  std::optional<UUIDSet> ids;              ///< none: every record
  bool polite = false;                     ///< a popup that comes up by it does not interrupt what is being read out
  bool dropsUnavailableFromQueue = false;  ///< what cannot be reached is not asked about any more
  std::vector<std::function<void()>> completions;
};

/// The records as a run needs them.
class ReconciledRecords {
 public:
  virtual ~ReconciledRecords() = default;
  /// The records that are to be looked at, and the world as it is now.
  virtual ReconcileRun prepareRun(const std::optional<UUIDSet>& ids) = 0;
  virtual void applyRun(const ReconcileRun& run, const ReconcileRequest& request) = 0;
};

/// Compares records with the file system in the background, one run at a time. What is asked for during a run is
/// gathered to one run after it. Main thread.
class ReconciliationRuns {
 public:
  /// Both outlive this.
  ReconciliationRuns(Executor& executor, ReconciledRecords& records) : executor_(executor), records_(records) {}
  ~ReconciliationRuns() { task_.cancel(); }

  void request(ReconcileRequest request);
  bool isRunning() const { return static_cast<bool>(task_); }

  /// A file came under a record's path. A run that is under way may have looked before, and found the old one gone.
  void noteArrival(const UUID& id);
  /// Whether that happened during the present run.
  bool hasArrived(const UUID& id) const { return arrived_.contains(id); }

 private:
  static Task<> run(Weak<ReconciliationRuns> self, ReconcileRequest request);
  void queue(ReconcileRequest request);

  Executor& executor_;
  ReconciledRecords& records_;
  Task<> task_;
  std::optional<ReconcileRequest> queued_;
  UUIDSet arrived_;
  Lifetime lifetime_;
};

}  // namespace quillmere
