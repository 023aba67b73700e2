#include "model/ReconciliationRuns.h"

#include <atomic>
#include <memory>
#include <utility>

#include "foundation/OnCancel.h"
#include "model/ReconciliationWork.h"

namespace quillmere {

void ReconciliationRuns::request(ReconcileRequest request) {
  if (task_) {
    queue(std::move(request));
    return;
  }
  task_ = run(lifetime_.weak(this), std::move(request));
  // A run that ended at once has nothing to clear the handle after it.
  if (task_.isDone()) task_ = {};
}

void ReconciliationRuns::queue(ReconcileRequest request) {
  if (!queued_) {
    queued_ = std::move(request);
    return;
  }
  if (!request.ids) {
    queued_->ids.reset();
  } else if (queued_->ids) {
    queued_->ids->insert(request.ids->begin(), request.ids->end());
  }
  queued_->polite = queued_->polite || request.polite;
  queued_->dropsUnavailableFromQueue = queued_->dropsUnavailableFromQueue || request.dropsUnavailableFromQueue;
  for (auto& completion : request.completions) queued_->completions.push_back(std::move(completion));
}

void ReconciliationRuns::noteArrival(const UUID& id) {
  if (task_) arrived_.insert(id);
}

Task<> ReconciliationRuns::run(Weak<ReconciliationRuns> self, ReconcileRequest request) {
  self->arrived_.clear();
  Executor& executor = self->executor_;
  auto run = std::make_shared<ReconcileRun>(self->records_.prepareRun(request.ids));
  const auto isStopped = std::make_shared<std::atomic<bool>>(false);
  std::function<bool()> work = [run, isStopped] {
    run->outcomes = resolveOutcomes(run->inputs, run->environment, *isStopped);
    return true;
  };
  // The end of the program does not wait for ten thousand files.
  OnCancel stopping([isStopped] { *isStopped = true; });
  co_await stopping;
  auto resolving = executor.background(work);
  co_await resolving;
  work = nullptr;
  if (!self) co_return;
  self->records_.applyRun(*run, request);
  // Freeing so many texts takes as long as applying them.
  executor.runInBackground([garbage = std::move(run)]() mutable { garbage.reset(); }, [] {});
  for (const auto& completion : request.completions) {
    if (self) completion();
  }
  if (!self) co_return;
  self->task_ = {};
  if (auto next = std::exchange(self->queued_, std::nullopt)) self->request(std::move(*next));
}

}  // namespace quillmere
