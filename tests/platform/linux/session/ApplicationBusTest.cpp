#include "platform/linux/session/ApplicationBus.h"

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <QtCore/QProcess>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusConnectionInterface>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingReply>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include "support/EventLoop.h"
#include "support/Printing.h"

namespace quillmere {
namespace {

using testing::runLoopUntil;

const QString kName = QStringLiteral("com.quillmere.app");
const QString kPath = QStringLiteral("/com/quillmere/app");
const QString kInterface = QStringLiteral("org.freedesktop.Application");

class ApplicationBusTest : public ::testing::Test {
 protected:
  /// A session bus of the test program's own, at the address that stands in its environment.
  static void SetUpTestSuite() {
    const QString address = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
    daemon = std::make_unique<QProcess>();
    daemon->setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });  // however the tests end
    daemon->start(QStringLiteral("dbus-daemon"),
                  {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--nopidfile"),
                   QStringLiteral("--print-address"), QStringLiteral("--address=") + address});
    ASSERT_TRUE(daemon->waitForReadyRead()) << "dbus-daemon does not start";
  }
  static void TearDownTestSuite() {
    daemon->kill();
    daemon->waitForFinished();
    daemon.reset();
  }
  void SetUp() override { ASSERT_TRUE(QDBusConnection::sessionBus().isConnected()); }
  void TearDown() override {
    QDBusConnection::sessionBus().unregisterService(kName);
    QDBusConnection::sessionBus().unregisterObject(kPath);
    QDBusConnection::disconnectFromBus(QStringLiteral("other"));
  }
  /// Another process, as the bus sees it.
  static QDBusConnection other() {
    return QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("other"));
  }
  static QDBusMessage call(const char* method) {
    return QDBusMessage::createMethodCall(kName, kPath, kInterface, QLatin1String(method));
  }
  /// Sends it from the other process and waits for the answer.
  static QDBusMessage answerTo(const QDBusMessage& message) {
    const QDBusPendingCall pending = other().asyncCall(message);
    EXPECT_TRUE(runLoopUntil([&] { return pending.isFinished(); }));
    return pending.reply();
  }

  static inline std::unique_ptr<QProcess> daemon;
  int activations = 0;
  std::vector<QString> actions;
  ApplicationBus bus{{[this] { ++activations; }, [this](const QString& action) { actions.push_back(action); }}};
};

TEST_F(ApplicationBusTest, TheFirstToRegisterHoldsTheName) {
  EXPECT_TRUE(bus.registerOnBus());
  EXPECT_TRUE(other().interface()->isServiceRegistered(kName));
}

TEST_F(ApplicationBusTest, ASecondRegistrationIsRefused) {
  QDBusConnection first = other();
  ASSERT_TRUE(first.registerService(kName));
  EXPECT_FALSE(bus.registerOnBus());
  first.unregisterService(kName);
  EXPECT_FALSE(first.interface()->isServiceRegistered(kName)) << "nobody waits in line for the name";
}

TEST_F(ApplicationBusTest, TheNameCannotBeTakenAway) {
  ASSERT_TRUE(bus.registerOnBus());
  const auto reply = other().interface()->registerService(kName, QDBusConnectionInterface::ReplaceExistingService,
                                                          QDBusConnectionInterface::AllowReplacement);
  EXPECT_EQ(reply.value(), QDBusConnectionInterface::ServiceNotRegistered);
}

TEST_F(ApplicationBusTest, ActivateAndOpenArrive) {
  ASSERT_TRUE(bus.registerOnBus());
  QDBusMessage activate = call("Activate");
  activate << QVariantMap{{QStringLiteral("desktop-startup-id"), QStringLiteral("id")}};
  EXPECT_EQ(answerTo(activate).type(), QDBusMessage::ReplyMessage);
  EXPECT_TRUE(runLoopUntil([&] { return activations == 1; }));
  QDBusMessage open = call("Open");
  open << QStringList{QStringLiteral("file:///a.png")} << QVariantMap();
  EXPECT_EQ(answerTo(open).type(), QDBusMessage::ReplyMessage);
  EXPECT_TRUE(runLoopUntil([&] { return activations == 2; }));
}

TEST_F(ApplicationBusTest, AnActionArrivesWithItsName) {
  ASSERT_TRUE(bus.registerOnBus());
  QDBusMessage action = call("ActivateAction");
  action << QStringLiteral("inbox") << QVariantList() << QVariantMap();
  EXPECT_EQ(answerTo(action).type(), QDBusMessage::ReplyMessage);
  EXPECT_TRUE(runLoopUntil([&] { return !actions.empty(); }));
  EXPECT_EQ(actions, std::vector<QString>{QStringLiteral("inbox")});
}

TEST_F(ApplicationBusTest, WhatIsNotKnownIsAnError) {
  ASSERT_TRUE(bus.registerOnBus());
  EXPECT_EQ(answerTo(call("Explode")).type(), QDBusMessage::ErrorMessage);
  EXPECT_EQ(answerTo(QDBusMessage::createMethodCall(kName, kPath, QStringLiteral("org.example.Other"),
                                                    QStringLiteral("Activate")))
                .type(),
            QDBusMessage::ErrorMessage);
  EXPECT_EQ(activations, 0);
}

TEST_F(ApplicationBusTest, ItTellsWhatItCanBeAsked) {
  ASSERT_TRUE(bus.registerOnBus());
  const QDBusMessage answer = answerTo(QDBusMessage::createMethodCall(
      kName, kPath, QStringLiteral("org.freedesktop.DBus.Introspectable"), QStringLiteral("Introspect")));
  ASSERT_EQ(answer.type(), QDBusMessage::ReplyMessage);
  const QString text = answer.arguments().value(0).toString();
  for (const char* method : {"Activate", "Open", "ActivateAction"}) {
    EXPECT_TRUE(text.contains(QStringLiteral("<method name=\"%1\">").arg(QLatin1String(method)))) << method;
  }
}

TEST_F(ApplicationBusTest, ASecondProcessBringsTheFirstToTheFront) {
  ASSERT_TRUE(bus.registerOnBus());
  const pid_t child = ::fork();
  if (child == 0) {
    // A new process image: the bus library does not survive a fork.
    ::execlp("gdbus", "gdbus", "call", "--session", "--dest", "com.quillmere.app", "--object-path",
             "/com/quillmere/app", "--method", "org.freedesktop.Application.Activate", "{}", nullptr);
    ::_exit(127);
  }
  EXPECT_TRUE(runLoopUntil([&] { return activations == 1; }));
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}

TEST_F(ApplicationBusTest, AskOtherAsksTheHolderOfTheName) {
  class Holder final : public QDBusVirtualObject {
   public:
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
      asked.push_back(message.member());
      if (message.arguments().size() == 3) asked.push_back(message.arguments().constFirst().toString());
      connection.send(message.createReply());
      return true;
    }
    QString introspect(const QString&) const override { return {}; }
    QStringList asked;
  };
  Holder holder;
  QDBusConnection first = other();
  ASSERT_TRUE(first.registerVirtualObject(kPath, &holder));
  ASSERT_TRUE(first.registerService(kName));
  const auto askedFor = [&](const QString& action) {
    holder.asked.clear();
    std::thread second([&action] { EXPECT_TRUE(ApplicationBus::askOther(action)); });
    EXPECT_TRUE(runLoopUntil([&] { return !holder.asked.isEmpty(); }));
    second.join();
    return holder.asked;
  };
  EXPECT_EQ(askedFor({}), QStringList{QStringLiteral("Activate")});
  EXPECT_EQ(askedFor(QStringLiteral("settings")),
            (QStringList{QStringLiteral("ActivateAction"), QStringLiteral("settings")}));
}

TEST(ApplicationBusDeathTest, WithoutAnyBusTheProgramRunsAllTheSame) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/bus");
        ApplicationBus alone{{}};
        const bool runs = alone.registerOnBus();
        ApplicationBus::askOther({});
        // This process has a home of its own, which nobody else removes.
        std::filesystem::remove_all(std::filesystem::path(std::getenv("HOME")).parent_path());
        std::_Exit(runs ? 0 : 1);
      },
      ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace quillmere
