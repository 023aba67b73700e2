#pragma once

#include <algorithm>
#include <memory>
#include <vector>

#include "model/ScreenshotAnalyzing.h"

namespace quillmere::testing {

/// Answers at once as it was told, or leaves a call open until the test answers it. Counts what runs at a time.
class FakeAnalyzer final : public ScreenshotAnalyzing {
 public:
  /// A call that waits for its answer.
  template <typename Value>
  struct Call {
    FileURL url;
    std::optional<QString> text;
    std::optional<Value> value;
    std::shared_ptr<Continuation> waiter;
    bool isCancelled = false;
  };
  using Description = Call<DescribeOutcome>;
  using Reading = Call<std::optional<QString>>;
  using Look = Call<std::optional<AnalysisError::Unavailability>>;

  Task<std::optional<AnalysisError::Unavailability>> availability() override;
  Task<DescribeOutcome> describe(FileURL url, std::optional<QString> known) override;
  Task<std::optional<QString>> recognizeText(FileURL url) override;
  std::optional<ForeignModelServer> foreignServer() const override { return foreign; }

  template <typename Value>
  static void answer(const std::shared_ptr<Call<Value>>& call, Value value) {
    call->value = std::move(value);
    if (const auto waiter = std::exchange(call->waiter, nullptr)) waiter->resume();
  }

  std::optional<AnalysisError::Unavailability> unavailability;
  std::optional<ForeignModelServer> foreign;
  DescribeOutcome description = AnalysisCancelled();
  std::vector<DescribeOutcome> immediateDescriptions;
  std::optional<QString> text;
  bool holdsDescriptions = false;
  bool holdsReadings = false;
  bool holdsLooks = false;

  int availabilityLooks = 0;
  struct Asked {
    FileURL url;
    std::optional<QString> text;
  };
  std::vector<Asked> described;
  std::vector<FileURL> read;
  std::vector<std::shared_ptr<Description>> descriptions;
  std::vector<std::shared_ptr<Reading>> readings;
  std::vector<std::shared_ptr<Look>> looks;
  int describing = 0;
  int mostDescribing = 0;
  int reading = 0;
  int mostReading = 0;

 private:
  template <typename Value>
  struct Open {
    std::shared_ptr<Call<Value>> call;
    bool await_ready() const { return false; }
    template <typename Promise>
    void await_suspend(std::coroutine_handle<Promise> task) {
      auto state = task.promise().state;
      call->waiter = std::make_shared<Continuation>(task);
      state->onCancel = [open = call] {
        open->isCancelled = true;
        if (const auto waiter = std::exchange(open->waiter, nullptr)) waiter->resume();
      };
    }
    void await_resume() const {}
  };
};

}  // namespace quillmere::testing
