#include "platform/linux/session/ApplicationBus.h"

#include <QtCore/QMetaObject>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusConnectionInterface>
#include <QtDBus/QDBusMessage>
#include <algorithm>
#include <chrono>

namespace quillmere {
namespace {

const QString kName = QStringLiteral("com.quillmere.app");
const QString kPath = QStringLiteral("/com/quillmere/app");
constexpr std::chrono::milliseconds kFirstPause(500);
constexpr std::chrono::milliseconds kLongestPause(30'000);
const QString kInterface = QStringLiteral("org.freedesktop.Application");

}  // namespace

ApplicationBus::ApplicationBus(ApplicationRequests requests) : requests_(std::move(requests)) {
  rejoining_.setSingleShot(true);
  connect(&rejoining_, &QTimer::timeout, this, &ApplicationBus::rejoin);
}

bool ApplicationBus::registerOnBus() {
  const QDBusConnection bus = QDBusConnection::sessionBus();
  return !bus.isConnected() || join(bus);
}

bool ApplicationBus::join(const QDBusConnection& bus) {
  QDBusConnection connection = bus;
  // The object first: a request may come as soon as the name is there.
  connection.registerVirtualObject(kPath, this);
  connection.connect(QString(), QString(), QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"),
                     this, SLOT(loseBus()));
  const auto reply = connection.interface()->registerService(kName, QDBusConnectionInterface::DontQueueService,
                                                             QDBusConnectionInterface::DontAllowReplacement);
  return reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered;
}

void ApplicationBus::loseBus() {
  rejoining_.start(kFirstPause);
}

void ApplicationBus::rejoin() {
  const QString name = QStringLiteral("com.quillmere.app-%1").arg(++connections_);
  const QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, name);
  if (bus.isConnected() && join(bus)) return;
  QDBusConnection::disconnectFromBus(name);
  rejoining_.start(std::min(2 * rejoining_.intervalAsDuration(), kLongestPause));
}

bool ApplicationBus::askOther(const QString& action) {
  const QString method = action.isEmpty() ? QStringLiteral("Activate") : QStringLiteral("ActivateAction");
  QDBusMessage call = QDBusMessage::createMethodCall(kName, kPath, kInterface, method);
  // Else the bus would start one more, which would find the other here as well.
  call.setAutoStartService(false);
  if (!action.isEmpty()) call << action << QVariantList();
  call << QVariantMap();
  constexpr int kTimeout = 5000;
  return QDBusConnection::sessionBus().call(call, QDBus::Block, kTimeout).type() == QDBusMessage::ReplyMessage;
}

bool ApplicationBus::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
  if (message.interface() != kInterface) return false;
  const QString member = message.member();
  const QString action = message.arguments().value(0).toString();
  std::function<void()> work;
  if (member == QLatin1String("Activate") || member == QLatin1String("Open")) {
    work = requests_.activate;
  } else if (member == QLatin1String("ActivateAction")) {
    work = [this, action] { requests_.activateAction(action); };
  } else {
    return false;
  }
  connection.send(message.createReply());
  // Later: a dialog that the request opens must not keep the bus waiting.
  QMetaObject::invokeMethod(this, std::move(work), Qt::QueuedConnection);
  return true;
}

QString ApplicationBus::introspect(const QString&) const {
  return QStringLiteral(R"(<interface name="org.freedesktop.Application">
  <method name="Activate"><arg type="a{sv}" name="platform_data" direction="in"/></method>
  <method name="Open">
    <arg type="as" name="uris" direction="in"/><arg type="a{sv}" name="platform_data" direction="in"/>
  </method>
  <method name="ActivateAction">
    <arg type="s" name="action_name" direction="in"/><arg type="av" name="parameter" direction="in"/>
    <arg type="a{sv}" name="platform_data" direction="in"/>
  </method>
</interface>
)");
}

}  // namespace quillmere
