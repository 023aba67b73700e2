#include "platform/linux/windows/WindowHistory.h"

#include <utility>

namespace quillmere {

void WindowHistory::add(WindowStack state) {
  if (!states_.empty() && states_.back().showsTheSameAs(state)) return;
  const Date now = state.since;
  states_.push_back(std::move(state));
  forget(now);
}

std::vector<WindowStack> WindowHistory::states(Date now) {
  forget(now);
  return {states_.begin(), states_.end()};
}

void WindowHistory::forget(Date now) {
  std::deque<WindowStack> kept;
  for (size_t i = 0; i < states_.size(); ++i) {
    const bool isLast = i + 1 == states_.size();
    const Date until = isLast ? now : states_[i + 1].since;
    const double age = now - until;
    const bool wasSeen = until - states_[i].since >= kSeen;
    if (isLast || age <= kAll || (wasSeen && age <= kLongest)) kept.push_back(std::move(states_[i]));
  }
  while (kept.size() > kMost) kept.pop_front();
  states_ = std::move(kept);
}

}  // namespace quillmere
