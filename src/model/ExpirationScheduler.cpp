#include "model/ExpirationScheduler.h"

#include <algorithm>
#include <vector>

namespace quillmere {
namespace {

constexpr double kLongestSleep = 30.0;
/// Each may put a file in the Trash, which takes some tenths of a millisecond.
constexpr int kMostInOneTurn = 10;

}  // namespace

ExpirationScheduler::ExpirationScheduler(Executor& executor, SystemEvents& systemEvents, std::function<Date()> now)
    : executor_(executor), systemEvents_(systemEvents), now_(std::move(now)) {}

ExpirationScheduler::~ExpirationScheduler() {
  timerTask_.cancel();
}

void ExpirationScheduler::start(std::function<void(const UUID&)> onExpiration, std::function<void()> onFired) {
  onExpiration_ = std::move(onExpiration);
  onFired_ = std::move(onFired);
  if (!wakeObserver_) {
    wakeObserver_ = systemEvents_.didWake.connect([this] {
      fireDue(now_());
      rearm();
    });
  }
  rearm();
}

void ExpirationScheduler::set(const UUID& id, Date moment) {
  erase(id);
  expirations_[id] = moment;
  order_.emplace(moment, id);
}

bool ExpirationScheduler::erase(const UUID& id) {
  const auto entry = expirations_.find(id);
  if (entry == expirations_.end()) return false;
  order_.erase({entry->second, id});
  expirations_.erase(entry);
  return true;
}

void ExpirationScheduler::schedule(const UUID& id, Date moment) {
  set(id, moment);
  rearm();
}

void ExpirationScheduler::schedule(const UUIDMap<Date>& entries) {
  for (const auto& [id, moment] : entries) set(id, moment);
  rearm();
}

void ExpirationScheduler::cancel(const UUID& id) {
  if (erase(id)) rearm();
}

void ExpirationScheduler::rearm() {
  timerTask_.cancel();
  timerTask_ = {};
  if (!onExpiration_ || order_.empty()) return;
  const double delay = std::clamp(order_.begin()->first - now_(), 0.0, kLongestSleep);
  timerTask_ = waitAndFire(lifetime_.weak(this), seconds(delay));
}

Task<> ExpirationScheduler::waitAndFire(Weak<ExpirationScheduler> self, Duration delay) {
  auto pause = self->executor_.sleep(delay);
  const bool elapsed = co_await pause;
  // A rearm that races with the end of the sleep has put another task in this one's place.
  if (!elapsed || co_await isCancelled || !self) co_return;
  self->timerTask_ = {};
  self->fireDue(self->now_());
  if (self) self->rearm();
}

void ExpirationScheduler::fireDue(Date moment) {
  std::vector<UUID> due;
  for (const auto& [date, id] : order_) {
    if (date > moment || due.size() == kMostInOneTurn) break;
    due.push_back(id);
  }
  for (const UUID& id : due) {
    // A handler may have cancelled or moved a later one.
    const auto entry = expirations_.find(id);
    if (entry == expirations_.end() || entry->second > moment) continue;
    erase(id);
    if (onExpiration_) onExpiration_(id);
  }
  const bool isLast = order_.empty() || order_.begin()->first > moment;
  if (!due.empty() && isLast && onFired_) onFired_();
}

}  // namespace quillmere
