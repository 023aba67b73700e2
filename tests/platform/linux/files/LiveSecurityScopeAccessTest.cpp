#include "platform/linux/files/LiveSecurityScopeAccess.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/FileStatus.h"
#include "support/EventLoop.h"
#include "support/Files.h"
#include "support/Printing.h"
#include "support/PrivateMounts.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::runLoopUntil;
using testing::TemporaryFolder;
using testing::writeFile;

class LiveSecurityScopeAccessTest : public ::testing::Test {
 protected:
  LiveSecurityScopeAccessTest() {
    std::filesystem::create_directories(shots.path());
    std::filesystem::create_directories(watched.path());
    writeFile(shot, "picture");
  }
  QByteArray bookmarkOf(const FileURL& url) {
    const auto bookmark = access.makeBookmark(url);
    EXPECT_TRUE(bookmark) << url.path();
    return bookmark.value_or(QByteArray());
  }
  static void move(const FileURL& from, const FileURL& to) {
    ASSERT_EQ(::rename(from.c_str(), to.c_str()), 0) << from.path();
  }

  TemporaryFolder folder;
  FileURL shots = folder.file("shots");
  FileURL watched = folder.file("watched");
  FileURL shot = shots.appending("a.png");
  MountTable mounts{nullptr};
  LiveSecurityScopeAccess access{mounts};
};

TEST_F(LiveSecurityScopeAccessTest, ABookmarkAnswersThePathWhileTheSameFileStandsThere) {
  const QByteArray bookmark = bookmarkOf(shot);
  const auto found = access.resolve(bookmark);
  ASSERT_TRUE(found);
  EXPECT_EQ(found->url, shot);
  EXPECT_FALSE(found->isStale);
}

TEST_F(LiveSecurityScopeAccessTest, AFileThatWasWrittenAgainInPlaceIsTheSame) {
  const QByteArray bookmark = bookmarkOf(shot);
  writeFile(shot, "another, longer picture");
  EXPECT_FALSE(access.resolve(bookmark)->isStale);
}

TEST_F(LiveSecurityScopeAccessTest, ANameThatIsNotTextComesBack) {
  const FileURL odd = shots.appending("caf\xe9\xff.png");
  writeFile(odd, "picture");
  const QByteArray bookmark = bookmarkOf(odd);
  EXPECT_EQ(access.resolve(bookmark)->url, odd);
  const FileURL odder = shots.appending("\xff\xfe.png");
  move(odd, odder);
  const auto found = access.resolve(bookmark);
  ASSERT_TRUE(found);
  EXPECT_EQ(found->url, odder);
  EXPECT_TRUE(found->isStale);
}

TEST_F(LiveSecurityScopeAccessTest, AFileRenamedInItsFolderIsFoundThere) {
  const QByteArray bookmark = bookmarkOf(shot);
  const FileURL renamed = shots.appending("renamed.png");
  move(shot, renamed);
  const auto found = access.resolve(bookmark);
  ASSERT_TRUE(found);
  EXPECT_EQ(found->url, renamed);
  EXPECT_TRUE(found->isStale);
  EXPECT_FALSE(access.resolve(bookmarkOf(found->url))->isStale) << "made anew it is fresh";
}

TEST_F(LiveSecurityScopeAccessTest, ASecondRenameIsFoundToo) {
  const QByteArray bookmark = bookmarkOf(shot);
  move(shot, shots.appending("1.png"));
  ASSERT_EQ(access.resolve(bookmark)->url, shots.appending("1.png"));
  move(shots.appending("1.png"), shots.appending("2.png"));
  EXPECT_EQ(access.resolve(bookmark)->url, shots.appending("2.png"));
}

TEST_F(LiveSecurityScopeAccessTest, ARenameInTheSameTickOfTheFoldersClockIsFoundToo) {
  const QByteArray bookmark = bookmarkOf(shot);
  const FileURL elsewhere = folder.file("elsewhere.png");
  move(shot, elsewhere);
  struct stat tick {};
  ASSERT_EQ(::stat(shots.c_str(), &tick), 0);
  ASSERT_FALSE(access.resolve(bookmark));
  move(elsewhere, shots.appending("back.png"));
  const timespec dates[2] = {tick.st_atim, tick.st_mtim};
  ASSERT_EQ(::utimensat(AT_FDCWD, shots.c_str(), dates, 0), 0);
  const auto found = access.resolve(bookmark);
  ASSERT_TRUE(found);
  EXPECT_EQ(found->url, shots.appending("back.png"));
}

TEST_F(LiveSecurityScopeAccessTest, AFileMovedIntoTheWatchedFolderIsFoundThere) {
  const QByteArray bookmark = bookmarkOf(shot);
  const FileURL moved = watched.appending("moved.png");
  move(shot, moved);
  EXPECT_FALSE(access.resolve(bookmark)) << "nobody looks there yet";
  access.setWatchedFolder(watched);
  const auto found = access.resolve(bookmark);
  ASSERT_TRUE(found);
  EXPECT_EQ(found->url, moved);
  EXPECT_TRUE(found->isStale);
}

TEST_F(LiveSecurityScopeAccessTest, AFileMovedElsewhereIsNotFound) {
  access.setWatchedFolder(watched);
  const QByteArray bookmark = bookmarkOf(shot);
  move(shot, folder.file("elsewhere.png"));
  EXPECT_FALSE(access.resolve(bookmark));
}

TEST_F(LiveSecurityScopeAccessTest, AFileThatIsGoneIsNotFound) {
  access.setWatchedFolder(watched);
  const QByteArray bookmark = bookmarkOf(shot);
  ASSERT_EQ(::unlink(shot.c_str()), 0);
  EXPECT_FALSE(access.resolve(bookmark));
  std::filesystem::remove_all(shots.path());
  EXPECT_FALSE(access.resolve(bookmark));
}

/// On a disk of its own ext4 gives a number anew as soon as it is free.
TEST_F(LiveSecurityScopeAccessTest, AReusedNumberIsNeverTakenForTheOldFile) {
  EXPECT_EQ(testing::failureWithPrivateMounts([&]() -> std::string {
              MUST(testing::mountDisk(folder.file("image").path(), watched.path()));
              for (const char* name : {"a.png", "other.png"}) {
                const FileURL old = watched.appending("a.png");
                const FileURL other = watched.appending(name);
                MUST(testing::run("echo old > '" + old.path() + "'"));
                const uint64_t number = fileStatus(old)->inode;
                const auto bookmark = access.makeBookmark(old);
                MUST(bookmark && access.resolve(*bookmark));
                const Date born = *fileStatus(old)->created;
                MUST(::unlink(old.c_str()) == 0);
                // Until the number is given again, and a tick of the clock of births later: a screenshot lives through
                // one.
                MUST(runLoopUntil([&] {
                  testing::writeFile(other, "new");
                  const auto status = fileStatus(other);
                  if (status->inode == number && *status->created - born > 0.002) return true;
                  ::unlink(other.c_str());
                  return false;
                }));
                MUST(!access.resolve(*bookmark));
              }
              return {};
            }),
            "");
}

TEST_F(LiveSecurityScopeAccessTest, AnotherFileUnderTheNameIsAnotherFile) {
  const QByteArray bookmark = bookmarkOf(shot);
  const FileURL replacement = shots.appending("new");
  writeFile(replacement, "another");
  move(replacement, shot);
  EXPECT_FALSE(access.resolve(bookmark));
}

TEST_F(LiveSecurityScopeAccessTest, AFolderUnderTheNameIsNotTheFile) {
  const QByteArray bookmark = bookmarkOf(shot);
  ASSERT_EQ(::unlink(shot.c_str()), 0);
  std::filesystem::create_directory(shot.path());
  EXPECT_FALSE(access.resolve(bookmark));
}

TEST_F(LiveSecurityScopeAccessTest, AFolderMadeAnewIsTakenForTheOldOne) {
  const QByteArray bookmark = bookmarkOf(watched);
  std::filesystem::remove_all(watched.path());
  const auto missing = access.resolve(bookmark);
  ASSERT_TRUE(missing) << "it may come back with its disk";
  EXPECT_EQ(missing->url, watched);
  EXPECT_FALSE(missing->isStale);
  std::filesystem::create_directory(watched.path());
  const auto anew = access.resolve(bookmark);
  ASSERT_TRUE(anew);
  EXPECT_EQ(anew->url, watched);
}

TEST_F(LiveSecurityScopeAccessTest, ARenamedFolderIsFoundUnderItsNewName) {
  const QByteArray bookmark = bookmarkOf(watched);
  move(watched, folder.file("renamed"));
  const auto found = access.resolve(bookmark);
  ASSERT_TRUE(found);
  EXPECT_EQ(found->url, folder.file("renamed"));
  EXPECT_TRUE(found->isStale);
}

TEST_F(LiveSecurityScopeAccessTest, ARenamedFolderWinsOverANewOneUnderItsOldName) {
  const QByteArray bookmark = bookmarkOf(watched);
  move(watched, folder.file("renamed"));
  std::filesystem::create_directory(watched.path());
  EXPECT_EQ(access.resolve(bookmark)->url, folder.file("renamed"));
}

TEST_F(LiveSecurityScopeAccessTest, ALinkToAFolderKeepsItsName) {
  const FileURL link = folder.file("link");
  ASSERT_EQ(::symlink(watched.c_str(), link.c_str()), 0);
  const QByteArray bookmark = bookmarkOf(link);
  const auto found = access.resolve(bookmark);
  ASSERT_TRUE(found);
  EXPECT_EQ(found->url, link);
  EXPECT_FALSE(found->isStale);
}

TEST_F(LiveSecurityScopeAccessTest, AFileBehindALinkToItsFolderIsFound) {
  const FileURL link = folder.file("link");
  ASSERT_EQ(::symlink(shots.c_str(), link.c_str()), 0);
  const QByteArray bookmark = bookmarkOf(link.appending("a.png"));
  EXPECT_FALSE(access.resolve(bookmark)->isStale);
  move(shot, shots.appending("b.png"));
  EXPECT_EQ(access.resolve(bookmark)->url, link.appending("b.png"));
}

TEST_F(LiveSecurityScopeAccessTest, APathAloneIsAnsweredAsItIs) {
  const auto found = access.resolve(R"({"path":"/nowhere/a.png"})");
  ASSERT_TRUE(found);
  EXPECT_EQ(found->url, FileURL::fromPath("/nowhere/a.png"));
  EXPECT_FALSE(found->isStale);
}

TEST_F(LiveSecurityScopeAccessTest, APathAloneIsWorthMakingAnewWhileItsFileIsThere) {
  const auto found = access.resolve(R"({"path":")" + QByteArray::fromStdString(shot.path()) + R"("})");
  ASSERT_TRUE(found);
  EXPECT_EQ(found->url, shot);
  EXPECT_TRUE(found->isStale);
}

TEST_F(LiveSecurityScopeAccessTest, WithoutABirthTimeNothingIsSearchedFor) {
  Bookmark bookmark = *Bookmark::decode(bookmarkOf(shot));
  bookmark.creationDate.reset();
  EXPECT_EQ(access.resolve(bookmark.encoded())->url, shot);
  move(shot, shots.appending("b.png"));
  EXPECT_FALSE(access.resolve(bookmark.encoded()));
}

TEST_F(LiveSecurityScopeAccessTest, AFileOfAnotherDiskIsAnotherFile) {
  Bookmark bookmark = *Bookmark::decode(bookmarkOf(shot));
  bookmark.volume = "another disk";
  EXPECT_FALSE(access.resolve(bookmark.encoded()));
}

TEST_F(LiveSecurityScopeAccessTest, WhereTheDiskWasNotKnownNumberAndBirthTimeAreEnough) {
  Bookmark bookmark = *Bookmark::decode(bookmarkOf(shot));
  bookmark.volume.reset();
  EXPECT_EQ(access.resolve(bookmark.encoded())->url, shot);
  move(shot, shots.appending("b.png"));
  EXPECT_EQ(access.resolve(bookmark.encoded())->url, shots.appending("b.png"));
}

TEST_F(LiveSecurityScopeAccessTest, GarbageResolvesToNothing) {
  for (const char* bytes : {"", "garbage", "{}", "{\"path\":\"relative\"}", "\xff\xff"}) {
    EXPECT_FALSE(access.resolve(bytes)) << bytes;
  }
}

TEST_F(LiveSecurityScopeAccessTest, WhatIsNotThereGetsNoBookmark) {
  EXPECT_FALSE(access.makeBookmark(shots.appending("missing.png")));
  EXPECT_FALSE(access.makeBookmark(FileURL()));
}

TEST_F(LiveSecurityScopeAccessTest, StartAndStopAreCounted) {
  EXPECT_TRUE(access.start(shot));
  EXPECT_TRUE(access.start(shot));
  EXPECT_TRUE(access.start(watched));
  EXPECT_EQ(access.openCount(), 3);
  access.stop(shot);
  EXPECT_EQ(access.openCount(), 2);
  access.stop(shot);
  access.stop(watched);
  EXPECT_EQ(access.openCount(), 0);
  access.stop(shot);
  EXPECT_EQ(access.openCount(), 0) << "one stop too many opens nothing";
}

TEST_F(LiveSecurityScopeAccessTest, StartAnswersWhetherThePlaceCanBeRead) {
  EXPECT_FALSE(access.start(shots.appending("missing.png")));
  ASSERT_EQ(::chmod(shot.c_str(), 0), 0);
  ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
  EXPECT_EQ(testing::failureWithPrivateMounts([&]() -> std::string {
              constexpr uid_t kNobody = 65534;
              MUST(::setgid(kNobody) == 0 && ::setuid(kNobody) == 0);
              MUST(!access.start(shot));
              MUST(access.openCount() == 0);
              MUST(!access.makeBookmark(shot));
              return {};
            }),
            "");
  EXPECT_EQ(access.openCount(), 0);
}

// --- LiveWatchFolderStore ---

TEST_F(LiveSecurityScopeAccessTest, TheFoldersBookmarkIsKeptInTheSettingsAndItsDiskExpected) {
  const QString settings = QString::fromStdString(folder.file("settings.json").path());
  EXPECT_EQ(testing::failureWithPrivateMounts([&]() -> std::string {
              MUST(::mount("tmpfs", watched.c_str(), "tmpfs", 0, "size=1m") == 0);
              UserDefaults defaults(settings);
              LiveWatchFolderStore store(defaults, mounts);
              MUST(!store.bookmark());
              const auto bookmark = access.makeBookmark(watched);
              MUST(bookmark);
              store.setBookmark(*bookmark);
              MUST(store.bookmark() == bookmark);
              MUST(mounts.isVolumeMounted(watched));
              MUST(::umount(watched.c_str()) == 0);
              MUST(!mounts.isVolumeMounted(watched));
              return {};
            }),
            "");
  UserDefaults defaults(settings);
  MountTable later(nullptr);
  LiveWatchFolderStore store(defaults, later);
  EXPECT_TRUE(later.isVolumeMounted(watched));
  EXPECT_TRUE(store.bookmark());
  EXPECT_FALSE(later.isVolumeMounted(watched)) << "also in a later run, as soon as the bookmark is read";
}

}  // namespace
}  // namespace quillmere
