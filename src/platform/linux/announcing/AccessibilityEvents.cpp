#include "platform/linux/announcing/AccessibilityEvents.h"

#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusVariant>
#include <QtGui/QAccessible>
#include <QtGui/QAccessibleObject>
#include <QtGui/QGuiApplication>

namespace quillmere {
namespace {

/// Qt's own connection, by which readers know the program.
QDBusConnection accessibilityBus() {
  return QDBusConnection(QStringLiteral("a11y"));
}

}  // namespace

class AccessibilityEvents::Notice final : public QAccessibleObject {
 public:
  explicit Notice(QObject* place) : QAccessibleObject(place) {}
  void say(const QString& text) { text_ = text; }

  QString text(QAccessible::Text kind) const override { return kind == QAccessible::Name ? text_ : QString(); }
  QAccessible::Role role() const override { return QAccessible::Notification; }
  QAccessible::State state() const override { return {}; }
  QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(qApp); }
  QAccessibleInterface* child(int) const override { return nullptr; }
  int childCount() const override { return 0; }
  int indexOfChild(const QAccessibleInterface*) const override { return -1; }

 private:
  QString text_;
};

AccessibilityEvents::AccessibilityEvents() = default;
// Qt forgets the notification with its place.
AccessibilityEvents::~AccessibilityEvents() = default;

bool AccessibilityEvents::isPossible() {
  return QAccessible::isActive() && accessibilityBus().isConnected();
}

void AccessibilityEvents::announce(const QString& text, AnnouncementPriority priority) {
  constexpr int kPolite = 1;
  constexpr int kAssertive = 2;
  QAccessibleInterface* application = QAccessible::queryAccessibleInterface(qApp);
  if (!application) return;
  const QString path = QStringLiteral("/org/a11y/atspi/accessible/%1").arg(QAccessible::uniqueId(application));
  QDBusMessage signal =
      QDBusMessage::createSignal(path, QStringLiteral("org.a11y.atspi.Event.Object"), QStringLiteral("Announcement"));
  const int politeness = priority == AnnouncementPriority::high ? kAssertive : kPolite;
  signal << QString() << politeness << 0 << QVariant::fromValue(QDBusVariant(text)) << QVariantMap();
  accessibilityBus().send(signal);
}

void AccessibilityEvents::notify(const QString& text) {
  if (!notice_) {
    notice_ = new Notice(&place_);
    QAccessible::registerAccessibleInterface(notice_);
  }
  notice_->say(text);
  QAccessibleEvent shown(notice_, QAccessible::ObjectShow);
  QAccessible::updateAccessibility(&shown);
}

}  // namespace quillmere
