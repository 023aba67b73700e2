#pragma once

#include <QtCore/QObject>
#include <QtCore/QThreadPool>
#include <map>
#include <memory>

#include "foundation/Executor.h"

class QSocketNotifier;

namespace quillmere {

/// The running executor: Qt's event loop, a small thread pool, and one timerfd on CLOCK_BOOTTIME, which goes on
/// counting while the machine sleeps.
class QtExecutor final : public Executor {
 public:
  QtExecutor();
  ~QtExecutor() override;

  void post(std::function<void()> work) override;
  DelayID startDelay(Duration delay, DelayEnd end) override;
  void cancelDelay(DelayID delay) override;
  void runInBackground(std::function<void()> work, std::function<void()> done) override;
  Instant instant() const override;

 private:
  void arm();
  void endDueDelays();

  struct Delay {
    DelayID id;
    DelayEnd end;
  };
  QObject mainThread_;
  QThreadPool pool_;
  int timer_ = -1;
  std::unique_ptr<QSocketNotifier> notifier_;
  std::multimap<Instant, Delay> delays_;
  std::map<DelayID, Instant> deadlines_;
  DelayID nextID_ = 1;
};

}  // namespace quillmere
