#pragma once

#include <functional>
#include <optional>

#include "foundation/Date.h"
#include "foundation/Executor.h"

namespace quillmere {

/// Says once a day that it is time to look for an update, as long as that is wanted. It looks at the clock again each
/// hour, so that sleep and a clock that was set don't put it off; a last check in the future is none.
class UpdateSchedule {
 public:
  struct Memory {
    std::function<std::optional<Date>()> lastCheck;
    std::function<void(Date)> storeLastCheck;
  };
  UpdateSchedule(Executor& executor, std::function<Date()> now, Memory memory, std::function<void()> due);
  ~UpdateSchedule();
  UpdateSchedule(const UpdateSchedule&) = delete;
  UpdateSchedule& operator=(const UpdateSchedule&) = delete;

  void setOn(bool isOn);
  bool isOn() const { return delay_.has_value(); }
  /// A check was begun, by whomever.
  void noteCheck() { memory_.storeLastCheck(now_()); }

  static constexpr double kDay = 86400;
  static constexpr Duration kFirstLook = std::chrono::minutes(1);  ///< a start has other things to do
  static constexpr Duration kNextLook = std::chrono::hours(1);

 private:
  void lookAfter(Duration delay);
  bool isDue() const;

  Executor& executor_;
  std::function<Date()> now_;
  Memory memory_;
  std::function<void()> due_;
  std::optional<Executor::DelayID> delay_;
};

}  // namespace quillmere
