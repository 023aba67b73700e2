#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "foundation/Executor.h"
#include "foundation/Weak.h"
#include "model/AsyncGate.h"
#include "model/ScreenshotAnalyzing.h"
#include "records/ScreenshotItem.h"

namespace quillmere {

/// The records as the pipeline needs them.
class AnalysisRecords {
 public:
  virtual ~AnalysisRecords() = default;
  virtual const ScreenshotItem* find(const UUID& id) const = 0;
  virtual void change(const UUID& id, const std::function<void(ScreenshotItem&)>& change) = 0;
  virtual void saveRecords() = 0;
  virtual void saveRecordsSoon() = 0;
  virtual void analyzingChanged(const UUIDSet& ids) = 0;
  /// Of one: thousands arrive and are read one by one.
  virtual void analyzingChanged(const UUID& id, bool isAnalyzing) = 0;
  virtual void unavailabilityChanged(const std::optional<AnalysisError>& error) = 0;
  virtual void foreignServerChanged(const std::optional<ForeignModelServer>& server) = 0;
};

/// Feeds records to text recognition and to the model and writes the results back: one model call and two recognitions
/// at a time, one job a record. A job may write, and clean up after itself, only while its token is the record's; a
/// cancelled job can still be running when a new one begins. Main thread.
class AnalysisPipeline {
 public:
  /// All of them outlive this.
  AnalysisPipeline(ScreenshotAnalyzing& analyzer, Executor& executor, std::function<Date()> now,
                   AnalysisRecords& records);
  ~AnalysisPipeline();

  /// A record that has no description and did not fail for good.
  static bool needsAnalysis(const ScreenshotItem& item);

  /// Begins a job for each record that has none.
  void start(const std::vector<UUID>& ids);
  void cancel(const UUID& id);
  void cancelAll();
  bool isAnalyzing(const UUID& id) const { return jobs_.contains(id); }

  /// The record's text, recognised if need be; concurrent requests share one recognition. Nothing when that failed or
  /// was cancelled.
  Task<std::optional<QString>> recognizedText(const UUID& id);

  /// Looks whether there is a model. `becameAvailable` is called when there was none and jobs missed it.
  void refreshAvailability(std::function<void()> becameAvailable);

  const AsyncGate& modelGate() const { return modelGate_; }
  const AsyncGate& ocrGate() const { return ocrGate_; }

 private:
  struct Job {
    UUID token;
    Task<> task;
    Task<DescribeOutcome> attempt;
  };
  struct Recognition {
    UUID token;
    Task<std::optional<QString>> task;
    Task<std::optional<QString>> reading;
  };

  static Task<> run(Weak<AnalysisPipeline> self, UUID id, UUID token);
  static Task<DescribeOutcome> attempt(Weak<AnalysisPipeline> self, UUID id, UUID token);
  static Task<std::optional<QString>> recognize(Weak<AnalysisPipeline> self, UUID id, UUID token, FileURL url);
  static Task<> refresh(Weak<AnalysisPipeline> self, std::function<void()> becameAvailable);

  /// Whether the job may go on: it is the record's, and the record is there.
  bool isCurrent(const UUID& id, const UUID& token) const;
  void finish(const UUID& id, const UUID& token);
  void apply(const UUID& id, const DescribeOutcome& outcome);
  void setUnavailability(const std::optional<AnalysisError>& error);
  double waitSeconds(const AnalysisError& busy) const;
  void tellAnalyzing();
  void dropAll();

  ScreenshotAnalyzing& analyzer_;
  Executor& executor_;
  std::function<Date()> now_;
  AnalysisRecords& records_;

  UUIDMap<Job> jobs_;
  UUIDMap<Recognition> recognitions_;
  AsyncGate modelGate_{1};
  AsyncGate ocrGate_{2};
  bool modelWasUnavailable_ = false;
  uint64_t looks_ = 0;  ///< at the model, a description counted as one
  std::optional<AnalysisError> unavailability_;
  std::optional<ForeignModelServer> foreignServer_;
  Lifetime lifetime_;
};

}  // namespace quillmere
