#include "model/PopupAutoSaveScheduler.h"

#include <algorithm>
#include <vector>

namespace quillmere {
namespace {

constexpr Duration kTick = std::chrono::milliseconds(250);
/// A stalled main thread or a machine that slept cannot eat the countdown.
constexpr double kLongestTick = 0.5;

}  // namespace

PopupAutoSaveScheduler::PopupAutoSaveScheduler(Executor& executor, std::function<Date()> now)
    : executor_(executor), now_(std::move(now)) {}

PopupAutoSaveScheduler::~PopupAutoSaveScheduler() {
  task_.cancel();
}

void PopupAutoSaveScheduler::configure(std::function<bool(const UUID&)> isPaused,
                                       std::function<void(const UUID&)> onTimeout) {
  isPaused_ = std::move(isPaused);
  onTimeout_ = std::move(onTimeout);
  task_.cancel();
  task_ = {};
  startTask();
}

void PopupAutoSaveScheduler::begin(const UUID& id, double remainingSeconds) {
  countdowns_[id] = {remainingSeconds, now_()};
  startTask();
}

void PopupAutoSaveScheduler::drop(const UUID& id) {
  countdowns_.erase(id);
  if (countdowns_.empty()) reset();
}

void PopupAutoSaveScheduler::reset() {
  countdowns_.clear();
  task_.cancel();
  task_ = {};
}

void PopupAutoSaveScheduler::setSystemPaused(bool isPaused) {
  if (isPaused == isSystemPaused_) return;
  isSystemPaused_ = isPaused;
  if (isPaused) {
    task_.cancel();
    task_ = {};
    return;
  }
  for (auto& [id, countdown] : countdowns_) countdown.lastTick = now_();
  startTask();
}

std::optional<double> PopupAutoSaveScheduler::remaining(const UUID& id) const {
  const auto found = countdowns_.find(id);
  return found == countdowns_.end() ? std::nullopt : std::optional(found->second.remaining);
}

void PopupAutoSaveScheduler::startTask() {
  if (task_ || isSystemPaused_ || countdowns_.empty() || !isPaused_ || !onTimeout_) return;
  task_ = tickRegularly(lifetime_.weak(this));
}

Task<> PopupAutoSaveScheduler::tickRegularly(Weak<PopupAutoSaveScheduler> self) {
  while (true) {
    auto pause = self->executor_.sleep(kTick);
    const bool elapsed = co_await pause;
    if (!elapsed || !self) co_return;
    self->tick(self->now_());
    if (self) self->ticked();
    if (!self || co_await isCancelled) co_return;
    if (self->countdowns_.empty()) {
      self->task_ = {};
      co_return;
    }
  }
}

void PopupAutoSaveScheduler::tick(Date moment) {
  std::vector<UUID> present;
  for (const auto& [id, countdown] : countdowns_) present.push_back(id);
  for (const UUID& id : present) {
    const auto found = countdowns_.find(id);
    if (found == countdowns_.end()) continue;
    Countdown& countdown = found->second;
    if (!isSystemPaused_ && !isPaused_(id)) {
      countdown.remaining -= std::clamp(moment - countdown.lastTick, 0.0, kLongestTick);
    }
    countdown.lastTick = moment;
    if (countdown.remaining > 0) continue;
    countdowns_.erase(found);
    onTimeout_(id);
  }
}

}  // namespace quillmere
