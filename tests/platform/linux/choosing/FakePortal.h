#pragma once

#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusVariant>
#include <QtDBus/QDBusVirtualObject>
#include <optional>

#include "support/MockBus.h"

namespace quillmere::testing {

/// The desktop's portal for file dialogs, played by the test's own connection; the person answers by `respond`.
class FakePortal final : public QDBusVirtualObject {
 public:
  explicit FakePortal(MockBus& bus) : bus_(bus.connection()) {
    EXPECT_TRUE(bus_.registerVirtualObject(kPath, this, QDBusConnection::SubPath));
    EXPECT_TRUE(bus_.registerService(kName));
  }
  ~FakePortal() override {
    bus_.unregisterObject(kPath);
    vanish();
  }

  void vanish() { bus_.unregisterService(kName); }

  /// 0 is a choice, 1 is cancelled, 2 closed in another way.
  void respond(uint how, const QStringList& uris = {}) {
    QDBusMessage signal = QDBusMessage::createSignal(handle, QStringLiteral("org.freedesktop.portal.Request"),
                                                     QStringLiteral("Response"));
    signal << how << QVariantMap{{QStringLiteral("uris"), uris}};
    bus_.send(signal);
  }

  uint version = 3;
  bool isSilent = false;  ///< about its version
  bool refuses = false;   ///< to open anything
  bool usesOldHandles = false;

  QString method;  ///< of the dialog that is open
  QString parent, title;
  QVariantMap options;
  QString handle;
  int closings = 0;

 protected:
  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    if (message.member() == QLatin1String("Get")) {
      if (!isSilent) connection.send(message.createReply(QVariant::fromValue(QDBusVariant(version))));
      return true;
    }
    if (message.member() == QLatin1String("Close")) {
      ++closings;
      connection.send(message.createReply());
      return true;
    }
    if (refuses) {
      connection.send(message.createErrorReply(QDBusError::AccessDenied, QStringLiteral("no")));
      return true;
    }
    method = message.member();
    parent = message.arguments().value(0).toString();
    title = message.arguments().value(1).toString();
    options = qdbus_cast<QVariantMap>(message.arguments().value(2));
    const QString sender = message.service().mid(1).replace(QLatin1Char('.'), QLatin1Char('_'));
    handle = usesOldHandles ? kPath + QStringLiteral("/request/old")
                            : QStringLiteral("%1/request/%2/%3")
                                  .arg(kPath, sender, options.value(QStringLiteral("handle_token")).toString());
    connection.send(message.createReply(QVariant::fromValue(QDBusObjectPath(handle))));
    return true;
  }

 private:
  static inline const QString kName = QStringLiteral("org.freedesktop.portal.Desktop");
  static inline const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");
  QDBusConnection bus_;
};

}  // namespace quillmere::testing
