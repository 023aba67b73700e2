#include "platform/linux/announcing/ScreenReaderWatch.h"

#include <QtDBus/QDBusArgument>
#include <algorithm>
#include <utility>

namespace quillmere {
namespace {

const QString kBus = QStringLiteral("org.a11y.Bus");
const QString kBusPath = QStringLiteral("/org/a11y/bus");
const QString kRegistry = QStringLiteral("org.a11y.atspi.Registry");
const QString kRegistryPath = QStringLiteral("/org/a11y/atspi/registry");

/// Names of events end in a colon where they have no detail.
bool contains(const QStringList& events, QLatin1String wanted) {
  return std::any_of(events.begin(), events.end(), [wanted](QString event) {
    while (event.endsWith(QLatin1Char(':'))) event.chop(1);
    return event.compare(wanted, Qt::CaseInsensitive) == 0;
  });
}

/// From pairs of a listener and an event.
QStringList eventsIn(const QVariant& answer) {
  QStringList events;
  const auto pairs = answer.value<QDBusArgument>();
  if (pairs.currentType() != QDBusArgument::ArrayType) return events;
  pairs.beginArray();
  while (!pairs.atEnd()) {
    QString listener;
    QString event;
    pairs.beginStructure();
    pairs >> listener >> event;
    pairs.endStructure();
    events.append(event);
  }
  pairs.endArray();
  return events;
}

}  // namespace

Hearing hearingOf(bool isScreenReaderEnabled, const QStringList& events) {
  if (contains(events, QLatin1String("Object:Announcement"))) return Hearing::announcement;
  if (contains(events, QLatin1String("Object:StateChanged:Showing"))) return Hearing::notification;
  return isScreenReaderEnabled ? Hearing::speechService : Hearing::nobody;
}

ScreenReaderWatch::ScreenReaderWatch(Executor& executor, BusOpener sessionBus) : executor_(executor) {
  connectTo(std::move(sessionBus), &ScreenReaderWatch::followSession);
}

ScreenReaderWatch::~ScreenReaderWatch() {
  leaveAccessibility();
}

/// Connecting waits for the bus; so not on the main thread.
void ScreenReaderWatch::connectTo(BusOpener bus, Follow follow) {
  auto connection = std::make_shared<std::optional<QDBusConnection>>();
  executor_.runInBackground([connection, bus = std::move(bus)] { connection->emplace(bus()); },
                            [connection, follow, self = lifetime_.weak(this)] {
                              if (self) (self.get()->*follow)(**connection);
                            });
}

void ScreenReaderWatch::followSession(const QDBusConnection& bus) {
  const auto appeared = [this](BusService& launcher) {
    launcher.followProperty(kBusPath, QStringLiteral("org.a11y.Status"), QStringLiteral("ScreenReaderEnabled"),
                            [this](const QVariant& isEnabled) { isEnabled_ = isEnabled.toBool(); });
    launcher.call(kBusPath, kBus, QStringLiteral("GetAddress"), {},
                  [this](const QVariantList& answer) { connectToAccessibility(answer.value(0).toString()); });
  };
  const auto vanished = [this] {
    isEnabled_ = false;
    leaveAccessibility();
  };
  session_ = std::make_unique<BusService>(bus, kBus, BusService::Presence{appeared, vanished});
}

void ScreenReaderWatch::connectToAccessibility(const QString& address) {
  leaveAccessibility();
  if (address.isEmpty()) return;
  static int count = 0;
  connectionName_ = QStringLiteral("screen reader %1").arg(++count);
  connectTo([address, name = connectionName_] { return QDBusConnection::connectToBus(address, name); },
            &ScreenReaderWatch::followAccessibility);
}

void ScreenReaderWatch::followAccessibility(const QDBusConnection& bus) {
  if (bus.name() != connectionName_) {
    QDBusConnection::disconnectFromBus(bus.name());  // the bus went while we came
    return;
  }
  const auto appeared = [this](BusService& registry) {
    for (const char* change : {"EventListenerRegistered", "EventListenerDeregistered"}) {
      registry.hear(kRegistryPath, kRegistry, QLatin1String(change),
                    [this, &registry](const QVariantList&) { askForEvents(registry); });
    }
    askForEvents(registry);
  };
  const auto vanished = [this] {
    events_.clear();
    isAsking_ = false;
  };
  registry_ = std::make_unique<BusService>(bus, kRegistry, BusService::Presence{appeared, vanished});
}

/// A reader that starts registers dozens of them; one question is under way at a time.
void ScreenReaderWatch::askForEvents(BusService& registry) {
  hasChangedMeanwhile_ = isAsking_;
  if (isAsking_) return;
  isAsking_ = true;
  const auto finish = [this, &registry] {
    isAsking_ = false;
    if (hasChangedMeanwhile_) askForEvents(registry);
  };
  registry.call(
      kRegistryPath, kRegistry, QStringLiteral("GetRegisteredEvents"), {},
      [this, finish](const QVariantList& answer) {
        events_ = eventsIn(answer.value(0));
        finish();
      },
      finish);
}

void ScreenReaderWatch::leaveAccessibility() {
  registry_.reset();
  events_.clear();
  isAsking_ = false;
  if (!connectionName_.isEmpty()) QDBusConnection::disconnectFromBus(std::exchange(connectionName_, {}));
}

}  // namespace quillmere
