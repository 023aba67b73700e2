#include "foundation/ManualExecutor.h"

#include <algorithm>

namespace quillmere {

ManualExecutor::~ManualExecutor() {
  // Every wait ends as cancelled, and may start others.
  while (!delays_.empty()) {
    auto node = delays_.extract(delays_.begin());
    node.mapped().end(false);
  }
}

void ManualExecutor::post(std::function<void()> work) {
  posted_.push_back(std::move(work));
}

Executor::DelayID ManualExecutor::startDelay(Duration delay, DelayEnd end) {
  const auto id = nextID_++;
  delays_.emplace(id, Delay{instant_ + std::max(delay, Duration::zero()), std::move(end)});
  return id;
}

void ManualExecutor::cancelDelay(DelayID delay) {
  delays_.erase(delay);
}

void ManualExecutor::runInBackground(std::function<void()> work, std::function<void()> done) {
  if (answersAtOnce_ && !holdsBackground_) {
    work();
    done();
    return;
  }
  background_.push_back({std::move(work), std::move(done)});
}

void ManualExecutor::drain() {
  while (true) {
    if (!posted_.empty()) {
      auto work = std::move(posted_.front());
      posted_.pop_front();
      work();
    } else if (!background_.empty() && !holdsBackground_) {
      auto next = std::move(background_.front());
      background_.pop_front();
      next.work();
      next.done();
    } else {
      return;
    }
  }
}

void ManualExecutor::advance(Duration time) {
  const Instant target = instant_ + time;
  drain();
  while (true) {
    const auto next = earliest();
    if (next == delays_.end() || next->second.deadline > target) break;
    instant_ = std::max(instant_, next->second.deadline);
    auto node = delays_.extract(next);
    node.mapped().end(true);
    drain();
  }
  instant_ = target;
}

void ManualExecutor::runHeldBackground() {
  holdsBackground_ = false;
  drain();
}

std::optional<Duration> ManualExecutor::nextDelay() const {
  const auto next = const_cast<ManualExecutor*>(this)->earliest();
  if (next == delays_.end()) return std::nullopt;
  return next->second.deadline - instant_;
}

std::map<Executor::DelayID, ManualExecutor::Delay>::iterator ManualExecutor::earliest() {
  return std::min_element(delays_.begin(), delays_.end(),
                          [](const auto& a, const auto& b) { return a.second.deadline < b.second.deadline; });
}

}  // namespace quillmere
