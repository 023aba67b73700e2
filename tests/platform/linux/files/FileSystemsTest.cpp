// Which file is which, on the file systems that people have: what LiveFileIdentity, MountTable and the bookmarks of
// LiveSecurityScopeAccess promise, tried on real ones.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <QtCore/QUuid>

#include "foundation/FileStatus.h"
#include "platform/linux/files/LiveFileIdentity.h"
#include "platform/linux/files/LiveSecurityScopeAccess.h"
#include "support/EventLoop.h"
#include "support/PrivateMounts.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::run;

struct FileSystem {
  std::string name;
  std::string size;
  std::string make;  ///< the command that makes one, but for the UUID at its end; none for one that lives in memory
  bool keepsBirths = true;

  bool isOnDisk() const { return !make.empty(); }
};
void PrintTo(const FileSystem& kind, std::ostream* out) {
  *out << kind.name;
}

std::vector<FileSystem> fileSystemsOnDisks() {
  return {
      {"ext4", "8M", "mkfs.ext4 -q -F -I 256 -O ^has_journal -U "},
      {"ext4WithoutBirths", "8M", "mkfs.ext4 -q -F -I 128 -O ^has_journal -U ", false},
      {"btrfs", "110M", "mkfs.btrfs -q -f -U "},
      {"xfs", "300M", "mkfs.xfs -q -f -m uuid="},
  };
}

std::vector<FileSystem> withBirths(bool keepsBirths) {
  std::vector<FileSystem> all = fileSystemsOnDisks();
  std::erase_if(all, [&](const FileSystem& candidate) { return candidate.keepsBirths != keepsBirths; });
  return all;
}

const FileSystem kInMemory{"tmpfs", "", ""};

std::vector<FileSystem> andInMemory(std::vector<FileSystem> all) {
  all.push_back(kInMemory);
  return all;
}

std::string nameOf(const ::testing::TestParamInfo<FileSystem>& info) {
  return info.param.name;
}

/// A disk with two folders, that comes and goes in the work of a child process.
class Disk {
 public:
  explicit Disk(const FileSystem& kind) : kind_(kind) {
    for (const FileURL& point : {top, spare_.file("point")}) std::filesystem::create_directory(point.path());
  }

  bool make() const { return !kind_.isOnDisk() || testing::makeDisk(image_.path(), kind_.size, kind_.make + uuid); }
  bool connect() const {
    return kind_.isOnDisk() ? testing::connectDisk(image_.path(), top.path())
                            : ::mount("tmpfs", top.c_str(), "tmpfs", 0, "size=1m") == 0;
  }
  bool disconnect() const { return ::umount(top.c_str()) == 0; }
  /// As after the cable was pulled and put in again: with another disk in the device that this one had.
  bool reconnect() const {
    return disconnect() && testing::mountDisk(spare_.file("image").path(), spare_.file("point").path()) && connect();
  }
  bool makeFolders() const { return run("mkdir '" + shots.path() + "' '" + watched.path() + "'"); }

 private:
  testing::TemporaryFolder folder_;
  testing::TemporaryFolder spare_;
  FileSystem kind_;
  FileURL image_ = folder_.file("image");

 public:
  /// One of its own each: the kernel refuses a second disk of the same.
  std::string uuid = QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString();
  FileURL top = folder_.file("disk");
  FileURL shots = top.appending("shots");
  FileURL watched = top.appending("watched");
  FileURL shot = shots.appending("a.png");
};

bool write(const FileURL& url, const std::string& text = "picture") {
  return run("printf '" + text + "' > '" + url.path() + "'");
}
bool move(const FileURL& from, const FileURL& to) {
  return ::rename(from.c_str(), to.c_str()) == 0;
}
uint64_t numberOf(const FileURL& url) {
  const auto status = fileStatus(url);
  return status ? status->inode : 0;
}

class FileSystemsTest : public ::testing::TestWithParam<FileSystem> {
 protected:
  /// Runs the work with the disk connected, where nobody else sees it.
  void onDisk(const std::function<std::string()>& work) {
    EXPECT_EQ(testing::failureWithPrivateMounts([&]() -> std::string {
                const std::string name = GetParam().name;
                if (!disk.make()) return "no " + name + " can be made: is what tools/setup installs there?";
                if (!disk.connect()) return "this kernel cannot mount " + name;
                MUST(disk.makeFolders() && write(disk.shot));
                return work();
              }),
              "");
  }
  /// What a bookmark leads to; empty when to nothing.
  std::string place(const std::optional<QByteArray>& bookmark) {
    const auto found = bookmark ? access.resolve(*bookmark) : std::nullopt;
    return found ? found->url.path() : std::string();
  }
  std::optional<FileIdentity> identity(const FileURL& url) const { return liveFileIdentity(url, mounts); }
  /// Lets time pass until a new file is born at another moment than this one; a screenshot always lives longer.
  bool outlive(const FileURL& url) const {
    constexpr double kMoment = 0.002;
    const auto born = fileStatus(url)->created;
    const FileURL probe = disk.top.appending("probe");
    const bool hasPassed = !born || testing::runLoopUntil([&] {
      const bool isMade = run("rm -f '" + probe.path() + "' && : > '" + probe.path() + "'");
      return isMade && *fileStatus(probe)->created - *born > kMoment;
    });
    return hasPassed && (!born || ::unlink(probe.c_str()) == 0);
  }
  /// Makes new files at this place until one has the number; connects the disk again where that takes it.
  bool reuse(uint64_t number, const FileURL& url) const {
    constexpr int kAttempts = 300;
    for (int i = 0; i < 2 * kAttempts; ++i) {
      if (i == kAttempts && !(disk.disconnect() && disk.connect())) return false;
      const int descriptor = ::open(url.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
      if (descriptor < 0 || ::write(descriptor, "another", 7) != 7 || ::close(descriptor) != 0) return false;
      if (numberOf(url) == number) return true;
      if (::unlink(url.c_str()) != 0) return false;
    }
    return false;
  }

  Disk disk{GetParam()};
  FileURL renamed = disk.shots.appending("b.png");
  FileURL moved = disk.watched.appending("c.png");
  MountTable mounts{nullptr};
  LiveSecurityScopeAccess access{mounts};
};

// --- Everywhere ---

class AnyFileSystemTest : public FileSystemsTest {};

INSTANTIATE_TEST_SUITE_P(On, AnyFileSystemTest, ::testing::ValuesIn(andInMemory(fileSystemsOnDisks())), nameOf);

TEST_P(AnyFileSystemTest, AnIdentityIsCompleteWhereBirthsAreKept) {
  onDisk([&]() -> std::string {
    const auto found = identity(disk.shot);
    MUST(found && found->volume && found->size == 7);
    MUST(found->creationDate.has_value() == GetParam().keepsBirths);
    MUST(found->isComplete() == GetParam().keepsBirths);
    MUST(found->isSameFile(*identity(disk.shot)) == GetParam().keepsBirths);
    return {};
  });
}

TEST_P(AnyFileSystemTest, AFileIsFoundAtItsPlace) {
  onDisk([&]() -> std::string {
    const auto bookmark = access.makeBookmark(disk.shot);
    MUST(place(bookmark) == disk.shot.path());
    MUST(!access.resolve(*bookmark)->isStale);
    return {};
  });
}

TEST_P(AnyFileSystemTest, AFileReplacedUnderItsNameIsAnotherFile) {
  onDisk([&]() -> std::string {
    const auto bookmark = access.makeBookmark(disk.shot);
    const auto before = identity(disk.shot);
    MUST(write(renamed, "another") && move(renamed, disk.shot));
    MUST(place(bookmark).empty());
    MUST(!before->isSameFile(*identity(disk.shot)));
    return {};
  });
}

TEST_P(AnyFileSystemTest, AFileOfTheSameNumberOnAnotherFileSystemIsAnotherFile) {
  onDisk([&]() -> std::string {
    const auto before = identity(disk.shot);
    auto bookmark = Bookmark::decode(*access.makeBookmark(disk.shot));
    MUST(mounts.volume(disk.top) != mounts.volume(FileURL::fromPath("/")));
    bookmark->volume = mounts.volume(FileURL::fromPath("/"));
    MUST(place(bookmark->encoded()).empty());
    return {};
  });
}

TEST_P(AnyFileSystemTest, AFileThatMayNotBeReadIsOnTheSameVolumeAsTheOthers) {
  onDisk([&]() -> std::string {
    MUST(::chmod(disk.shot.c_str(), 0) == 0 && write(renamed));
    MUST(run("p='" + disk.top.path() + "'; chmod 755 \"$p\" \"$p/..\"; chmod 644 '" + renamed.path() + "'"));
    const auto asRoot = mounts.volume(disk.shot);
    constexpr uid_t kNobody = 65534;
    MUST(::setgid(kNobody) == 0 && ::setuid(kNobody) == 0);
    const MountTable others(nullptr);
    MUST(::access(disk.shot.c_str(), R_OK) != 0 && ::access(renamed.c_str(), R_OK) == 0);
    MUST(others.volume(disk.shot) == asRoot);
    MUST(others.volume(renamed) == asRoot);
    return {};
  });
}

// --- With birth times ---

class FileSystemWithBirthsTest : public FileSystemsTest {};

INSTANTIATE_TEST_SUITE_P(On, FileSystemWithBirthsTest, ::testing::ValuesIn(andInMemory(withBirths(true))), nameOf);

TEST_P(FileSystemWithBirthsTest, AFileRenamedWhileNobodyLookedIsFound) {
  onDisk([&]() -> std::string {
    const auto bookmark = access.makeBookmark(disk.shot);
    const auto before = identity(disk.shot);
    MUST(move(disk.shot, renamed));
    MUST(place(bookmark) == renamed.path());
    MUST(access.resolve(*bookmark)->isStale);
    MUST(before->isSameFile(*identity(renamed)));
    return {};
  });
}

TEST_P(FileSystemWithBirthsTest, AFileMovedIntoTheWatchedFolderIsFound) {
  onDisk([&]() -> std::string {
    const auto bookmark = access.makeBookmark(disk.shot);
    MUST(move(disk.shot, moved));
    MUST(place(bookmark).empty());
    access.setWatchedFolder(disk.watched);
    MUST(place(bookmark) == moved.path());
    return {};
  });
}

TEST_P(FileSystemWithBirthsTest, AFileOfALinkedFolderIsFoundThroughTheLink) {
  onDisk([&]() -> std::string {
    const FileURL link = disk.top.appending("link");
    MUST(::symlink("shots", link.c_str()) == 0);
    const FileURL linked = link.appending("a.png");
    const auto bookmark = access.makeBookmark(linked);
    MUST(place(bookmark) == linked.path());
    MUST(identity(linked)->isSameFile(*identity(disk.shot)));
    MUST(move(disk.shot, renamed));
    MUST(place(bookmark) == link.appending("b.png").path());
    return {};
  });
}

TEST_P(FileSystemWithBirthsTest, AFileMovedIntoALinkedWatchedFolderIsFound) {
  onDisk([&]() -> std::string {
    const FileURL link = disk.top.appending("link");
    MUST(::symlink("watched", link.c_str()) == 0);
    access.setWatchedFolder(link);
    const auto bookmark = access.makeBookmark(disk.shot);
    MUST(move(disk.shot, moved));
    MUST(place(bookmark) == link.appending("c.png").path());
    return {};
  });
}

class ReusedNumberTest : public FileSystemsTest {};

INSTANTIATE_TEST_SUITE_P(On, ReusedNumberTest, ::testing::ValuesIn(withBirths(true)), nameOf);

TEST_P(ReusedNumberTest, IsNotTheOldFileUnderItsOldName) {
  onDisk([&]() -> std::string {
    const auto bookmark = access.makeBookmark(disk.shot);
    const auto before = identity(disk.shot);
    MUST(outlive(disk.shot) && ::unlink(disk.shot.c_str()) == 0);
    MUST(reuse(before->file, disk.shot));
    MUST(place(bookmark).empty());
    MUST(!before->isSameFile(*identity(disk.shot)));
    return {};
  });
}

TEST_P(ReusedNumberTest, IsNotTheOldFileUnderAnotherName) {
  onDisk([&]() -> std::string {
    access.setWatchedFolder(disk.watched);
    const auto bookmark = access.makeBookmark(disk.shot);
    const auto before = identity(disk.shot);
    MUST(outlive(disk.shot) && ::unlink(disk.shot.c_str()) == 0);
    MUST(reuse(before->file, renamed));
    MUST(place(bookmark).empty());
    MUST(move(renamed, moved));
    MUST(place(bookmark).empty());
    MUST(!before->isSameFile(*identity(moved)));
    return {};
  });
}

class TemporaryFileSystemTest : public FileSystemsTest {};

INSTANTIATE_TEST_SUITE_P(On, TemporaryFileSystemTest, ::testing::Values(kInMemory), nameOf);

TEST_P(TemporaryFileSystemTest, GivesANumberOnceSoThatNoneCanBeReused) {
  onDisk([&]() -> std::string {
    const uint64_t number = numberOf(disk.shot);
    MUST(::unlink(disk.shot.c_str()) == 0);
    uint64_t last = number;
    for (int i = 0; i < 300; ++i) {
      MUST(write(renamed) && numberOf(renamed) > last);
      last = numberOf(renamed);
      MUST(::unlink(renamed.c_str()) == 0);
    }
    return {};
  });
}

TEST_P(TemporaryFileSystemTest, IsAnotherVolumeAfterEachMountAndItsFilesAreGone) {
  onDisk([&]() -> std::string {
    const auto bookmark = access.makeBookmark(disk.shot);
    const auto before = identity(disk.shot);
    MUST(disk.disconnect() && place(bookmark).empty());
    MUST(disk.connect() && disk.makeFolders() && write(disk.shot));
    MountTable later(nullptr);
    LiveSecurityScopeAccess laterAccess{later};
    MUST(numberOf(disk.shot) == before->file);
    MUST(later.volume(disk.top) != before->volume);
    MUST(!laterAccess.resolve(*bookmark));
    MUST(!before->isSameFile(*liveFileIdentity(disk.shot, later)));
    return {};
  });
}

// --- Without birth times ---

class FileSystemWithoutBirthsTest : public FileSystemsTest {};

INSTANTIATE_TEST_SUITE_P(On, FileSystemWithoutBirthsTest, ::testing::ValuesIn(withBirths(false)), nameOf);

TEST_P(FileSystemWithoutBirthsTest, NothingIsSearchedFor) {
  onDisk([&]() -> std::string {
    access.setWatchedFolder(disk.watched);
    const auto bookmark = access.makeBookmark(disk.shot);
    MUST(move(disk.shot, renamed) && place(bookmark).empty());
    MUST(move(renamed, moved) && place(bookmark).empty());
    MUST(move(moved, disk.shot) && place(bookmark) == disk.shot.path());
    return {};
  });
}

TEST_P(FileSystemWithoutBirthsTest, AReusedNumberUnderAnotherNameIsNotTheOldFile) {
  onDisk([&]() -> std::string {
    access.setWatchedFolder(disk.watched);
    const auto bookmark = access.makeBookmark(disk.shot);
    const auto before = identity(disk.shot);
    MUST(::unlink(disk.shot.c_str()) == 0 && reuse(before->file, renamed));
    MUST(place(bookmark).empty() && !before->isSameFile(*identity(renamed)));
    MUST(move(renamed, moved));
    MUST(place(bookmark).empty() && !before->isSameFile(*identity(moved)));
    return {};
  });
}

/// Nothing tells the two apart; the identity, which decides what follows a file, at least claims nothing.
TEST_P(FileSystemWithoutBirthsTest, AReusedNumberUnderTheOldNamePassesForTheOldFileInABookmarkButNotAsIdentity) {
  onDisk([&]() -> std::string {
    const auto bookmark = access.makeBookmark(disk.shot);
    const auto before = identity(disk.shot);
    MUST(::unlink(disk.shot.c_str()) == 0 && reuse(before->file, disk.shot));
    MUST(place(bookmark) == disk.shot.path());
    MUST(!before->isSameFile(*identity(disk.shot)));
    return {};
  });
}

// --- Disks that come and go ---

class DiskThatReturnsTest : public FileSystemsTest {};

INSTANTIATE_TEST_SUITE_P(On, DiskThatReturnsTest, ::testing::ValuesIn(fileSystemsOnDisks()), nameOf);

TEST_P(DiskThatReturnsTest, HasTheUUIDThatItWasMadeWith) {
  onDisk([&]() -> std::string {
    const std::string found = mounts.volume(disk.shot).value_or("none");
    return found == disk.uuid ? std::string() : "the volume is " + found;
  });
}

TEST_P(DiskThatReturnsTest, IsTheSameVolumeToALaterRun) {
  onDisk([&]() -> std::string {
    const auto bookmark = access.makeBookmark(disk.shot);
    const auto before = identity(disk.shot);
    MUST(disk.reconnect());
    MountTable later(nullptr);
    LiveSecurityScopeAccess laterAccess{later};
    MUST(later.volume(disk.shot) == before->volume);
    const auto found = laterAccess.resolve(*bookmark);
    MUST(found && found->url == disk.shot && !found->isStale);
    MUST(before->isSameFile(*liveFileIdentity(disk.shot, later)) == GetParam().keepsBirths);
    return {};
  });
}

TEST_P(DiskThatReturnsTest, IsTheSameVolumeToTheSameRun) {
  onDisk([&]() -> std::string {
    SystemEvents events;
    MountTable table(&events);
    LiveSecurityScopeAccess same{table};
    const auto bookmark = same.makeBookmark(disk.shot);
    const auto folder = same.makeBookmark(disk.shots);
    MUST(bookmark && folder && disk.disconnect());
    MUST(!same.resolve(*bookmark));
    const auto away = same.resolve(*folder);
    MUST(away && away->url == disk.shots && !away->isStale);
    MUST(disk.connect() && disk.reconnect());
    MUST(same.resolve(*bookmark) && same.resolve(*bookmark)->url == disk.shot);
    MUST(!same.resolve(*folder)->isStale);
    return {};
  });
}

TEST_P(DiskThatReturnsTest, HasItsFilesFollowedThroughARenameJustBeforeItLeft) {
  onDisk([&]() -> std::string {
    const auto bookmark = access.makeBookmark(disk.shot);
    MUST(move(disk.shot, renamed) && disk.reconnect());
    MUST(place(bookmark) == (GetParam().keepsBirths ? renamed.path() : std::string()));
    return {};
  });
}

TEST_P(DiskThatReturnsTest, IsNotTakenForAnotherDiskInItsPlace) {
  onDisk([&]() -> std::string {
    SystemEvents events;
    bool isTold = false;
    const Connection observer = events.volumesDidChange.connect([&] { isTold = true; });
    MountTable table(&events);
    LiveSecurityScopeAccess same{table};
    const auto bookmark = same.makeBookmark(disk.shot);
    const auto before = liveFileIdentity(disk.shot, table);
    QCoreApplication::processEvents();
    isTold = false;
    MUST(disk.disconnect());
    testing::TemporaryFolder other;
    MUST(testing::mountDisk(other.file("image").path(), disk.top.path()) && disk.makeFolders() && write(disk.shot));
    MUST(testing::runLoopUntil([&] { return isTold; }));
    MUST(table.volume(disk.top) != before->volume);
    MUST(!same.resolve(*bookmark));
    MUST(!before->isSameFile(*liveFileIdentity(disk.shot, table)));
    return {};
  });
}

// --- Subvolumes ---

class SubvolumesTest : public FileSystemsTest {
 protected:
  bool addSubvolume(const FileURL& url) const { return run("btrfs subvolume create '" + url.path() + "'"); }
  FileURL first = disk.top.appending("first");
  FileURL second = disk.top.appending("second");
  FileURL shotInFirst = first.appending("a.png");
  FileURL shotInSecond = second.appending("a.png");
};

INSTANTIATE_TEST_SUITE_P(On, SubvolumesTest, ::testing::ValuesIn([] {
                           std::vector<FileSystem> all = fileSystemsOnDisks();
                           std::erase_if(all, [](const FileSystem& candidate) { return candidate.name != "btrfs"; });
                           return all;
                         }()),
                         nameOf);

TEST_P(SubvolumesTest, AreOneVolumeHoweverTheyAreMounted) {
  onDisk([&]() -> std::string {
    MUST(addSubvolume(first) && write(shotInFirst));
    MUST(mounts.volume(first) == disk.uuid && mounts.volume(shotInFirst) == disk.uuid);
    const auto before = identity(shotInFirst);
    // By itself, at the place where the whole disk was, as a home folder is.
    testing::TemporaryFolder point;
    MUST(run("mount -o subvol=first \"$(findmnt -n -o SOURCE '" + disk.top.path() + "')\" '" + point.path() + "'"));
    MountTable later(nullptr);
    MUST(later.volume(point.url()) == disk.uuid);
    const bool isSame = before->isSameFile(*liveFileIdentity(point.file("a.png"), later));
    MUST(::umount(point.path().c_str()) == 0);
    MUST(isSame);
    return {};
  });
}

TEST_P(SubvolumesTest, ThatShareANumberDoNotShareTheFile) {
  onDisk([&]() -> std::string {
    MUST(addSubvolume(first) && addSubvolume(second) && write(shotInFirst));
    const auto bookmark = access.makeBookmark(shotInFirst);
    const auto before = identity(shotInFirst);
    access.setWatchedFolder(second);
    MUST(outlive(shotInFirst) && write(shotInSecond));
    MUST(numberOf(shotInFirst) == numberOf(shotInSecond));
    MUST(!before->isSameFile(*identity(shotInSecond)));
    MUST(::unlink(shotInFirst.c_str()) == 0);
    MUST(place(bookmark).empty());
    return {};
  });
}

TEST_P(SubvolumesTest, RestoredFromASnapshotHoldTheSameFiles) {
  onDisk([&]() -> std::string {
    MUST(addSubvolume(first) && write(shotInFirst));
    const auto bookmark = access.makeBookmark(shotInFirst);
    MUST(run("btrfs subvolume snapshot '" + first.path() + "' '" + second.path() + "' && btrfs subvolume delete '" +
             first.path() + "'"));
    MUST(move(second, first));
    MUST(place(bookmark) == shotInFirst.path());
    MUST(!access.resolve(*bookmark)->isStale);
    return {};
  });
}

}  // namespace
}  // namespace quillmere
