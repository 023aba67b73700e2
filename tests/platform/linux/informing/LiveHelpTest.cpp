#include "platform/linux/informing/LiveHelp.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>
#include <QtDBus/QDBusUnixFileDescriptor>
#include <QtDBus/QDBusVirtualObject>
#include <cstdlib>
#include <filesystem>

#include "foundation/ManualExecutor.h"
#include "support/Files.h"
#include "support/MockBus.h"
#include "support/Printing.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::readBytes;
using testing::runLoopUntil;
using testing::writeFile;
using Surroundings = LiveHelp::Surroundings;

/// The portal, played by the test's own connection.
class FakeOpener final : public QDBusVirtualObject {
 public:
  explicit FakeOpener(testing::MockBus& bus) : bus_(bus.connection()) {
    EXPECT_TRUE(bus_.registerVirtualObject(kPath, this));
    EXPECT_TRUE(bus_.registerService(kName));
  }
  ~FakeOpener() override {
    bus_.unregisterService(kName);
    bus_.unregisterObject(kPath);
  }
  bool refuses = false;
  std::vector<std::string> opened;  ///< the files, by their places

 protected:
  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    EXPECT_EQ(message.signature(), QStringLiteral("sha{sv}"));
    EXPECT_EQ(message.interface(), QStringLiteral("org.freedesktop.portal.OpenURI"));
    EXPECT_EQ(message.member(), QStringLiteral("OpenFile"));
    const auto file = message.arguments().value(1).value<QDBusUnixFileDescriptor>();
    opened.push_back(std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(file.fileDescriptor())).string());
    connection.send(refuses ? message.createErrorReply(QDBusError::AccessDenied, QStringLiteral("no"))
                            : message.createReply(QVariant::fromValue(QDBusObjectPath(QStringLiteral("/request")))));
    return true;
  }

 private:
  static inline const QString kName = QStringLiteral("org.freedesktop.portal.Desktop");
  static inline const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");
  QDBusConnection bus_;
};

/// A desktop with a bus and a browser, a command that writes down what it is opened with.
class LiveHelpTest : public ::testing::Test {
 protected:
  LiveHelpTest() {
    const FileURL command = folder.file("browser");
    writeFile(command, "#!/bin/sh\nprintf '%s' \"$1\" > '" + folder.path() + "/opening'\nmv '" + folder.path() +
                           "/opening' '" + opened.path() + "'\n");
    std::filesystem::permissions(command.path(), std::filesystem::perms::owner_all);
    const FileURL applications = FileURL::fromPath(std::getenv("XDG_DATA_HOME")).appending("applications");
    std::filesystem::create_directories(applications.path());
    writeFile(applications.appending("quillmere-test-browser.desktop"),
              "[Desktop Entry]\nType=Application\nName=Test Browser\nMimeType=text/html;\nExec=\"" + command.path() +
                  "\" %f\n");
    writeFile(FileURL::fromPath(std::getenv("XDG_CONFIG_HOME")).appending("mimeapps.list"),
              "[Default Applications]\ntext/html=quillmere-test-browser.desktop;\n");
    std::filesystem::create_directories(folder.file("pages").path());
    writeFile(page, "<!DOCTYPE html><title>Help</title>");
  }
  ~LiveHelpTest() override {
    help.reset();
    portal.reset();
    QDBusConnection::disconnectFromBus(QLatin1String(kOwn));
  }
  void start(Surroundings surroundings) {
    help = std::make_unique<LiveHelp>(executor, QDBusConnection::connectToBus(bus.address(), QLatin1String(kOwn)),
                                      HelpPages({folder.file("pages")}), surroundings);
  }
  void open(HelpAnchor anchor) {
    help->open(anchor);
    executor.drain();
  }
  bool isOpenedInBrowser() {
    return runLoopUntil([this] {
      executor.drain();
      return std::filesystem::exists(opened.path());
    });
  }

  static constexpr auto kOwn = "under test";
  testing::TemporaryFolder folder;
  const FileURL opened = folder.file("opened");
  const FileURL page = folder.file("pages/qm-troubleshooting.html");
  ManualExecutor executor;
  testing::MockBus bus;
  std::unique_ptr<FakeOpener> portal;
  std::unique_ptr<LiveHelp> help;
};

TEST_F(LiveHelpTest, OnADesktopTheProgramForPagesOpensIt) {
  portal = std::make_unique<FakeOpener>(bus);
  start(Surroundings::desktop);
  open(HelpAnchor::troubleshooting);
  ASSERT_TRUE(isOpenedInBrowser());
  EXPECT_EQ(readBytes(opened), page.path());
  EXPECT_TRUE(portal->opened.empty());
}

TEST_F(LiveHelpTest, InASandboxThePortalIsGivenTheOpenFile) {
  portal = std::make_unique<FakeOpener>(bus);
  start(Surroundings::sandbox);
  open(HelpAnchor::troubleshooting);
  ASSERT_TRUE(runLoopUntil([this] { return !portal->opened.empty(); }));
  EXPECT_EQ(portal->opened, std::vector({page.path()}));
  executor.holdBackground();
  EXPECT_EQ(executor.heldBackground(), 0u) << "nothing else opens it as well";
}

TEST_F(LiveHelpTest, WhereThePortalRefusesItIsOpenedDirectly) {
  portal = std::make_unique<FakeOpener>(bus);
  portal->refuses = true;
  start(Surroundings::sandbox);
  open(HelpAnchor::troubleshooting);
  EXPECT_TRUE(isOpenedInBrowser());
}

TEST_F(LiveHelpTest, WithoutAPortalItIsOpenedDirectly) {
  start(Surroundings::sandbox);
  open(HelpAnchor::troubleshooting);
  EXPECT_TRUE(isOpenedInBrowser());
}

TEST_F(LiveHelpTest, WithoutAnyBusItIsOpenedDirectly) {
  help = std::make_unique<LiveHelp>(executor, QDBusConnection(QStringLiteral("no bus")),
                                    HelpPages({folder.file("pages")}), Surroundings::sandbox);
  open(HelpAnchor::troubleshooting);
  EXPECT_TRUE(isOpenedInBrowser());
}

TEST_F(LiveHelpTest, APageThatIsNotThereDoesNothing) {
  portal = std::make_unique<FakeOpener>(bus);
  start(Surroundings::sandbox);
  open(HelpAnchor::folderMismatch);
  start(Surroundings::desktop);
  executor.holdBackground();
  help->open(HelpAnchor::folderMismatch);
  EXPECT_EQ(executor.heldBackground(), 1u) << "the disk is asked in the background";
  executor.runHeldBackground();
  executor.drain();
  EXPECT_EQ(executor.heldBackground(), 0u) << "and nothing is started";
  EXPECT_TRUE(portal->opened.empty());
}

TEST_F(LiveHelpTest, NothingHappensAfterItsEnd) {
  start(Surroundings::desktop);
  executor.holdBackground();
  help->open(HelpAnchor::troubleshooting);
  help.reset();
  executor.runHeldBackground();
  executor.drain();
  EXPECT_EQ(executor.heldBackground(), 0u);
}

TEST_F(LiveHelpTest, ASandboxTellsItself) {
  ASSERT_FALSE(std::filesystem::exists("/.flatpak-info"));
  ::unsetenv("SNAP");
  EXPECT_EQ(LiveHelp::ofThisProcess(), Surroundings::desktop);
  ::setenv("SNAP", "/snap/quillmere/1", 1);
  EXPECT_EQ(LiveHelp::ofThisProcess(), Surroundings::sandbox);
  ::unsetenv("SNAP");
}

}  // namespace
}  // namespace quillmere
