#pragma once

#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusVirtualObject>

#include "support/MockBus.h"

namespace quillmere::testing {

/// The desktop's file manager, played by the test's own connection.
class FakeFileManager final : public QDBusVirtualObject {
 public:
  explicit FakeFileManager(MockBus& bus) : bus_(bus.connection()) {
    EXPECT_TRUE(bus_.registerVirtualObject(kPath, this));
    EXPECT_TRUE(bus_.registerService(kName));
  }
  ~FakeFileManager() override {
    bus_.unregisterService(kName);
    bus_.unregisterObject(kPath);
  }

  enum class Answer { yes, error, none };
  Answer answer = Answer::yes;
  QStringList asked;  ///< method, URIs and startup id of each call
  /// To the last call that has none.
  void answerLate() { bus_.send(last_.createReply()); }

 protected:
  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    EXPECT_EQ(message.signature(), QStringLiteral("ass"));
    EXPECT_EQ(message.interface(), kName);
    asked << message.member() << message.arguments().value(0).toStringList() << message.arguments().value(1).toString();
    last_ = message;
    if (answer == Answer::yes) connection.send(message.createReply());
    if (answer == Answer::error) {
      connection.send(message.createErrorReply(QDBusError::AccessDenied, QStringLiteral("no")));
    }
    return true;
  }

 private:
  static inline const QString kName = QStringLiteral("org.freedesktop.FileManager1");
  static inline const QString kPath = QStringLiteral("/org/freedesktop/FileManager1");
  QDBusConnection bus_;
  QDBusMessage last_;
};

}  // namespace quillmere::testing
