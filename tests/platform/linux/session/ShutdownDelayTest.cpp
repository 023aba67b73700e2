#include "platform/linux/session/ShutdownDelay.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>
#include <array>

#include "foundation/ManualExecutor.h"
#include "support/MockBus.h"

namespace quillmere {
namespace {

using testing::MockBus;
using testing::MockService;
using testing::runLoopUntil;

const QString kLogind = QStringLiteral("org.freedesktop.login1");
const QString kPath = QStringLiteral("/org/freedesktop/login1");
const QString kManager = QStringLiteral("org.freedesktop.login1.Manager");

class ShutdownDelayTest : public ::testing::Test {
 protected:
  ~ShutdownDelayTest() override {
    delay.reset();
    QDBusConnection::disconnectFromBus(QStringLiteral("system"));
  }

  /// The mock gives a pipe's end away, and keeps the other: that one ends when the first is closed everywhere.
  std::unique_ptr<MockService> startLogind() {
    auto logind = MockService::ofTemplate(bus, QStringLiteral("logind"), kLogind, kPath);
    logind->addMethod(kManager, QStringLiteral("Inhibit"), QStringLiteral("ssss"), QStringLiteral("h"),
                      QStringLiteral("import os\n"
                                     "self.given = getattr(self, 'given', [])\n"
                                     "mine, yours = os.pipe()\n"
                                     "os.set_blocking(mine, False)\n"
                                     "self.given.append(mine)\n"
                                     "fd = dbus.types.UnixFd(yours)\n"
                                     "os.close(yours)\n"
                                     "ret = fd"));
    logind->addMethod(kManager, QStringLiteral("HeldNow"), QString(), QStringLiteral("i"),
                      QStringLiteral("import os\n"
                                     "ret = 0\n"
                                     "for end in getattr(self, 'given', []):\n"
                                     "  try:\n"
                                     "    os.read(end, 1)\n"
                                     "  except BlockingIOError:\n"
                                     "    ret += 1"));
    return logind;
  }
  static int heldNow(MockService& logind) {
    return logind.call(kPath, kManager, QStringLiteral("HeldNow")).value(0).toInt();
  }
  static int asked(MockService& logind) {
    const auto calls = logind.mock(kPath, QStringLiteral("GetMethodCalls"), {QStringLiteral("Inhibit")})
                           .value(0)
                           .value<QDBusArgument>();
    int count = 0;
    calls.beginArray();
    while (!calls.atEnd()) {
      calls.beginStructure();
      qulonglong time = 0;
      QVariantList arguments;
      calls >> time >> arguments;
      calls.endStructure();
      ++count;
    }
    calls.endArray();
    return count;
  }
  void begin() {
    delay = std::make_unique<ShutdownDelay>(
        executor, [this] { return QDBusConnection::connectToBus(bus.address(), QStringLiteral("system")); },
        [this] {
          ++saves;
          if (whileSaving) whileSaving();
        });
    executor.drain();
  }
  static void goDown(MockService& logind, bool isBefore) {
    logind.emitSignal(kPath, kManager, QStringLiteral("PrepareForShutdown"), isBefore);
  }

  MockBus bus;
  ManualExecutor executor;
  std::unique_ptr<ShutdownDelay> delay;
  int saves = 0;
  std::function<void()> whileSaving;
};

TEST_F(ShutdownDelayTest, TheMachineWaitsOnlyWhileSomethingIsUnsaved) {
  const auto logind = startLogind();
  begin();
  EXPECT_FALSE(delay->isHeld());
  delay->setNeeded(true);
  ASSERT_TRUE(runLoopUntil([&] { return delay->isHeld(); }));
  EXPECT_EQ(heldNow(*logind), 1);
  delay->setNeeded(false);
  EXPECT_FALSE(delay->isHeld());
  EXPECT_TRUE(runLoopUntil([&] { return heldNow(*logind) == 0; }));
  delay->setNeeded(true);
  delay->setNeeded(true);
  ASSERT_TRUE(runLoopUntil([&] { return delay->isHeld(); }));
  EXPECT_EQ(heldNow(*logind), 1);
  EXPECT_EQ(asked(*logind), 2) << "once for each time";
}

TEST_F(ShutdownDelayTest, WhatIsUnsavedBeforeLogindIsFoundIsWaitedForToo) {
  const auto logind = startLogind();
  begin();
  delay->setNeeded(true);
  EXPECT_TRUE(runLoopUntil([&] { return delay->isHeld(); }));
}

TEST_F(ShutdownDelayTest, AnAnswerThatComesAfterTheSaveIsLetGoOf) {
  const auto logind = startLogind();
  begin();
  delay->setNeeded(true);
  ASSERT_TRUE(logind->wasAsked(QStringLiteral("Inhibit")));  // its answer waits in the loop
  delay->setNeeded(false);
  EXPECT_TRUE(runLoopUntil([&] { return heldNow(*logind) == 0; }));
  EXPECT_FALSE(delay->isHeld());
  delay->setNeeded(true);
  EXPECT_TRUE(runLoopUntil([&] { return delay->isHeld(); })) << "and is asked for again";
}

TEST_F(ShutdownDelayTest, GoingDownSavesAtOnceAndLetsGo) {
  const auto logind = startLogind();
  begin();
  delay->setNeeded(true);
  ASSERT_TRUE(runLoopUntil([&] { return delay->isHeld(); }));
  whileSaving = [&] {
    EXPECT_TRUE(delay->isHeld()) << "the machine waits for this";
    delay->setNeeded(false);
  };
  goDown(*logind, true);
  ASSERT_TRUE(runLoopUntil([&] { return saves == 1; }));
  EXPECT_FALSE(delay->isHeld());
  goDown(*logind, false);
  delay->setNeeded(true);
  ASSERT_TRUE(runLoopUntil([&] { return delay->isHeld(); })) << "the shutdown was called off";
  EXPECT_EQ(saves, 1);
}

TEST_F(ShutdownDelayTest, ARefusalChangesNothing) {
  const auto logind = startLogind();
  logind->addMethod(kManager, QStringLiteral("Inhibit"), QStringLiteral("ssss"), QStringLiteral("h"),
                    QStringLiteral("raise dbus.exceptions.DBusException('no', name='org.example.Refused')"));
  begin();
  delay->setNeeded(true);
  ASSERT_TRUE(logind->wasAsked(QStringLiteral("Inhibit")));
  goDown(*logind, true);
  EXPECT_TRUE(runLoopUntil([&] { return saves == 1; }));
  EXPECT_FALSE(delay->isHeld());
}

TEST_F(ShutdownDelayTest, WithoutLogindAndWithoutABusNothingIsAskedFor) {
  begin();
  delay->setNeeded(true);
  QCoreApplication::processEvents();
  EXPECT_FALSE(delay->isHeld());
  delay.reset();
  QDBusConnection::disconnectFromBus(QStringLiteral("system"));
  bus.stop();
  begin();
  delay->setNeeded(true);
  delay->setNeeded(false);
  EXPECT_FALSE(delay->isHeld());
}

TEST_F(ShutdownDelayTest, ALogindThatRestartsIsAskedAgain) {
  auto logind = startLogind();
  begin();
  delay->setNeeded(true);
  ASSERT_TRUE(runLoopUntil([&] { return delay->isHeld(); }));
  logind->stop();
  ASSERT_TRUE(runLoopUntil([&] { return !delay->isHeld(); }));
  logind = startLogind();
  EXPECT_TRUE(runLoopUntil([&] { return delay->isHeld(); }));
}

TEST_F(ShutdownDelayTest, ItMayGoWhileItWaits) {
  const auto logind = startLogind();
  begin();
  delay->setNeeded(true);
  delay.reset();
  EXPECT_EQ(saves, 0);
  delay = std::make_unique<ShutdownDelay>(
      executor, [this] { return QDBusConnection::connectToBus(bus.address(), QStringLiteral("system")); }, [] {});
  delay.reset();
  executor.drain();
}

}  // namespace
}  // namespace quillmere
