#include "foundation/FileCopy.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/ChildProcess.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::namesIn;
using testing::readBytes;
using testing::TemporaryFolder;
using testing::writeFile;

TEST(FileCopy, HoldsTheSameBytes) {
  const TemporaryFolder folder;
  std::string bytes;
  for (int i = 0; i < 3'000'000; ++i) bytes.push_back(static_cast<char>(i * 7 + i / 256));
  for (const size_t size : {size_t{0}, size_t{1}, bytes.size()}) {
    const auto source = folder.file("source" + std::to_string(size));
    const auto copy = folder.file("copy" + std::to_string(size));
    writeFile(source, std::string_view(bytes).substr(0, size));
    EXPECT_EQ(copyFile(source, copy), CopyResult::done);
    EXPECT_EQ(readBytes(copy), bytes.substr(0, size));
    EXPECT_EQ(readBytes(source), bytes.substr(0, size));
  }
}

TEST(FileCopy, IsMadeAcrossFileSystems) {
  const TemporaryFolder folder;
  const TemporaryFolder memory("/dev/shm");
  writeFile(folder.file("a"), "bytes");
  EXPECT_EQ(copyFile(folder.file("a"), memory.file("b")), CopyResult::done);
  EXPECT_EQ(readBytes(memory.file("b")), "bytes");
}

TEST(FileCopy, NeverGoesOverAnything) {
  const TemporaryFolder folder;
  writeFile(folder.file("source"), "new");
  writeFile(folder.file("file"), "old");
  ASSERT_EQ(::mkdir(folder.file("folder").c_str(), 0700), 0);
  ASSERT_EQ(::symlink("nowhere", folder.file("dangling").c_str()), 0);
  for (const char* taken : {"file", "folder", "dangling", "source"}) {
    EXPECT_EQ(copyFile(folder.file("source"), folder.file(taken)), CopyResult::destinationExists) << taken;
  }
  EXPECT_EQ(readBytes(folder.file("file")), "old");
  EXPECT_EQ(readBytes(folder.file("source")), "new");
  EXPECT_EQ(namesIn(folder.url()).size(), 4u);
}

TEST(FileCopy, OfWhatIsNoRegularFileFailsAndLeavesNothing) {
  const TemporaryFolder folder;
  ASSERT_EQ(::mkdir(folder.file("folder").c_str(), 0700), 0);
  ASSERT_EQ(::mkfifo(folder.file("pipe").c_str(), 0600), 0);
  for (const char* name : {"absent", "folder", "pipe"}) {
    EXPECT_EQ(copyFile(folder.file(name), folder.file("copy")), CopyResult::failed) << name;
  }
  EXPECT_EQ(namesIn(folder.url()), (std::vector<std::string>{"folder", "pipe"}));
}

TEST(FileCopy, IntoAFolderThatIsNotThereFails) {
  const TemporaryFolder folder;
  writeFile(folder.file("source"), "bytes");
  EXPECT_EQ(copyFile(folder.file("source"), folder.file("absent/copy")), CopyResult::failed);
}

TEST(FileCopy, OnAFullDiskLeavesNothing) {
  const TemporaryFolder folder;
  const TemporaryFolder disk;
  writeFile(folder.file("source"), std::string(200'000, 'x'));
  EXPECT_EQ(testing::exitCodeOfChild([&] {
              if (!testing::mountSmallDisk(disk.path(), "64k")) return testing::kCannotSetUp;
              if (copyFile(folder.file("source"), disk.file("copy")) != CopyResult::failed) return 1;
              return ::access(disk.file("copy").c_str(), F_OK) == 0 ? 2 : 0;
            }),
            0);
}

TEST(FileCopy, OfARangeTakesThatRangeAndGoesToThePresentPosition) {
  const TemporaryFolder folder;
  writeFile(folder.file("source"), "0123456789");
  const int from = ::open(folder.file("source").c_str(), O_RDONLY | O_CLOEXEC);
  const int to = ::open(folder.file("copy").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
  EXPECT_TRUE(writeAll(to, "<", 1));
  EXPECT_TRUE(copyBytes(from, 3, 4, to));
  EXPECT_TRUE(copyBytes(from, 0, 0, to));
  EXPECT_TRUE(writeAll(to, ">", 1));
  EXPECT_EQ(readBytes(folder.file("copy")), "<3456>");
  ::close(from);
  ::close(to);
}

TEST(FileCopy, OfARangeThatTheSourceDoesNotHoldFails) {
  const TemporaryFolder folder;
  writeFile(folder.file("source"), "0123456789");
  const int from = ::open(folder.file("source").c_str(), O_RDONLY | O_CLOEXEC);
  const int to = ::open(folder.file("copy").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
  EXPECT_FALSE(copyBytes(from, 8, 4, to));
  EXPECT_FALSE(copyBytes(from, 100, 1, to));
  ::close(from);
  ::close(to);
}

TEST(FileCopy, IntoWhatTheKernelCannotCopyToGoesThroughMemory) {
  // A file opened for appending refuses copies in the kernel.
  const TemporaryFolder folder;
  writeFile(folder.file("source"), std::string(2'500'000, 'y'));
  const int from = ::open(folder.file("source").c_str(), O_RDONLY | O_CLOEXEC);
  const int to = ::open(folder.file("copy").c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  EXPECT_TRUE(copyBytes(from, 1, 2'400'000, to));
  EXPECT_EQ(readBytes(folder.file("copy")), std::string(2'400'000, 'y'));
  ::close(from);
  ::close(to);
}

TEST(FileFlush, IsOfWhatIsThereAndOfItsKind) {
  const TemporaryFolder folder;
  const FileURL file = folder.file("a.txt");
  writeFile(file, "text");
  EXPECT_TRUE(flushFile(file));
  EXPECT_TRUE(flushFolder(folder.url()));
  EXPECT_FALSE(flushFolder(file));
  EXPECT_FALSE(flushFile(folder.file("b.txt")));
  std::filesystem::create_symlink(file.path(), folder.file("link").path());
  EXPECT_FALSE(flushFile(folder.file("link")));
}

class FileReplacingTest : public ::testing::Test {
 protected:
  static mode_t modeOf(const FileURL& url) {
    struct stat status {};
    EXPECT_EQ(::lstat(url.c_str(), &status), 0);
    return status.st_mode & 0777;
  }
  const TemporaryFolder folder;
  const FileURL file = folder.file("deep/a.txt");
};

TEST_F(FileReplacingTest, LeavesTheNewBytesAlone) {
  EXPECT_TRUE(replaceFile(file, "old"));
  EXPECT_EQ(modeOf(file), 0600);
  ASSERT_EQ(::chmod(file.c_str(), 0644), 0);
  EXPECT_TRUE(replaceFile(file, "new"));
  EXPECT_EQ(readBytes(file), "new");
  EXPECT_EQ(modeOf(file), 0644);
  EXPECT_EQ(namesIn(file.parent()), std::vector<std::string>{"a.txt"});
}

TEST_F(FileReplacingTest, ALinkStaysOne) {
  EXPECT_TRUE(replaceFile(file, "old"));
  const FileURL link = folder.file("link");
  std::filesystem::create_symlink(file.path(), link.path());
  EXPECT_TRUE(replaceFile(link, "new"));
  EXPECT_TRUE(std::filesystem::is_symlink(link.path()));
  EXPECT_EQ(readBytes(file), "new");
}

TEST_F(FileReplacingTest, WhatWasLeftUnfinishedIsNoObstacleAndGoes) {
  EXPECT_TRUE(replaceFile(file, "old"));
  const FileURL unfinished = folder.file("deep/a.txt.saving");
  writeFile(unfinished, "ne");
  EXPECT_TRUE(replaceFile(file, "new"));
  writeFile(unfinished, "ne");
  removeUnfinished(file);
  EXPECT_EQ(namesIn(file.parent()), std::vector<std::string>{"a.txt"});
  EXPECT_EQ(readBytes(file), "new");
}

TEST_F(FileReplacingTest, ARefusalLeavesNothing) {
  std::filesystem::create_directories(file.path());
  EXPECT_FALSE(replaceFile(file, "new"));
  EXPECT_EQ(namesIn(file.parent()), std::vector<std::string>{"a.txt"});
}

}  // namespace
}  // namespace quillmere
