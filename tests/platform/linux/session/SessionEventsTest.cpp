#include "platform/linux/session/SessionEvents.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include "foundation/ManualExecutor.h"
#include "platform/linux/common/QtExecutor.h"
#include "support/MockBus.h"

namespace quillmere {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::MockBus;
using testing::MockService;
using testing::runLoopUntil;

const QString kLogind = QStringLiteral("org.freedesktop.login1");
const QString kLogindPath = QStringLiteral("/org/freedesktop/login1");
const QString kManager = QStringLiteral("org.freedesktop.login1.Manager");
const QString kSession = QStringLiteral("org.freedesktop.login1.Session");
const QString kSessionPath = QStringLiteral("/org/freedesktop/login1/session/c1");
const QString kMutter = QStringLiteral("org.gnome.Mutter.DisplayConfig");
const QString kMutterPath = QStringLiteral("/org/gnome/Mutter/DisplayConfig");
const QString kGnomeSaver = QStringLiteral("org.gnome.ScreenSaver");
const QString kGnomeSaverPath = QStringLiteral("/org/gnome/ScreenSaver");

class SessionEventsTest : public ::testing::Test {
 protected:
  SessionEventsTest() {
    qputenv("XDG_SESSION_ID", "c1");
    note(events.didWake, "woke");
    note(events.screensDidSleep, "screens off");
    note(events.screensDidWake, "screens on");
    note(events.sessionDidResign, "away");
    note(events.sessionDidBecomeActive, "back");
  }
  ~SessionEventsTest() override {
    session.reset();
    executor.reset();  // only then has what was begun been connected
    for (const char* name : {"system", "desktop"}) QDBusConnection::disconnectFromBus(QLatin1String(name));
    qunsetenv("XDG_SESSION_ID");
  }
  void note(Signal<>& signal, const std::string& text) {
    observers.push_back(signal.connect([this, text] { log.push_back(text); }));
  }
  /// Waits for the news, and gives all that came.
  std::vector<std::string> told(size_t count) {
    EXPECT_TRUE(runLoopUntil([&] { return log.size() >= count; })) << "nothing is told";
    return std::exchange(log, {});
  }

  void begin(Executor& on, const QString& address) {
    const auto to = [address](const char* name) {
      return [address, name] { return QDBusConnection::connectToBus(address, QLatin1String(name)); };
    };
    session = std::make_unique<SessionEvents>(on, events,
                                              SessionSources{to("system"), to("desktop"), [this] { return areOff; }});
  }
  void begin() { begin(*executor, bus.address()); }

  // --- What the desktop does ---

  std::unique_ptr<MockService> startLogind() {
    auto logind = MockService::ofTemplate(bus, QStringLiteral("logind"), kLogind, kLogindPath);
    logind->mock(kLogindPath, QStringLiteral("AddSession"),
                 {QStringLiteral("c1"), QStringLiteral("seat0"), 1000u, QStringLiteral("someone"), true});
    return logind;
  }
  static void setLocked(MockService& logind, bool isLocked) {
    logind.call(kSessionPath, kSession, QStringLiteral("SetLockedHint"), {isLocked});
  }
  static void setShown(MockService& logind, bool isShown) {
    logind.setProperties(kSessionPath, kSession, {{QStringLiteral("Active"), isShown}});
  }
  static void setAsleep(MockService& logind, bool isAsleep) {
    logind.emitSignal(kLogindPath, kManager, QStringLiteral("PrepareForSleep"), isAsleep);
  }
  std::unique_ptr<MockService> startGnomeSaver() {
    return MockService::ofTemplate(bus, QStringLiteral("gnome_screensaver"), kGnomeSaver, kGnomeSaverPath);
  }
  static void setGnomeSaver(MockService& saver, bool isActive) {
    saver.call(kGnomeSaverPath, kGnomeSaver, QStringLiteral("SetActive"), {isActive});
  }
  std::unique_ptr<MockService> startMutter(int mode) {
    auto mutter = MockService::bare(bus, kMutter, kMutterPath, kMutter);
    mutter->addProperty(kMutter, QStringLiteral("PowerSaveMode"), mode);
    return mutter;
  }
  static void setPower(MockService& mutter, int mode) {
    mutter.setProperties(kMutterPath, kMutter, {{QStringLiteral("PowerSaveMode"), mode}});
  }

  MockBus bus;
  std::unique_ptr<QtExecutor> executor = std::make_unique<QtExecutor>();
  SystemEvents events;
  std::optional<bool> areOff;  ///< as the X server has it
  std::vector<std::string> log;
  std::vector<Connection> observers;
  std::unique_ptr<SessionEvents> session;
};

// --- Sleep ---

TEST_F(SessionEventsTest, AfterSleepTheMachineIsToldToHaveWoken) {
  const auto logind = startLogind();
  begin();
  ASSERT_TRUE(logind->wasAsked(QStringLiteral("GetSession")));
  setAsleep(*logind, true);
  setAsleep(*logind, false);
  setAsleep(*logind, true);
  setLocked(*logind, true);
  EXPECT_THAT(told(2), ElementsAre("woke", "away")) << "going to sleep is no news";
}

// --- The session ---

TEST_F(SessionEventsTest, ALockedSessionIsAwayUntilItIsUnlocked) {
  const auto logind = startLogind();
  begin();
  setLocked(*logind, true);
  EXPECT_THAT(told(1), ElementsAre("away"));
  setLocked(*logind, false);
  EXPECT_THAT(told(1), ElementsAre("back"));
  setLocked(*logind, true);
  setLocked(*logind, true);
  setLocked(*logind, false);
  EXPECT_THAT(told(2), ElementsAre("away", "back"));
}

TEST_F(SessionEventsTest, AskingToLockAndUnlockChangesNothing) {
  const auto logind = startLogind();
  begin();
  ASSERT_TRUE(logind->wasAsked(QStringLiteral("GetSession")));
  for (const char* wish : {"Lock", "Unlock", "Lock"}) logind->call(kSessionPath, kSession, QLatin1String(wish));
  setLocked(*logind, true);
  EXPECT_THAT(told(1), ElementsAre("away"));
  logind->call(kSessionPath, kSession, QStringLiteral("Unlock"));
  setAsleep(*logind, false);
  EXPECT_THAT(told(1), ElementsAre("woke"));
}

TEST_F(SessionEventsTest, WhileAnotherPersonsSessionIsShownThisOneIsAway) {
  const auto logind = startLogind();
  begin();
  setShown(*logind, false);
  EXPECT_THAT(told(1), ElementsAre("away"));
  setShown(*logind, true);
  EXPECT_THAT(told(1), ElementsAre("back"));
}

TEST_F(SessionEventsTest, ASessionLockedBeforeTheStartIsAway) {
  const auto logind = startLogind();
  setLocked(*logind, true);
  begin();
  EXPECT_THAT(told(1), ElementsAre("away"));
}

TEST_F(SessionEventsTest, AnotherSessionsLockIsNotOurs) {
  const auto logind = startLogind();
  logind->mock(kLogindPath, QStringLiteral("AddSession"),
               {QStringLiteral("c2"), QStringLiteral("seat0"), 1001u, QStringLiteral("other"), true});
  begin();
  ASSERT_TRUE(logind->wasAsked(QStringLiteral("GetSession")));
  logind->call(QStringLiteral("/org/freedesktop/login1/session/c2"), kSession, QStringLiteral("SetLockedHint"), {true});
  setAsleep(*logind, false);
  EXPECT_THAT(told(1), ElementsAre("woke"));
}

TEST_F(SessionEventsTest, APropertyToldAsChangedWithoutItsValueIsAskedFor) {
  const auto logind = startLogind();
  begin();
  setLocked(*logind, true);
  EXPECT_THAT(told(1), ElementsAre("away"));
  logind->mock(kSessionPath, QStringLiteral("AddMethod"),
               {kSession, QStringLiteral("UnlockWithoutValue"), QString(), QString(),
                QStringLiteral("self.props['%1']['LockedHint'] = False\n"
                               "self.EmitSignal('org.freedesktop.DBus.Properties', 'PropertiesChanged', 'sa{sv}as',"
                               " ['%1', {}, ['LockedHint']])")
                    .arg(kSession)});
  logind->call(kSessionPath, kSession, QStringLiteral("UnlockWithoutValue"));
  EXPECT_THAT(told(1), ElementsAre("back"));
}

TEST_F(SessionEventsTest, WithoutItsNumberTheSessionIsFoundByTheProcess) {
  qunsetenv("XDG_SESSION_ID");
  const auto logind = startLogind();
  logind->addMethod(kManager, QStringLiteral("GetSessionByPID"), QStringLiteral("u"), QStringLiteral("o"),
                    QStringLiteral("ret = '%1' if args[0] == %2 else '/none'").arg(kSessionPath).arg(::getpid()));
  begin();
  setLocked(*logind, true);
  EXPECT_THAT(told(1), ElementsAre("away"));
}

TEST_F(SessionEventsTest, ASessionNumberThatIsNotKnownIsFoundByTheProcess) {
  const auto logind = startLogind();
  logind->addMethod(kManager, QStringLiteral("GetSession"), QStringLiteral("s"), QStringLiteral("o"),
                    QStringLiteral("raise dbus.exceptions.DBusException('none', name='org.example.NoSuchSession')"));
  logind->addMethod(kManager, QStringLiteral("GetSessionByPID"), QStringLiteral("u"), QStringLiteral("o"),
                    QStringLiteral("ret = '%1'").arg(kSessionPath));
  begin();
  setLocked(*logind, true);
  EXPECT_THAT(told(1), ElementsAre("away"));
}

TEST_F(SessionEventsTest, WithoutASessionTheMachineStillSleepsAndWakes) {
  qunsetenv("XDG_SESSION_ID");
  const auto logind = startLogind();
  logind->addMethod(kManager, QStringLiteral("GetSessionByPID"), QStringLiteral("u"), QStringLiteral("o"),
                    QStringLiteral("raise dbus.exceptions.DBusException('none', name='org.example.NoSession')"));
  begin();
  ASSERT_TRUE(logind->wasAsked(QStringLiteral("GetSessionByPID")));
  setLocked(*logind, true);
  setAsleep(*logind, false);
  EXPECT_THAT(told(1), ElementsAre("woke"));
}

// --- Screen savers ---

struct Saver {
  const char* name;
  const char* path;
};
class EverySaverTest : public SessionEventsTest, public ::testing::WithParamInterface<Saver> {};

INSTANTIATE_TEST_SUITE_P(Savers, EverySaverTest,
                         ::testing::Values(Saver{"org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver"},
                                           Saver{"org.freedesktop.ScreenSaver", "/ScreenSaver"},
                                           Saver{"org.gnome.ScreenSaver", "/org/gnome/ScreenSaver"},
                                           Saver{"org.xfce.ScreenSaver", "/org/xfce/ScreenSaver"},
                                           Saver{"org.mate.ScreenSaver", "/org/mate/ScreenSaver"},
                                           Saver{"org.cinnamon.ScreenSaver", "/org/cinnamon/ScreenSaver"}));

TEST_P(EverySaverTest, TakesTheSessionAwayWhileItIsActive) {
  const QString name = QLatin1String(GetParam().name);
  const QString path = QLatin1String(GetParam().path);
  const auto saver = MockService::bare(bus, name, path, name);
  saver->addMethod(name, QStringLiteral("GetActive"), QString(), QStringLiteral("b"), QStringLiteral("ret = True"));
  begin();
  EXPECT_THAT(told(1), ElementsAre("away")) << "active already at the start";
  saver->emitSignal(path, name, QStringLiteral("ActiveChanged"), false);
  EXPECT_THAT(told(1), ElementsAre("back"));
  saver->emitSignal(path, name, QStringLiteral("ActiveChanged"), true);
  EXPECT_THAT(told(1), ElementsAre("away"));
}

TEST_F(SessionEventsTest, ASaverThatTellsByBothItsPathsIsOne) {
  const QString name = QStringLiteral("org.freedesktop.ScreenSaver");
  const QString path = QStringLiteral("/org/freedesktop/ScreenSaver");
  const auto saver = MockService::bare(bus, name, path, name);
  saver->addMethod(name, QStringLiteral("GetActive"), QString(), QStringLiteral("b"), QStringLiteral("ret = True"));
  saver->addMethod(name, QStringLiteral("ServeOtherPath"), QString(), QString(),
                   QStringLiteral("self.AddObject('/ScreenSaver', '%1', {}, [])").arg(name));
  saver->call(path, name, QStringLiteral("ServeOtherPath"));
  begin();
  EXPECT_THAT(told(1), ElementsAre("away"));
  saver->emitSignal(path, name, QStringLiteral("ActiveChanged"), false);
  saver->emitSignal(QStringLiteral("/ScreenSaver"), name, QStringLiteral("ActiveChanged"), false);
  EXPECT_THAT(told(1), ElementsAre("back"));
}

TEST_F(SessionEventsTest, OfSeveralReasonsTheLastOneToEndBringsTheSessionBack) {
  const auto logind = startLogind();
  const auto saver = startGnomeSaver();
  begin();
  setLocked(*logind, true);
  EXPECT_THAT(told(1), ElementsAre("away"));
  setLocked(*logind, false);
  EXPECT_THAT(told(1), ElementsAre("back"));
  setGnomeSaver(*saver, true);
  EXPECT_THAT(told(1), ElementsAre("away"));
  // Waking, which comes from the same service, shows that what was told before has been heard.
  setLocked(*logind, true);
  setShown(*logind, false);
  setAsleep(*logind, false);
  EXPECT_THAT(told(1), ElementsAre("woke"));
  setLocked(*logind, false);
  setShown(*logind, true);
  setAsleep(*logind, false);
  EXPECT_THAT(told(1), ElementsAre("woke"));
  setGnomeSaver(*saver, false);
  EXPECT_THAT(told(1), ElementsAre("back"));
}

// --- The displays ---

TEST_F(SessionEventsTest, DisplaysThatTheDesktopSwitchesOffSleep) {
  const auto mutter = startMutter(0);
  begin();
  for (const int mode : {1, 2, 3}) setPower(*mutter, mode);
  EXPECT_THAT(told(1), ElementsAre("screens off"));
  setPower(*mutter, 0);
  EXPECT_THAT(told(1), ElementsAre("screens on"));
  setPower(*mutter, 3);
  EXPECT_THAT(told(1), ElementsAre("screens off"));
  setPower(*mutter, -1);
  EXPECT_THAT(told(1), ElementsAre("screens on")) << "unknown counts as on";
}

TEST_F(SessionEventsTest, DisplaysThatAreOffAtTheStartSleep) {
  const auto mutter = startMutter(3);
  begin();
  EXPECT_THAT(told(1), ElementsAre("screens off"));
}

TEST_F(SessionEventsTest, TheDisplaysOfAnXServerAreLookedAtOnlyWhileItMatters) {
  const auto mutter = startMutter(0);
  areOff = true;
  begin();
  setPower(*mutter, 3);
  EXPECT_THAT(told(1), ElementsAre("screens off"));
  setPower(*mutter, 0);
  EXPECT_THAT(told(1), ElementsAre("screens on")) << "nobody has looked yet";
  session->setWatchesScreens(true);
  EXPECT_THAT(log, IsEmpty()) << "not within the call";
  EXPECT_THAT(told(1), ElementsAre("screens off"));
  session->setWatchesScreens(false);
  EXPECT_THAT(told(1), ElementsAre("screens on"));
}

// --- Services that come and go ---

TEST_F(SessionEventsTest, ServicesMayComeLater) {
  begin();
  const auto logind = startLogind();
  setLocked(*logind, true);
  EXPECT_THAT(told(1), ElementsAre("away"));
  setLocked(*logind, false);
  EXPECT_THAT(told(1), ElementsAre("back"));
  const auto saver = startGnomeSaver();
  setGnomeSaver(*saver, true);
  EXPECT_THAT(told(1), ElementsAre("away"));
  const auto mutter = startMutter(0);
  setPower(*mutter, 3);
  EXPECT_THAT(told(1), ElementsAre("screens off"));
}

TEST_F(SessionEventsTest, AServiceThatVanishesLeavesNothingLockedAndMayComeAgain) {
  auto saver = startGnomeSaver();
  begin();
  setGnomeSaver(*saver, true);
  EXPECT_THAT(told(1), ElementsAre("away"));
  saver->stop();
  EXPECT_THAT(told(1), ElementsAre("back"));
  saver = startGnomeSaver();
  setGnomeSaver(*saver, true);
  EXPECT_THAT(told(1), ElementsAre("away"));
}

TEST_F(SessionEventsTest, ALogindThatVanishesLeavesNothingLockedAndMayComeAgain) {
  auto logind = startLogind();
  begin();
  setLocked(*logind, true);
  setShown(*logind, false);
  EXPECT_THAT(told(1), ElementsAre("away"));
  logind->stop();
  EXPECT_THAT(told(1), ElementsAre("back"));
  logind = startLogind();
  setLocked(*logind, true);
  EXPECT_THAT(told(1), ElementsAre("away"));
  setLocked(*logind, false);
  EXPECT_THAT(told(1), ElementsAre("back"));
}

TEST_F(SessionEventsTest, ADesktopThatVanishesLeavesNoDisplayOff) {
  const auto mutter = startMutter(3);
  begin();
  EXPECT_THAT(told(1), ElementsAre("screens off"));
  mutter->stop();
  EXPECT_THAT(told(1), ElementsAre("screens on"));
}

TEST_F(SessionEventsTest, ABusThatEndsLeavesNothingLocked) {
  const auto saver = startGnomeSaver();
  begin();
  setGnomeSaver(*saver, true);
  EXPECT_THAT(told(1), ElementsAre("away"));
  bus.stop();
  EXPECT_THAT(told(1), ElementsAre("back"));
}

TEST_F(SessionEventsTest, WhatAnyoneElseTellsIsNotBelieved) {
  const auto logind = startLogind();
  begin();
  ASSERT_TRUE(logind->wasAsked(QStringLiteral("GetSession")));
  QDBusMessage sleep = QDBusMessage::createSignal(kLogindPath, kManager, QStringLiteral("PrepareForSleep"));
  sleep << false;
  QDBusMessage owner =
      QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/DBus"), QStringLiteral("org.freedesktop.DBus"),
                                 QStringLiteral("NameOwnerChanged"));
  owner << kLogind << QString() << QStringLiteral(":1.999");
  bus.connection().send(sleep);
  bus.connection().send(owner);
  setLocked(*logind, true);
  EXPECT_THAT(told(1), ElementsAre("away"));
}

TEST_F(SessionEventsTest, WithoutAnyBusNothingIsToldAndNothingBreaks) {
  ManualExecutor manual;
  areOff = true;
  begin(manual, QStringLiteral("unix:path=/nowhere/bus"));
  manual.drain();
  EXPECT_THAT(log, IsEmpty());
  session->setWatchesScreens(true);
  manual.advance(Duration::zero());
  EXPECT_THAT(log, ElementsAre("screens off")) << "the displays need no bus";
  session.reset();
}

TEST_F(SessionEventsTest, NothingIsFollowedForOneWhoWentBeforeTheBusAnswered) {
  ManualExecutor manual;
  manual.holdBackground();
  begin(manual, bus.address());
  session.reset();
  manual.runHeldBackground();
  manual.drain();
  EXPECT_THAT(log, IsEmpty());
}

// --- CombinedState ---

TEST(CombinedStateTest, HoldsWhileAnyReasonHolds) {
  Signal<> began;
  Signal<> ended;
  std::string log;
  const Connection beginning = began.connect([&] { log += "+"; });
  const Connection end = ended.connect([&] { log += "-"; });
  CombinedState state(began, ended);
  const QString first = QStringLiteral("first");
  const QString second = QStringLiteral("second");
  state.set(first, false);
  EXPECT_EQ(log, "");
  state.set(first, true);
  state.set(first, true);
  state.set(second, true);
  EXPECT_EQ(log, "+");
  state.set(first, false);
  EXPECT_EQ(log, "+");
  state.set(second, false);
  state.set(second, false);
  EXPECT_EQ(log, "+-");
}

}  // namespace
}  // namespace quillmere
