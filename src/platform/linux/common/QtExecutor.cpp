#include "platform/linux/common/QtExecutor.h"

#include <malloc.h>
#include <sys/timerfd.h>
#include <unistd.h>
#include <QtCore/QCoreApplication>
#include <QtCore/QSocketNotifier>
#include <algorithm>
#include <ctime>
#include <utility>

namespace quillmere {
namespace {

/// After the last background work.
constexpr Duration kUntilRest = std::chrono::seconds(5);

timespec toTimespec(Duration time) {
  const auto whole = std::chrono::duration_cast<std::chrono::seconds>(time);
  return {static_cast<time_t>(whole.count()), static_cast<long>((time - whole).count())};
}

}  // namespace

void QtExecutor::Queue::push(std::function<void()> work) {
  const std::lock_guard lock(mutex_);
  waiting_.push_back(std::move(work));
}

std::function<void()> QtExecutor::Queue::pop() {
  const std::lock_guard lock(mutex_);
  auto work = std::move(waiting_.front());
  waiting_.pop_front();
  return work;
}

bool QtExecutor::MainThread::event(QEvent* event) {
  if (event->type() != QEvent::User) return QObject::event(event);
  posted_.pop()();
  return true;
}

QtExecutor::QtExecutor(int threads) : timer_(::timerfd_create(CLOCK_BOOTTIME, TFD_CLOEXEC | TFD_NONBLOCK)) {
  pool_.setMaxThreadCount(threads);
  notifier_ = std::make_unique<QSocketNotifier>(timer_, QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, &mainThread_, [this] { endDueDelays(); });
}

QtExecutor::~QtExecutor() {
  finishBackground();
  while (!delays_.empty()) {
    auto node = delays_.extract(delays_.begin());
    deadlines_.erase(node.mapped().id);
    node.mapped().end(false);
  }
  notifier_.reset();
  ::close(timer_);
}

void QtExecutor::post(std::function<void()> work) {
  posted_.push(std::move(work));
  QCoreApplication::postEvent(&mainThread_, new QEvent(QEvent::User));
}

Executor::DelayID QtExecutor::startDelay(Duration delay, DelayEnd end) {
  const DelayID id = nextID_++;
  const Instant deadline = instant() + std::max(delay, Duration::zero());
  const auto entry = delays_.emplace(deadline, Delay{id, std::move(end)});
  deadlines_[id] = deadline;
  if (entry == delays_.begin()) arm();
  return id;
}

void QtExecutor::cancelDelay(DelayID delay) {
  const auto deadline = deadlines_.find(delay);
  if (deadline == deadlines_.end()) return;
  const auto [first, last] = delays_.equal_range(deadline->second);
  const auto entry = std::find_if(first, last, [&](const auto& candidate) { return candidate.second.id == delay; });
  const bool wasNext = entry == delays_.begin();
  delays_.erase(entry);
  deadlines_.erase(deadline);
  if (wasNext) arm();
}

void QtExecutor::runInBackground(std::function<void()> work, std::function<void()> done) {
  background_.push([this, work = std::move(work), done = std::move(done)]() mutable {
    work();
    post([this, done = std::move(done)] {
      done();
      workEnded();
    });
  });
  pool_.start([this] { background_.pop()(); });
}

void QtExecutor::workEnded() {
  hasWorked_ = true;
  if (!std::exchange(isRestDue_, true)) rest();
}

/// The list of a start, thousands of arrivals and pictures leave as much behind as they needed, in pieces too small for
/// the allocator to give back by itself.
void QtExecutor::rest() {
  startDelay(kUntilRest, [this](bool isOver) {
    if (!isOver) return;
    if (std::exchange(hasWorked_, false)) {
      rest();
      return;
    }
    isRestDue_ = false;
    background_.push([] { ::malloc_trim(0); });
    pool_.start([this] { background_.pop()(); });
  });
}

Instant QtExecutor::instant() const {
  timespec now{};
  ::clock_gettime(CLOCK_BOOTTIME, &now);
  return Instant(std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec));
}

void QtExecutor::arm() {
  itimerspec setting{};
  if (!delays_.empty()) {
    // A moment of zero would switch the timer off.
    const Duration deadline = std::max<Duration>(delays_.begin()->first.time_since_epoch(), Duration(1));
    setting.it_value = toTimespec(deadline);
  }
  ::timerfd_settime(timer_, TFD_TIMER_ABSTIME, &setting, nullptr);
}

void QtExecutor::endDueDelays() {
  uint64_t count = 0;
  [[maybe_unused]] const auto got = ::read(timer_, &count, sizeof count);
  const Instant now = instant();
  while (!delays_.empty() && delays_.begin()->first <= now) {
    auto node = delays_.extract(delays_.begin());
    deadlines_.erase(node.mapped().id);
    arm();  // before the call, which may run an event loop of its own
    node.mapped().end(true);
  }
  arm();
}

}  // namespace quillmere
