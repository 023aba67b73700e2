#pragma once

#include <QtCore/QDeadlineTimer>
#include <QtCore/QObject>
#include <QtCore/QThreadPool>
#include <deque>
#include <map>
#include <memory>
#include <mutex>

#include "foundation/Executor.h"

class QSocketNotifier;

namespace quillmere {

/// The running executor: Qt's event loop, a small thread pool, and one timerfd on CLOCK_BOOTTIME, which goes on
/// counting while the machine sleeps. What background work leaves unused goes back to the system when it is over.
class QtExecutor final : public Executor {
 public:
  /// Two threads may wait for a disk, and there is still room for the rest.
  explicit QtExecutor(int threads = 4);
  ~QtExecutor() override;

  void post(std::function<void()> work) override;
  DelayID startDelay(Duration delay, DelayEnd end) override;
  void cancelDelay(DelayID delay) override;
  void runInBackground(std::function<void()> work, std::function<void()> done) override;
  Instant instant() const override;
  /// Waits for what runs in the background, which uses what others own, and answers whether it is over. Nothing is to
  /// begin any more.
  bool finishBackground(QDeadlineTimer longest = QDeadlineTimer::Forever) {
    return pool_.waitForDone(static_cast<int>(longest.remainingTime()));
  }

 private:
  void arm();
  void endDueDelays();
  void workEnded();
  void rest();

  struct Delay {
    DelayID id;
    DelayEnd end;
  };
  /// Work on its way to another thread. Qt is only told that there is some: an event of its own may be destroyed by the
  /// thread that sent it, and with it what the work holds of the main thread.
  class Queue {
   public:
    void push(std::function<void()> work);
    /// There is some.
    std::function<void()> pop();

   private:
    std::mutex mutex_;
    std::deque<std::function<void()>> waiting_;
  };
  class MainThread final : public QObject {
   public:
    explicit MainThread(Queue& posted) : posted_(posted) {}
    bool event(QEvent* event) override;

   private:
    Queue& posted_;
  };

  Queue posted_;
  Queue background_;
  MainThread mainThread_{posted_};
  QThreadPool pool_;
  int timer_ = -1;
  std::unique_ptr<QSocketNotifier> notifier_;
  std::multimap<Instant, Delay> delays_;
  std::map<DelayID, Instant> deadlines_;
  DelayID nextID_ = 1;
  bool hasWorked_ = false;  ///< since the last look
  bool isRestDue_ = false;
};

}  // namespace quillmere
