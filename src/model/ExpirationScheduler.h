#pragma once

#include <functional>
#include <set>
#include <utility>

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

  /// `onFired` follows the last of the entries that were due together.
  void start(std::function<void(const UUID&)> onExpiration, std::function<void()> onFired = nullptr);
  void schedule(const UUID& id, Date moment);
  /// Enters several with one `rearm`.
  void schedule(const UUIDMap<Date>& entries);
  void cancel(const UUID& id);
  void rearm();
  /// Fires what is due, a handful in one turn of the loop so that a long absence does not hold it; the rest follows in
  /// the next turns.
  void fireDue(Date moment);
  const UUIDMap<Date>& expirations() const { return expirations_; }

 private:
  static Task<> waitAndFire(Weak<ExpirationScheduler> self, Duration delay);
  void set(const UUID& id, Date moment);
  bool erase(const UUID& id);

  Executor& executor_;
  SystemEvents& systemEvents_;
  std::function<Date()> now_;
  UUIDMap<Date> expirations_;
  std::set<std::pair<Date, UUID>> order_;  ///< the same entries, earliest first
  std::function<void(const UUID&)> onExpiration_;
  std::function<void()> onFired_;
  Task<> timerTask_;
  Connection wakeObserver_;
  Lifetime lifetime_;
};

}  // namespace quillmere
