#include "platform/linux/shortcuts/DesktopShortcuts.h"

#include <gmock/gmock.h>
#include <QtCore/QTemporaryDir>

#include "TestDisplay.h"
#include "foundation/ManualExecutor.h"

namespace quillmere {
namespace {

using ::testing::IsEmpty;
using testing::MockBus;
using testing::MockService;
using testing::runLoopUntil;
using ::testing::UnorderedElementsAre;

constexpr HotKeyShortcut kOther{15, HotKeyShortcut::control | HotKeyShortcut::option};  // R

class DesktopShortcutsTest : public ::testing::Test {
 protected:
  void make(const QString& desktops) {
    shortcuts = std::make_unique<DesktopShortcuts>(bus.connection(), executor, desktops);
  }
  void watch(quint64 number, const HotKeyShortcut& shortcut) {
    shortcuts->watch(number, KeyCombination::of(shortcut, layout), [this, number] { taken.push_back(number); });
  }
  bool untilTaken(size_t count = 1) {
    return runLoopUntil([&] {
      executor.drain();
      return taken.size() >= count;
    });
  }
  /// Whatever was asked has been answered.
  void settle() {
    for (int turn = 0; turn < 4; ++turn) {
      executor.drain();
      bus.connection().call(QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                           "org.freedesktop.DBus.Peer", "Ping"));
      QCoreApplication::processEvents();
    }
  }

  MockBus bus;
  ManualExecutor executor;
  const XkbKeyboardLayout layout{XkbKeyboardLayout::Source::standard};
  std::vector<quint64> taken;
  std::unique_ptr<DesktopShortcuts> shortcuts;
};

std::unique_ptr<MockService> fakeXfce(MockBus& bus, const QString& properties) {
  auto service = MockService::bare(bus, "org.xfce.Xfconf", "/org/xfce/Xfconf", "org.xfce.Xfconf");
  service->addMethod(
      "org.xfce.Xfconf", "GetAllProperties", "ss", "a{sv}",
      "ret = dbus.Dictionary(" + properties + ", signature='sv') if args[0] == 'xfce4-keyboard-shortcuts' else {}");
  return service;
}

TEST_F(DesktopShortcutsTest, WithoutADesktopNothingIsTaken) {
  make("");
  watch(1, HotKeyShortcut::standard());
  settle();
  EXPECT_THAT(taken, IsEmpty());
}

TEST_F(DesktopShortcutsTest, XfcesOwnKeysAreTaken) {
  const auto xfce =
      fakeXfce(bus, "{'/commands/default/<Primary><Alt>r': 'xfrun', '/xfwm4/default/<Primary><Shift><Super>b': 'x'}");
  make("XFCE");
  watch(1, kOther);
  watch(2, HotKeyShortcut::standard());
  watch(3, {15, HotKeyShortcut::control | HotKeyShortcut::command});
  ASSERT_TRUE(untilTaken(2));
  settle();
  EXPECT_THAT(taken, UnorderedElementsAre(1u, 2u));
}

TEST_F(DesktopShortcutsTest, WhatThePersonSetInXfceCountsInsteadOfTheStandard) {
  const auto xfce =
      fakeXfce(bus,
               "{'/commands/default/<Primary><Alt>r': 'xfrun', '/commands/custom/override': True, "
               "'/commands/custom/<Primary><Shift><Super>b': 'mine', '/commands/custom/<Primary><Alt>r': ''}");
  make("XFCE");
  watch(1, kOther);
  watch(2, HotKeyShortcut::standard());
  ASSERT_TRUE(untilTaken());
  settle();
  EXPECT_THAT(taken, UnorderedElementsAre(2u));
}

TEST_F(DesktopShortcutsTest, ADesktopServiceThatComesLaterIsAskedThen) {
  make("XFCE");
  watch(1, kOther);
  watch(2, HotKeyShortcut::standard());
  shortcuts->forget(2);
  settle();
  const auto xfce =
      fakeXfce(bus, "{'/commands/default/<Primary><Alt>r': 'a', '/xfwm4/default/<Primary><Shift><Super>b': 'b'}");
  shortcuts.reset();
  make("XFCE");
  watch(1, kOther);
  ASSERT_TRUE(untilTaken());
  EXPECT_THAT(taken, UnorderedElementsAre(1u));
}

TEST_F(DesktopShortcutsTest, KdesServiceIsAskedInQtsNumbers) {
  const auto kde = MockService::bare(bus, "org.kde.kglobalaccel", "/kglobalaccel", "org.kde.KGlobalAccel");
  // Control, Alt and R.
  kde->addMethod("org.kde.KGlobalAccel", "isGlobalShortcutAvailable", "is", "b",
                 "ret = not (args[0] == 0x0c000052 and args[1] == 'com.quillmere.app')");
  make("KDE");
  watch(1, kOther);
  watch(2, HotKeyShortcut::standard());
  ASSERT_TRUE(untilTaken());
  settle();
  EXPECT_THAT(taken, UnorderedElementsAre(1u));
}

/// KDE's real service, which needs a display.
TEST_F(DesktopShortcutsTest, WhatAnotherProgramRegisteredWithKdeIsTaken) {
  const testing::TestDisplay display;
  const QTemporaryDir home;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("DBUS_SESSION_BUS_ADDRESS", bus.address());
  environment.insert("QT_QPA_PLATFORM", "xcb");
  environment.insert("XDG_CONFIG_HOME", home.path());
  environment.insert("HOME", home.path());
  const auto process = testing::startHelper("kglobalaccel5", {}, environment);
  ASSERT_TRUE(
      runLoopUntil([&] { return bus.connection().interface()->isServiceRegistered("org.kde.kglobalaccel").value(); }));
  const QStringList id{"other", "action", "Other", "Action"};
  const auto call = [&](const QString& method, const QVariantList& arguments) {
    QDBusMessage message =
        QDBusMessage::createMethodCall("org.kde.kglobalaccel", "/kglobalaccel", "org.kde.KGlobalAccel", method);
    message.setArguments(arguments);
    const QDBusMessage answer = bus.connection().call(message);
    EXPECT_EQ(answer.type(), QDBusMessage::ReplyMessage) << answer.errorMessage().toStdString();
  };
  call("doRegister", {id});
  call("setShortcut", {id, QVariant::fromValue(QList<int>{0x0c000052}), uint{6}});
  make("KDE");
  watch(1, kOther);
  watch(2, HotKeyShortcut::standard());
  ASSERT_TRUE(untilTaken());
  settle();
  EXPECT_THAT(taken, UnorderedElementsAre(1u));
  testing::stopHelper(*process);
}

TEST_F(DesktopShortcutsTest, GnomesKeysAreTakenWhereGnomeRuns) {
  constexpr HotKeyShortcut kClosing{118, HotKeyShortcut::option};  // Alt and F4
  make("KDE");
  watch(1, kClosing);
  settle();
  EXPECT_THAT(taken, IsEmpty()) << "its settings may be there without it";
  make("ubuntu:GNOME");
  watch(2, kClosing);
  watch(3, HotKeyShortcut::standard());
  EXPECT_THAT(taken, IsEmpty()) << "never at once";
  ASSERT_TRUE(untilTaken());
  settle();
  EXPECT_THAT(taken, UnorderedElementsAre(2u));
}

TEST_F(DesktopShortcutsTest, AnAnswerAfterItsEndIsNoOnes) {
  make("GNOME");
  watch(1, {118, HotKeyShortcut::option});
  shortcuts.reset();
  settle();
  EXPECT_THAT(taken, IsEmpty());
}

}  // namespace
}  // namespace quillmere
