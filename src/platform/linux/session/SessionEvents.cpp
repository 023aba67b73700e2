#include "platform/linux/session/SessionEvents.h"

#include <unistd.h>
#include <QtDBus/QDBusObjectPath>

namespace quillmere {
namespace {

const QString kLogind = QStringLiteral("org.freedesktop.login1");
const QString kLogindPath = QStringLiteral("/org/freedesktop/login1");
const QString kLogindManager = QStringLiteral("org.freedesktop.login1.Manager");
const QString kLogindSession = QStringLiteral("org.freedesktop.login1.Session");
const QString kMutter = QStringLiteral("org.gnome.Mutter.DisplayConfig");
const QString kMutterPath = QStringLiteral("/org/gnome/Mutter/DisplayConfig");

// The reasons for which the session is away or the displays are off; a screen saver's is its name.
const QString kLocked = QStringLiteral("locked");
const QString kInactive = QStringLiteral("inactive");
const QString kX11 = QStringLiteral("X11");

/// The interface has the service's name.
struct ScreenSaver {
  QString name;
  std::vector<QString> paths;
};
std::vector<ScreenSaver> screenSavers() {
  return {
      // Desktops differ in which of its two paths they serve.
      {QStringLiteral("org.freedesktop.ScreenSaver"),
       {QStringLiteral("/org/freedesktop/ScreenSaver"), QStringLiteral("/ScreenSaver")}},
      {QStringLiteral("org.gnome.ScreenSaver"), {QStringLiteral("/org/gnome/ScreenSaver")}},
      {QStringLiteral("org.xfce.ScreenSaver"), {QStringLiteral("/org/xfce/ScreenSaver")}},
      {QStringLiteral("org.mate.ScreenSaver"), {QStringLiteral("/org/mate/ScreenSaver")}},
      {QStringLiteral("org.cinnamon.ScreenSaver"), {QStringLiteral("/org/cinnamon/ScreenSaver")}},
  };
}

}  // namespace

void CombinedState::set(const QString& reason, bool holds) {
  const bool held = !reasons_.empty();
  if (holds) {
    reasons_.insert(reason);
  } else {
    reasons_.erase(reason);
  }
  if (held == reasons_.empty()) (held ? ended_ : began_)();
}

SessionEvents::SessionEvents(Executor& executor, SystemEvents& events, SessionSources sources)
    : events_(events),
      sessionAway_(events.sessionDidResign, events.sessionDidBecomeActive),
      screensOff_(events.screensDidSleep, events.screensDidWake),
      screenPower_(executor, std::move(sources.areScreensOff), [this](bool areOff) { screensOff_.set(kX11, areOff); }) {
  connectTo(executor, std::move(sources.systemBus), &SessionEvents::followSystem);
  connectTo(executor, std::move(sources.sessionBus), &SessionEvents::followDesktop);
}

/// Connecting waits for the bus; so not on the main thread.
void SessionEvents::connectTo(Executor& executor, std::function<QDBusConnection()> bus, Follow follow) {
  auto connection = std::make_shared<std::optional<QDBusConnection>>();
  executor.runInBackground([connection, bus = std::move(bus)] { connection->emplace(bus()); },
                           [connection, follow, self = lifetime_.weak(this)] {
                             if (self) (self.get()->*follow)(**connection);
                           });
}

void SessionEvents::followService(const QDBusConnection& bus, const QString& name, BusService::Presence presence) {
  services_.push_back(std::make_unique<BusService>(bus, name, std::move(presence)));
}

// --- The system ---

void SessionEvents::followSystem(const QDBusConnection& bus) {
  const auto appeared = [this](BusService& logind) {
    logind.hear(kLogindPath, kLogindManager, QStringLiteral("PrepareForSleep"), [this](const QVariantList& arguments) {
      const bool isBefore = arguments.value(0).toBool();
      if (!isBefore) events_.didWake();
    });
    findSession(logind);
  };
  const auto vanished = [this] {
    sessionAway_.set(kLocked, false);
    sessionAway_.set(kInactive, false);
  };
  followService(bus, kLogind, {appeared, vanished});
}

/// Its own path is needed: the paths that stand for the caller's session send no signals.
void SessionEvents::findSession(BusService& logind) {
  const auto found = [this, &logind](const QVariantList& arguments) {
    followSession(logind, arguments.value(0).value<QDBusObjectPath>().path());
  };
  const auto findByProcess = [&logind, found] {
    logind.call(kLogindPath, kLogindManager, QStringLiteral("GetSessionByPID"), {static_cast<uint>(::getpid())}, found);
  };
  const QString session = qEnvironmentVariable("XDG_SESSION_ID");
  if (session.isEmpty()) {
    findByProcess();
  } else {
    logind.call(kLogindPath, kLogindManager, QStringLiteral("GetSession"), {session}, found, findByProcess);
  }
}

/// The session's signals Lock and Unlock are wishes; what came of them is told by its properties.
void SessionEvents::followSession(BusService& logind, const QString& path) {
  logind.followProperty(path, kLogindSession, QStringLiteral("LockedHint"),
                        [this](const QVariant& isLocked) { sessionAway_.set(kLocked, isLocked.toBool()); });
  logind.followProperty(path, kLogindSession, QStringLiteral("Active"),
                        [this](const QVariant& isActive) { sessionAway_.set(kInactive, !isActive.toBool()); });
}

// --- The desktop ---

void SessionEvents::followDesktop(const QDBusConnection& bus) {
  for (const ScreenSaver& saver : screenSavers()) {
    const auto heard = [this, name = saver.name](const QVariantList& arguments) {
      sessionAway_.set(name, arguments.value(0).toBool());
    };
    const auto appeared = [saver, heard](BusService& service) {
      for (const QString& path : saver.paths) {
        service.hear(path, saver.name, QStringLiteral("ActiveChanged"), heard);
        service.call(path, saver.name, QStringLiteral("GetActive"), {}, heard);
      }
    };
    followService(bus, saver.name, {appeared, [this, name = saver.name] { sessionAway_.set(name, false); }});
  }
  const auto appeared = [this](BusService& mutter) {
    mutter.followProperty(kMutterPath, kMutter, QStringLiteral("PowerSaveMode"), [this](const QVariant& mode) {
      // 0 is on, 1 to 3 are deeper and deeper off, -1 is unknown.
      screensOff_.set(kMutter, mode.toInt() > 0);
    });
  };
  followService(bus, kMutter, {appeared, [this] { screensOff_.set(kMutter, false); }});
}

}  // namespace quillmere
