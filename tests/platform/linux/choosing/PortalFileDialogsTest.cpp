#include "platform/linux/choosing/PortalFileDialogs.h"

#include <gmock/gmock.h>

#include "platform/linux/choosing/FakePortal.h"
#include "support/Printing.h"

namespace quillmere {
namespace {

using testing::FakePortal;
using testing::runLoopUntil;
using End = FileDialogEnd::Kind;

void runLoopFor(std::chrono::milliseconds time) {
  const QDeadlineTimer over(time);
  runLoopUntil([&] { return over.hasExpired(); });
}

class PortalFileDialogsTest : public ::testing::Test {
 protected:
  static constexpr auto kOwn = "under test";

  ~PortalFileDialogsTest() override {
    dialog.reset();
    dialogs.reset();
    portal.reset();
    QDBusConnection::disconnectFromBus(QLatin1String(kOwn));
  }
  void start() {
    portal = std::make_unique<FakePortal>(bus);
    connect();
    // The service is found in a later turn.
    ASSERT_TRUE(runLoopUntil([&] { return isThere(); }));
  }
  void connect() {
    dialogs = std::make_unique<PortalFileDialogs>(QDBusConnection::connectToBus(bus.address(), QLatin1String(kOwn)),
                                                  std::chrono::milliseconds(300));
  }
  bool isThere() {
    return dialogs->open(folder(), [](const FileDialogEnd&) {}) != nullptr;
  }
  static FileDialogRequest folder() {
    return {.kind = FileDialogRequest::Kind::folder,
            .title = QStringLiteral("Choose Screenshot Folder"),
            .accept = QStringLiteral("Choose"),
            .directory = FileURL::fromPath("/home/p/Shots \xE9")};
  }
  static FileDialogRequest destination() {
    return {.kind = FileDialogRequest::Kind::destination,
            .title = QStringLiteral("Move"),
            .accept = QStringLiteral("Move"),
            .directory = FileURL::fromPath("/home/p"),
            .name = QStringLiteral("1.png"),
            .typeName = QStringLiteral("PNG image"),
            .globs = {QStringLiteral("*.png")}};
  }
  void open(const FileDialogRequest& request) {
    end.reset();
    portal->method.clear();
    dialog = dialogs->open(request, [this](const FileDialogEnd& how) {
      EXPECT_FALSE(end) << "told once";
      end = how;
    });
    ASSERT_TRUE(dialog);
    EXPECT_FALSE(end);
  }
  void openAndWait(const FileDialogRequest& request) {
    open(request);
    ASSERT_TRUE(runLoopUntil([&] { return !portal->method.isEmpty(); }));
    runLoopFor(std::chrono::milliseconds(20));
  }
  End ended() {
    EXPECT_TRUE(runLoopUntil([&] { return end.has_value(); }));
    return end ? end->kind : End::unavailable;
  }

  testing::MockBus bus;
  std::unique_ptr<FakePortal> portal;
  std::unique_ptr<PortalFileDialogs> dialogs;
  std::unique_ptr<DesktopFileDialogs::Dialog> dialog;
  std::optional<FileDialogEnd> end;
};

TEST_F(PortalFileDialogsTest, WithoutAPortalThereIsNoDialog) {
  connect();
  runLoopFor(std::chrono::milliseconds(100));
  EXPECT_EQ(dialogs->open(folder(), [](const FileDialogEnd&) { ADD_FAILURE(); }), nullptr);
}

TEST_F(PortalFileDialogsTest, AFolderIsAskedForFromWhereItBegins) {
  start();
  openAndWait(folder());
  EXPECT_EQ(portal->method, QStringLiteral("OpenFile"));
  EXPECT_EQ(portal->title, QStringLiteral("Choose Screenshot Folder"));
  EXPECT_EQ(portal->options.value(QStringLiteral("accept_label")), QStringLiteral("Choose"));
  EXPECT_EQ(portal->options.value(QStringLiteral("directory")), true);
  EXPECT_EQ(portal->options.value(QStringLiteral("current_folder")).toByteArray(),
            QByteArray("/home/p/Shots \xE9\0", 16))
      << "bytes, ended by a zero";
  portal->respond(0, {QStringLiteral("file:///home/p/Other%20%E9")});
  EXPECT_EQ(ended(), End::chosen);
  EXPECT_EQ(end->chosen.path(), "/home/p/Other \xE9") << "a name that is no text";
}

TEST_F(PortalFileDialogsTest, ADestinationIsAskedForByNameAndType) {
  start();
  openAndWait(destination());
  EXPECT_EQ(portal->method, QStringLiteral("SaveFile"));
  EXPECT_EQ(portal->options.value(QStringLiteral("current_name")), QStringLiteral("1.png"));
  EXPECT_FALSE(portal->options.contains(QStringLiteral("directory")));
  EXPECT_EQ(portal->options.value(QStringLiteral("filters")).value<QDBusArgument>().currentSignature(),
            QStringLiteral("a(sa(us))"));
  portal->respond(0, {QStringLiteral("file:///home/p/Receipt.png")});
  EXPECT_EQ(ended(), End::chosen);
  EXPECT_EQ(end->chosen.path(), "/home/p/Receipt.png");
}

TEST_F(PortalFileDialogsTest, WhoCancelsOrClosesHasChosenNothing) {
  start();
  for (const uint how : {1U, 2U}) {
    openAndWait(folder());
    portal->respond(how);
    EXPECT_EQ(ended(), End::cancelled) << how;
  }
}

TEST_F(PortalFileDialogsTest, AnAnswerWithoutAFileOfThisMachineIsNoChoice) {
  start();
  for (const QStringList& uris : {QStringList{}, QStringList{QStringLiteral("smb://server/share")}}) {
    openAndWait(folder());
    portal->respond(0, uris);
    EXPECT_EQ(ended(), End::cancelled);
  }
}

TEST_F(PortalFileDialogsTest, AnotherDialogHasToDoWhereThePortalIsTooOldForFolders) {
  start();
  portal->version = 2;
  open(folder());
  EXPECT_EQ(ended(), End::unavailable);
  EXPECT_EQ(portal->method, QString());
  openAndWait(destination());
  EXPECT_EQ(portal->method, QStringLiteral("SaveFile")) << "which it could do always";
}

TEST_F(PortalFileDialogsTest, AndWhereItRefuses) {
  start();
  portal->refuses = true;
  open(folder());
  EXPECT_EQ(ended(), End::unavailable);
}

TEST_F(PortalFileDialogsTest, AndWhereItDoesNotSayWhichItIs) {
  start();
  portal->isSilent = true;
  open(folder());
  EXPECT_EQ(ended(), End::unavailable);
}

TEST_F(PortalFileDialogsTest, AndWhereItVanishesInTheMiddle) {
  start();
  openAndWait(folder());
  portal->vanish();
  EXPECT_EQ(ended(), End::unavailable);
  EXPECT_EQ(dialogs->open(folder(), [](const FileDialogEnd&) {}), nullptr) << "until another one comes";
}

TEST_F(PortalFileDialogsTest, ADialogMayStandForLong) {
  start();
  openAndWait(folder());
  runLoopFor(std::chrono::milliseconds(500));
  EXPECT_FALSE(end) << "longer than the portal may think about its version";
  portal->respond(0, {QStringLiteral("file:///home/p/A")});
  EXPECT_EQ(ended(), End::chosen);
}

TEST_F(PortalFileDialogsTest, OfADialogThatNobodyWaitsForThePortalIsTold) {
  start();
  openAndWait(folder());
  const int before = portal->closings;
  dialog.reset();
  EXPECT_TRUE(runLoopUntil([&] { return portal->closings == before + 1; }));
  portal->respond(0, {QStringLiteral("file:///home/p/A")});
  runLoopFor(std::chrono::milliseconds(50));
  EXPECT_FALSE(end);
}

TEST_F(PortalFileDialogsTest, AnOldPortalsOwnHandleIsListenedTo) {
  start();
  portal->usesOldHandles = true;
  openAndWait(folder());
  portal->respond(1);
  EXPECT_EQ(ended(), End::cancelled);
}

TEST_F(PortalFileDialogsTest, OneDialogAfterTheOtherGetsItsOwnAnswer) {
  start();
  for (const char* name : {"A", "B", "C"}) {
    openAndWait(folder());
    portal->respond(0, {QStringLiteral("file:///home/p/") + QLatin1String(name)});
    ASSERT_EQ(ended(), End::chosen);
    EXPECT_EQ(end->chosen.lastPathComponent(), name);
  }
}

}  // namespace
}  // namespace quillmere
