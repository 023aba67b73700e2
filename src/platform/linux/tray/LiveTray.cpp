#include "platform/linux/tray/LiveTray.h"

#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusPendingReply>
#include <QtDBus/QDBusVariant>
#include <utility>

namespace quillmere {
namespace {

const QString kWatcher = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString kWatcherPath = QStringLiteral("/StatusNotifierWatcher");

}  // namespace

LiveTray::LiveTray(const QDBusConnection& bus)
    : x11_([this] { settle(); }),
      watcher_(bus, kWatcher,
               {[this](BusService& watcher) {
                  hasWatcher_ = true;
                  // Some tell of it by these signals only, and not as a property that changes.
                  for (const char* news : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"}) {
                    watcher.hear(kWatcherPath, kWatcher, QLatin1String(news),
                                 [this, &watcher](const QVariantList&) { askForHost(watcher); });
                  }
                  askForHost(watcher);
                },
                [this] {
                  hasWatcher_ = false;
                  setHost(false);
                }}) {
  askForWatcher(bus);
}

void LiveTray::askForWatcher(const QDBusConnection& bus) {
  const auto known = [this](bool isThere) {
    if (!isThere && !hasHost_) hasWatcher_ = false;
    settle();
  };
  if (!bus.isConnected()) return known(false);
  QDBusMessage question =
      QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                                     QStringLiteral("org.freedesktop.DBus"), QStringLiteral("NameHasOwner"));
  question << kWatcher;
  auto* waiting = new QDBusPendingCallWatcher(bus.asyncCall(question), &answers_);
  QObject::connect(waiting, &QDBusPendingCallWatcher::finished, waiting, [waiting, known] {
    const QDBusPendingReply<bool> reply = *waiting;
    waiting->deleteLater();
    known(reply.isValid() && reply.value());
  });
}

/// A watcher without a panel would take an icon that nobody sees. One that does not answer is never relied upon: Qt
/// would wait for it.
void LiveTray::askForHost(BusService& watcher) {
  watcher.call(kWatcherPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"),
               {kWatcher, QStringLiteral("IsStatusNotifierHostRegistered")}, [this](const QVariantList& answer) {
                 setHost(answer.value(0).value<QDBusVariant>().variant().toBool());
               });
}

void LiveTray::setHost(bool isThere) {
  hasHost_ = isThere;
  settle();
}

void LiveTray::settle() {
  if (kind_ == Kind::unknown && hasHost_) kind_ = Kind::bus;
  if (kind_ == Kind::unknown && !hasWatcher_ && x11_.isThere()) kind_ = Kind::x11;
  if (std::exchange(wasThere_, isThere()) != isThere()) changed();
}

}  // namespace quillmere
