#include "platform/linux/shortcuts/DesktopHotKeys.h"

#include <gmock/gmock.h>

#include "FakeShortcutPortal.h"
#include "fakes/FakeHotKeySystem.h"
#include "foundation/ManualExecutor.h"
#include "platform/linux/shortcuts/DesktopShortcuts.h"
#include "platform/linux/shortcuts/PortalHotKeys.h"

namespace quillmere {
namespace {

using ::testing::ElementsAre;
using testing::FakeHotKeySystem;
using testing::FakeShortcutPortal;
using ::testing::IsEmpty;
using testing::MockBus;
using testing::MockService;
using testing::runLoopUntil;

class DesktopHotKeysTest : public ::testing::Test {
 protected:
  ~DesktopHotKeysTest() override {
    keys.reset();
    QDBusConnection::disconnectFromBus(QStringLiteral("shortcuts"));
  }

  enum class Has { nothing, display, portal, both };
  void make(Has has) {
    DesktopHotKeys::Parts parts{.layout = layout};
    if (has == Has::display || has == Has::both) {
      display = new FakeHotKeySystem;
      parts.display.reset(display);
    }
    if (has == Has::portal || has == Has::both) {
      parts.displayReach = HotKeyReach::windowsOfX11;
      const QDBusConnection program = QDBusConnection::connectToBus(bus.address(), QStringLiteral("shortcuts"));
      const PortalHotKeys::Words words{[](const HotKeyShortcut&) { return QStringLiteral("keys"); },
                                       [](const HotKeyShortcut&) { return QStringLiteral("Ctrl+B"); }};
      parts.portal = std::make_unique<PortalHotKeys>(program, executor, words);
    }
    parts.desktop = std::make_unique<DesktopShortcuts>(bus.connection(), executor, QString());
    keys = std::make_unique<DesktopHotKeys>(std::move(parts));
    keys->installHandler([this](const HotKeyPress* press) {
      pressed.push_back(press->key.id);
      return hotKeyDone;
    });
    observers.push_back(
        keys->refusedLater.connect([this](quint32 id, qint32 status) { refused.emplace_back(id, status); }));
    observers.push_back(keys->changed.connect([this] { ++changes; }));
  }
  HotKeySystem::Answer add() { return keys->registerHotKey(HotKeyShortcut::standard(), {.id = 1}); }
  bool until(const std::function<bool()>& condition) {
    return runLoopUntil([&] {
      executor.drain();
      return condition();
    });
  }
  bool isBound() const { return portal->calls.contains("BindShortcuts"); }

  MockBus bus;
  ManualExecutor executor;
  const XkbKeyboardLayout layout{XkbKeyboardLayout::Source::standard};
  FakeHotKeySystem* display = nullptr;
  std::vector<quint32> pressed;
  std::vector<std::pair<quint32, qint32>> refused;
  int changes = 0;
  std::unique_ptr<FakeShortcutPortal> portal;
  std::unique_ptr<DesktopHotKeys> keys;
  std::vector<Connection> observers;
};

TEST_F(DesktopHotKeysTest, WithNobodyToHearKeysNothingIsRegisteredAndNothingFails) {
  make(Has::nothing);
  const auto answer = add();
  EXPECT_EQ(answer.status, hotKeyDone);
  ASSERT_TRUE(answer.reference.has_value());
  EXPECT_EQ(keys->reach(), HotKeyReach::nowhere);
  EXPECT_EQ(keys->chosenByDesktop(), "");
  keys->unregisterHotKey(*answer.reference);
  keys->unregisterHotKey(77);
  keys->removeHandler();
}

TEST_F(DesktopHotKeysTest, OnX11TheServerHearsKeysEverywhere) {
  make(Has::display);
  EXPECT_EQ(keys->reach(), HotKeyReach::everywhere);
  const auto answer = add();
  EXPECT_EQ(display->press(1), hotKeyDone);
  EXPECT_THAT(pressed, ElementsAre(1u));
  keys->unregisterHotKey(*answer.reference);
  EXPECT_TRUE(display->registered.empty());
  display->answers[1] = {hotKeyExists, std::nullopt};
  EXPECT_EQ(add().status, hotKeyExists);
  display->refusedLater(1, hotKeyExists);
  EXPECT_EQ(refused.size(), 1u);
}

TEST_F(DesktopHotKeysTest, AHandlerThatCannotBeInstalledIsTold) {
  DesktopHotKeys::Parts parts{.layout = layout};
  auto system = std::make_unique<FakeHotKeySystem>();
  system->handlerStatus = -50;
  parts.display = std::move(system);
  parts.desktop = std::make_unique<DesktopShortcuts>(bus.connection(), executor, QString());
  DesktopHotKeys failing(std::move(parts));
  EXPECT_EQ(failing.installHandler([](const HotKeyPress*) { return hotKeyDone; }), -50);
}

TEST_F(DesktopHotKeysTest, WhatTheDesktopAnswersToIsRefusedLater) {
  const auto kde = MockService::bare(bus, "org.kde.kglobalaccel", "/kglobalaccel", "org.kde.KGlobalAccel");
  kde->addMethod("org.kde.KGlobalAccel", "isGlobalShortcutAvailable", "is", "b", "ret = False");
  make(Has::display);
  ASSERT_EQ(add().status, hotKeyDone);
  ASSERT_TRUE(until([&] { return !refused.empty(); }));
  EXPECT_EQ(refused.front(), (std::pair<quint32, qint32>(1, hotKeyExists)));
}

TEST_F(DesktopHotKeysTest, BesideWaylandTheServersKeysReachItsOwnWindowsUntilAPortalComes) {
  make(Has::both);
  EXPECT_EQ(keys->reach(), HotKeyReach::windowsOfX11);
  ASSERT_EQ(add().status, hotKeyDone);
  EXPECT_EQ(display->registered.size(), 1u);

  portal = std::make_unique<FakeShortcutPortal>(bus);
  portal->trigger = "Meta+R";
  ASSERT_TRUE(until([&] { return keys->reach() == HotKeyReach::everywhere && isBound(); }));
  EXPECT_TRUE(display->registered.empty()) << "one press is one action";
  EXPECT_TRUE(until([&] { return keys->chosenByDesktop() == "Meta+R"; }));
  portal->activate("review keys");
  ASSERT_TRUE(until([&] { return !pressed.empty(); }));

  portal->vanish();
  ASSERT_TRUE(until([&] { return keys->reach() == HotKeyReach::windowsOfX11; }));
  EXPECT_EQ(keys->chosenByDesktop(), "");
  EXPECT_EQ(display->registered.size(), 1u);
  EXPECT_EQ(display->press(1), hotKeyDone);
  EXPECT_THAT(pressed, ElementsAre(1u, 1u));
  EXPECT_TRUE(refused.empty());
}

TEST_F(DesktopHotKeysTest, WhatTheServerWillNotTakeBackIsRefusedLater) {
  portal = std::make_unique<FakeShortcutPortal>(bus);
  make(Has::both);
  ASSERT_TRUE(until([&] { return keys->reach() == HotKeyReach::everywhere; }));
  ASSERT_EQ(add().status, hotKeyDone);
  ASSERT_TRUE(until([&] { return isBound(); }));
  display->answers[1] = {hotKeyExists, std::nullopt};
  portal->vanish();
  ASSERT_TRUE(until([&] { return !refused.empty(); }));
  EXPECT_EQ(refused.front(), (std::pair<quint32, qint32>(1, hotKeyExists)));
}

TEST_F(DesktopHotKeysTest, APortalsRefusalIsPassedOn) {
  portal = std::make_unique<FakeShortcutPortal>(bus);
  portal->bindResponse = 2;
  make(Has::portal);
  ASSERT_EQ(add().status, hotKeyDone);
  EXPECT_EQ(keys->reach(), HotKeyReach::nowhere) << "before it has answered";
  ASSERT_TRUE(until([&] { return !refused.empty(); }));
}

TEST_F(DesktopHotKeysTest, AShortcutThatThePortalLeftWithoutKeysIsRefusedWhereTheDesktopHasThem) {
  const auto kde = MockService::bare(bus, "org.kde.kglobalaccel", "/kglobalaccel", "org.kde.KGlobalAccel");
  kde->addMethod("org.kde.KGlobalAccel", "isGlobalShortcutAvailable", "is", "b", "ret = False");
  portal = std::make_unique<FakeShortcutPortal>(bus);
  make(Has::portal);
  ASSERT_EQ(add().status, hotKeyDone);
  ASSERT_TRUE(until([&] { return isBound(); }));
  ASSERT_TRUE(until([&] { return keys->chosenByDesktop() == portal->trigger; })) << "all was answered";
  EXPECT_TRUE(refused.empty()) << "with keys it is the portal's word that counts";

  portal->trigger.clear();
  portal->vanish();
  ASSERT_TRUE(until([&] { return keys->reach() == HotKeyReach::nowhere; }));
  portal->appear();
  ASSERT_TRUE(until([&] { return !refused.empty(); }));
  EXPECT_EQ(refused.front(), (std::pair<quint32, qint32>(1, hotKeyExists)));
}

}  // namespace
}  // namespace quillmere
