#include "platform/linux/login/PortalLoginItem.h"

#include <gtest/gtest.h>
#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusVirtualObject>

#include "support/MockBus.h"
#include "support/Printing.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::runLoopUntil;
using Status = LoginItemStatus;

/// The desktop's portal for what runs in the background, played by the test's own connection.
class BackgroundPortal final : public QDBusVirtualObject {
 public:
  explicit BackgroundPortal(testing::MockBus& bus) : bus_(bus.connection()) {
    EXPECT_TRUE(bus_.registerVirtualObject(kPath, this, QDBusConnection::SubPath));
    EXPECT_TRUE(bus_.registerService(kName));
  }
  ~BackgroundPortal() override {
    bus_.unregisterObject(kPath);
    vanish();
  }
  void vanish() { bus_.unregisterService(kName); }
  void respond(uint how, bool starts) { respondTo(handle, how, starts); }
  void respondTo(const QString& request, uint how, bool starts) {
    QDBusMessage signal = QDBusMessage::createSignal(request, QStringLiteral("org.freedesktop.portal.Request"),
                                                     QStringLiteral("Response"));
    signal << how << QVariantMap{{QStringLiteral("background"), true}, {QStringLiteral("autostart"), starts}};
    bus_.send(signal);
  }

  bool refuses = false;  ///< to be asked at all
  bool usesOldHandles = false;
  int asked = 0;
  QVariantMap options;
  QString handle;

 protected:
  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    EXPECT_EQ(message.interface(), QStringLiteral("org.freedesktop.portal.Background"));
    EXPECT_EQ(message.member(), QStringLiteral("RequestBackground"));
    EXPECT_EQ(message.signature(), QStringLiteral("sa{sv}"));
    ++asked;
    if (refuses) {
      connection.send(message.createErrorReply(QDBusError::AccessDenied, QStringLiteral("no")));
      return true;
    }
    options = qdbus_cast<QVariantMap>(message.arguments().value(1));
    const QString sender = message.service().mid(1).replace(QLatin1Char('.'), QLatin1Char('_'));
    handle = usesOldHandles ? kPath + QStringLiteral("/request/old")
                            : QStringLiteral("%1/request/%2/%3")
                                  .arg(kPath, sender, options.value(QStringLiteral("handle_token")).toString());
    connection.send(message.createReply(QVariant::fromValue(QDBusObjectPath(handle))));
    return true;
  }

 private:
  static inline const QString kName = QStringLiteral("org.freedesktop.portal.Desktop");
  static inline const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");
  QDBusConnection bus_;
};

class PortalLoginItemTest : public ::testing::Test {
 protected:
  static constexpr auto kOwn = "under test";

  ~PortalLoginItemTest() override {
    item.reset();
    portal.reset();
    QDBusConnection::disconnectFromBus(QLatin1String(kOwn));
  }
  void start() {
    portal = std::make_unique<BackgroundPortal>(bus);
    connect();
  }
  void connect() {
    item = std::make_unique<PortalLoginItem>(
        QDBusConnection::connectToBus(bus.address(), QLatin1String(kOwn)), defaults,
        LoginSettings({{}, [](const QString&) { return false; }, [](const QStringList&) {}}));
    changes = 0;
    connection = item->changed.connect([this] { ++changes; });
  }
  /// Once the portal is found, which is in a later turn.
  void turn(bool on) {
    const int before = portal->asked;
    ASSERT_TRUE(runLoopUntil([&] { return (on ? item->registerItem() : item->unregisterItem()) == std::nullopt; }));
    ASSERT_TRUE(runLoopUntil([&] { return portal->asked > before; }));
    settle();
  }
  /// The answer of the call is in.
  void settle() {
    int turns = 0;
    runLoopUntil([&] { return ++turns > 40; });
  }
  Status after(uint how, bool starts) {
    const int before = changes;
    portal->respond(how, starts);
    EXPECT_TRUE(runLoopUntil([&] { return changes > before; }));
    return item->status();
  }

  testing::MockBus bus;
  testing::TemporaryFolder folder;
  UserDefaults defaults{folder.file("settings.json").displayPath()};
  std::unique_ptr<BackgroundPortal> portal;
  std::unique_ptr<PortalLoginItem> item;
  Connection connection;
  int changes = 0;
};

TEST_F(PortalLoginItemTest, WithoutAPortalItCannotBeTurned) {
  connect();
  settle();
  EXPECT_EQ(item->status(), Status::notRegistered);
  EXPECT_EQ(item->registerItem(), QStringLiteral("Your desktop doesn’t answer."));
  EXPECT_EQ(item->status(), Status::notRegistered);
}

TEST_F(PortalLoginItemTest, IsPendingUntilThePortalAllowsIt) {
  start();
  turn(true);
  EXPECT_EQ(item->status(), Status::requiresApproval);
  EXPECT_EQ(portal->options.value(QStringLiteral("autostart")), true);
  EXPECT_EQ(portal->options.value(QStringLiteral("commandline")).toStringList(),
            (QStringList{QStringLiteral("quillmere"), QStringLiteral("--autostart")}));
  EXPECT_FALSE(portal->options.value(QStringLiteral("reason")).toString().isEmpty());
  EXPECT_EQ(after(0, true), Status::enabled);
}

TEST_F(PortalLoginItemTest, WhatItAllowedHoldsAtTheNextStart) {
  start();
  turn(true);
  after(0, true);
  item.reset();
  connect();
  EXPECT_EQ(item->status(), Status::enabled);
}

TEST_F(PortalLoginItemTest, ARefusalStaysOneUntilItIsTurnedOff) {
  for (const uint how : {0U, 1U, 2U}) {
    start();
    turn(true);
    EXPECT_EQ(after(how, false), Status::requiresApproval) << how;
    turn(false);
    EXPECT_EQ(item->status(), Status::notRegistered) << how;
    EXPECT_EQ(portal->options.value(QStringLiteral("autostart")), false);
    after(0, false);
    EXPECT_EQ(item->status(), Status::notRegistered);
    item.reset();
    portal.reset();
  }
}

TEST_F(PortalLoginItemTest, ItIsAsBeforeWhereThePortalCannotDoIt) {
  start();
  portal->refuses = true;
  turn(true);
  ASSERT_TRUE(runLoopUntil([&] { return changes > 0; }));
  EXPECT_EQ(item->status(), Status::notRegistered) << "nobody was asked, so nothing waits";
  portal->refuses = false;
  turn(true);
  EXPECT_EQ(after(1, false), Status::requiresApproval);
  portal->refuses = true;
  const int before = changes;
  turn(true);
  ASSERT_TRUE(runLoopUntil([&] { return changes > before; }));
  EXPECT_EQ(item->status(), Status::requiresApproval) << "of the refusal before";
}

TEST_F(PortalLoginItemTest, APortalThatGoesTakesItsQuestionAlong) {
  start();
  turn(true);
  ASSERT_EQ(item->status(), Status::requiresApproval);
  portal->vanish();
  ASSERT_TRUE(runLoopUntil([&] { return changes > 0; }));
  EXPECT_EQ(item->status(), Status::notRegistered);
}

TEST_F(PortalLoginItemTest, ItIsOnAgainWhereThePortalDoesNotForgetIt) {
  start();
  turn(true);
  after(0, true);
  turn(false);
  EXPECT_EQ(item->status(), Status::notRegistered);
  EXPECT_EQ(after(2, false), Status::enabled);
  turn(false);
  const int before = changes;
  portal->vanish();
  ASSERT_TRUE(runLoopUntil([&] { return changes > before; }));
  EXPECT_EQ(item->status(), Status::enabled);
}

TEST_F(PortalLoginItemTest, TheLatestQuestionCounts) {
  start();
  turn(true);
  const QString first = portal->handle;
  turn(false);
  portal->respondTo(first, 0, true);
  settle();
  EXPECT_EQ(item->status(), Status::notRegistered) << "an answer to the one before";
}

TEST_F(PortalLoginItemTest, OldPortalsAnswerAtAPlaceOfTheirOwn) {
  start();
  portal->usesOldHandles = true;
  turn(true);
  EXPECT_EQ(after(0, true), Status::enabled);
}

}  // namespace
}  // namespace quillmere
