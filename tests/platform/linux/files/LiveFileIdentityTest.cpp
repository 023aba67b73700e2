#include "platform/linux/files/LiveFileIdentity.h"

#include <unistd.h>

#include "foundation/FileStatus.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::TemporaryFolder;
using testing::writeFile;

class LiveFileIdentityTest : public ::testing::Test {
 protected:
  LiveFileIdentityTest() { writeFile(file, "picture"); }
  std::optional<FileIdentity> identity(const FileURL& url) const { return liveFileIdentity(url, mounts); }
  TemporaryFolder folder;
  FileURL file = folder.file("a.png");
  MountTable mounts{nullptr};
};

TEST_F(LiveFileIdentityTest, IsCompleteAndTellsTheFileApart) {
  const auto found = identity(file);
  ASSERT_TRUE(found);
  EXPECT_TRUE(found->isComplete());
  EXPECT_EQ(found->size, 7);
  EXPECT_EQ(found->file, fileStatus(file)->inode);
  EXPECT_EQ(found->volume, mounts.volume(file));
}

TEST_F(LiveFileIdentityTest, FollowsTheFileThroughARename) {
  const auto before = identity(file);
  const FileURL renamed = folder.file("b.png");
  ASSERT_EQ(::rename(file.c_str(), renamed.c_str()), 0);
  EXPECT_TRUE(before->isSameFile(*identity(renamed)));
}

TEST_F(LiveFileIdentityTest, ChangesWithTheLength) {
  const auto before = identity(file);
  writeFile(file, "longer picture");
  EXPECT_FALSE(before->isSameFile(*identity(file)));
}

TEST_F(LiveFileIdentityTest, OfAFolderThatCannotBeLookedAtNothingIsSaid) {
  EXPECT_TRUE(keepsIdentities(folder.file("absent"), mounts));
  EXPECT_FALSE(keepsIdentities(FileURL::fromPath("/proc"), mounts)) << "neither birth times nor a name";
}

TEST_F(LiveFileIdentityTest, OnlyARegularFileHasOne) {
  const FileURL link = folder.file("link.png");
  ASSERT_EQ(::symlink(file.c_str(), link.c_str()), 0);
  EXPECT_FALSE(identity(link));
  EXPECT_FALSE(identity(folder.url()));
  EXPECT_FALSE(identity(folder.file("missing.png")));
}

}  // namespace
}  // namespace quillmere
