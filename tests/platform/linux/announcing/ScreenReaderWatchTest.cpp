#include "platform/linux/announcing/ScreenReaderWatch.h"

#include "foundation/ManualExecutor.h"
#include "platform/linux/common/QtExecutor.h"
#include "support/Files.h"
#include "support/MockBus.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::MockBus;
using testing::MockService;
using testing::runLoopUntil;

// --- hearingOf ---

QStringList orca43() {
  return {QStringLiteral("Focus::"), QStringLiteral("Object:StateChanged:Focused"),
          QStringLiteral("Object:StateChanged:Showing")};
}

TEST(HearingTest, WithoutAReaderNobodyHears) {
  EXPECT_EQ(hearingOf(false, {}), Hearing::nobody);
  // An on-screen keyboard follows the focus and speaks nothing.
  EXPECT_EQ(
      hearingOf(false, {QStringLiteral("Object:StateChanged:Focused"), QStringLiteral("Object:TextChanged:Insert")}),
      Hearing::nobody);
}

TEST(HearingTest, AReaderIsKnownByWhatItListensTo) {
  EXPECT_EQ(hearingOf(false, orca43()), Hearing::notification);
  EXPECT_EQ(hearingOf(true, orca43()), Hearing::notification);
}

TEST(HearingTest, OneThatHearsAnnouncementsIsToldByThemAlone) {
  for (const char* name : {"Object:Announcement:", "Object:Announcement", "object:announcement::"}) {
    EXPECT_EQ(hearingOf(false, orca43() + QStringList{QLatin1String(name)}), Hearing::announcement) << name;
  }
}

TEST(HearingTest, OneThatListensToNeitherIsSpokenFor) {
  EXPECT_EQ(hearingOf(true, {}), Hearing::speechService);
  EXPECT_EQ(hearingOf(true, {QStringLiteral("Object:StateChanged:")}), Hearing::speechService);
}

// --- ScreenReaderWatch ---

const QString kBus = QStringLiteral("org.a11y.Bus");
const QString kBusPath = QStringLiteral("/org/a11y/bus");
const QString kStatus = QStringLiteral("org.a11y.Status");
const QString kRegistry = QStringLiteral("org.a11y.atspi.Registry");
const QString kRegistryPath = QStringLiteral("/org/a11y/atspi/registry");

/// Tells the address of the accessibility bus, and is able to as soon as it has its name.
constexpr std::string_view kLauncher = R"(
import os
BUS_NAME = "org.a11y.Bus"
MAIN_OBJ = "/org/a11y/bus"
MAIN_IFACE = BUS_NAME
SYSTEM_BUS = False

def load(mock, _parameters):
    mock.AddMethod(MAIN_IFACE, "GetAddress", "", "s", f"ret = '{os.environ['DBUS_SESSION_BUS_ADDRESS']}'")
    mock.AddProperty("org.a11y.Status", "ScreenReaderEnabled", False)
)";

/// One mock bus serves as both.
class ScreenReaderWatchTest : public ::testing::Test {
 protected:
  ~ScreenReaderWatchTest() override {
    watch.reset();
    executor.reset();  // only then has what was begun been connected
    QDBusConnection::disconnectFromBus(QStringLiteral("session"));
  }
  void begin(Executor& on) {
    watch = std::make_unique<ScreenReaderWatch>(
        on, [address = bus.address()] { return QDBusConnection::connectToBus(address, QStringLiteral("session")); });
  }
  void begin() { begin(*executor); }
  std::unique_ptr<MockService> startLauncher() {
    testing::writeFile(script, kLauncher);
    return MockService::ofTemplate(bus, script.displayPath(), kBus, kBusPath);
  }
  static void setEnabled(MockService& launcher, bool isEnabled) {
    launcher.setProperties(kBusPath, kStatus, {{QStringLiteral("ScreenReaderEnabled"), isEnabled}});
  }
  std::unique_ptr<MockService> startRegistry(const QString& events) {
    auto registry = MockService::bare(bus, kRegistry, kRegistryPath, kRegistry);
    answer(*registry, events);
    return registry;
  }
  static void answer(MockService& registry, const QString& events) {
    registry.addMethod(
        kRegistry, QStringLiteral("GetRegisteredEvents"), QString(), QStringLiteral("a(ss)"),
        QStringLiteral("ret = dbus.Array([(':1.1', name) for name in '%1'.split()], signature='(ss)')").arg(events));
  }
  static void change(MockService& registry, const QString& events, const char* signal) {
    answer(registry, events);
    registry.addMethod(
        kRegistry, QStringLiteral("Change"), QString(), QString(),
        QStringLiteral("self.EmitSignal('%1', '%2', 'ss', [':1.1', 'any'])").arg(kRegistry, QLatin1String(signal)));
    registry.call(kRegistryPath, kRegistry, QStringLiteral("Change"));
  }
  bool becomes(Hearing wanted) {
    return runLoopUntil([&] { return watch->hearing() == wanted; });
  }

  testing::TemporaryFolder folder;
  const FileURL script = folder.file("launcher.py");
  MockBus bus;
  std::unique_ptr<QtExecutor> executor = std::make_unique<QtExecutor>();
  std::unique_ptr<ScreenReaderWatch> watch;
};

const QString kShowing = QStringLiteral("Object:StateChanged:Showing");
const QString kBoth = kShowing + QStringLiteral(" Object:Announcement:");

TEST_F(ScreenReaderWatchTest, AReaderThatRunsAlreadyIsFound) {
  const auto launcher = startLauncher();
  const auto registry = startRegistry(kShowing);
  begin();
  EXPECT_EQ(watch->hearing(), Hearing::nobody) << "nothing is waited for";
  EXPECT_TRUE(becomes(Hearing::notification));
}

TEST_F(ScreenReaderWatchTest, ReadersMayComeGoAndBeReplaced) {
  const auto launcher = startLauncher();
  const auto registry = startRegistry(QString());
  begin();
  ASSERT_TRUE(registry->wasAsked(QStringLiteral("GetRegisteredEvents")));
  change(*registry, kShowing, "EventListenerRegistered");
  EXPECT_TRUE(becomes(Hearing::notification));
  change(*registry, kBoth, "EventListenerRegistered");
  EXPECT_TRUE(becomes(Hearing::announcement));
  change(*registry, QString(), "EventListenerDeregistered");
  EXPECT_TRUE(becomes(Hearing::nobody));
}

TEST_F(ScreenReaderWatchTest, TheDesktopsSwitchIsFollowed) {
  const auto launcher = startLauncher();
  begin();
  setEnabled(*launcher, true);
  EXPECT_TRUE(becomes(Hearing::speechService));
  setEnabled(*launcher, false);
  EXPECT_TRUE(becomes(Hearing::nobody));
}

TEST_F(ScreenReaderWatchTest, TheLastOfManyChangesCounts) {
  const auto launcher = startLauncher();
  const auto registry = startRegistry(QString());
  begin();
  ASSERT_TRUE(registry->wasAsked(QStringLiteral("GetRegisteredEvents")));
  for (int round = 0; round < 20; ++round) change(*registry, kShowing, "EventListenerRegistered");
  change(*registry, kBoth, "EventListenerRegistered");
  EXPECT_TRUE(becomes(Hearing::announcement));
}

TEST_F(ScreenReaderWatchTest, TheAccessibilityBusMayComeLaterGoAndComeAgain) {
  begin();
  auto registry = startRegistry(kShowing);
  auto launcher = startLauncher();
  EXPECT_TRUE(becomes(Hearing::notification));
  setEnabled(*launcher, true);
  launcher->stop();
  EXPECT_TRUE(becomes(Hearing::nobody));
  launcher = startLauncher();
  EXPECT_TRUE(becomes(Hearing::notification));
  registry->stop();
  EXPECT_TRUE(becomes(Hearing::nobody));
  registry = startRegistry(QString());
  // It may have been asked as soon as it had its name, before it could answer anything.
  change(*registry, kBoth, "EventListenerRegistered");
  EXPECT_TRUE(becomes(Hearing::announcement));
}

TEST_F(ScreenReaderWatchTest, ABusThatEndsHasNoReader) {
  const auto launcher = startLauncher();
  const auto registry = startRegistry(kShowing);
  begin();
  EXPECT_TRUE(becomes(Hearing::notification));
  bus.stop();
  EXPECT_TRUE(becomes(Hearing::nobody));
}

TEST_F(ScreenReaderWatchTest, WithoutAnyBusNobodyHears) {
  ManualExecutor manual;
  watch = std::make_unique<ScreenReaderWatch>(manual, [] {
    return QDBusConnection::connectToBus(QStringLiteral("unix:path=/nowhere/bus"), QStringLiteral("session"));
  });
  manual.drain();
  EXPECT_EQ(watch->hearing(), Hearing::nobody);
}

TEST_F(ScreenReaderWatchTest, NothingIsFollowedForOneWhoWentBeforeTheBusAnswered) {
  ManualExecutor manual;
  manual.holdBackground();
  begin(manual);
  watch.reset();
  manual.runHeldBackground();
  manual.drain();
}

}  // namespace
}  // namespace quillmere
