#include "model/CloudDownloads.h"

#include <gmock/gmock.h>
#include <sys/xattr.h>

#include "foundation/ManualExecutor.h"
#include "platform/linux/files/CloudFiles.h"
#include "platform/linux/files/LiveSecurityScopeAccess.h"
#include "support/FakeSyncClient.h"
#include "support/Files.h"
#include "support/PrivateEnvironment.h"
#include "support/Records.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using ::testing::ElementsAre;
using testing::FakeSyncClient;
using testing::TemporaryFolder;
using testing::uuid;
using testing::writeFile;

/// The waiting for data over the real placeholders and the client's real socket; only time is the test's.
class CloudDownloadsTest : public ::testing::Test {
 protected:
  CloudDownloadsTest() {
    std::filesystem::create_directories(shots.path());
    std::filesystem::create_directories(runtime.path());
    writeFile(shots.appending(".sync_1234.db"), "");
    writeFile(placeholder, " ");
    ::setenv("XDG_RUNTIME_DIR", runtime.c_str(), 1);
    dependencies.executor = &executor;
    dependencies.securityScope = &scope;
    dependencies.isDataless = &CloudFiles::isDataless;
    dependencies.startDownload = &CloudFiles::startDownload;
  }
  ~CloudDownloadsTest() override { ::unsetenv("XDG_RUNTIME_DIR"); }

  void start() {
    downloads.start(uuid(1), shot, std::nullopt);
    executor.drain();
  }
  /// The client takes its placeholder away and puts the file there.
  void bringData() {
    std::filesystem::remove(placeholder.path());
    writeFile(shot, "the picture");
  }

  TemporaryFolder folder;
  FileURL shots = folder.file("cloud/shots");
  FileURL shot = shots.appending("a b.png");
  FileURL placeholder = shots.appending("a b.png.nextcloud");
  FileURL runtime = folder.file("run");
  SystemEvents events;
  MountTable mounts{&events};
  LiveSecurityScopeAccess scope{mounts};
  ManualExecutor executor;
  AppModelDependencies dependencies;
  std::vector<std::optional<DownloadState>> states;
  CloudDownloads downloads{dependencies, [this](const UUID&, std::optional<DownloadState> s) { states.push_back(s); }};
};

TEST_F(CloudDownloadsTest, DataThatComesAfterAWhileEndsTheWait) {
  FakeSyncClient client(runtime);
  ASSERT_TRUE(CloudFiles::isDataless(shot));
  ASSERT_TRUE(CloudFiles::isSynced(shots));
  start();
  EXPECT_THAT(client.commands(1), ElementsAre("MAKE_AVAILABLE_LOCALLY:" + placeholder.path() + "\n"));
  executor.advance(seconds(30));
  EXPECT_THAT(states, ElementsAre(DownloadState::requesting, DownloadState::downloading));
  bringData();
  executor.advance(seconds(2));
  EXPECT_THAT(states, ElementsAre(DownloadState::requesting, DownloadState::downloading, std::nullopt));
  EXPECT_FALSE(downloads.isRunning(uuid(1)));
}

TEST_F(CloudDownloadsTest, DataThatNeverComesStalls) {
  FakeSyncClient client(runtime);
  start();
  executor.advance(seconds(600));
  EXPECT_THAT(states, ElementsAre(DownloadState::requesting, DownloadState::downloading, DownloadState::stalled));
}

TEST_F(CloudDownloadsTest, AClientThatDoesNotRunRefuses) {
  start();
  EXPECT_THAT(states, ElementsAre(DownloadState::requesting, DownloadState::refused));
}

TEST_F(CloudDownloadsTest, APlaceholderUnderItsOwnNameIsAskedForByThatName) {
  FakeSyncClient client(runtime);
  std::filesystem::remove(placeholder.path());
  writeFile(shot, " ");
  ASSERT_EQ(::setxattr(shot.c_str(), "user.nextcloud.hydrate_exec", "x", 1, 0), 0);
  start();
  EXPECT_THAT(client.commands(1), ElementsAre("MAKE_AVAILABLE_LOCALLY:" + shot.path() + "\n"));
  ::removexattr(shot.c_str(), "user.nextcloud.hydrate_exec");
  executor.advance(seconds(2));
  EXPECT_EQ(states.back(), std::nullopt);
}

TEST_F(CloudDownloadsTest, AFileSystemThatBringsDataWhenReadIsAskedToReadAhead) {
  std::filesystem::remove(placeholder.path());
  writeFile(shot, "x");
  ASSERT_EQ(::setxattr(shot.c_str(), "user.openvfs.state", "dehydrated", 10, 0), 0);
  start();
  EXPECT_EQ(states.back(), DownloadState::downloading);
}

TEST_F(CloudDownloadsTest, ANameThatWouldBeTwoCommandsIsRefused) {
  FakeSyncClient client(runtime);
  const FileURL odd = shots.appending("a\nMAKE_ONLINE_ONLY:b.png");
  writeFile(shots.appending("a\nMAKE_ONLINE_ONLY:b.png.nextcloud"), " ");
  ASSERT_TRUE(CloudFiles::isDataless(odd));
  EXPECT_FALSE(CloudFiles::startDownload(odd));
}

TEST_F(CloudDownloadsTest, AFileThatIsGoneIsRefused) {
  FakeSyncClient client(runtime);
  EXPECT_FALSE(CloudFiles::startDownload(shots.appending("missing.png")));
}

TEST_F(CloudDownloadsTest, APlaceholderBesideTheFileItselfIsNone) {
  writeFile(shot, "the picture");
  EXPECT_FALSE(CloudFiles::isDataless(shot));
}

TEST_F(CloudDownloadsTest, AFileOfMoreThanOneByteIsNoPlaceholder) {
  writeFile(placeholder, "a text of the person's own");
  EXPECT_FALSE(CloudFiles::isDataless(shot));
}

}  // namespace
}  // namespace quillmere
