#include "platform/linux/files/LiveFileOperations.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>
#include <QtCore/QUrl>

#include "foundation/FileStatus.h"
#include "support/Files.h"
#include "support/Printing.h"
#include "support/PrivateMounts.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::failureWithPrivateMounts;
using testing::namesIn;
using testing::readBytes;
using testing::run;
using testing::TemporaryFolder;
using testing::writeFile;

/// A folder in which nobody, root included, can change anything.
class ImmutableFolder {
 public:
  explicit ImmutableFolder(const FileURL& folder) : descriptor_(::open(folder.c_str(), O_RDONLY | O_CLOEXEC)) {
    isSet_ = setFlag(true);
  }
  ~ImmutableFolder() {
    setFlag(false);
    ::close(descriptor_);
  }
  bool isSet() const { return isSet_; }

 private:
  bool setFlag(bool isOn) {
    int flags = 0;
    if (::ioctl(descriptor_, FS_IOC_GETFLAGS, &flags) != 0) return false;
    flags = isOn ? flags | FS_IMMUTABLE_FL : flags & ~FS_IMMUTABLE_FL;
    return ::ioctl(descriptor_, FS_IOC_SETFLAGS, &flags) == 0;
  }
  int descriptor_;
  bool isSet_ = false;
};

class LiveFileOperationsTest : public ::testing::Test {
 protected:
  LiveFileOperationsTest() { std::filesystem::remove_all(homeTrash().path()); }
  static FileURL homeTrash() { return FileURL::fromPath(std::getenv("XDG_DATA_HOME")).appending("Trash"); }

  TemporaryFolder folder;
  FileURL shot = folder.file("Screenshot.png");
  LiveFileOperations files;
  MountTable mounts{nullptr};
};

/// The lines of an info file.
std::string line(const std::string& info, const std::string& key) {
  const auto at = info.find("\n" + key + "=");
  if (at == std::string::npos) return {};
  const auto start = at + key.size() + 2;
  return info.substr(start, info.find('\n', start) - start);
}

TEST_F(LiveFileOperationsTest, TrashKeepsTheFileWithItsPlaceAndTheTime) {
  writeFile(shot, "the picture");
  ASSERT_EQ(files.trash(shot), FileOutcome::done);
  EXPECT_FALSE(fileExists(shot));
  EXPECT_EQ(readBytes(homeTrash().appending("files/Screenshot.png")), "the picture");
  const std::string info = readBytes(homeTrash().appending("info/Screenshot.png.trashinfo"));
  EXPECT_TRUE(info.starts_with("[Trash Info]\n"));
  EXPECT_EQ(line(info, "Path"), shot.path());
  EXPECT_THAT(line(info, "DeletionDate"), ::testing::MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9:]{8}"));
}

TEST_F(LiveFileOperationsTest, TrashKeepsTwoFilesOfOneName) {
  writeFile(shot, "first");
  ASSERT_EQ(files.trash(shot), FileOutcome::done);
  writeFile(shot, "second");
  ASSERT_EQ(files.trash(shot), FileOutcome::done);
  EXPECT_EQ(namesIn(homeTrash().appending("files")).size(), 2u);
  EXPECT_EQ(namesIn(homeTrash().appending("info")).size(), 2u);
}

/// Names that a person, a translated capture tool or a damaged archive may give.
class OddNameTest : public LiveFileOperationsTest, public ::testing::WithParamInterface<std::string> {};

INSTANTIATE_TEST_SUITE_P(Names, OddNameTest,
                         ::testing::Values("two words.png", "100%.png", "a%20b.png", "%2520.png", "Größe – über.png",
                                           "截图 2024.png", "two\nlines.png", "tab\tquote\"'.png",
                                           "#hash;semicolon.png", "[section]=value.png", "-dash.png",
                                           std::string(228, 'n') + ".png"));

TEST_P(OddNameTest, IsRestoredByAnotherToolToItsOldPlaceUnderItsOldName) {
  const FileURL odd = folder.file(GetParam());
  writeFile(odd, "the picture");
  ASSERT_EQ(files.trash(odd), FileOutcome::done);
  ASSERT_TRUE(namesIn(folder.url()).empty());
  ASSERT_TRUE(testing::run("cd '" + folder.path() + "' && echo 0 | trash-restore"));
  ASSERT_EQ(namesIn(folder.url()), std::vector<std::string>{GetParam()});
  EXPECT_EQ(readBytes(odd), "the picture");
  EXPECT_TRUE(namesIn(homeTrash().appending("info")).empty());
}

TEST_F(LiveFileOperationsTest, TrashKeepsTheBytesOfANameThatIsNotText) {
  const FileURL odd = folder.file("caf\xe9\xff.png");
  writeFile(odd, "the picture");
  ASSERT_EQ(files.trash(odd), FileOutcome::done);
  EXPECT_EQ(readBytes(homeTrash().appending("files/caf\xe9\xff.png")), "the picture");
  const std::string info = readBytes(homeTrash().appending("info/caf\xe9\xff.png.trashinfo"));
  const QByteArray path = QByteArray::fromPercentEncoding(QByteArray::fromStdString(line(info, "Path")));
  EXPECT_EQ(path.toStdString(), odd.path());
}

TEST_F(LiveFileOperationsTest, AFileWhoseNameLeavesNoRoomForItsInfoFileStaysWhereItIs) {
  for (const size_t length : {229u, 240u, 251u}) {
    const FileURL longest = folder.file(std::string(length, 'n') + ".png");
    writeFile(longest, "the picture");
    EXPECT_EQ(files.trash(longest), FileOutcome::failed) << length;
    EXPECT_EQ(readBytes(longest), "the picture") << length;
  }
}

TEST_F(LiveFileOperationsTest, TrashTakesASymbolicLinkAndNotWhatItPointsTo) {
  writeFile(shot, "the picture");
  const FileURL link = folder.file("link.png");
  ASSERT_EQ(::symlink(shot.c_str(), link.c_str()), 0);
  ASSERT_EQ(files.trash(link), FileOutcome::done);
  EXPECT_EQ(namesIn(folder.url()), std::vector<std::string>{"Screenshot.png"});
}

TEST_F(LiveFileOperationsTest, TrashRefusedByTheFolderLeavesTheFileUntouched) {
  writeFile(shot, "the picture");
  {
    const ImmutableFolder immutable(folder.url());
    ASSERT_TRUE(immutable.isSet()) << "no folder can be made immutable here: run the tests as root on ext4";
    EXPECT_EQ(files.trash(shot), FileOutcome::failed);
    EXPECT_EQ(files.move(shot, folder.file("other.png")), FileOutcome::failed);
    EXPECT_EQ(files.remove(shot), FileOutcome::failed);
  }
  EXPECT_EQ(readBytes(shot), "the picture");
  EXPECT_FALSE(fileExists(homeTrash().appending("files/Screenshot.png")));
  EXPECT_EQ(files.trash(shot), FileOutcome::done) << "a refusal must not stand in the way of the next attempt";
}

TEST_F(LiveFileOperationsTest, AMissingFileIsMissingToEveryOperation) {
  EXPECT_EQ(files.trash(shot), FileOutcome::missing);
  EXPECT_EQ(files.move(shot, folder.file("other.png")), FileOutcome::missing);
  EXPECT_EQ(files.remove(shot), FileOutcome::missing);
  const FileURL nowhere = folder.file("no folder/a.png");
  EXPECT_EQ(files.trash(nowhere), FileOutcome::missing);
  EXPECT_EQ(files.remove(nowhere), FileOutcome::missing);
}

TEST_F(LiveFileOperationsTest, AFileThatIsThereIsNotMissingWhereItsNewFolderIs) {
  writeFile(shot, "the picture");
  EXPECT_EQ(files.move(shot, folder.file("no folder/a.png")), FileOutcome::failed);
  EXPECT_EQ(readBytes(shot), "the picture");
}

TEST_F(LiveFileOperationsTest, RemoveTakesTheFileForGood) {
  writeFile(shot, "the picture");
  EXPECT_EQ(files.remove(shot), FileOutcome::done);
  EXPECT_FALSE(fileExists(shot));
  EXPECT_FALSE(fileExists(homeTrash().appending("files/Screenshot.png")));
  EXPECT_EQ(files.remove(folder.url()), FileOutcome::failed) << "never a folder";
}

TEST_F(LiveFileOperationsTest, MoveNeverReplacesAnything) {
  const FileURL other = folder.file("other.png");
  writeFile(shot, "the picture");
  writeFile(other, "another");
  EXPECT_EQ(files.move(shot, other), FileOutcome::destinationExists);
  EXPECT_EQ(readBytes(shot), "the picture");
  EXPECT_EQ(readBytes(other), "another");

  const FileURL dangling = folder.file("dangling.png");
  ASSERT_EQ(::symlink("nowhere", dangling.c_str()), 0);
  EXPECT_EQ(files.move(shot, dangling), FileOutcome::destinationExists);
  EXPECT_EQ(files.move(shot, folder.file("new.png")), FileOutcome::done);
  EXPECT_EQ(readBytes(folder.file("new.png")), "the picture");
}

TEST_F(LiveFileOperationsTest, MoveToItsOwnPlaceIsDone) {
  writeFile(shot, "the picture");
  EXPECT_EQ(files.move(shot, FileURL::fromPath(folder.path() + "/./Screenshot.png")), FileOutcome::done);
  EXPECT_EQ(readBytes(shot), "the picture");
}

TEST_F(LiveFileOperationsTest, ItTellsOfEachPlaceThatAFileHasLeft) {
  std::vector<std::string> left;
  LiveFileOperations telling([&](const FileURL& place) {
    EXPECT_FALSE(fileExists(place)) << "when it has";
    left.push_back(place.lastPathComponent());
  });
  for (const char* name : {"moved", "trashed", "removed", "taken"}) writeFile(folder.file(name), "the picture");
  EXPECT_EQ(telling.move(folder.file("moved"), folder.file("taken")), FileOutcome::destinationExists);
  EXPECT_EQ(telling.move(folder.file("taken"), folder.file("taken")), FileOutcome::done);
  EXPECT_EQ(telling.remove(folder.file("missing")), FileOutcome::missing);
  EXPECT_EQ(telling.trash(folder.file("missing")), FileOutcome::missing);
  EXPECT_THAT(left, ::testing::IsEmpty());
  EXPECT_EQ(telling.move(folder.file("moved"), folder.file("new")), FileOutcome::done);
  EXPECT_EQ(telling.trash(folder.file("trashed")), FileOutcome::done);
  EXPECT_EQ(telling.remove(folder.file("removed")), FileOutcome::done);
  EXPECT_THAT(left, ::testing::ElementsAre("moved", "trashed", "removed"));
}

// --- Moving to another disk ---

class MoveAcrossDisksTest : public LiveFileOperationsTest {
 protected:
  MoveAcrossDisksTest() {
    std::filesystem::create_directory(disk.path());
    writeFile(shot, "the picture");
  }
  bool mount(const char* options = "size=1m") const { return ::mount("tmpfs", disk.c_str(), "tmpfs", 0, options) == 0; }
  /// Nothing but what is asked for may lie in the folder.
  static bool isAlone(const FileURL& in, std::string_view name) {
    int others = 0;
    listDirectory(in, [&](int, const char* entry, EntryKind) { others += name != entry; });
    return others == 0;
  }

  FileURL disk = folder.file("disk");
  FileURL there = disk.appending("a.png");
};

TEST_F(MoveAcrossDisksTest, TheWholeFileGoesWithItsDatesAndTags) {
  EXPECT_EQ(failureWithPrivateMounts([&]() -> std::string {
              MUST(run("mkfs.ext4 -q -F -I 256 -O ^has_journal '" + folder.file("image").path() + "' 8M"));
              MUST(run("mount -o loop '" + folder.file("image").path() + "' '" + disk.path() + "'"));
              MUST(run("setfattr -n user.test -v tag '" + shot.path() + "'; chmod 640 '" + shot.path() + "'"));
              const auto before = fileStatus(shot);
              MUST(files.move(shot, there) == FileOutcome::done);
              MUST(!fileExists(shot));
              MUST(readFile(there) == "the picture");
              MUST(fileStatus(there)->modified == before->modified);
              MUST(run("getfattr --only-values -n user.test '" + there.path() + "' | grep -qx tag"));
              MUST(run("test $(stat -c %a '" + there.path() + "') = 640"));
              return {};
            }),
            "");
}

TEST_F(MoveAcrossDisksTest, ATakenNameIsNotReplaced) {
  EXPECT_EQ(failureWithPrivateMounts([&]() -> std::string {
              MUST(mount());
              MUST(run("echo other > '" + there.path() + "'"));
              MUST(files.move(shot, there) == FileOutcome::destinationExists);
              MUST(readFile(there) == "other\n");
              MUST(fileExists(shot));
              MUST(isAlone(disk, "a.png"));
              return {};
            }),
            "");
}

TEST_F(MoveAcrossDisksTest, AFullDiskLeavesTheFileAndNothingBesideIt) {
  writeFile(shot, std::string(3 << 20, 'x'));
  EXPECT_EQ(failureWithPrivateMounts([&]() -> std::string {
              MUST(mount());
              QString reason;
              MUST(files.move(shot, there, reason) == FileOutcome::failed);
              MUST(reason == QStringLiteral("No space left on device."));
              MUST(fileExists(shot));
              MUST(isAlone(disk, {}));
              return {};
            }),
            "");
}

TEST_F(MoveAcrossDisksTest, ADiskThatCannotBeWrittenLeavesTheFile) {
  EXPECT_EQ(failureWithPrivateMounts([&]() -> std::string {
              MUST(mount("size=1m,ro"));
              MUST(files.move(shot, there) == FileOutcome::failed);
              MUST(fileExists(shot));
              return {};
            }),
            "");
}

TEST_F(MoveAcrossDisksTest, AFileThatCannotLeaveItsFolderIsNotDoubled) {
  EXPECT_EQ(
      failureWithPrivateMounts([&]() -> std::string {
        MUST(mount());
        MUST(run("mkdir '" + folder.file("kept").path() + "' && mv '" + shot.path() + "' '" +
                 folder.file("kept").path() + "/a.png'"));
        const FileURL kept = folder.file("kept").appending("a.png");
        MUST(::mount(folder.file("kept").c_str(), folder.file("kept").c_str(), nullptr, MS_BIND, nullptr) == 0);
        MUST(::mount(nullptr, folder.file("kept").c_str(), nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY, nullptr) == 0);
        QString reason;
        MUST(files.move(kept, there, reason) == FileOutcome::failed);
        MUST(reason == QStringLiteral("Read-only file system."));
        MUST(fileExists(kept));
        MUST(isAlone(disk, {}));
        return {};
      }),
      "");
}

TEST_F(MoveAcrossDisksTest, AFolderThatIsNotThereIsToldInTheSystemsWords) {
  EXPECT_EQ(failureWithPrivateMounts([&]() -> std::string {
              MUST(mount());
              QString reason;
              MUST(files.move(shot, disk.appending("missing").appending("a.png"), reason) == FileOutcome::failed);
              MUST(reason == QStringLiteral("No such file or directory."));
              MUST(fileExists(shot));
              return {};
            }),
            "");
}

// --- The Trash of another disk ---

class TrashOfDiskTest : public LiveFileOperationsTest {
 protected:
  TrashOfDiskTest() { std::filesystem::create_directory(disk.path()); }
  bool mount() const { return testing::mountDisk(folder.file("image").path(), disk.path()); }
  bool make(const FileURL& url) const { return testing::run("echo picture > '" + url.path() + "'"); }

  FileURL disk = folder.file("disk");
  FileURL shotOnDisk = disk.appending("a b%.png");
  std::string user = std::to_string(::getuid());
};

TEST_F(TrashOfDiskTest, IsMadeAtItsTopForThisPerson) {
  EXPECT_EQ(failureWithPrivateMounts([&]() -> std::string {
              MUST(mount());
              MUST(make(shotOnDisk));
              MUST(files.trash(shotOnDisk) == FileOutcome::done);
              const FileURL trash = disk.appending(".Trash-" + user);
              const FileURL trashed = trash.appending("files/a b%.png");
              MUST(fileExists(trashed));
              MUST(!fileExists(shotOnDisk));
              const std::string info = readFile(trash.appending("info/a b%.png.trashinfo")).value_or("");
              MUST(line(info, "Path") == "a%20b%25.png");
              MUST(isInTrash(trashed, mounts));
              return {};
            }),
            "");
}

TEST_F(TrashOfDiskTest, IsTheSharedOneWhereTheDiskHasOne) {
  EXPECT_EQ(failureWithPrivateMounts([&]() -> std::string {
              MUST(mount());
              MUST(testing::run("mkdir -m 1777 '" + disk.path() + "/.Trash'"));
              MUST(make(shotOnDisk));
              MUST(files.trash(shotOnDisk) == FileOutcome::done);
              const FileURL trashed = disk.appending(".Trash/" + user + "/files/a b%.png");
              MUST(fileExists(trashed));
              MUST(isInTrash(trashed, mounts));
              MUST(!fileExists(disk.appending(".Trash-" + user)));
              return {};
            }),
            "");
}

TEST_F(TrashOfDiskTest, IsRestoredByAnotherTool) {
  EXPECT_EQ(failureWithPrivateMounts([&]() -> std::string {
              MUST(mount());
              MUST(make(shotOnDisk));
              MUST(files.trash(shotOnDisk) == FileOutcome::done);
              MUST(testing::run("cd '" + disk.path() + "' && echo 0 | trash-restore"));
              MUST(fileExists(shotOnDisk));
              return {};
            }),
            "");
}

TEST_F(TrashOfDiskTest, RefusesOnADiskThatCannotBeWritten) {
  EXPECT_EQ(failureWithPrivateMounts([&]() -> std::string {
              MUST(mount());
              MUST(make(shotOnDisk));
              MUST(::mount("none", disk.c_str(), "none", MS_REMOUNT | MS_RDONLY, nullptr) == 0);
              MUST(files.trash(shotOnDisk) == FileOutcome::failed);
              MUST(files.remove(shotOnDisk) == FileOutcome::failed);
              MUST(fileExists(shotOnDisk));
              return {};
            }),
            "");
}

TEST_F(TrashOfDiskTest, RefusesWhereThereIsNoTrashAndLeavesTheFile) {
  EXPECT_EQ(failureWithPrivateMounts([&]() -> std::string {
              MUST(::mount("tmpfs", disk.c_str(), "tmpfs", 0, "size=1m") == 0);
              MUST(make(shotOnDisk));
              MUST(files.trash(shotOnDisk) == FileOutcome::failed);
              MUST(fileExists(shotOnDisk));
              return {};
            }),
            "");
}

TEST_F(TrashOfDiskTest, AFullDiskNeverLosesTheFile) {
  EXPECT_EQ(failureWithPrivateMounts([&]() -> std::string {
              MUST(mount());
              MUST(make(shotOnDisk));
              testing::run("dd if=/dev/zero of='" + disk.path() + "/filler' bs=4k");
              const FileOutcome outcome = files.trash(shotOnDisk);
              const FileURL trash = disk.appending(".Trash-" + user);
              const bool isTrashed = fileExists(trash.appending("files/a b%.png"));
              MUST(outcome == FileOutcome::done || outcome == FileOutcome::failed);
              MUST(isTrashed == (outcome == FileOutcome::done));
              MUST(fileExists(shotOnDisk) != isTrashed);
              return {};
            }),
            "");
}

// --- Where Trash is ---

TEST_F(LiveFileOperationsTest, OfTheFirstFileSystemOnlyTheHomeTrashIsLookedIn) {
  const std::vector home{homeTrash().appending("files")};
  EXPECT_EQ(trashFolders(FileURL::fromPath("/a.png"), mounts), home);
  const auto elsewhere = trashFolders(FileURL::fromPath("/proc/a.png"), mounts);
  EXPECT_GT(elsewhere.size(), 1u);
  for (const FileURL& place : elsewhere) {
    EXPECT_TRUE(place == home[0] || place.path().starts_with("/proc/.Trash")) << place.path();
  }
}

// --- isInTrash ---

TEST_F(LiveFileOperationsTest, WhatLiesInTheHomeTrashIsInTrash) {
  writeFile(shot, "the picture");
  EXPECT_FALSE(isInTrash(shot, mounts));
  ASSERT_EQ(files.trash(shot), FileOutcome::done);
  const FileURL trashed = homeTrash().appending("files/Screenshot.png");
  EXPECT_TRUE(isInTrash(trashed, mounts));
  EXPECT_TRUE(isInTrash(homeTrash().appending("files/a folder/deep/a.png"), mounts)) << "in a folder thrown away whole";
  EXPECT_FALSE(isInTrash(homeTrash().appending("info/Screenshot.png.trashinfo"), mounts));
  EXPECT_FALSE(isInTrash(homeTrash().appending("files"), mounts));
}

TEST_F(LiveFileOperationsTest, ATrashReachedThroughALinkIsTheTrash) {
  std::filesystem::create_directories(homeTrash().appending("files").path());
  const FileURL link = folder.file("link to trash");
  ASSERT_EQ(::symlink(homeTrash().appending("files").c_str(), link.c_str()), 0);
  EXPECT_TRUE(isInTrash(link.appending("a.png"), mounts));
}

TEST_F(LiveFileOperationsTest, AHomeTrashThatIsALinkIsTheTrash) {
  std::filesystem::create_directories(folder.file("elsewhere/files").path());
  ASSERT_EQ(::symlink(folder.file("elsewhere").c_str(), homeTrash().c_str()), 0);
  EXPECT_TRUE(isInTrash(homeTrash().appending("files/a.png"), mounts));
  EXPECT_TRUE(isInTrash(folder.file("elsewhere/files/a.png"), mounts));
}

TEST_F(LiveFileOperationsTest, AFolderThatMerelyHasSuchANameIsNotTrash) {
  const std::string user = std::to_string(::getuid());
  for (const std::string& name : {".Trash-" + user, ".Trash/" + user}) {
    const FileURL lookalike = folder.file(name + "/files");
    std::filesystem::create_directories(lookalike.path());
    EXPECT_FALSE(isInTrash(lookalike.appending("a.png"), mounts)) << name;
  }
  EXPECT_FALSE(isInTrash(folder.file("Trash/files/a.png"), mounts));
}

TEST_F(TrashOfDiskTest, OfAnotherPersonIsNotOurs) {
  EXPECT_EQ(failureWithPrivateMounts([&]() -> std::string {
              MUST(::mount("tmpfs", disk.c_str(), "tmpfs", 0, "size=1m") == 0);
              MUST(testing::run("mkdir -p '" + disk.path() + "/.Trash-4242/files' '" + disk.path() + "/sub/.Trash-" +
                                user + "/files'"));
              MUST(!isInTrash(disk.appending(".Trash-4242/files/a.png"), mounts));
              MUST(!isInTrash(disk.appending("sub/.Trash-" + user + "/files/a.png"), mounts));
              MUST(isInTrash(disk.appending(".Trash-" + user + "/files/a.png"), mounts));
              return {};
            }),
            "");
}

}  // namespace
}  // namespace quillmere
