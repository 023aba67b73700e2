#include "platform/linux/tray/LiveTray.h"

#include <gtest/gtest.h>

#include "support/MockBus.h"

namespace quillmere {
namespace {

using testing::MockBus;
using testing::MockService;
using testing::runLoopUntil;

const QString kWatcher = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString kPath = QStringLiteral("/StatusNotifierWatcher");
const QString kHost = QStringLiteral("IsStatusNotifierHostRegistered");

/// On a display without windows, so without trays of the X server: journey.login has those.
class LiveTrayTest : public ::testing::Test {
 protected:
  std::unique_ptr<MockService> startWatcher(bool hasHost) {
    auto watcher = MockService::bare(bus, kWatcher, kPath, kWatcher);
    watcher->addProperty(kWatcher, kHost, hasHost);
    return watcher;
  }
  void setHost(MockService& watcher, bool isThere) {
    watcher.setProperties(kPath, kWatcher, {{kHost, isThere}});
    watcher.mock(
        kPath, QStringLiteral("EmitSignal"),
        {kWatcher,
         isThere ? QStringLiteral("StatusNotifierHostRegistered") : QStringLiteral("StatusNotifierHostUnregistered"),
         QString(), QVariantList()});
  }
  void begin() {
    tray = std::make_unique<LiveTray>(bus.connection());
    changes = tray->changed.connect([this] { ++told; });
  }
  bool isThereSoon(bool isThere) {
    return runLoopUntil([&] { return tray->isThere() == isThere; });
  }

  MockBus bus;
  std::unique_ptr<LiveTray> tray;
  Connection changes;
  int told = 0;
};

TEST_F(LiveTrayTest, ATrayThatIsThereIsFound) {
  const auto watcher = startWatcher(true);
  begin();
  EXPECT_FALSE(tray->isThere()) << "nobody waited for the bus";
  EXPECT_TRUE(isThereSoon(true));
  EXPECT_EQ(told, 1);
}

TEST_F(LiveTrayTest, ATrayThatAppearsLaterIsFoundAndOneThatRestartsIsFoundAgain) {
  begin();
  QCoreApplication::processEvents();
  EXPECT_FALSE(tray->isThere());
  auto watcher = startWatcher(true);
  EXPECT_TRUE(isThereSoon(true));
  watcher->stop();
  EXPECT_TRUE(isThereSoon(false));
  watcher = startWatcher(true);
  EXPECT_TRUE(isThereSoon(true));
  EXPECT_EQ(told, 3);
}

TEST_F(LiveTrayTest, AWatcherIsNoTrayBeforeAPanelShowsItsIcons) {
  const auto watcher = startWatcher(false);
  begin();
  QCoreApplication::processEvents();
  EXPECT_FALSE(tray->isThere());
  setHost(*watcher, true);
  EXPECT_TRUE(isThereSoon(true));
  setHost(*watcher, false);
  EXPECT_TRUE(isThereSoon(false));
}

TEST_F(LiveTrayTest, AWatcherThatCannotSayIsNotReliedUpon) {
  const auto watcher = MockService::bare(bus, kWatcher, kPath, kWatcher);
  begin();
  const auto other = MockService::bare(bus, QStringLiteral("org.example.Other"), QStringLiteral("/other"),
                                       QStringLiteral("org.example.Other"));
  EXPECT_FALSE(tray->isThere()) << "time for its answer has passed";
  EXPECT_EQ(told, 0);
}

TEST_F(LiveTrayTest, WithoutABusThereIsNone) {
  tray = std::make_unique<LiveTray>(QDBusConnection(QStringLiteral("nobody made this one")));
  QCoreApplication::processEvents();
  EXPECT_FALSE(tray->isThere());
}

}  // namespace
}  // namespace quillmere
