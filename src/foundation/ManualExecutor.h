#pragma once

#include <deque>
#include <map>
#include <vector>

#include "foundation/Executor.h"

namespace quillmere {

/// An executor for tests: time moves only in `advance`, and background work runs, on the calling thread, only when the
/// test lets it.
class ManualExecutor final : public Executor {
 public:
  ~ManualExecutor() override;

  void post(std::function<void()> work) override;
  DelayID startDelay(Duration delay, DelayEnd end) override;
  void cancelDelay(DelayID delay) override;
  void runInBackground(std::function<void()> work, std::function<void()> done) override;
  Instant instant() const override { return instant_; }

  /// Runs what was posted, and what that posts, until nothing is left. Background work is run too unless it is held.
  void drain();
  /// Moves time on, ending each delay at its own moment and draining after each.
  void advance(Duration time);
  /// Keeps background work waiting until `runHeldBackground`, so that a test can act while it is under way.
  void holdBackground() { holdsBackground_ = true; }
  void runHeldBackground();
  /// Background work is over before whoever asks for it goes on, unless it is held: a disk that never lets one wait.
  void answerAtOnce() { answersAtOnce_ = true; }

  size_t pendingDelays() const { return delays_.size(); }
  size_t heldBackground() const { return background_.size(); }
  /// How long until the next delay ends; none without one.
  std::optional<Duration> nextDelay() const;

 private:
  struct Delay {
    Instant deadline;
    DelayEnd end;
  };
  struct Work {
    std::function<void()> work;
    std::function<void()> done;
  };
  std::map<DelayID, Delay>::iterator earliest();

  Instant instant_{};
  DelayID nextID_ = 1;
  std::map<DelayID, Delay> delays_;
  std::deque<std::function<void()>> posted_;
  std::deque<Work> background_;
  bool holdsBackground_ = false;
  bool answersAtOnce_ = false;
};

}  // namespace quillmere
