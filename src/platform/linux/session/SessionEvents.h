#pragma once

#include <QtDBus/QDBusConnection>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <vector>

#include "foundation/Executor.h"
#include "foundation/SystemEvents.h"
#include "foundation/Weak.h"
#include "platform/linux/common/BusService.h"
#include "platform/linux/session/ScreenPower.h"

namespace quillmere {

/// Where the state of the session and of the displays is learnt.
struct SessionSources {
  std::function<QDBusConnection()> systemBus = &QDBusConnection::systemBus;    ///< called on a background thread
  std::function<QDBusConnection()> sessionBus = &QDBusConnection::sessionBus;  ///< called on a background thread
  ScreenPowerPoll::Look areScreensOff = &quillmere::areScreensOff;
};

/// Holds while any of its reasons holds, and tells only when that changes.
class CombinedState {
 public:
  CombinedState(Signal<>& began, Signal<>& ended) : began_(began), ended_(ended) {}
  void set(const QString& reason, bool holds);

 private:
  Signal<>& began_;
  Signal<>& ended_;
  std::set<QString> reasons_;
};

/// Tells of the machine's sleep, the session's lock and the displays' power, as the desktop's services have them.
/// A service that is missing or goes has nothing locked and nothing off.
class SessionEvents {
 public:
  SessionEvents(Executor& executor, SystemEvents& events, SessionSources sources = {});

  /// On X11 the displays' power must be asked for again and again, which wakes the machine up: so only while it
  /// matters, as it does while a popup counts down or pauses for this very reason.
  void setWatchesScreens(bool watches) { screenPower_.setOn(watches); }

 private:
  using Follow = void (SessionEvents::*)(const QDBusConnection&);
  void connectTo(Executor& executor, std::function<QDBusConnection()> bus, Follow follow);
  void followSystem(const QDBusConnection& bus);
  void followDesktop(const QDBusConnection& bus);
  void findSession(BusService& logind);
  void followSession(BusService& logind, const QString& path);
  void followService(const QDBusConnection& bus, const QString& name, BusService::Presence presence);

  SystemEvents& events_;
  CombinedState sessionAway_;  ///< locked, blanked, or another person's session is shown
  CombinedState screensOff_;
  ScreenPowerPoll screenPower_;
  std::vector<std::unique_ptr<BusService>> services_;
  Lifetime lifetime_;
};

}  // namespace quillmere
