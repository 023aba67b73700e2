#include "platform/linux/session/ApplicationBus.h"

#include <QtCore/QMetaObject>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusConnectionInterface>
#include <QtDBus/QDBusMessage>

namespace quillmere {
namespace {

const QString kName = QStringLiteral("com.quillmere.app");
const QString kPath = QStringLiteral("/com/quillmere/app");
const QString kInterface = QStringLiteral("org.freedesktop.Application");

}  // namespace

bool ApplicationBus::registerOnBus() {
  QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return true;
  // The object first: a request may come as soon as the name is there.
  bus.registerVirtualObject(kPath, this);
  const auto reply = bus.interface()->registerService(kName, QDBusConnectionInterface::DontQueueService,
                                                      QDBusConnectionInterface::DontAllowReplacement);
  return reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered;
}

void ApplicationBus::activateOther() {
  QDBusMessage call = QDBusMessage::createMethodCall(kName, kPath, kInterface, QStringLiteral("Activate"));
  call << QVariantMap();
  QDBusConnection::sessionBus().call(call, QDBus::Block, 5000);
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
