#include "platform/linux/sharing/LiveFileManager.h"

#include <cstdlib>

#include "foundation/ManualExecutor.h"
#include "platform/linux/sharing/FakeFileManager.h"
#include "platform/linux/sharing/ShareablePrograms.h"
#include "support/Files.h"
#include "support/Printing.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::FakeFileManager;
using testing::readBytes;
using testing::runLoopUntil;
using testing::writeFile;
using Answer = FakeFileManager::Answer;

constexpr auto kOwn = "under test";
const QString kShowItems = QStringLiteral("ShowItems");
const QString kShowFolders = QStringLiteral("ShowFolders");
const QString kProgram = QStringLiteral("quillmere-test-folders.desktop");

/// A desktop with a bus and a program for folders, a command that writes down what it is opened with.
class LiveFileManagerTest : public ::testing::Test {
 protected:
  LiveFileManagerTest() {
    const FileURL command = folder.file("folders");
    writeFile(command, "#!/bin/sh\nprintf '%s' \"$1\" > '" + folder.path() + "/opening'\nmv '" + folder.path() +
                           "/opening' '" + opened.path() + "'\n");
    std::filesystem::permissions(command.path(), std::filesystem::perms::owner_all);
    const FileURL applications = FileURL::fromPath(std::getenv("XDG_DATA_HOME")).appending("applications");
    std::filesystem::create_directories(applications.path());
    writeFile(applications.appending(kProgram.toStdString()),
              "[Desktop Entry]\nType=Application\nName=Test Folders\nIcon=x\nMimeType=inode/directory;\nExec=\"" +
                  command.path() + "\" %f\n");
    writeFile(FileURL::fromPath(std::getenv("XDG_CONFIG_HOME")).appending("mimeapps.list"),
              "[Added Associations]\ninode/directory=" + kProgram.toStdString() +
                  ";\n[Default Applications]\ninode/directory=" + kProgram.toStdString() + ";\n");
    const auto isKnown = [] {
      const auto programs = ShareablePrograms::find({QStringLiteral("inode/directory")});
      return !programs.empty() && programs.front().id == kProgram;
    };
    if (!runLoopUntil(isKnown)) std::abort();
    // Whatever is installed on this computer, the bus does not start it.
    serveBy("/bin/false");
    std::filesystem::create_directories(shots.path());
  }
  ~LiveFileManagerTest() override {
    fileManager.reset();
    desktop.reset();
    QDBusConnection::disconnectFromBus(QLatin1String(kOwn));
    std::filesystem::remove(service.path());
  }
  void start(std::chrono::milliseconds patience = LiveFileManager::kPatience) {
    bus = std::make_unique<testing::MockBus>();
    fileManager = std::make_unique<LiveFileManager>(
        executor, QDBusConnection::connectToBus(bus->address(), QLatin1String(kOwn)), patience);
  }
  /// What the bus starts under the file manager's name.
  void serveBy(const std::string& command) {
    std::filesystem::create_directories(service.parent().path());
    writeFile(service, "[D-BUS Service]\nName=org.freedesktop.FileManager1\nExec=" + command + "\n");
  }
  void startWith(Answer answer, std::chrono::milliseconds patience = LiveFileManager::kPatience) {
    start(patience);
    desktop = std::make_unique<FakeFileManager>(*bus);
    desktop->answer = answer;
  }
  FileURL picture(const std::string& name) {
    const FileURL url = shots.appending(name);
    writeFile(url, "picture");
    return url;
  }
  void reveal(const FileURL& file) {
    fileManager->reveal(file);
    executor.drain();
  }
  bool isOpened() const { return std::filesystem::exists(opened.path()); }
  /// The folder that the program for folders is opened with.
  std::string openedFolder() {
    EXPECT_TRUE(runLoopUntil([this] {
      executor.drain();
      return isOpened();
    }));
    return isOpened() ? readBytes(opened) : std::string();
  }
  bool isAsked() {
    return runLoopUntil([this] { return !desktop->asked.isEmpty(); });
  }
  /// Whatever was on its way over the bus has arrived.
  void settle() {
    const auto own = QDBusConnection(QLatin1String(kOwn));
    const QDBusPendingCall last =
        own.asyncCall(QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/"),
                                                     QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId")));
    EXPECT_TRUE(runLoopUntil([&] { return last.isFinished(); }));
    executor.drain();
  }
  static QString coded(const FileURL& url) { return QString::fromStdString(url.coded()); }

  testing::TemporaryFolder folder;
  FileURL shots = folder.file("Shots");
  FileURL opened = folder.file("opened");
  FileURL service = FileURL::fromPath(std::getenv("XDG_RUNTIME_DIR"))
                        .appending("dbus-1/services/org.freedesktop.FileManager1.service");
  ManualExecutor executor;
  std::unique_ptr<testing::MockBus> bus;
  std::unique_ptr<FakeFileManager> desktop;
  std::unique_ptr<LiveFileManager> fileManager;
};

TEST_F(LiveFileManagerTest, TheFileManagerIsAskedToSelectTheFile) {
  startWith(Answer::yes);
  const FileURL file = picture("a b.png");
  reveal(file);
  EXPECT_TRUE(desktop->asked.isEmpty()) << "the bus is not waited for";
  executor.holdBackground();
  ASSERT_TRUE(isAsked());
  EXPECT_EQ(desktop->asked, QStringList({kShowItems, coded(file), QString()}));
  settle();
  EXPECT_EQ(executor.heldBackground(), 0u) << "no folder is to be opened";
}

TEST_F(LiveFileManagerTest, NamesOfAnyBytesArriveAsTheyAre) {
  startWith(Answer::yes);
  for (const char* name : {"a\nb.png", "-o.png", "50%20;#?.png", "\"'`$\\.png", "a\xFF\xFE.png", "\xC3\xBC.png"}) {
    desktop->asked.clear();
    const FileURL file = picture(name);
    reveal(file);
    ASSERT_TRUE(isAsked());
    EXPECT_EQ(FileURL::fromCoded(desktop->asked.value(1).toStdString()), file);
    const QString uri = desktop->asked.value(1);
    EXPECT_TRUE(std::all_of(uri.begin(), uri.end(), [](QChar c) { return c > u' ' && c < u'\x7F'; }));
  }
}

TEST_F(LiveFileManagerTest, ALinkIsShownItselfWhereverItLeads) {
  startWith(Answer::yes);
  const FileURL link = shots.appending("link.png");
  std::filesystem::create_symlink("nowhere", link.path());
  reveal(link);
  ASSERT_TRUE(isAsked());
  EXPECT_EQ(desktop->asked, QStringList({kShowItems, coded(link), QString()}));
}

TEST_F(LiveFileManagerTest, OfAFileThatIsGoneTheNearestFolderIsShown) {
  startWith(Answer::yes);
  reveal(shots.appending("gone.png"));
  ASSERT_TRUE(isAsked());
  EXPECT_EQ(desktop->asked, QStringList({kShowFolders, coded(shots), QString()}));
  desktop->asked.clear();
  reveal(shots.appending("gone/too/a.png"));
  ASSERT_TRUE(isAsked());
  EXPECT_EQ(desktop->asked, QStringList({kShowFolders, coded(shots), QString()}));
  desktop->asked.clear();
  reveal(picture("file.png").appending("a.png"));
  ASSERT_TRUE(isAsked());
  EXPECT_EQ(desktop->asked, QStringList({kShowFolders, coded(shots), QString()}));
}

TEST_F(LiveFileManagerTest, WhereNoFileManagerCanBeStartedItsFolderIsOpened) {
  start();
  shots = folder.file("Shots \xFF & 50%");
  std::filesystem::create_directories(shots.path());
  reveal(picture("a.png"));
  EXPECT_EQ(openedFolder(), shots.path());
}

TEST_F(LiveFileManagerTest, WithoutAnyBusItsFolderIsOpened) {
  fileManager = std::make_unique<LiveFileManager>(executor, QDBusConnection(QStringLiteral("no bus")));
  reveal(picture("a.png"));
  EXPECT_EQ(openedFolder(), shots.path());
}

TEST_F(LiveFileManagerTest, OneThatDoesNotRunIsStarted) {
  const FileURL started = folder.file("started");
  serveBy("/usr/bin/touch " + started.path());
  start();
  reveal(picture("a.png"));
  EXPECT_TRUE(runLoopUntil([&] { return std::filesystem::exists(started.path()); }));
}

TEST_F(LiveFileManagerTest, WhatOneRefusesIsOpenedAsAFolder) {
  startWith(Answer::error);
  reveal(shots.appending("gone.png"));
  EXPECT_EQ(openedFolder(), shots.path());
  std::filesystem::remove(opened.path());
  reveal(picture("a.png"));
  EXPECT_EQ(openedFolder(), shots.path());
}

TEST_F(LiveFileManagerTest, OneThatNeverAnswersHoldsNobodyUp) {
  startWith(Answer::none, std::chrono::milliseconds(200));
  reveal(picture("a.png"));
  ASSERT_TRUE(isAsked());
  EXPECT_FALSE(isOpened());
  EXPECT_EQ(openedFolder(), shots.path()) << "patience ends";
}

TEST_F(LiveFileManagerTest, ASlowOneIsWaitedForWithoutHoldingAnybodyUp) {
  startWith(Answer::none);
  reveal(picture("a.png"));
  ASSERT_TRUE(isAsked());
  reveal(picture("b.png"));
  EXPECT_TRUE(runLoopUntil([this] { return desktop->asked.size() == 6; })) << "the next one is asked meanwhile";
  executor.holdBackground();
  desktop->answerLate();
  settle();
  EXPECT_EQ(executor.heldBackground(), 0u);
}

TEST_F(LiveFileManagerTest, ADiskThatDoesNotAnswerHoldsNobodyUp) {
  startWith(Answer::yes);
  executor.holdBackground();
  reveal(picture("a.png"));
  settle();
  EXPECT_TRUE(desktop->asked.isEmpty());
  executor.runHeldBackground();
  EXPECT_TRUE(isAsked());
}

TEST_F(LiveFileManagerTest, NothingHappensAfterItsEnd) {
  startWith(Answer::none);
  executor.holdBackground();
  reveal(picture("a.png"));
  fileManager.reset();
  executor.runHeldBackground();
  settle();
  EXPECT_TRUE(desktop->asked.isEmpty());
}

}  // namespace
}  // namespace quillmere
