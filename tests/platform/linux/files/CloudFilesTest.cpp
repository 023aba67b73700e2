#include "platform/linux/files/CloudFiles.h"

#include <sys/xattr.h>
#include <unistd.h>

#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::TemporaryFolder;
using testing::writeFile;

class CloudFilesTest : public ::testing::Test {
 protected:
  CloudFilesTest() {
    std::filesystem::create_directories(shots.path());
    writeFile(file, " ");
  }
  static void set(const FileURL& url, const char* name, std::string_view value) {
    ASSERT_EQ(::setxattr(url.c_str(), name, value.data(), value.size(), 0), 0);
  }
  TemporaryFolder folder;
  FileURL shots = folder.file("synced/deep/shots");
  FileURL file = shots.appending("a.png");
};

TEST_F(CloudFilesTest, AnOrdinaryFileHasItsData) {
  EXPECT_FALSE(CloudFiles::isDataless(file));
  EXPECT_FALSE(CloudFiles::isDataless(shots.appending("missing.png")));
}

TEST_F(CloudFilesTest, APlaceholderThatNamesItsClientHasNone) {
  set(file, "user.nextcloud.hydrate_exec", std::string_view("/usr/bin/client\0", 16));
  EXPECT_TRUE(CloudFiles::isDataless(file));
}

TEST_F(CloudFilesTest, APlaceholderIsToldByItsState) {
  set(file, "user.openvfs.state", "dehydrated");
  EXPECT_TRUE(CloudFiles::isDataless(file));
  set(file, "user.openvfs.state", "hydrated");
  EXPECT_FALSE(CloudFiles::isDataless(file));
  set(file, "user.openvfs.state", std::string(200, 'd'));
  EXPECT_FALSE(CloudFiles::isDataless(file));
}

TEST_F(CloudFilesTest, ALinkIsNotItsTarget) {
  set(file, "user.openvfs.state", "dehydrated");
  const FileURL link = folder.file("link.png");
  ASSERT_EQ(::symlink(file.c_str(), link.c_str()), 0);
  EXPECT_FALSE(CloudFiles::isDataless(link));
}

TEST_F(CloudFilesTest, AFolderBelowASyncJournalIsSynced) {
  EXPECT_FALSE(CloudFiles::isSynced(shots));
  writeFile(folder.file("synced/.sync_0123abcd.db"), "");
  EXPECT_TRUE(CloudFiles::isSynced(shots));
  EXPECT_TRUE(CloudFiles::isSynced(folder.file("synced")));
  EXPECT_FALSE(CloudFiles::isSynced(folder.url()));
}

TEST_F(CloudFilesTest, AnOlderJournalsNameCountsAndOthersDoNot) {
  writeFile(folder.file("synced/.sync_0123abcd.db-wal"), "");
  writeFile(folder.file("synced/sync_1.db"), "");
  EXPECT_FALSE(CloudFiles::isSynced(shots));
  writeFile(folder.file("synced/._sync_0123abcd.db"), "");
  EXPECT_TRUE(CloudFiles::isSynced(shots));
}

TEST_F(CloudFilesTest, AFolderWithAPlaceholderStateIsSynced) {
  set(folder.file("synced"), "user.openvfs.state", "");
  EXPECT_TRUE(CloudFiles::isSynced(shots));
}

TEST_F(CloudFilesTest, AFolderThatIsNotThereIsNotSynced) {
  EXPECT_FALSE(CloudFiles::isSynced(folder.file("missing/deep")));
  EXPECT_FALSE(CloudFiles::isSynced(FileURL()));
}

}  // namespace
}  // namespace quillmere
