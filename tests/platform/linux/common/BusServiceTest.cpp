#include "platform/linux/common/BusService.h"

#include "support/MockBus.h"
#include "support/Printing.h"

namespace quillmere {
namespace {

using testing::MockBus;
using testing::runLoopUntil;

const QString kName = QStringLiteral("com.quillmere.Test");
const QString kPath = QStringLiteral("/test");
const QString kInterface = QStringLiteral("com.quillmere.Test.Interface");
const QString kSignal = QStringLiteral("Rang");
const QString kProperties = QStringLiteral("org.freedesktop.DBus.Properties");

/// The test's own connection plays the service: it takes the name and gives it back.
class BusServiceTest : public ::testing::Test {
 protected:
  static constexpr auto kOwn = "under test";

  ~BusServiceTest() override {
    service.reset();
    QDBusConnection::disconnectFromBus(QLatin1String(kOwn));
    QDBusConnection::disconnectFromBus(QStringLiteral("somebody else"));
  }
  void follow(const QString& name = kName) {
    const auto own = QDBusConnection::connectToBus(bus.address(), QLatin1String(kOwn));
    service = std::make_unique<BusService>(own, name,
                                           BusService::Presence{[this](BusService& found) {
                                                                  ++appearances;
                                                                  if (onAppearance) onAppearance(found);
                                                                },
                                                                [this] { ++disappearances; }});
  }
  bool appear() {
    const int before = appearances;
    EXPECT_TRUE(bus.connection().registerService(kName));
    return runLoopUntil([=, this] { return appearances > before; });
  }
  bool vanish() {
    const int before = disappearances;
    EXPECT_TRUE(bus.connection().unregisterService(kName));
    return runLoopUntil([=, this] { return disappearances > before; });
  }
  static void send(QDBusConnection& from, const QString& interface, const QString& signal,
                   const QVariantList& arguments) {
    QDBusMessage message = QDBusMessage::createSignal(kPath, interface, signal);
    message.setArguments(arguments);
    EXPECT_TRUE(from.send(message));
  }
  void ring(int value) { send(bus.connection(), kInterface, kSignal, {value}); }
  /// Notes what rings.
  BusService::Heard noting(std::vector<int>& rings) {
    return [&rings](const QVariantList& arguments) { rings.push_back(arguments.value(0).toInt()); };
  }

  MockBus bus;
  std::unique_ptr<BusService> service;
  std::function<void(BusService&)> onAppearance;
  int appearances = 0;
  int disappearances = 0;
};

TEST_F(BusServiceTest, ItMayComeGoAndComeAgain) {
  follow();
  EXPECT_TRUE(appear());
  EXPECT_TRUE(vanish());
  EXPECT_TRUE(appear());
  EXPECT_EQ(appearances, 2);
  EXPECT_EQ(disappearances, 1);
}

TEST_F(BusServiceTest, OneThatIsThereAlreadyIsFound) {
  EXPECT_TRUE(bus.connection().registerService(kName));
  follow();
  EXPECT_TRUE(runLoopUntil([this] { return appearances == 1; }));
}

TEST_F(BusServiceTest, NobodyElsesSignalIsHeardAndNoSignalTwice) {
  std::vector<int> first, second;
  onAppearance = [&](BusService& found) {
    found.hear(kPath, kInterface, kSignal, noting(first));
    found.hear(kPath, kInterface, kSignal, noting(second));
  };
  follow();
  ASSERT_TRUE(appear());
  auto other = QDBusConnection::connectToBus(bus.address(), QStringLiteral("somebody else"));
  send(other, kInterface, kSignal, {1});
  // The bus hands messages on in the order in which they come; this answer is later than that signal.
  ASSERT_EQ(other
                .call(QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/"),
                                                     QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId")))
                .type(),
            QDBusMessage::ReplyMessage);
  ring(2);
  send(bus.connection(), kInterface, QStringLiteral("Another"), {3});
  ring(4);
  ASSERT_TRUE(runLoopUntil([&] { return second.size() == 2; }));
  EXPECT_EQ(first, (std::vector<int>{2, 4}));
  EXPECT_EQ(second, (std::vector<int>{2, 4}));
}

TEST_F(BusServiceTest, WhatWasWantedOfOneThatWentIsForgotten) {
  std::vector<int> early, late;
  onAppearance = [&](BusService& found) {
    found.hear(kPath, kInterface, kSignal, noting(appearances == 1 ? early : late));
  };
  follow();
  ASSERT_TRUE(appear());
  ASSERT_TRUE(vanish());
  ASSERT_TRUE(appear());
  ring(1);
  ASSERT_TRUE(runLoopUntil([&] { return !late.empty(); }));
  EXPECT_TRUE(early.empty());
}

/// The bus itself is a service that is always there.
TEST_F(BusServiceTest, ACallIsAnsweredOrFails) {
  const QString name = QStringLiteral("org.freedesktop.DBus");
  QString owner;
  bool hasFailed = false;
  onAppearance = [&](BusService& found) {
    found.call(QStringLiteral("/"), name, QStringLiteral("GetNameOwner"), {name},
               [&](const QVariantList& arguments) { owner = arguments.value(0).toString(); });
    found.call(
        QStringLiteral("/"), name, QStringLiteral("NoSuchMethod"), {}, [](const auto&) { ADD_FAILURE() << "answered"; },
        [&] { hasFailed = true; });
  };
  follow(name);
  // Answers come in the order in which their watchers wake.
  EXPECT_TRUE(runLoopUntil([&] { return hasFailed && !owner.isEmpty(); }));
  EXPECT_EQ(owner, name);
}

TEST_F(BusServiceTest, APropertyIsToldNowAndAtEachChange) {
  std::vector<QVariant> values;
  const auto mock = testing::MockService::bare(bus, kName, kPath, kInterface);
  mock->addProperty(kInterface, QStringLiteral("Volume"), 3);
  onAppearance = [&](BusService& found) {
    found.followProperty(kPath, kInterface, QStringLiteral("Volume"),
                         [&](const QVariant& value) { values.push_back(value); });
    found.followProperty(kPath, kInterface, QStringLiteral("Missing"), [&](const QVariant&) { ADD_FAILURE(); });
  };
  follow();
  ASSERT_TRUE(runLoopUntil([&] { return values.size() == 1; }));
  mock->setProperties(kPath, kInterface, {{QStringLiteral("Volume"), 4}});
  ASSERT_TRUE(runLoopUntil([&] { return values.size() == 2; }));
  EXPECT_EQ(values, (std::vector<QVariant>{3, 4}));
}

/// Some services tell that a property has changed and leave it to be asked for.
TEST_F(BusServiceTest, AChangeWithoutItsValueIsAskedFor) {
  std::vector<QVariant> values;
  const auto mock = testing::MockService::bare(bus, kName, kPath, kInterface);
  mock->addProperty(kInterface, QStringLiteral("Volume"), 3);
  onAppearance = [&](BusService& found) {
    found.followProperty(kPath, kInterface, QStringLiteral("Volume"),
                         [&](const QVariant& value) { values.push_back(value); });
  };
  follow();
  ASSERT_TRUE(runLoopUntil([&] { return values.size() == 1; }));
  const auto boxed = [](const QVariant& value) { return QVariant::fromValue(QDBusVariant(value)); };
  mock->mock(kPath, QStringLiteral("EmitSignal"),
             {kProperties, QStringLiteral("PropertiesChanged"), QStringLiteral("sa{sv}as"),
              QVariantList{boxed(kInterface), boxed(QVariantMap()), boxed(QStringList{QStringLiteral("Volume")})}});
  EXPECT_TRUE(runLoopUntil([&] { return values.size() == 2; }));
}

TEST_F(BusServiceTest, ABusThatEndsTakesTheServiceWithIt) {
  follow();
  ASSERT_TRUE(appear());
  bus.stop();
  EXPECT_TRUE(runLoopUntil([this] { return disappearances == 1; }));
}

}  // namespace
}  // namespace quillmere
