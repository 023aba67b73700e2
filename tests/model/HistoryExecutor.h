#pragma once

#include <optional>
#include <utility>
#include <vector>

#include "foundation/ManualExecutor.h"

namespace quillmere::testing {

/// A manual executor whose background work can be held in both its halves: a test chooses when the work runs and when
/// its result is delivered.
class HistoryExecutor final : public Executor {
 public:
  /// `tag` is asked when some work has run, and `delivered` told its answer when the result has been delivered.
  HistoryExecutor(std::function<std::optional<int>()> tag, std::function<void(int)> delivered)
      : tag_(std::move(tag)), delivered_(std::move(delivered)) {}

  void post(std::function<void()> work) override { inner_.post(std::move(work)); }
  DelayID startDelay(Duration delay, DelayEnd end) override { return inner_.startDelay(delay, std::move(end)); }
  void cancelDelay(DelayID delay) override { inner_.cancelDelay(delay); }
  Instant instant() const override { return inner_.instant(); }
  void runInBackground(std::function<void()> work, std::function<void()> done) override {
    jobs_.push_back({std::move(work), std::move(done), false, std::nullopt});
  }

  void hold() { isHeld_ = true; }
  void release() {
    isHeld_ = false;
    drain();
  }
  bool isHeld() const { return isHeld_; }
  bool isWorking() const { return isWorking_; }
  bool isIdle() const { return jobs_.empty(); }
  bool hasWorkToRun() const {
    return std::any_of(jobs_.begin(), jobs_.end(), [](const Job& job) { return !job.hasRun; });
  }
  bool hasResults() const {
    return std::any_of(jobs_.begin(), jobs_.end(), [](const Job& job) { return job.hasRun; });
  }
  /// Runs all work that waits; the results are kept.
  void runWork() {
    for (size_t i = 0; i < jobs_.size(); ++i) {
      if (!jobs_[i].hasRun) run(i);
    }
  }
  /// Delivers one of the results; which one has no order.
  void deliver(size_t which) {
    std::vector<size_t> ready;
    for (size_t i = 0; i < jobs_.size(); ++i) {
      if (jobs_[i].hasRun) ready.push_back(i);
    }
    if (ready.empty()) return;
    finish(ready[which % ready.size()]);
    drain();
  }
  void drain() {
    inner_.drain();
    while (!isHeld_ && !jobs_.empty()) {
      if (!jobs_.front().hasRun) run(0);
      finish(0);
      inner_.drain();
    }
  }
  /// Moves time on to the next delay's end or by `time`, whichever is less; answers what is left of it.
  Duration advanceOnce(Duration time) {
    const Duration step = std::min(time, std::max(inner_.nextDelay().value_or(time), Duration::zero()));
    inner_.advance(step);
    drain();
    return time - step;
  }
  /// The process ends: what it had under way is never heard of.
  void forgetWork() {
    isHeld_ = false;
    std::exchange(jobs_, {}).clear();
    inner_.drain();
  }

 private:
  struct Job {
    std::function<void()> work;
    std::function<void()> done;
    bool hasRun = false;
    std::optional<int> tag;
  };
  void run(size_t index) {
    const auto work = jobs_[index].work;
    isWorking_ = true;
    work();
    isWorking_ = false;
    // What happened meanwhile may have asked for more work, behind this.
    jobs_[index].hasRun = true;
    jobs_[index].tag = tag_();
  }
  void finish(size_t index) {
    const Job job = std::move(jobs_[index]);
    jobs_.erase(jobs_.begin() + static_cast<std::ptrdiff_t>(index));
    job.done();
    if (job.tag) delivered_(*job.tag);
  }

  std::function<std::optional<int>()> tag_;
  std::function<void(int)> delivered_;
  std::vector<Job> jobs_;
  bool isHeld_ = false;
  bool isWorking_ = false;
  ManualExecutor inner_;
};

}  // namespace quillmere::testing
