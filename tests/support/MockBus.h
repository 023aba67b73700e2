#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <QtCore/QProcess>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusConnectionInterface>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusVariant>
#include <memory>

#include "support/EventLoop.h"

namespace quillmere::testing {

/// Starts a program that dies with the tests, however they end.
inline std::unique_ptr<QProcess> startHelper(const QString& program, const QStringList& arguments,
                                             const QProcessEnvironment& environment) {
  auto process = std::make_unique<QProcess>();
  process->setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
  process->setProcessEnvironment(environment);
  process->start(program, arguments);
  return process;
}

inline void stopHelper(QProcess& process) {
  process.kill();
  process.waitForFinished();
}

/// A bus of a test's own, which serves as system bus and as session bus.
class MockBus {
 public:
  MockBus() {
    process_ = startHelper(
        QStringLiteral("dbus-daemon"),
        {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--nopidfile"),
         QStringLiteral("--print-address"),
         QStringLiteral("--address=unix:dir=") + qEnvironmentVariable("XDG_RUNTIME_DIR", QStringLiteral("/tmp"))},
        QProcessEnvironment::systemEnvironment());
    if (!process_->waitForReadyRead()) ADD_FAILURE() << "dbus-daemon does not start";
    address_ = QString::fromUtf8(process_->readLine()).trimmed();
    connection_ = std::make_unique<QDBusConnection>(QDBusConnection::connectToBus(address_, QStringLiteral("test")));
  }
  ~MockBus() {
    QDBusConnection::disconnectFromBus(QStringLiteral("test"));
    stop();
  }
  void stop() { stopHelper(*process_); }

  const QString& address() const { return address_; }
  /// The test's own connection.
  QDBusConnection& connection() { return *connection_; }

 private:
  std::unique_ptr<QProcess> process_;
  QString address_;
  std::unique_ptr<QDBusConnection> connection_;
};

/// A service that a mock plays, from its making until it is stopped.
class MockService {
 public:
  /// Played by one of the mock's templates.
  static std::unique_ptr<MockService> ofTemplate(MockBus& bus, const QString& templateName, const QString& name,
                                                 const QString& path) {
    return std::unique_ptr<MockService>(
        new MockService(bus, {QStringLiteral("--session"), QStringLiteral("-t"), templateName}, name, path));
  }
  /// Of one object, which can nothing yet.
  static std::unique_ptr<MockService> bare(MockBus& bus, const QString& name, const QString& path,
                                           const QString& interface) {
    return std::unique_ptr<MockService>(
        new MockService(bus, {QStringLiteral("--session"), name, path, interface}, name, path));
  }
  ~MockService() { stop(); }

  /// Until the bus has noticed too: whoever comes next under the name is another one.
  void stop() {
    if (process_->state() == QProcess::NotRunning) return;
    stopHelper(*process_);
    if (!bus_.connection().isConnected()) return;
    EXPECT_TRUE(runLoopUntil([&] { return !bus_.connection().interface()->isServiceRegistered(name_).value(); }));
  }

  /// Has the service do it, and gives what it answers.
  QVariantList call(const QString& path, const QString& interface, const QString& method,
                    const QVariantList& arguments = {}) {
    QDBusMessage message = QDBusMessage::createMethodCall(name_, path, interface, method);
    message.setArguments(arguments);
    const QDBusMessage answer = bus_.connection().call(message);
    EXPECT_EQ(answer.type(), QDBusMessage::ReplyMessage)
        << method.toStdString() << ": " << answer.errorMessage().toStdString();
    return answer.arguments();
  }
  /// The same by the means of the mock itself.
  QVariantList mock(const QString& path, const QString& method, const QVariantList& arguments) {
    return call(path, QStringLiteral("org.freedesktop.DBus.Mock"), method, arguments);
  }

  void addMethod(const QString& interface, const QString& method, const QString& takes, const QString& gives,
                 const QString& code) {
    mock(path_, QStringLiteral("AddMethod"), {interface, method, takes, gives, code});
  }
  void addProperty(const QString& interface, const QString& property, const QVariant& value) {
    mock(path_, QStringLiteral("AddProperty"), {interface, property, QVariant::fromValue(QDBusVariant(value))});
  }
  void setProperties(const QString& path, const QString& interface, const QVariantMap& values) {
    mock(path, QStringLiteral("UpdateProperties"), {interface, values});
  }
  /// A signal with one truth value.
  void emitSignal(const QString& path, const QString& interface, const QString& signal, bool value) {
    const QVariantList arguments{QVariant::fromValue(QDBusVariant(value))};
    mock(path, QStringLiteral("EmitSignal"), {interface, signal, QStringLiteral("b"), arguments});
  }
  /// Waits until the service was asked this.
  bool wasAsked(const QString& method) {
    return runLoopUntil([&] {
      const auto calls = mock(path_, QStringLiteral("GetMethodCalls"), {method}).value(0).value<QDBusArgument>();
      calls.beginArray();
      const bool isAny = !calls.atEnd();
      calls.endArray();
      return isAny;
    });
  }

 private:
  MockService(MockBus& bus, const QStringList& arguments, const QString& name, const QString& path)
      : bus_(bus), name_(name), path_(path) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus.address());
    environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), bus.address());
    process_ = startHelper(QStringLiteral("/usr/bin/python3"),
                           QStringList{QStringLiteral("-m"), QStringLiteral("dbusmock")} + arguments, environment);
    EXPECT_TRUE(runLoopUntil([&] { return bus.connection().interface()->isServiceRegistered(name).value(); }))
        << name.toStdString() << " does not start; is python3-dbusmock installed?";
  }

  MockBus& bus_;
  QString name_;
  QString path_;
  std::unique_ptr<QProcess> process_;
};

}  // namespace quillmere::testing
