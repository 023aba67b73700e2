#include "platform/linux/appearance/PortalAppearance.h"

#include <QtDBus/QDBusMessage>

#include "support/Files.h"
#include "support/MockBus.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using Scheme = Appearance::Scheme;
using testing::MockBus;
using testing::MockService;
using testing::runLoopUntil;

const QString kSettings = QStringLiteral("org.freedesktop.portal.Settings");
const QString kAppearance = QStringLiteral("org.freedesktop.appearance");

Appearance told(const QString& key, const QVariant& value) {
  return appearanceOf({{kAppearance, {{key, value}}}});
}

TEST(PortalSettingsTest, UnknownNumbersTellNothing) {
  const QString scheme = QStringLiteral("color-scheme");
  EXPECT_EQ(told(scheme, 0U).scheme, Scheme::unknown);
  EXPECT_EQ(told(scheme, 1U).scheme, Scheme::dark);
  EXPECT_EQ(told(scheme, 2U).scheme, Scheme::light);
  EXPECT_EQ(told(scheme, 3U).scheme, Scheme::unknown);
  EXPECT_EQ(told(scheme, QStringLiteral("dark")).scheme, Scheme::unknown);
  for (const uint number : {0U, 2U, 99U}) {
    EXPECT_FALSE(told(QStringLiteral("contrast"), number).isHighContrast);
    EXPECT_FALSE(told(QStringLiteral("reduced-motion"), number).isMotionReduced);
  }
  EXPECT_TRUE(told(QStringLiteral("contrast"), 1U).isHighContrast);
  EXPECT_TRUE(told(QStringLiteral("reduced-motion"), 1U).isMotionReduced);
  EXPECT_EQ(told(QStringLiteral("accent-color"), 5U).accent, std::nullopt);
  EXPECT_EQ(appearanceOf({}), Appearance());
}

TEST(PortalSettingsTest, GnomesOwnSettingsCountToo) {
  EXPECT_TRUE(
      appearanceOf({{QStringLiteral("org.gnome.desktop.a11y.interface"), {{QStringLiteral("high-contrast"), true}}}})
          .isHighContrast);
  EXPECT_TRUE(
      appearanceOf({{QStringLiteral("org.gnome.desktop.interface"), {{QStringLiteral("enable-animations"), false}}}})
          .isMotionReduced);
}

class PortalAppearanceTest : public ::testing::Test {
 protected:
  PortalAppearanceTest() : connection(QDBusConnection::connectToBus(bus.address(), QStringLiteral("appearance"))) {}
  ~PortalAppearanceTest() override { QDBusConnection::disconnectFromBus(QStringLiteral("appearance")); }

  /// Whoever hears of it can ask it at once: it has its method before it has its name.
  std::unique_ptr<MockService> startPortal(const QString& readAll) {
    const FileURL file = folder.file("portal.py");
    testing::writeFile(file,
                       QStringLiteral("BUS_NAME = 'org.freedesktop.portal.Desktop'\n"
                                      "MAIN_OBJ = '/org/freedesktop/portal/desktop'\n"
                                      "MAIN_IFACE = '%1'\n"
                                      "SYSTEM_BUS = False\n"
                                      "def load(mock, parameters):\n"
                                      "    mock.AddMethod(MAIN_IFACE, 'ReadAll', 'as', 'a{sa{sv}}', \"\"\"%2\"\"\")\n")
                           .arg(kSettings, readAll)
                           .toStdString());
    return MockService::ofTemplate(bus, file.displayPath(), QStringLiteral("org.freedesktop.portal.Desktop"),
                                   QStringLiteral("/org/freedesktop/portal/desktop"));
  }
  static QString answer(const QString& values) {
    return QStringLiteral("ret = {'org.freedesktop.appearance': dbus.Dictionary({%1}, signature='sv')}").arg(values);
  }
  /// The value is made by the mock, which knows no structures from outside.
  static void change(MockService& portal, const QString& space, const QString& key, const QString& value) {
    portal.addMethod(kSettings, QStringLiteral("Change"), QString(), QString(),
                     QStringLiteral("self.EmitSignal('%1', 'SettingChanged', 'ssv', ['%2', '%3', %4])")
                         .arg(kSettings, space, key, value));
    portal.call(QStringLiteral("/org/freedesktop/portal/desktop"), kSettings, QStringLiteral("Change"));
  }
  void follow() {
    portalAppearance = std::make_unique<PortalAppearance>(connection, [this](const Appearance& appearance) {
      ++count;
      now = appearance;
    });
  }
  bool isTold(int times) {
    return runLoopUntil([&] { return count >= times; });
  }

  testing::TemporaryFolder folder;
  MockBus bus;
  QDBusConnection connection;
  Appearance now;
  int count = 0;
  std::unique_ptr<PortalAppearance> portalAppearance;
};

TEST_F(PortalAppearanceTest, IsToldWhatThePortalSaysHoweverOftenItIsWrapped) {
  const auto portal = startPortal(
      answer(QStringLiteral("'color-scheme': dbus.UInt32(1, variant_level=2), 'contrast': dbus.UInt32(1), "
                            "'accent-color': dbus.Struct((0.2, 0.4, 1.0), signature='ddd', variant_level=2)")));
  follow();
  ASSERT_TRUE(isTold(1));
  EXPECT_EQ(now.scheme, Scheme::dark);
  EXPECT_TRUE(now.isHighContrast);
  EXPECT_EQ(now.accent, QColor(51, 102, 255));
}

TEST_F(PortalAppearanceTest, AnAccentOutOfRangeOrOfAnotherShapeIsNone) {
  const auto portal = startPortal(answer(QStringLiteral("'color-scheme': dbus.UInt32(2)")));
  follow();
  ASSERT_TRUE(isTold(1));
  const char* const values[]{"dbus.Struct((0.2, 0.4, 1.1), signature='ddd', variant_level=1)",
                             "dbus.Struct((-1.0, -1.0, -1.0), signature='ddd', variant_level=1)",
                             "dbus.Struct((0.2, 0.4), signature='dd', variant_level=1)",
                             "dbus.Struct((float('nan'), 0.4, 0.4), signature='ddd', variant_level=1)"};
  int times = 1;
  for (const char* value : values) {
    change(*portal, kAppearance, QStringLiteral("accent-color"), QLatin1String(value));
    ASSERT_TRUE(isTold(++times));
    EXPECT_EQ(now.accent, std::nullopt) << value;
  }
  EXPECT_EQ(now.scheme, Scheme::light) << "the others stay";
}

TEST_F(PortalAppearanceTest, ChangesAreFollowedOfItsOwnNamespacesAlone) {
  const auto portal = startPortal(answer(QString()));
  follow();
  ASSERT_TRUE(isTold(1));
  change(*portal, QStringLiteral("org.example.other"), QStringLiteral("color-scheme"),
         QStringLiteral("dbus.UInt32(1)"));
  change(*portal, kAppearance, QStringLiteral("color-scheme"), QStringLiteral("dbus.UInt32(2, variant_level=1)"));
  ASSERT_TRUE(isTold(2));
  EXPECT_EQ(now.scheme, Scheme::light);
  EXPECT_EQ(count, 2);
}

TEST_F(PortalAppearanceTest, MayComeLaterAndLeavesItsLastWordWhenItGoes) {
  follow();
  auto portal = startPortal(answer(QStringLiteral("'color-scheme': dbus.UInt32(1)")));
  ASSERT_TRUE(isTold(1));
  EXPECT_EQ(now.scheme, Scheme::dark);
  portal->stop();
  portal = startPortal(answer(QStringLiteral("'color-scheme': dbus.UInt32(2)")));
  ASSERT_TRUE(isTold(2));
  EXPECT_EQ(now.scheme, Scheme::light);
  EXPECT_EQ(count, 2);
}

TEST_F(PortalAppearanceTest, SignalsOfAnyoneElseAreNotBelieved) {
  const auto portal = startPortal(answer(QString()));
  follow();
  ASSERT_TRUE(isTold(1));
  QDBusMessage signal = QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/portal/desktop"), kSettings,
                                                   QStringLiteral("SettingChanged"));
  signal << kAppearance << QStringLiteral("color-scheme") << QVariant::fromValue(QDBusVariant(1U));
  bus.connection().send(signal);
  change(*portal, kAppearance, QStringLiteral("contrast"), QStringLiteral("dbus.UInt32(1, variant_level=1)"));
  ASSERT_TRUE(isTold(2));
  EXPECT_EQ(now.scheme, Scheme::unknown);
  EXPECT_EQ(count, 2);
}

}  // namespace
}  // namespace quillmere
