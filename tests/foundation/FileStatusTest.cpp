#include "foundation/FileStatus.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>
#include <set>

#include "support/ChildProcess.h"
#include "support/Files.h"
#include "support/Printing.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using Kind = FileStatus::Kind;

class FileStatusTest : public ::testing::Test {
 protected:
  FileStatusTest() {
    testing::writeFile(folder.file("file"), "12345");
    make(::mkdir(folder.file("folder").c_str(), 0700));
    make(::mkfifo(folder.file("pipe").c_str(), 0600));
    make(::symlink("file", folder.file("link").c_str()));
    make(::symlink("nowhere", folder.file("dangling").c_str()));
    make(::symlink("folder", folder.file("folderLink").c_str()));
  }
  void make(int result) { EXPECT_EQ(result, 0); }
  const testing::TemporaryFolder folder;
};

TEST_F(FileStatusTest, TellsTheKindWithoutFollowingALink) {
  EXPECT_EQ(fileStatus(folder.file("file"))->kind, Kind::regular);
  EXPECT_EQ(fileStatus(folder.file("folder"))->kind, Kind::directory);
  EXPECT_EQ(fileStatus(folder.file("pipe"))->kind, Kind::other);
  EXPECT_EQ(fileStatus(folder.file("link"))->kind, Kind::symbolicLink);
  EXPECT_EQ(fileStatus(folder.file("dangling"))->kind, Kind::symbolicLink);
  EXPECT_FALSE(fileStatus(folder.file("absent")));
  EXPECT_FALSE(fileStatus(folder.file("file/below")));
  EXPECT_FALSE(fileStatus(FileURL()));
}

TEST_F(FileStatusTest, TellsWhatTheSystemKnows) {
  testing::setModified(folder.file("file"), {700000000.25});
  struct stat expected {};
  ASSERT_EQ(::stat(folder.file("file").c_str(), &expected), 0);
  const auto status = fileStatus(folder.file("file"));
  ASSERT_TRUE(status);
  EXPECT_TRUE(status->isRegular());
  EXPECT_EQ(status->size, 5);
  EXPECT_EQ(status->modified, Date{700000000.25});
  EXPECT_EQ(status->inode, expected.st_ino);
  EXPECT_EQ(status->deviceMajor, gnu_dev_major(expected.st_dev));
  EXPECT_EQ(status->deviceMinor, gnu_dev_minor(expected.st_dev));
}

TEST_F(FileStatusTest, CreationDateStaysWhenTheFileChanges) {
  const auto created = fileStatus(folder.file("file"))->created;
  ASSERT_TRUE(created) << "the temporary folder's file system keeps no birth time";
  testing::setModified(folder.file("file"), {1000});
  testing::appendToFile(folder.file("file"), "more");
  EXPECT_EQ(fileStatus(folder.file("file"))->created, created);
}

TEST_F(FileStatusTest, FileSystemWithoutBirthTimesGivesNone) {
  const auto status = fileStatus(FileURL::fromPath("/proc/self/status"));
  ASSERT_TRUE(status);
  EXPECT_EQ(status->created, std::nullopt);
}

TEST_F(FileStatusTest, LooksAtANameInAnOpenFolder) {
  const int descriptor = ::open(folder.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  EXPECT_EQ(fileStatus(descriptor, "file")->size, 5);
  EXPECT_EQ(fileStatus(descriptor, "link")->kind, Kind::symbolicLink);
  EXPECT_FALSE(fileStatus(descriptor, "absent"));
  ::close(descriptor);
}

TEST_F(FileStatusTest, ExistenceCountsALinkByWhatItPointsTo) {
  for (const char* name : {"file", "folder", "pipe", "link", "folderLink"}) EXPECT_TRUE(fileExists(folder.file(name)));
  EXPECT_FALSE(fileExists(folder.file("dangling")));
  EXPECT_FALSE(fileExists(folder.file("absent")));
  EXPECT_FALSE(fileExists(FileURL()));
}

TEST_F(FileStatusTest, ReadableFolder) {
  EXPECT_TRUE(isReadableDirectory(folder.file("folder")));
  EXPECT_TRUE(isReadableDirectory(folder.file("folderLink")));
  for (const char* name : {"file", "pipe", "dangling", "absent"}) EXPECT_FALSE(isReadableDirectory(folder.file(name)));
  EXPECT_FALSE(isReadableDirectory(FileURL()));
}

TEST_F(FileStatusTest, FolderThatMayNotBeReadIsNotReadable) {
  ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
  ASSERT_EQ(::chmod(folder.file("folder").c_str(), 0711), 0);
  EXPECT_EQ(testing::exitCodeOfChild([&] {
              if (!testing::becomeOrdinaryUser()) return testing::kCannotSetUp;
              if (isReadableDirectory(folder.file("folder"))) return 1;
              return listDirectory(folder.file("folder"), [](int, const char*, EntryKind) {}) ? 2 : 0;
            }),
            0);
}

TEST_F(FileStatusTest, ListingTellsEveryEntryAndItsKind) {
  testing::writeFile(folder.file(".hidden"), "");
  testing::writeFile(folder.file("\xff\n"), "");
  testing::writeFile(folder.file("..."), "");
  std::set<std::string> regular;
  std::set<std::string> others;
  EXPECT_TRUE(listDirectory(folder.url(), [&](int descriptor, const char* name, EntryKind kind) {
    EXPECT_TRUE(fileStatus(descriptor, name)) << name;
    EXPECT_NE(kind, EntryKind::unknown);
    (kind == EntryKind::regular ? regular : others).insert(name);
  }));
  EXPECT_EQ(regular, (std::set<std::string>{"...", ".hidden", "\xff\n", "file"}));
  EXPECT_EQ(others, (std::set<std::string>{"dangling", "folder", "folderLink", "link", "pipe"}));
}

TEST_F(FileStatusTest, WhatIsNoFolderCannotBeListed) {
  const auto nothing = [](int, const char*, EntryKind) { ADD_FAILURE(); };
  EXPECT_FALSE(listDirectory(folder.file("file"), nothing));
  EXPECT_FALSE(listDirectory(folder.file("absent"), nothing));
  EXPECT_FALSE(listDirectory(folder.file("pipe"), nothing));
  EXPECT_FALSE(listDirectory(FileURL(), nothing));
}

TEST_F(FileStatusTest, WholeRegularFilesAreRead) {
  EXPECT_EQ(readFile(folder.file("file")), "12345");
  EXPECT_EQ(readFile(folder.file("link")), "12345");
  testing::writeFile(folder.file("empty"), "");
  EXPECT_EQ(readFile(folder.file("empty")), "");
  for (const char* name : {"folder", "pipe", "dangling", "absent"}) {
    EXPECT_EQ(readFile(folder.file(name)), std::nullopt) << name;
  }
}

TEST_F(FileStatusTest, FileUpToTheLimitIsReadAndALargerOneNot) {
  EXPECT_EQ(readFile(folder.file("file"), 5), "12345");
  EXPECT_EQ(readFile(folder.file("file"), 4), std::nullopt);
}

}  // namespace
}  // namespace quillmere
