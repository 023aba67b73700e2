// A Temporary screenshot's time is up on file systems of which each tells another file differently.

#include "disks/FolderOnADisk.h"
#include "faults/LiveModel.h"

namespace quillmere {
namespace {

using testing::LiveModel;
using State = ScreenshotItem::State;

struct FileSystem {
  const char* name;
  const char* make;
  bool hasBirthTimes;
};

void PrintTo(const FileSystem& system, std::ostream* out) {
  *out << system.name;
}

class ExpiryOnFileSystemsTest : public ::testing::TestWithParam<FileSystem> {
 protected:
  void onDisk(const std::function<std::string(LiveModel&)>& work) {
    EXPECT_EQ(testing::failureWithPrivateMounts([&]() -> std::string {
                std::filesystem::create_directory(disk.path());
                MUST(testing::makeDisk(image.path(), "300M", GetParam().make));
                MUST(testing::connectDisk(image.path(), disk.path()));
                LiveModel live(State::temporary, disk.appending("shots"));
                MUST(live.record()->fileIdentity->creationDate.has_value() == GetParam().hasBirthTimes);
                MUST(keepsIdentities(disk.appending("shots"), MountTable(nullptr)) == GetParam().hasBirthTimes);
                return work(live);
              }),
              "");
  }
  testing::TemporaryFolder folder;
  FileURL image = folder.file("image");
  FileURL disk = folder.file("disk");
};

TEST_P(ExpiryOnFileSystemsTest, TheFileItselfIsThrownAway) {
  onDisk([](LiveModel& live) -> std::string {
    live.advance(LiveModel::kLifetime + 1);
    MUST(!live.record() && !fileExists(live.oldPlace));
    return {};
  });
}

TEST_P(ExpiryOnFileSystemsTest, AlsoAfterARemount) {
  onDisk([this](LiveModel& live) -> std::string {
    live.quit();
    MUST(::umount2(disk.c_str(), MNT_DETACH) == 0 && testing::connectDisk(image.path(), disk.path()));
    live.launch();
    MUST(live.record() && live.record()->state == State::temporary);
    live.advance(LiveModel::kLifetime + 1);
    MUST(!live.record() && !fileExists(live.oldPlace));
    return {};
  });
}

TEST_P(ExpiryOnFileSystemsTest, AnotherFileUnderItsNameIsNot) {
  onDisk([](LiveModel& live) -> std::string {
    // The number of a file that has gone is often given to the next one.
    MUST(::unlink(live.oldPlace.c_str()) == 0);
    testing::writeFile(live.oldPlace, "another's only copy");
    live.advance(LiveModel::kLifetime + 1);
    MUST(readFile(live.oldPlace) == "another's only copy");
    return {};
  });
}

INSTANTIATE_TEST_SUITE_P(Each, ExpiryOnFileSystemsTest,
                         ::testing::Values(FileSystem{"Ext4", "mkfs.ext4 -q -F -I 256", true},
                                           FileSystem{"Ext4WithSmallInodes", "mkfs.ext4 -q -F -I 128", false},
                                           FileSystem{"Btrfs", "mkfs.btrfs -q -f", true},
                                           FileSystem{"Xfs", "mkfs.xfs -q -f", true}),
                         [](const ::testing::TestParamInfo<FileSystem>& system) {
                           return std::string(system.param.name);
                         });

}  // namespace
}  // namespace quillmere
