#include "platform/linux/thumbnails/OwnFiles.h"

#include <sys/stat.h>
#include <unistd.h>

#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::namesIn;
using testing::readBytes;
using testing::writeFile;

class OwnFilesTest : public ::testing::Test {
 protected:
  static mode_t modeOf(const FileURL& url) {
    struct stat status {};
    EXPECT_EQ(::lstat(url.c_str(), &status), 0);
    constexpr mode_t kPermissions = 07777;
    return status.st_mode & kPermissions;
  }

  testing::TemporaryFolder folder;
  FileURL file = folder.file("a.png");
};

TEST_F(OwnFilesTest, AFileIsReadUpToTheLimit) {
  writeFile(file, "12345");
  EXPECT_EQ(OwnFiles::read(file, 5), "12345");
  EXPECT_EQ(OwnFiles::read(file, 4), std::nullopt);
  EXPECT_EQ(OwnFiles::read(folder.file("missing"), 5), std::nullopt);
}

TEST_F(OwnFilesTest, AHugeFileIsNotRead) {
  writeFile(file, "");
  ASSERT_EQ(::truncate(file.c_str(), int64_t{1} << 30), 0);
  EXPECT_EQ(OwnFiles::read(file, 1000), std::nullopt);
}

TEST_F(OwnFilesTest, LinksPipesAndFoldersAreNotRead) {
  writeFile(folder.file("target"), "secret");
  ASSERT_EQ(::symlink(folder.file("target").c_str(), file.c_str()), 0);
  EXPECT_EQ(OwnFiles::read(file, 100), std::nullopt);
  const FileURL pipe = folder.file("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(OwnFiles::read(pipe, 100), std::nullopt) << "and nobody waits for a writer";
  const FileURL link = folder.file("link");
  ASSERT_EQ(::symlink(pipe.c_str(), link.c_str()), 0);
  EXPECT_EQ(OwnFiles::read(link, 100), std::nullopt);
  EXPECT_EQ(OwnFiles::read(folder.url(), 100), std::nullopt);
}

TEST_F(OwnFilesTest, AFileOfAnotherPersonIsNeitherReadNorWrittenBeside) {
  if (::geteuid() != 0) {
    // Root's own; files can be given away by root alone.
    EXPECT_EQ(OwnFiles::read(FileURL::fromPath("/etc/passwd"), 1 << 20), std::nullopt);
    EXPECT_FALSE(OwnFiles::write(FileURL::fromPath("/etc/b.png"), "b"));
    return;
  }
  constexpr uid_t kNobody = 65534;
  writeFile(file, "12345");
  ASSERT_EQ(::chown(file.c_str(), kNobody, kNobody), 0);
  EXPECT_EQ(OwnFiles::read(file, 100), std::nullopt);
  ASSERT_EQ(::chown(folder.url().c_str(), kNobody, kNobody), 0);
  EXPECT_FALSE(OwnFiles::write(folder.file("b.png"), "b"));
  EXPECT_EQ(namesIn(folder.url()), std::vector<std::string>{"a.png"});
}

TEST_F(OwnFilesTest, AWrittenFileIsThisPersonsAlone) {
  ASSERT_TRUE(OwnFiles::write(file, "bytes"));
  EXPECT_EQ(readBytes(file), "bytes");
  EXPECT_EQ(modeOf(file), 0600u);
  EXPECT_EQ(namesIn(folder.url()), std::vector<std::string>{"a.png"});
}

TEST_F(OwnFilesTest, WhatHadTheNameIsReplacedAndNothingBehindALink) {
  const FileURL target = folder.file("target");
  writeFile(target, "somebody's");
  ASSERT_EQ(::symlink(target.c_str(), file.c_str()), 0);
  ASSERT_TRUE(OwnFiles::write(file, "bytes"));
  EXPECT_EQ(readBytes(target), "somebody's");
  EXPECT_EQ(OwnFiles::read(file, 100), "bytes");
}

TEST_F(OwnFilesTest, WhatACutOffWriteHasLeftIsInNobodysWay) {
  const FileURL target = folder.file("target");
  writeFile(target, "somebody's");
  ASSERT_EQ(::symlink(target.c_str(), folder.file("a.png.quillmere").c_str()), 0);
  ASSERT_TRUE(OwnFiles::write(file, "bytes"));
  EXPECT_EQ(readBytes(target), "somebody's");
  EXPECT_EQ(namesIn(folder.url()), (std::vector<std::string>{"a.png", "target"}));
  writeFile(folder.file("a.png.quillmere"), "byt");
  OwnFiles::removeUnfinished(file);
  EXPECT_EQ(namesIn(folder.url()), (std::vector<std::string>{"a.png", "target"}));
  writeFile(folder.file("a.png.quillmere"), "byt");
  OwnFiles::remove(file);
  EXPECT_EQ(namesIn(folder.url()), std::vector<std::string>{"target"});
}

TEST_F(OwnFilesTest, AWriteThatFailsLeavesNothing) {
  std::filesystem::create_directory(file.path());
  EXPECT_FALSE(OwnFiles::write(file, "bytes")) << "a folder has the name";
  EXPECT_EQ(namesIn(folder.url()), std::vector<std::string>{"a.png"});
  EXPECT_FALSE(OwnFiles::write(folder.file("missing").appending("a.png"), "bytes"));
}

TEST_F(OwnFilesTest, AFolderIsMadeForThisPersonAlone) {
  const FileURL made = folder.file("made");
  OwnFiles::makeFolder(made);
  EXPECT_EQ(modeOf(made), 0700u);
  std::filesystem::permissions(made.path(), std::filesystem::perms(0755));
  OwnFiles::makeFolder(made);
  EXPECT_EQ(modeOf(made), 0755u) << "one that is there stays as its maker wanted it";
}

}  // namespace
}  // namespace quillmere
