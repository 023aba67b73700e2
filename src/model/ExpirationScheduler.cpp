#include "model/ExpirationScheduler.h"

#include <algorithm>
#include <vector>

namespace quillmere {
namespace {

constexpr double kLongestSleep = 30.0;

}  // namespace

ExpirationScheduler::ExpirationScheduler(Executor& executor, SystemEvents& systemEvents, std::function<Date()> now)
    : executor_(executor), systemEvents_(systemEvents), now_(std::move(now)) {}

ExpirationScheduler::~ExpirationScheduler() {
  timerTask_.cancel();
}

void ExpirationScheduler::start(std::function<void(const UUID&)> onExpiration) {
  onExpiration_ = std::move(onExpiration);
  if (!wakeObserver_) {
    wakeObserver_ = systemEvents_.didWake.connect([this] {
      fireDue(now_());
      rearm();
    });
  }
  rearm();
}

void ExpirationScheduler::schedule(const UUID& id, Date moment) {
  expirations_[id] = moment;
  rearm();
}

void ExpirationScheduler::schedule(const UUIDMap<Date>& entries) {
  for (const auto& [id, moment] : entries) expirations_[id] = moment;
  rearm();
}

void ExpirationScheduler::cancel(const UUID& id) {
  if (expirations_.erase(id) > 0) rearm();
}

void ExpirationScheduler::rearm() {
  timerTask_.cancel();
  timerTask_ = {};
  if (!onExpiration_ || expirations_.empty()) return;
  const auto earliest = std::min_element(expirations_.begin(), expirations_.end(),
                                         [](const auto& a, const auto& b) { return a.second < b.second; });
  const double delay = std::clamp(earliest->second - now_(), 0.0, kLongestSleep);
  timerTask_ = waitAndFire(lifetime_.weak(this), seconds(delay));
}

Task<> ExpirationScheduler::waitAndFire(Weak<ExpirationScheduler> self, Duration delay) {
  const bool elapsed = co_await self->executor_.sleep(delay);
  // A rearm that races with the end of the sleep has put another task in this one's place.
  if (!elapsed || co_await isCancelled || !self) co_return;
  self->timerTask_ = {};
  self->fireDue(self->now_());
  if (self) self->rearm();
}

void ExpirationScheduler::fireDue(Date moment) {
  std::vector<UUID> due;
  for (const auto& [id, date] : expirations_) {
    if (date <= moment) due.push_back(id);
  }
  for (const UUID& id : due) {
    // A handler may have cancelled or moved a later one.
    const auto entry = expirations_.find(id);
    if (entry == expirations_.end() || entry->second > moment) continue;
    expirations_.erase(entry);
    if (onExpiration_) onExpiration_(id);
  }
}

}  // namespace quillmere
