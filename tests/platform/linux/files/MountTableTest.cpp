#include "platform/linux/files/MountTable.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "support/EventLoop.h"
#include "support/Files.h"
#include "support/PrivateMounts.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::failureWithPrivateMounts;
using testing::TemporaryFolder;

// --- parseMountInfo ---

TEST(ParseMountInfoTest, ReadsPlaceTypeAndSource) {
  const auto mounts =
      parseMountInfo("36 35 98:0 /mnt1 /mnt2 rw,noatime master:1 - ext3 /dev/root rw,errors=continue\n");
  ASSERT_EQ(mounts.size(), 1u);
  EXPECT_EQ(mounts[0].path, "/mnt2");
  EXPECT_EQ(mounts[0].type, "ext3");
  EXPECT_EQ(mounts[0].source, "/dev/root");
}

TEST(ParseMountInfoTest, AnyNumberOfTagsMayStandBeforeTheSeparator) {
  const auto mounts =
      parseMountInfo("1 2 8:1 / /none rw - ext4 /dev/a rw\n1 2 8:1 / /two rw shared:1 master:2 - xfs /dev/b rw\n");
  ASSERT_EQ(mounts.size(), 2u);
  EXPECT_EQ(mounts[0].source, "/dev/a");
  EXPECT_EQ(mounts[1].source, "/dev/b");
}

TEST(ParseMountInfoTest, OctalEscapesAreBytes) {
  const auto mounts =
      parseMountInfo("1 2 8:1 / /media/My\\040Disk\\011a\\012b\\134c\\043 rw - ext4 /dev/mapper/a\\040b rw\n");
  ASSERT_EQ(mounts.size(), 1u);
  EXPECT_EQ(mounts[0].path, "/media/My Disk\ta\nb\\c#");
  EXPECT_EQ(mounts[0].source, "/dev/mapper/a b");
}

TEST(ParseMountInfoTest, OnlyBlanksSeparateFields) {
  const auto mounts = parseMountInfo("1 2 8:1 / /media/a\rb\vc rw - ext4 /dev/a rw\n");
  ASSERT_EQ(mounts.size(), 1u);
  EXPECT_EQ(mounts[0].path, "/media/a\rb\vc");
}

TEST(ParseMountInfoTest, ASourceMayBeEmpty) {
  const auto mounts = parseMountInfo("1 2 0:5 / /tmp rw - tmpfs  rw,size=1m\n");
  ASSERT_EQ(mounts.size(), 1u);
  EXPECT_EQ(mounts[0].source, "");
}

TEST(ParseMountInfoTest, WhatIsNoMountIsLeftOut) {
  EXPECT_TRUE(parseMountInfo("").empty());
  EXPECT_TRUE(parseMountInfo("\n\nnothing\n1 2 8:1 / /a rw\n1 2 8:1 / /a rw -\n").empty());
  EXPECT_EQ(parseMountInfo("1 2 8:1 / /a\\04 rw - ext4 /dev/a rw")[0].path, "/a\\04");
}

// --- coveringMount ---

TEST(CoveringMountTest, IsTheDeepestThatHoldsThePath) {
  const std::vector<MountPoint> mounts{
      {"/", "/dev/a", "ext4"}, {"/home", "/dev/b", "ext4"}, {"/home/a", "/dev/c", "xfs"}};
  EXPECT_EQ(coveringMount(mounts, "/home/a/shot.png")->source, "/dev/c");
  EXPECT_EQ(coveringMount(mounts, "/home/a")->source, "/dev/c");
  EXPECT_EQ(coveringMount(mounts, "/home/abc/shot.png")->source, "/dev/b") << "a name that only begins alike";
  EXPECT_EQ(coveringMount(mounts, "/etc")->source, "/dev/a");
}

TEST(CoveringMountTest, OfTwoAtOnePlaceTheLaterHidesTheOther) {
  const std::vector<MountPoint> mounts{{"/", "/dev/a", "ext4"}, {"/a", "old", "ext4"}, {"/a", "new", "ext4"}};
  EXPECT_EQ(coveringMount(mounts, "/a/b")->source, "new");
}

TEST(CoveringMountTest, NoMountCoversNothing) {
  EXPECT_FALSE(coveringMount({}, "/a"));
  EXPECT_FALSE(coveringMount({{"/b", "", ""}}, "/a"));
}

// --- MountTable ---

class MountTableTest : public ::testing::Test {
 protected:
  MountTableTest() { std::filesystem::create_directory(disk.path()); }
  bool mountTemporary(const FileURL& at) const { return ::mount("tmpfs", at.c_str(), "tmpfs", 0, "size=1m") == 0; }

  TemporaryFolder folder;
  FileURL disk = folder.file("a disk");
  MountTable mounts{nullptr};
};

TEST_F(MountTableTest, CoveringFollowsALinkToAnotherDisk) {
  const FileURL link = folder.file("link");
  ASSERT_EQ(::symlink(disk.c_str(), link.c_str()), 0);
  EXPECT_NE(mounts.covering(link)->path, disk.path());
  EXPECT_EQ(failureWithPrivateMounts([&]() -> std::string {
              MUST(mountTemporary(disk));
              MUST(mounts.covering(link)->path == disk.path());
              MUST(mounts.covering(disk.appending("not there.png"))->path == disk.path());
              MUST(mounts.covering(folder.url())->path != disk.path());
              return {};
            }),
            "");
}

TEST_F(MountTableTest, TheVolumeOfADiskIsItsUUID) {
  const std::string uuid = "0f1e2d3c-4b5a-6978-8796-a5b4c3d2e1f0";
  EXPECT_EQ(failureWithPrivateMounts([&]() -> std::string {
              MUST(testing::mountDisk(folder.file("image").path(), disk.path(), uuid));
              const std::string found = mounts.volume(disk).value_or("none");
              // A kernel that cannot tell, and a system that keeps no links by UUID, leave the device's number.
              struct stat status {};
              MUST(::stat(disk.c_str(), &status) == 0);
              const std::string number =
                  std::to_string(major(status.st_dev)) + ":" + std::to_string(minor(status.st_dev));
              return found == uuid ? std::string() : "volume is " + found + ", the device " + number;
            }),
            "");
}

TEST_F(MountTableTest, FilesOfOneDiskShareTheirVolumeAndTwoDisksDoNot) {
  testing::writeFile(folder.file("a.png"), "");
  ASSERT_TRUE(mounts.volume(folder.url()));
  EXPECT_EQ(mounts.volume(folder.url()), mounts.volume(folder.file("a.png")));
  EXPECT_EQ(failureWithPrivateMounts([&]() -> std::string {
              MUST(mountTemporary(disk));
              MUST(mounts.volume(disk));
              MUST(mounts.volume(disk) != mounts.volume(folder.url()));
              return {};
            }),
            "");
}

TEST_F(MountTableTest, WhatIsNotThereHasNoVolume) {
  EXPECT_FALSE(mounts.volume(folder.file("missing")));
}

TEST_F(MountTableTest, AMountAndAnUnmountAreTold) {
  EXPECT_EQ(failureWithPrivateMounts([&]() -> std::string {
              SystemEvents events;
              int told = 0;
              const Connection observer = events.volumesDidChange.connect([&] { ++told; });
              const MountTable table(&events);
              QCoreApplication::processEvents();
              told = 0;
              MUST(mountTemporary(disk));
              MUST(testing::runLoopUntil([&] { return told > 0; }));
              for (int i = 0; i < 20; ++i) QCoreApplication::processEvents();
              MUST(told == 1);
              MUST(::umount(disk.c_str()) == 0);
              MUST(testing::runLoopUntil([&] { return told == 2; }));
              return {};
            }),
            "");
}

TEST_F(MountTableTest, AnOrdinaryFolderIsMounted) {
  EXPECT_TRUE(mounts.isVolumeMounted(folder.url()));
  EXPECT_TRUE(mounts.isVolumeMounted(folder.file("not there")));
  EXPECT_TRUE(mounts.isVolumeMounted(FileURL::fromPath("/")));
}

TEST_F(MountTableTest, AFolderWhoseMountPointIsExpectedCountsOnlyWhileThatIsMounted) {
  const FileURL shots = disk.appending("shots");
  std::filesystem::create_directory(shots.path());
  mounts.expect({shots, disk.path()});
  EXPECT_FALSE(mounts.isVolumeMounted(shots)) << "the folder under the mount point looks like the real one";
  EXPECT_FALSE(mounts.isVolumeMounted(shots.appending("a.png")));
  EXPECT_TRUE(mounts.isVolumeMounted(disk.appending("other"))) << "only what was chosen is expected";
  EXPECT_EQ(failureWithPrivateMounts([&]() -> std::string {
              MUST(mountTemporary(disk));
              MUST(mounts.isVolumeMounted(shots));
              return {};
            }),
            "");
}

TEST_F(MountTableTest, ADiskMountedDeeperThanExpectedServesToo) {
  const FileURL shots = disk.appending("shots");
  std::filesystem::create_directory(shots.path());
  mounts.expect({shots, disk.path()});
  EXPECT_EQ(failureWithPrivateMounts([&]() -> std::string {
              MUST(mountTemporary(shots));
              MUST(mounts.isVolumeMounted(shots));
              return {};
            }),
            "");
}

TEST_F(MountTableTest, AFolderMovedToAnotherDiskMayBeExpectedThere) {
  mounts.expect({disk, disk.path()});
  EXPECT_FALSE(mounts.isVolumeMounted(disk));
  mounts.expect({disk, "/"});
  EXPECT_EQ(failureWithPrivateMounts([&]() -> std::string {
              MUST(mounts.isVolumeMounted(disk));
              return {};
            }),
            "");
}

/// The roots of removable disks are laid over, so that the test neither needs nor touches what the machine has there.
TEST_F(MountTableTest, UnderTheRootsOfDisksOnlyAMountedDiskCounts) {
  EXPECT_EQ(failureWithPrivateMounts([&]() -> std::string {
              for (const std::string root : {"/mnt", "/media", "/run/media"}) {
                MUST(testing::run("mkdir -p '" + root + "'"));
                // What is mounted below is not seen by anyone else.
                while (::umount2(root.c_str(), MNT_DETACH) == 0) {
                }
              }
              MUST(mountTemporary(FileURL::fromPath("/mnt")));
              MUST(testing::run("mkdir -p /mnt/under"));
              MUST(mounts.isVolumeMounted(FileURL::fromPath("/mnt/under/shots")));
              MUST(::umount("/mnt") == 0);
              MUST(!mounts.isVolumeMounted(FileURL::fromPath("/mnt/away")));
              MUST(!mounts.isVolumeMounted(FileURL::fromPath("/mnt/away/shots")));
              MUST(!mounts.isVolumeMounted(FileURL::fromPath("/media/somebody/STICK/shots")));
              MUST(!mounts.isVolumeMounted(FileURL::fromPath("/run/media/somebody/STICK/shots")));
              MUST(mounts.isVolumeMounted(FileURL::fromPath("/mnt")));
              MUST(mounts.isVolumeMounted(FileURL::fromPath("/mntfoo/shots")));
              return {};
            }),
            "");
}

TEST_F(MountTableTest, ADiskOfThisPersonIsNotCoveredByTheFolderOfAllDisks) {
  EXPECT_EQ(failureWithPrivateMounts([&]() -> std::string {
              ::setenv("USER", "somebody", 1);
              MUST(mountTemporary(FileURL::fromPath("/media")));
              MUST(testing::run("mkdir -p /media/somebody/STICK"));
              const FileURL shots = FileURL::fromPath("/media/somebody/STICK/shots");
              MUST(!mounts.isVolumeMounted(shots));
              MUST(mountTemporary(FileURL::fromPath("/media/somebody/STICK")));
              MUST(mounts.isVolumeMounted(shots));
              return {};
            }),
            "");
}

}  // namespace
}  // namespace quillmere
