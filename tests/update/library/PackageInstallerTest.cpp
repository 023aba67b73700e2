#include "update/library/PackageInstaller.h"

#include <gtest/gtest.h>

#include "platform/linux/common/QtExecutor.h"
#include "support/MockBus.h"
#include "support/TemporaryFolder.h"
#include "update/library/Maker.h"

namespace quillmere {
namespace {

using testing::MockBus;
using testing::MockService;
using testing::runLoopUntil;

const QString kName = QStringLiteral("org.freedesktop.PackageKit");
const QString kPath = QStringLiteral("/org/freedesktop/PackageKit");
const QString kTransaction = QStringLiteral("org.freedesktop.PackageKit.Transaction");

/// What the mocked service does when it is to install: tells an error's number, and how it ended.
QString ending(int errorForTrusted, int exitForTrusted, int exitForAny) {
  return QStringLiteral(
             "trusted = args[0] == 2\n"
             "if trusted and %1: self.EmitSignal('org.freedesktop.PackageKit.Transaction', 'ErrorCode', 'us', [%1, "
             "'no'])\n"
             "self.EmitSignal('org.freedesktop.PackageKit.Transaction', 'Finished', 'uu', [%2 if trusted else %3, "
             "5])\n")
      .arg(errorForTrusted)
      .arg(exitForTrusted)
      .arg(exitForAny);
}

class PackageInstallerTest : public ::testing::Test {
 protected:
  PackageInstallerTest() { file->append(package); }
  ~PackageInstallerTest() override {
    installer.reset();
    executor.reset();
    QDBusConnection::disconnectFromBus(QStringLiteral("system"));
  }
  /// The service answers with the mocked object, which is its transaction too.
  void start(const QString& code) {
    service = MockService::bare(bus, kName, kPath, kName);
    service->addMethod(kName, QStringLiteral("CreateTransaction"), QString(), QStringLiteral("o"),
                       QStringLiteral("ret = '%1'").arg(kPath));
    service->addMethod(kTransaction, QStringLiteral("SetHints"), QStringLiteral("as"), QString(), QString());
    service->addMethod(kTransaction, QStringLiteral("InstallFiles"), QStringLiteral("tas"), QString(), code);
  }
  void begin() {
    installer->install(file, [this](auto failure) { told = failure; });
  }
  std::optional<UpdateFailure> installed() {
    begin();
    EXPECT_TRUE(runLoopUntil([this] { return told.has_value(); }));
    return told.value_or(std::nullopt);
  }
  size_t asked(const QString& method) {
    const auto calls = service->mock(kPath, QStringLiteral("GetMethodCalls"), {method}).value(0).value<QDBusArgument>();
    size_t count = 0;
    calls.beginArray();
    while (!calls.atEnd()) {
      calls.beginStructure();
      quint64 time = 0;
      QVariantList arguments;
      calls >> time >> arguments;
      calls.endStructure();
      ++count;
    }
    calls.endArray();
    return count;
  }

  testing::Maker maker;
  testing::TemporaryFolder folder;
  const QByteArray package = "the package";
  std::shared_ptr<PackageFile> file =
      PackageFile::make(folder.url(), QStringLiteral("quillmere-0.2.0.deb"), {maker.check(), maker.sign(package), 11});
  MockBus bus;
  std::unique_ptr<MockService> service;
  std::unique_ptr<QtExecutor> executor = std::make_unique<QtExecutor>();
  std::unique_ptr<PackageInstaller> installer = std::make_unique<PackageInstaller>(
      *executor, FileURL::fromPath("/usr/bin/quillmere"),
      [address = bus.address()] { return QDBusConnection::connectToBus(address, QStringLiteral("system")); });
  std::optional<std::optional<UpdateFailure>> told;
};

TEST_F(PackageInstallerTest, ThePackageIsHandedOver) {
  start(QStringLiteral("assert args[1][0].endswith('/quillmere-0.2.0.deb')\n"
                       "assert open(args[1][0]).read() == 'the package'\n") +
        ending(0, 1, 2));
  EXPECT_EQ(installed(), std::nullopt);
  EXPECT_EQ(asked(QStringLiteral("InstallFiles")), 1U);
  EXPECT_EQ(asked(QStringLiteral("SetHints")), 1U);
  EXPECT_EQ(installer->programToStart(), FileURL::fromPath("/usr/bin/quillmere"));
}

TEST_F(PackageInstallerTest, APackageWithoutTheDistributorsSignatureIsAskedForOnceMore) {
  start(ending(31, 2, 1));
  EXPECT_EQ(installed(), std::nullopt);
  EXPECT_EQ(asked(QStringLiteral("InstallFiles")), 2U);
}

TEST_F(PackageInstallerTest, AServiceThatNeedsMoreTrustIsAskedForOnceMoreOnly) {
  start(ending(0, 8, 8));
  EXPECT_EQ(installed(), UpdateFailure::installerRefused);
  EXPECT_EQ(asked(QStringLiteral("InstallFiles")), 2U);
}

TEST_F(PackageInstallerTest, ARefusalIsTold) {
  start(ending(48, 2, 1));  // not authorised
  EXPECT_EQ(installed(), UpdateFailure::installerRefused);
  EXPECT_EQ(asked(QStringLiteral("InstallFiles")), 1U);
}

TEST_F(PackageInstallerTest, AMethodThatFailsIsARefusal) {
  start(QStringLiteral("raise dbus.exceptions.DBusException('no', name='org.freedesktop.PackageKit.Denied')"));
  EXPECT_EQ(installed(), UpdateFailure::installerRefused);
}

TEST_F(PackageInstallerTest, AServiceThatVanishesIsARefusal) {
  start(QString());  // and never finishes
  begin();
  ASSERT_TRUE(service->wasAsked(QStringLiteral("InstallFiles")));
  EXPECT_FALSE(told);
  service->stop();
  EXPECT_TRUE(runLoopUntil([this] { return told.has_value(); }));
  EXPECT_EQ(told, std::optional(UpdateFailure::installerRefused));
}

TEST_F(PackageInstallerTest, WithoutAServiceOrABusThereIsNoInstaller) {
  EXPECT_EQ(installed(), UpdateFailure::noInstaller);
  QDBusConnection::disconnectFromBus(QStringLiteral("system"));
  bus.stop();
  told.reset();
  EXPECT_EQ(installed(), UpdateFailure::noInstaller);
}

TEST_F(PackageInstallerTest, WhatOthersTellOfTheTransactionIsNotHeard) {
  start(QString());
  begin();
  ASSERT_TRUE(service->wasAsked(QStringLiteral("InstallFiles")));
  QDBusMessage signal = QDBusMessage::createSignal(kPath, kTransaction, QStringLiteral("Finished"));
  signal << 1u << 5u;
  bus.connection().send(signal);
  service->mock(kPath, QStringLiteral("GetCalls"), {});
  EXPECT_FALSE(told);
  service->stop();
  EXPECT_TRUE(runLoopUntil([this] { return told.has_value(); }));
  EXPECT_EQ(told, std::optional(UpdateFailure::installerRefused));
}

TEST_F(PackageInstallerTest, APackageThatWasSwappedMeanwhileIsNotHandedOver) {
  start(ending(0, 1, 1));
  file->append("more");
  EXPECT_EQ(installed(), UpdateFailure::packageNotSigned);
  EXPECT_EQ(asked(QStringLiteral("CreateTransaction")), 0U);
}

}  // namespace
}  // namespace quillmere
