#pragma once

#include <QtCore/QStringList>
#include <QtDBus/QDBusConnection>
#include <functional>
#include <memory>
#include <optional>

#include "foundation/Executor.h"
#include "foundation/Weak.h"
#include "platform/linux/common/BusService.h"

namespace quillmere {

/// In which form a running screen reader hears of an event that stands on no screen.
enum class Hearing {
  nobody,         ///< no screen reader runs
  announcement,   ///< the accessibility bus' own event for it
  notification,   ///< a notification that shows: older readers
  speechService,  ///< a reader runs that hears neither
};

/// `events` are those that somebody on the accessibility bus listens to, as its registry names them. A reader that was
/// started by hand is known by them alone; one that also hears announcements is not to be told by a notification too.
Hearing hearingOf(bool isScreenReaderEnabled, const QStringList& events);

/// Follows whether a screen reader runs and what it listens to. Waits for nothing, and starts no service.
class ScreenReaderWatch {
 public:
  using BusOpener = std::function<QDBusConnection()>;  ///< called on a background thread
  explicit ScreenReaderWatch(Executor& executor, BusOpener sessionBus = &QDBusConnection::sessionBus);
  ~ScreenReaderWatch();

  Hearing hearing() const { return hearingOf(isEnabled_, events_); }

 private:
  using Follow = void (ScreenReaderWatch::*)(const QDBusConnection&);
  void connectTo(BusOpener bus, Follow follow);
  void followSession(const QDBusConnection& bus);
  void connectToAccessibility(const QString& address);
  void followAccessibility(const QDBusConnection& bus);
  void askForEvents(BusService& registry);
  void leaveAccessibility();

  Executor& executor_;
  bool isEnabled_ = false;
  QStringList events_;
  bool isAsking_ = false;
  bool hasChangedMeanwhile_ = false;
  QString connectionName_;  ///< of the connection to the accessibility bus
  std::unique_ptr<BusService> session_;
  std::unique_ptr<BusService> registry_;
  Lifetime lifetime_;
};

}  // namespace quillmere
