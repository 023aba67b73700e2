#pragma once

#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusVariant>
#include <QtDBus/QDBusVirtualObject>

#include "platform/linux/shortcuts/PortalShortcut.h"
#include "support/MockBus.h"

namespace quillmere::testing {

/// The desktop's portal for shortcuts, played by the test's own connection.
class FakeShortcutPortal final : public QDBusVirtualObject {
 public:
  explicit FakeShortcutPortal(MockBus& bus) : bus_(bus.connection()) {
    registerPortalShortcutTypes();
    appear();
  }
  ~FakeShortcutPortal() override { vanish(); }

  void appear() {
    EXPECT_TRUE(bus_.registerVirtualObject(kPath, this, QDBusConnection::SubPath));
    EXPECT_TRUE(bus_.registerService(kName));
  }
  void vanish() {
    bus_.unregisterObject(kPath);
    bus_.unregisterService(kName);
  }

  void activate(const QString& name, const QString& of = {}) {
    QDBusMessage signal = QDBusMessage::createSignal(kPath, kShortcuts, QStringLiteral("Activated"));
    signal << QVariant::fromValue(QDBusObjectPath(of.isEmpty() ? session : of)) << name << quint64{1} << QVariantMap();
    bus_.send(signal);
  }
  void changeTriggers(const QString& description) {
    QDBusMessage signal = QDBusMessage::createSignal(kPath, kShortcuts, QStringLiteral("ShortcutsChanged"));
    signal << QVariant::fromValue(QDBusObjectPath(session)) << QVariant::fromValue(answerOf(description));
    bus_.send(signal);
  }
  void close() { bus_.send(QDBusMessage::createSignal(session, kSession, QStringLiteral("Closed"))); }
  /// The person, or the desktop, answers a `BindShortcuts` that was held up.
  void answerBinding() { respond(pending_, {{QStringLiteral("shortcuts"), QVariant::fromValue(answerOf(trigger))}}); }

  bool hasInterface = true;
  bool knowsPrograms = true;  ///< who is asking
  bool isSilent = false;      ///< about everything but its version
  bool refusesCalls = false;
  bool holdsBinding = false;
  bool leavesOut = false;  ///< the shortcut, of its answer
  bool tellsSessionAsPath = false;
  uint sessionResponse = 0;
  uint bindResponse = 0;
  QString trigger = QStringLiteral("Ctrl+Shift+Super+B");

  QStringList calls;  ///< in order
  QString application;
  QString session;
  PortalShortcuts bound;

 protected:
  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    const QString member = message.member();
    calls << member;
    const auto refuse = [&] {
      return connection.send(message.createErrorReply(QDBusError::UnknownMethod, QStringLiteral("no")));
    };
    if (member == QLatin1String("Register")) {
      if (!knowsPrograms) return refuse();
      application = message.arguments().value(0).toString();
      return connection.send(message.createReply());
    }
    if (member == QLatin1String("Get")) {
      if (!hasInterface) return refuse();
      return connection.send(message.createReply(QVariant::fromValue(QDBusVariant(uint{1}))));
    }
    if (isSilent) return true;
    if (refusesCalls) return refuse();
    if (member == QLatin1String("Close")) return connection.send(message.createReply());
    const auto options = qdbus_cast<QVariantMap>(message.arguments().constLast());
    const QString sender = message.service().mid(1).replace(QLatin1Char('.'), QLatin1Char('_'));
    const QString handle =
        QStringLiteral("%1/request/%2/%3").arg(kPath, sender, options.value(QStringLiteral("handle_token")).toString());
    connection.send(message.createReply(QVariant::fromValue(QDBusObjectPath(handle))));
    if (member == QLatin1String("CreateSession")) {
      session = QStringLiteral("%1/session/%2/%3")
                    .arg(kPath, sender, options.value(QStringLiteral("session_handle_token")).toString());
      QVariantMap results;
      if (sessionResponse == 0) {
        results.insert(QStringLiteral("session_handle"),
                       tellsSessionAsPath ? QVariant::fromValue(QDBusObjectPath(session)) : QVariant(session));
      }
      respond(handle, results, sessionResponse);
    } else if (member == QLatin1String("BindShortcuts")) {
      bound = qdbus_cast<PortalShortcuts>(message.arguments().value(1));
      pending_ = handle;
      if (!holdsBinding && bindResponse != 0) respond(handle, {}, bindResponse);
      if (!holdsBinding && bindResponse == 0) answerBinding();
    }
    return true;
  }

 private:
  PortalShortcuts answerOf(const QString& description) const {
    PortalShortcuts answer;
    if (leavesOut) return answer;
    for (const PortalShortcut& shortcut : bound) {
      answer.append({shortcut.name, {{QStringLiteral("trigger_description"), description}}});
    }
    return answer;
  }
  void respond(const QString& handle, const QVariantMap& results, uint response = 0) {
    QDBusMessage signal = QDBusMessage::createSignal(handle, QStringLiteral("org.freedesktop.portal.Request"),
                                                     QStringLiteral("Response"));
    signal << response << results;
    bus_.send(signal);
  }

  static inline const QString kName = QStringLiteral("org.freedesktop.portal.Desktop");
  static inline const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");
  static inline const QString kShortcuts = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");
  static inline const QString kSession = QStringLiteral("org.freedesktop.portal.Session");
  QDBusConnection bus_;
  QString pending_;
};

}  // namespace quillmere::testing
