#pragma once

#include <functional>

#include "foundation/Date.h"
#include "foundation/Executor.h"
#include "foundation/Signal.h"
#include "foundation/Weak.h"
#include "records/UUID.h"

namespace quillmere {

/// Counts the time in which the person could have answered a popup. Time in which the popup was paused, the screen was
/// off or the main thread stood still does not count.
class PopupAutoSaveScheduler {
 public:
  PopupAutoSaveScheduler(Executor& executor, std::function<Date()> now);
  ~PopupAutoSaveScheduler();

  void configure(std::function<bool(const UUID&)> isPaused, std::function<void(const UUID&)> onTimeout);
  void begin(const UUID& id, double remainingSeconds);
  void drop(const UUID& id);
  void reset();
  bool isSystemPaused() const { return isSystemPaused_; }
  void setSystemPaused(bool isPaused);
  std::optional<double> remaining(const UUID& id) const;
  /// What remains may be another.
  mutable Signal<> ticked;

 private:
  struct Countdown {
    double remaining = 0;  ///< seconds
    Date lastTick;
  };
  void startTask();
  static Task<> tickRegularly(Weak<PopupAutoSaveScheduler> self);
  void tick(Date moment);

  Executor& executor_;
  std::function<Date()> now_;
  UUIDMap<Countdown> countdowns_;
  Task<> task_;
  std::function<bool(const UUID&)> isPaused_;
  std::function<void(const UUID&)> onTimeout_;
  bool isSystemPaused_ = false;
  Lifetime lifetime_;
};

}  // namespace quillmere
