#include "platform/linux/files/MoveAcrossDisks.h"

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <cerrno>

#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::namesIn;
using testing::readBytes;
using testing::writeFile;

/// On one disk, which makes no difference to it. Real disks, full and read-only ones, are for LiveFileOperationsTest.
class MoveByCopyTest : public ::testing::Test {
 protected:
  MoveByCopyTest() { std::filesystem::create_directories(to.parent().path()); }
  struct stat status(const FileURL& url) const {
    struct stat found {};
    EXPECT_EQ(::lstat(url.c_str(), &found), 0) << url.path();
    return found;
  }
  testing::TemporaryFolder folder;
  FileURL from = folder.file("shot.png");
  FileURL to = folder.file("other disk").appending("Receipt.png");
};

TEST_F(MoveByCopyTest, ALargeFileArrivesWithEveryTagAndItsDateToTheFraction) {
  writeFile(from, std::string(3 << 20, 'x') + "end");
  ASSERT_EQ(::setxattr(from.c_str(), "user.tag", "a\0b", 3, 0), 0);
  ASSERT_EQ(::setxattr(from.c_str(), "user.empty", "", 0, 0), 0);
  ASSERT_EQ(::chmod(from.c_str(), 0640), 0);
  testing::setModified(from, Date{500000000.25});
  const struct stat before = status(from);
  ASSERT_EQ(moveAcrossDisks(from, to), 0);
  EXPECT_FALSE(std::filesystem::exists(from.path()));
  EXPECT_EQ(readBytes(to), std::string(3 << 20, 'x') + "end");
  const struct stat after = status(to);
  EXPECT_NE(after.st_ino, before.st_ino) << "a copy";
  EXPECT_EQ(after.st_mtim.tv_sec, before.st_mtim.tv_sec);
  EXPECT_EQ(after.st_mtim.tv_nsec, before.st_mtim.tv_nsec);
  EXPECT_EQ(after.st_mode, before.st_mode);
  char value[8];
  EXPECT_EQ(::getxattr(to.c_str(), "user.tag", value, sizeof value), 3);
  EXPECT_EQ(std::string(value, 3), std::string("a\0b", 3));
  EXPECT_EQ(::getxattr(to.c_str(), "user.empty", value, sizeof value), 0);
  EXPECT_EQ(namesIn(to.parent()), std::vector<std::string>{"Receipt.png"});
}

TEST_F(MoveByCopyTest, NothingIsReplaced) {
  writeFile(from, "new");
  writeFile(to, "old");
  EXPECT_EQ(moveAcrossDisks(from, to), EEXIST);
  EXPECT_EQ(renameWithoutReplacing(from, to), EEXIST);
  EXPECT_EQ(readBytes(from), "new");
  EXPECT_EQ(readBytes(to), "old");
  std::filesystem::remove(to.path());
  std::filesystem::create_symlink("nowhere", to.path());
  EXPECT_EQ(moveAcrossDisks(from, to), EEXIST) << "a link that leads nowhere has the name too";
  EXPECT_EQ(namesIn(to.parent()), std::vector<std::string>{"Receipt.png"});
}

TEST_F(MoveByCopyTest, OnlyARegularFileIsMoved) {
  EXPECT_EQ(moveAcrossDisks(from, to), ENOENT);
  std::filesystem::create_directory(from.path());
  EXPECT_EQ(moveAcrossDisks(from, to), EXDEV);
  std::filesystem::remove(from.path());
  ASSERT_EQ(::mkfifo(from.c_str(), 0600), 0);
  EXPECT_EQ(moveAcrossDisks(from, to), EXDEV) << "and nobody waits for a pipe's writer";
  std::filesystem::remove(from.path());
  const FileURL picture = folder.file("picture.png");
  writeFile(picture, "picture");
  std::filesystem::create_symlink(picture.path(), from.path());
  EXPECT_EQ(moveAcrossDisks(from, to), ELOOP);
  EXPECT_TRUE(namesIn(to.parent()).empty());
}

TEST_F(MoveByCopyTest, WhatACutOffMoveLeftUnfinishedIsRemoved) {
  writeFile(from, "picture");
  for (const char* name : {".quillmere-moving-a1B2c3", ".quillmere-replacing-1.png", ".other"}) {
    writeFile(to.parent().appending(name), "text");
  }
  std::filesystem::create_directory(to.parent().appending(".quillmere-moving-folder").path());
  finishMove(from, to);
  EXPECT_EQ(namesIn(to.parent()),
            (std::vector<std::string>{".other", ".quillmere-moving-folder", ".quillmere-replacing-1.png"}));
  EXPECT_EQ(readBytes(from), "picture");
}

TEST_F(MoveByCopyTest, WhereTheCopyIsWholeTheOldFileGoes) {
  for (const FileURL& file : {from, to}) {
    writeFile(file, "picture");
    testing::setModified(file, Date{500000000.25});
  }
  finishMove(from, to);
  EXPECT_FALSE(std::filesystem::exists(from.path()));
  EXPECT_EQ(readBytes(to), "picture");
}

TEST_F(MoveByCopyTest, AFileThatIsNoWholeCopyMakesNoneGo) {
  const auto expectBoth = [&] {
    finishMove(from, to);
    EXPECT_TRUE(std::filesystem::exists(from.path()) && std::filesystem::exists(to.path()));
  };
  writeFile(from, "picture");
  writeFile(to, "another");
  testing::setModified(from, Date{500000000.25});
  testing::setModified(to, Date{500000000.25});
  expectBoth();
  writeFile(to, "picture");
  testing::setModified(to, Date{500000001.25});
  expectBoth();
  std::filesystem::remove(to.path());
  ASSERT_EQ(::link(from.c_str(), to.c_str()), 0);
  expectBoth();
}

}  // namespace
}  // namespace quillmere
