// Which Trash a file of another file system goes to, and where a file counts as being in the Trash.

#include <sys/stat.h>
#include <unistd.h>

#include "foundation/FileStatus.h"
#include "platform/linux/files/LiveFileOperations.h"
#include "platform/linux/files/MountTable.h"
#include "support/Files.h"
#include "support/PrivateMounts.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::run;

class TrashOfFileSystemsTest : public ::testing::Test {
 protected:
  TrashOfFileSystemsTest() {
    std::filesystem::remove_all(homeTrash.path());
    std::filesystem::create_directory(disk.path());
    std::filesystem::create_directory(bound.path());
  }
  /// With a disk that has a screenshot in a folder.
  void withDisk(const std::function<std::string()>& work) {
    EXPECT_EQ(testing::failureWithPrivateMounts([&]() -> std::string {
                MUST(testing::mountDisk(folder.file("image").path(), disk.path()));
                MUST(run("mkdir '" + disk.path() + "/shots' && echo picture > '" + shot.path() + "'"));
                return work();
              }),
              "");
  }
  bool bind(const FileURL& from) const { return ::mount(from.c_str(), bound.c_str(), nullptr, MS_BIND, nullptr) == 0; }
  bool isThere(const FileURL& trashFolder, const std::string& name = "a.png") const {
    return fileExists(trashFolder.appending("files/" + name)) &&
           fileExists(trashFolder.appending("info/" + name + ".trashinfo"));
  }
  bool counts(const FileURL& url) const { return isInTrash(url, mounts); }

  testing::TemporaryFolder folder;
  std::string user = std::to_string(::getuid());
  FileURL homeTrash = FileURL::fromPath(std::getenv("XDG_DATA_HOME")).appending("Trash");
  FileURL disk = folder.file("disk");
  FileURL bound = folder.file("bound");
  FileURL shot = disk.appending("shots/a.png");
  FileURL shared = disk.appending(".Trash");
  FileURL ownInShared = disk.appending(".Trash/" + user);
  FileURL own = disk.appending(".Trash-" + user);
  LiveFileOperations files;
  MountTable mounts{nullptr};
};

// --- Where a file goes ---

TEST_F(TrashOfFileSystemsTest, ASharedTrashWithoutTheStickyBitIsNotUsed) {
  withDisk([&]() -> std::string {
    MUST(run("mkdir -m 0777 '" + shared.path() + "'"));
    MUST(files.trash(shot) == FileOutcome::done);
    MUST(isThere(own) && !fileExists(ownInShared));
    return {};
  });
}

TEST_F(TrashOfFileSystemsTest, ASharedTrashThatIsALinkIsNotUsed) {
  withDisk([&]() -> std::string {
    MUST(run("mkdir -m 1777 '" + disk.path() + "/elsewhere'"));
    MUST(::symlink("elsewhere", shared.c_str()) == 0);
    MUST(files.trash(shot) == FileOutcome::done);
    MUST(isThere(own) && !fileExists(disk.appending("elsewhere/" + user)));
    return {};
  });
}

TEST_F(TrashOfFileSystemsTest, ASharedTrashThatIsAFileIsNotUsed) {
  withDisk([&]() -> std::string {
    MUST(run(": > '" + shared.path() + "'"));
    MUST(files.trash(shot) == FileOutcome::done);
    MUST(isThere(own));
    return {};
  });
}

TEST_F(TrashOfFileSystemsTest, AnOwnTrashThatIsALinkIsNotUsedAndTheFileStays) {
  withDisk([&]() -> std::string {
    MUST(run("mkdir -m 0700 '" + disk.path() + "/elsewhere'"));
    MUST(::symlink("elsewhere", own.c_str()) == 0);
    MUST(files.trash(shot) == FileOutcome::failed);
    MUST(fileExists(shot) && testing::namesIn(disk.appending("elsewhere")).empty());
    return {};
  });
}

TEST_F(TrashOfFileSystemsTest, TwoFilesOfOneNameAreKeptInEitherForm) {
  withDisk([&]() -> std::string {
    for (const FileURL& trash : {own, ownInShared}) {
      for (int i = 0; i < 2; ++i) {
        MUST(run("echo picture > '" + shot.path() + "'") && files.trash(shot) == FileOutcome::done);
      }
      MUST(isThere(trash) && testing::namesIn(trash.appending("files")).size() == 2);
      MUST(run("mkdir -p -m 1777 '" + shared.path() + "'"));
    }
    return {};
  });
}

TEST_F(TrashOfFileSystemsTest, AFileReachedThroughALinkedFolderGoesToTheTrashOfItsDisk) {
  withDisk([&]() -> std::string {
    const FileURL link = folder.file("link");
    MUST(::symlink(shot.parent().c_str(), link.c_str()) == 0);
    MUST(files.trash(link.appending("a.png")) == FileOutcome::done);
    MUST(isThere(own) && !fileExists(shot));
    MUST(!fileExists(homeTrash.appending("files/a.png")));
    return {};
  });
}

// Versions of GIO differ in whether they find a Trash for what is bound.

TEST_F(TrashOfFileSystemsTest, AFileOfABoundFolderIsEitherInTheTrashOrWhereItWas) {
  withDisk([&]() -> std::string {
    MUST(bind(shot.parent()));
    const FileURL seen = bound.appending("a.png");
    const bool isDone = files.trash(seen) == FileOutcome::done;
    MUST(fileExists(seen) != isDone && fileExists(shot) != isDone);
    MUST(isThere(bound.appending(".Trash-" + user)) == isDone);
    return {};
  });
}

TEST_F(TrashOfFileSystemsTest, AFileOfABoundFolderOfTheHomeFoldersDiskIsEitherInTheTrashOrWhereItWas) {
  EXPECT_EQ(testing::failureWithPrivateMounts([&]() -> std::string {
              const FileURL origin = folder.file("origin");
              MUST(run("mkdir '" + origin.path() + "' && echo picture > '" + origin.path() + "/a.png'"));
              MUST(bind(origin));
              const bool isDone = files.trash(bound.appending("a.png")) == FileOutcome::done;
              MUST(fileExists(origin.appending("a.png")) != isDone);
              MUST((isThere(homeTrash) || isThere(bound.appending(".Trash-" + user))) == isDone);
              return {};
            }),
            "");
}

// --- What counts as being in the Trash ---

TEST_F(TrashOfFileSystemsTest, BothFormsCountAlsoThroughALinkToTheDisk) {
  withDisk([&]() -> std::string {
    const FileURL link = folder.file("link");
    MUST(::symlink(disk.c_str(), link.c_str()) == 0);
    MUST(run("mkdir -p '" + own.path() + "/files/sub' '" + ownInShared.path() + "/files/sub'"));
    for (const FileURL& top : {disk, link}) {
      for (const std::string& form : {".Trash-" + user, ".Trash/" + user}) {
        MUST(counts(top.appending(form + "/files/a.png")));
        MUST(counts(top.appending(form + "/files/sub/a.png")));
        MUST(!counts(top.appending(form + "/info/a.png.trashinfo")));
        MUST(!counts(top.appending(form + "/a.png")));
      }
      MUST(!counts(top.appending("shots/a.png")));
    }
    return {};
  });
}

TEST_F(TrashOfFileSystemsTest, ALinkInAFolderToAFileInTheTrashIsNotItselfInTheTrash) {
  withDisk([&]() -> std::string {
    MUST(files.trash(shot) == FileOutcome::done);
    MUST(::symlink((own.path() + "/files/a.png").c_str(), shot.c_str()) == 0);
    MUST(!counts(shot));
    MUST(counts(own.appending("files/a.png")));
    return {};
  });
}

TEST_F(TrashOfFileSystemsTest, TheTrashOfADiskCountsWhereTheDiskIsBoundToo) {
  withDisk([&]() -> std::string {
    MUST(files.trash(shot) == FileOutcome::done && bind(disk));
    MUST(counts(own.appending("files/a.png")));
    MUST(counts(bound.appending(".Trash-" + user + "/files/a.png")));
    return {};
  });
}

TEST_F(TrashOfFileSystemsTest, TheHomeTrashCountsWhereTheDataFolderIsBoundInItsPlace) {
  EXPECT_EQ(testing::failureWithPrivateMounts([&]() -> std::string {
              MUST(run("mkdir -p '" + bound.path() + "/Trash/files' '" + homeTrash.parent().path() + "'"));
              MUST(::mount(bound.c_str(), homeTrash.parent().c_str(), nullptr, MS_BIND, nullptr) == 0);
              MUST(counts(homeTrash.appending("files/a.png")));
              return {};
            }),
            "");
}

TEST_F(TrashOfFileSystemsTest, AFolderBelowABindIsNotItsTop) {
  withDisk([&]() -> std::string {
    MUST(bind(shot.parent()) && run("mkdir -p '" + bound.path() + "/sub/.Trash-" + user + "/files'"));
    MUST(!counts(bound.appending("sub/.Trash-" + user + "/files/a.png")));
    return {};
  });
}

}  // namespace
}  // namespace quillmere
