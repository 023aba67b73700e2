#include "platform/linux/shortcuts/PortalHotKeys.h"

#include <gmock/gmock.h>

#include "FakeShortcutPortal.h"
#include "foundation/ManualExecutor.h"

namespace quillmere {
namespace {

using ::testing::ElementsAre;
using testing::FakeShortcutPortal;
using ::testing::IsEmpty;
using testing::MockBus;
using testing::runLoopUntil;

constexpr HotKeyShortcut kOther{15, HotKeyShortcut::control | HotKeyShortcut::option};
const QString kStandardName = QStringLiteral("review key 11");
const QString kOtherName = QStringLiteral("review key 15");

class PortalHotKeysTest : public ::testing::Test {
 protected:
  PortalHotKeysTest() {
    keys->installHandler([this](const HotKeyPress* press) {
      pressed.push_back(press->key.id);
      return hotKeyDone;
    });
    observers.push_back(
        keys->refusedLater.connect([this](quint32 id, qint32 status) { refused.emplace_back(id, status); }));
    observers.push_back(keys->changed.connect([this] { ++changes; }));
    observers.push_back(
        keys->leftWithoutKeys.connect([this](HotKeySystem::Reference which) { keyless.push_back(which); }));
  }
  ~PortalHotKeysTest() override {
    keys.reset();
    QDBusConnection::disconnectFromBus(QStringLiteral("shortcuts"));
  }

  bool until(const std::function<bool()>& condition) {
    return runLoopUntil([&] {
      executor.drain();
      return condition();
    });
  }
  /// Everything that was sent has arrived: a question to the bus goes the same way and comes back after it.
  void settle() {
    for (int turn = 0; turn < 4; ++turn) {
      executor.drain();
      QCoreApplication::processEvents();
      bus.connection().call(QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                           "org.freedesktop.DBus.Peer", "Ping"));
      program.call(QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                  "org.freedesktop.DBus.Peer", "Ping"));
    }
    executor.drain();
    QCoreApplication::processEvents();
  }
  void registerStandard() {
    const auto answer = keys->registerHotKey(HotKeyShortcut::standard(), {.id = 1});
    ASSERT_EQ(answer.status, hotKeyDone);
    reference = *answer.reference;
  }
  bool isBound() { return portal->calls.contains("BindShortcuts"); }
  void start() {
    portal = std::make_unique<FakeShortcutPortal>(bus);
    EXPECT_TRUE(until([&] { return keys->reach() == HotKeyReach::everywhere; }));
  }

  MockBus bus;
  ManualExecutor executor;
  QDBusConnection program = QDBusConnection::connectToBus(bus.address(), QStringLiteral("shortcuts"));
  std::vector<quint32> pressed;
  std::vector<std::pair<quint32, qint32>> refused;
  std::vector<HotKeySystem::Reference> keyless;
  int changes = 0;
  HotKeySystem::Reference reference = 0;
  std::unique_ptr<FakeShortcutPortal> portal;
  std::unique_ptr<PortalHotKeys> keys = std::make_unique<PortalHotKeys>(
      program, executor,
      PortalHotKeys::Words{
          [](const HotKeyShortcut& shortcut) { return QStringLiteral("key %1").arg(shortcut.keyCode); },
          [](const HotKeyShortcut&) { return QStringLiteral("Ctrl+Shift+Super+B"); }});
  std::vector<Connection> observers;
};

TEST_F(PortalHotKeysTest, WithoutAPortalNothingIsHeardAndNothingWaits) {
  registerStandard();
  settle();
  EXPECT_EQ(keys->reach(), HotKeyReach::nowhere);
  EXPECT_TRUE(refused.empty());
  EXPECT_EQ(changes, 0);
}

TEST_F(PortalHotKeysTest, APortalWithoutShortcutsIsNone) {
  portal = std::make_unique<FakeShortcutPortal>(bus);
  portal->hasInterface = false;
  registerStandard();
  ASSERT_TRUE(until([&] { return portal->calls.contains("Get"); }));
  settle();
  EXPECT_EQ(keys->reach(), HotKeyReach::nowhere);
  EXPECT_THAT(portal->calls, ElementsAre("Register", "Get"));
}

TEST_F(PortalHotKeysTest, ThePortalIsToldFirstWhoAsksAndThenWhatIsWished) {
  registerStandard();
  start();
  ASSERT_TRUE(until([&] { return isBound(); }));
  EXPECT_THAT(portal->calls, ElementsAre("Register", "Get", "CreateSession", "BindShortcuts"));
  EXPECT_EQ(portal->application, "com.quillmere.app");
  ASSERT_EQ(portal->bound.size(), 1);
  EXPECT_EQ(portal->bound[0].name, kStandardName);
  EXPECT_EQ(portal->bound[0].options["description"], "Review Screenshot");
  EXPECT_EQ(portal->bound[0].options["preferred_trigger"], "key 11");
  EXPECT_EQ(changes, 1);
}

TEST_F(PortalHotKeysTest, APortalThatKnowsNoProgramsIsUsedToo) {
  portal = std::make_unique<FakeShortcutPortal>(bus);
  portal->knowsPrograms = false;
  portal->tellsSessionAsPath = true;
  registerStandard();
  EXPECT_TRUE(until([&] { return isBound(); }));
}

TEST_F(PortalHotKeysTest, APressIsHeardOfOurSessionOnly) {
  registerStandard();
  start();
  ASSERT_TRUE(until([&] { return isBound(); }));
  settle();
  portal->activate(kStandardName, "/org/freedesktop/portal/desktop/session/other/1");
  portal->activate("review something else");
  portal->activate(kStandardName);
  ASSERT_TRUE(until([&] { return !pressed.empty(); }));
  settle();
  EXPECT_THAT(pressed, ElementsAre(1u));
}

TEST_F(PortalHotKeysTest, TheDesktopsOwnChoiceIsToldWhereItDiffers) {
  registerStandard();
  start();
  ASSERT_TRUE(until([&] { return isBound(); }));
  settle();
  EXPECT_EQ(keys->chosenByDesktop(), "");
  const int before = changes;
  portal->changeTriggers("Meta+R");
  ASSERT_TRUE(until([&] { return keys->chosenByDesktop() == "Meta+R"; }));
  EXPECT_EQ(changes, before + 1);
  portal->changeTriggers("Press <Control><Shift><Super>b");
  EXPECT_TRUE(until([&] { return keys->chosenByDesktop().isEmpty(); }));
  EXPECT_EQ(changes, before + 2);
}

TEST_F(PortalHotKeysTest, AShortcutWithoutKeysIsToldForSomebodyToFindOutWhy) {
  portal = std::make_unique<FakeShortcutPortal>(bus);
  portal->trigger.clear();
  registerStandard();
  ASSERT_TRUE(until([&] { return !keyless.empty(); }));
  EXPECT_THAT(keyless, ElementsAre(reference));
  EXPECT_TRUE(refused.empty());
}

TEST_F(PortalHotKeysTest, ARefusalIsToldLater) {
  portal = std::make_unique<FakeShortcutPortal>(bus);
  portal->bindResponse = 2;
  registerStandard();
  ASSERT_TRUE(until([&] { return !refused.empty(); }));
  EXPECT_EQ(refused.front(), (std::pair<quint32, qint32>(1, 2)));
}

TEST_F(PortalHotKeysTest, ASessionThatIsRefusedIsTold) {
  portal = std::make_unique<FakeShortcutPortal>(bus);
  portal->sessionResponse = 2;
  registerStandard();
  ASSERT_TRUE(until([&] { return !refused.empty(); }));
  EXPECT_FALSE(isBound());
}

TEST_F(PortalHotKeysTest, CallsThatFailAreTold) {
  portal = std::make_unique<FakeShortcutPortal>(bus);
  portal->refusesCalls = true;
  registerStandard();
  ASSERT_TRUE(until([&] { return !refused.empty(); }));
  EXPECT_EQ(refused.front().second, 2);
}

TEST_F(PortalHotKeysTest, AnAnswerWithoutTheShortcutIsARefusal) {
  portal = std::make_unique<FakeShortcutPortal>(bus);
  portal->leavesOut = true;
  registerStandard();
  ASSERT_TRUE(until([&] { return !refused.empty(); }));
}

TEST_F(PortalHotKeysTest, WhoSaidNoIsNotAskedAgainForTheSameKeys) {
  portal = std::make_unique<FakeShortcutPortal>(bus);
  portal->bindResponse = 1;
  registerStandard();
  ASSERT_TRUE(until([&] { return !refused.empty(); }));
  keys->unregisterHotKey(reference);
  settle();
  portal->calls.clear();
  refused.clear();
  registerStandard();
  ASSERT_TRUE(until([&] { return !refused.empty(); }));
  settle();
  EXPECT_THAT(portal->calls, IsEmpty());
  keys->unregisterHotKey(reference);
  portal->bindResponse = 0;
  ASSERT_EQ(keys->registerHotKey(kOther, {.id = 2}).status, hotKeyDone);
  EXPECT_TRUE(until([&] { return isBound(); })) << "other keys are another question";
}

TEST_F(PortalHotKeysTest, ASilentPortalHoldsNothingUp) {
  portal = std::make_unique<FakeShortcutPortal>(bus);
  portal->isSilent = true;
  registerStandard();
  ASSERT_TRUE(until([&] { return portal->calls.contains("CreateSession"); }));
  keys->unregisterHotKey(reference);
  settle();
  registerStandard();
  portal->isSilent = false;
  ASSERT_TRUE(until([&] { return isBound(); }));
  settle();
  portal->activate(kStandardName);
  EXPECT_TRUE(until([&] { return !pressed.empty(); }));
}

TEST_F(PortalHotKeysTest, AnAnswerThatComesAfterAChangeCountsNoMore) {
  portal = std::make_unique<FakeShortcutPortal>(bus);
  portal->holdsBinding = true;
  portal->trigger = "Meta+R";
  registerStandard();
  ASSERT_TRUE(until([&] { return isBound(); }));
  keys->unregisterHotKey(reference);
  ASSERT_TRUE(until([&] { return portal->calls.contains("Close"); })) << "the session is given back";
  portal->answerBinding();
  settle();
  EXPECT_EQ(keys->chosenByDesktop(), "");
  portal->activate(kStandardName);
  settle();
  EXPECT_THAT(pressed, IsEmpty());
}

TEST_F(PortalHotKeysTest, AChangeOfShortcutIsANewSession) {
  registerStandard();
  start();
  ASSERT_TRUE(until([&] { return isBound(); }));
  settle();
  const QString first = portal->session;
  portal->calls.clear();
  keys->unregisterHotKey(reference);
  ASSERT_EQ(keys->registerHotKey(kOther, {.id = 2}).status, hotKeyDone);
  ASSERT_TRUE(until([&] { return isBound(); }));
  EXPECT_THAT(portal->calls, ElementsAre("Close", "CreateSession", "BindShortcuts")) << "one for both changes";
  EXPECT_NE(portal->session, first);
  settle();
  portal->activate(kOtherName);
  ASSERT_TRUE(until([&] { return !pressed.empty(); }));
  EXPECT_THAT(pressed, ElementsAre(2u));
}

TEST_F(PortalHotKeysTest, APortalThatRestartsIsAskedAnew) {
  registerStandard();
  start();
  ASSERT_TRUE(until([&] { return isBound(); }));
  settle();
  portal->vanish();
  ASSERT_TRUE(until([&] { return keys->reach() == HotKeyReach::nowhere; }));
  EXPECT_TRUE(refused.empty());
  portal->calls.clear();
  portal->appear();
  ASSERT_TRUE(until([&] { return isBound(); }));
  EXPECT_EQ(keys->reach(), HotKeyReach::everywhere);
  settle();
  portal->activate(kStandardName);
  EXPECT_TRUE(until([&] { return !pressed.empty(); }));
}

TEST_F(PortalHotKeysTest, APortalThatVanishesWhileItIsAskedHoldsNothingUp) {
  portal = std::make_unique<FakeShortcutPortal>(bus);
  portal->holdsBinding = true;
  registerStandard();
  ASSERT_TRUE(until([&] { return isBound(); }));
  portal->vanish();
  ASSERT_TRUE(until([&] { return keys->reach() == HotKeyReach::nowhere; }));
  keys->unregisterHotKey(reference);
  settle();
  EXPECT_TRUE(refused.empty());
}

TEST_F(PortalHotKeysTest, ASessionThatTheDesktopClosesIsTold) {
  registerStandard();
  start();
  ASSERT_TRUE(until([&] { return isBound(); }));
  settle();
  portal->close();
  ASSERT_TRUE(until([&] { return !refused.empty(); }));
  portal->activate(kStandardName);
  settle();
  EXPECT_THAT(pressed, IsEmpty());
}

TEST_F(PortalHotKeysTest, ItMayEndInTheMiddle) {
  portal = std::make_unique<FakeShortcutPortal>(bus);
  registerStandard();
  ASSERT_TRUE(until([&] { return portal->calls.contains("CreateSession"); }));
  keys.reset();
  settle();
  EXPECT_TRUE(refused.empty());
}

}  // namespace
}  // namespace quillmere
