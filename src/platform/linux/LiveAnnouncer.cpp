#include "platform/linux/LiveAnnouncer.h"

#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusVariant>
#include <QtGui/QAccessible>
#include <QtGui/QGuiApplication>

namespace quillmere {
namespace {

constexpr int kPolite = 1;
constexpr int kAssertive = 2;

}  // namespace

void LiveAnnouncer::announce(const QString& text, AnnouncementPriority priority) {
  if (!QAccessible::isActive()) return;
  // Qt's own connection to the accessibility bus; the event is one that this version of Qt does not send itself.
  QDBusConnection bus(QStringLiteral("a11y"));
  if (!bus.isConnected()) return;
  QAccessibleInterface* application = QAccessible::queryAccessibleInterface(qApp);
  if (!application) return;
  const QString path = QStringLiteral("/org/a11y/atspi/accessible/%1").arg(QAccessible::uniqueId(application));
  QDBusMessage signal =
      QDBusMessage::createSignal(path, QStringLiteral("org.a11y.atspi.Event.Object"), QStringLiteral("Announcement"));
  const int politeness = priority == AnnouncementPriority::high ? kAssertive : kPolite;
  signal << QString() << politeness << 0 << QVariant::fromValue(QDBusVariant(text)) << QVariantMap();
  bus.send(signal);
}

}  // namespace quillmere
