#pragma once

#include <functional>

#include "foundation/Date.h"
#include "foundation/Executor.h"
#include "foundation/SystemEvents.h"
#include "foundation/Weak.h"
#include "records/UUID.h"

namespace quillmere {

/// Calls a handler when an entry's date has come. It never trusts a long sleep: a changed clock or a suspended machine
/// costs at most 30 seconds of lateness.
class ExpirationScheduler {
 public:
  ExpirationScheduler(Executor& executor, SystemEvents& systemEvents, std::function<Date()> now);
  ~ExpirationScheduler();

  void start(std::function<void(const UUID&)> onExpiration);
  void schedule(const UUID& id, Date moment);
  /// Enters several with one `rearm`.
  void schedule(const UUIDMap<Date>& entries);
  void cancel(const UUID& id);
  void rearm();
  void fireDue(Date moment);
  const UUIDMap<Date>& expirations() const { return expirations_; }

 private:
  static Task<> waitAndFire(Weak<ExpirationScheduler> self, Duration delay);

  Executor& executor_;
  SystemEvents& systemEvents_;
  std::function<Date()> now_;
  UUIDMap<Date> expirations_;
  std::function<void(const UUID&)> onExpiration_;
  Task<> timerTask_;
  Connection wakeObserver_;
  Lifetime lifetime_;
};

}  // namespace quillmere
