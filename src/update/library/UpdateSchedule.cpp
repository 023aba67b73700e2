#include "update/library/UpdateSchedule.h"

namespace quillmere {

UpdateSchedule::UpdateSchedule(Executor& executor, std::function<Date()> now, Memory memory, std::function<void()> due)
    : executor_(executor), now_(std::move(now)), memory_(std::move(memory)), due_(std::move(due)) {}

UpdateSchedule::~UpdateSchedule() {
  setOn(false);
}

void UpdateSchedule::setOn(bool isOn) {
  if (isOn == delay_.has_value()) return;
  if (isOn) return lookAfter(kFirstLook);
  executor_.cancelDelay(*std::exchange(delay_, std::nullopt));
}

bool UpdateSchedule::isDue() const {
  const auto last = memory_.lastCheck();
  const double passed = last ? now_() - *last : kDay;
  return passed >= kDay || passed < 0;
}

void UpdateSchedule::lookAfter(Duration delay) {
  delay_ = executor_.startDelay(delay, [this](bool elapsed) {
    delay_.reset();
    if (!elapsed) return;
    lookAfter(kNextLook);
    if (isDue()) due_();
  });
}

}  // namespace quillmere
