#include "platform/linux/files/HeldFiles.h"

#include <sys/resource.h>
#include <unistd.h>

#include "foundation/FileStatus.h"
#include "support/Files.h"
#include "support/Printing.h"
#include "support/PrivateMounts.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::writeFile;

class HeldFilesTest : public ::testing::Test {
 protected:
  HeldFilesTest() {
    // Held are files on the file system of the home folder.
    std::filesystem::create_directory(other.path());
    writeFile(shot, "picture");
    inode = fileStatus(shot)->inode;
  }
  static void move(const FileURL& from, const FileURL& to) { ASSERT_EQ(::rename(from.c_str(), to.c_str()), 0); }

  testing::TemporaryFolder folder{FileURL::fromPath(std::string_view(std::getenv("HOME"))).path()};
  FileURL shot = folder.file("shot.png");
  FileURL other = folder.file("other");
  uint64_t inode = 0;
  MountTable mounts{nullptr};
  HeldFiles held{mounts};
};

TEST_F(HeldFilesTest, AHeldFileIsFoundWhereverItIsMoved) {
  held.hold({shot});
  EXPECT_EQ(held.place(inode), shot);
  move(shot, other.appending("renamed.png"));
  EXPECT_EQ(held.place(inode), other.appending("renamed.png"));
  move(other, folder.file("the folder too"));
  EXPECT_EQ(held.place(inode), folder.file("the folder too").appending("renamed.png"));
  held.hold({shot});
  EXPECT_EQ(held.count(), 1u) << "still held, though nothing stands at its first place";
  EXPECT_TRUE(held.place(inode));
}

TEST_F(HeldFilesTest, ADeletedFileHasNoPlace) {
  held.hold({shot});
  ASSERT_EQ(::unlink(shot.c_str()), 0);
  EXPECT_EQ(held.place(inode), std::nullopt);
}

TEST_F(HeldFilesTest, AFileThatIsNoLongerNamedIsLetGo) {
  held.hold({shot});
  held.hold({});
  EXPECT_EQ(held.count(), 0u);
  EXPECT_EQ(held.place(inode), std::nullopt);
}

TEST_F(HeldFilesTest, AnotherFileUnderTheNameIsHeldInItsStead) {
  held.hold({shot});
  move(shot, other.appending("old.png"));
  writeFile(shot, "another");
  held.hold({shot});
  EXPECT_EQ(held.place(inode), std::nullopt);
  EXPECT_EQ(held.place(fileStatus(shot)->inode), shot);
}

TEST_F(HeldFilesTest, OnlyRegularFilesAndOnlySoManyAreHeld) {
  ASSERT_EQ(::symlink(shot.c_str(), folder.file("link.png").c_str()), 0);
  held.hold({folder.file("link.png"), other, folder.file("missing.png")});
  EXPECT_EQ(held.count(), 0u);
  std::vector<FileURL> many;
  for (size_t i = 0; i < HeldFiles::kMost + 10; ++i) {
    many.push_back(folder.file(std::to_string(i)));
    writeFile(many.back(), "");
  }
  held.hold(many);
  EXPECT_EQ(held.count(), HeldFiles::kMost);
}

TEST_F(HeldFilesTest, WhereFewFilesCanBeOpenMostOfThemAreLeftToOthers) {
  std::vector<FileURL> many;
  for (int i = 0; i < 40; ++i) {
    many.push_back(folder.file(std::to_string(i)));
    writeFile(many.back(), "");
  }
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
  const rlimit few{100, before.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &few), 0);
  held.hold(many);
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
  EXPECT_EQ(held.count(), 25u);
}

TEST_F(HeldFilesTest, ADiskThatCanLeaveIsNotKeptFromIt) {
  EXPECT_EQ(testing::failureWithPrivateMounts([this]() -> std::string {
              MUST(::mount("tmpfs", other.c_str(), "tmpfs", 0, "size=1m") == 0);
              MUST(testing::run("echo picture > '" + other.appending("a.png").path() + "'"));
              held.hold({other.appending("a.png")});
              MUST(held.count() == 0);
              MUST(::umount(other.c_str()) == 0);
              return {};
            }),
            "");
}

}  // namespace
}  // namespace quillmere
