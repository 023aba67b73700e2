#include "platform/linux/files/LiveFolderEventSource.h"

#include <sys/stat.h>
#include <unistd.h>

#include "support/EventLoop.h"
#include "support/Files.h"
#include "support/PrivateMounts.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::appendToFile;
using testing::runLoopUntil;
using testing::TemporaryFolder;
using testing::writeFile;

class LiveFolderEventSourceTest : public ::testing::Test {
 protected:
  LiveFolderEventSourceTest() {
    std::filesystem::create_directory(watched.path());
    writeFile(present, "here");
    watch = source.open(watched, [this](FolderEvent event) { events.push_back(event); });
  }
  /// Whether the next thing heard is this.
  bool hears(FolderEvent event) {
    const bool heard = runLoopUntil([this] { return !events.empty(); });
    return heard && std::exchange(events, {}).front() == event;
  }
  /// Whether nothing has been heard by the time that a later event comes.
  bool hearsNothing() {
    QCoreApplication::processEvents();
    return events.empty();
  }

  TemporaryFolder folder;
  FileURL watched = folder.file("watched");
  FileURL present = watched.appending("present.png");
  FileURL fresh = watched.appending("new.png");
  std::vector<FolderEvent> events;
  LiveFolderEventSource source;
  std::unique_ptr<FolderEventWatch> watch;
};

TEST_F(LiveFolderEventSourceTest, AFileThatIsMadeIsAChange) {
  ASSERT_TRUE(watch);
  writeFile(fresh, "");
  EXPECT_TRUE(hears(FolderEvent::changed));
}

TEST_F(LiveFolderEventSourceTest, AFileThatIsWrittenAndClosedIsAChange) {
  appendToFile(present, "more");
  EXPECT_TRUE(hears(FolderEvent::changed));
}

TEST_F(LiveFolderEventSourceTest, AFileThatOnlyGrowsIsNone) {
  const int descriptor = ::open(present.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
  ASSERT_GE(descriptor, 0);
  ASSERT_EQ(::write(descriptor, "more", 4), 4);
  EXPECT_TRUE(hearsNothing());
  ::close(descriptor);
  EXPECT_TRUE(hears(FolderEvent::changed));
}

TEST_F(LiveFolderEventSourceTest, AFileThatIsMovedInOrOutIsAChange) {
  const FileURL outside = folder.file("outside.png");
  ASSERT_EQ(::rename(present.c_str(), outside.c_str()), 0);
  EXPECT_TRUE(hears(FolderEvent::changed));
  ASSERT_EQ(::rename(outside.c_str(), present.c_str()), 0);
  EXPECT_TRUE(hears(FolderEvent::changed));
}

TEST_F(LiveFolderEventSourceTest, AMoveOutIsToldFromADeletionAndFromARename) {
  const auto rename = [](const FileURL& from, const FileURL& to) { return ::rename(from.c_str(), to.c_str()) == 0; };
  ASSERT_TRUE(rename(present, folder.file("outside.png")));
  EXPECT_TRUE(hears(FolderEvent::changed));
  EXPECT_TRUE(watch->hasMovedOut("present.png"));
  EXPECT_FALSE(watch->hasMovedOut("other.png"));

  ASSERT_TRUE(rename(folder.file("outside.png"), present));
  EXPECT_TRUE(hears(FolderEvent::changed));
  EXPECT_FALSE(watch->hasMovedOut("present.png")) << "it is back";

  ASSERT_TRUE(rename(present, fresh));
  EXPECT_TRUE(hears(FolderEvent::changed));
  EXPECT_FALSE(watch->hasMovedOut("present.png")) << "it is still in the folder";

  ASSERT_EQ(::unlink(fresh.c_str()), 0);
  EXPECT_TRUE(hears(FolderEvent::changed));
  EXPECT_FALSE(watch->hasMovedOut("new.png"));

  writeFile(present, "");
  ASSERT_TRUE(rename(present, folder.file("outside.png")));
  writeFile(present, "another");
  EXPECT_TRUE(hears(FolderEvent::changed));
  EXPECT_FALSE(watch->hasMovedOut("present.png")) << "another one has taken the name";
}

TEST_F(LiveFolderEventSourceTest, WhatASyncClientRenamesIntoPlaceIsKnownAsSynced) {
  const FileURL received = fresh.parent().appending(".new.png.~1a2b3c");
  writeFile(received, "bytes");
  ASSERT_EQ(::rename(received.c_str(), fresh.c_str()), 0);
  EXPECT_TRUE(hears(FolderEvent::changed));
  EXPECT_TRUE(watch->wasSynced("new.png"));
  EXPECT_FALSE(watch->wasSynced("present.png"));
  ASSERT_EQ(::chmod(fresh.c_str(), 0400), 0);
  EXPECT_TRUE(hears(FolderEvent::changed));
  EXPECT_TRUE(watch->wasSynced("new.png")) << "its attributes are set later";

  ASSERT_EQ(::unlink(fresh.c_str()), 0);
  writeFile(fresh, "a capture");
  EXPECT_TRUE(hears(FolderEvent::changed));
  EXPECT_FALSE(watch->wasSynced("new.png"));
}

TEST_F(LiveFolderEventSourceTest, WhatAProgramSavesSafelyIsNotSynced) {
  const FileURL written = fresh.parent().appending("new.png.XXabcd");
  writeFile(written, "bytes");
  ASSERT_EQ(::rename(written.c_str(), fresh.c_str()), 0);
  EXPECT_TRUE(hears(FolderEvent::changed));
  EXPECT_FALSE(watch->wasSynced("new.png"));
}

TEST_F(LiveFolderEventSourceTest, AFileThatIsRemovedIsAChange) {
  ASSERT_EQ(::unlink(present.c_str()), 0);
  EXPECT_TRUE(hears(FolderEvent::changed));
}

TEST_F(LiveFolderEventSourceTest, AnAttributeThatComesAfterTheFileIsAChange) {
  ASSERT_EQ(::chmod(present.c_str(), 0400), 0);
  EXPECT_TRUE(hears(FolderEvent::changed));
}

TEST_F(LiveFolderEventSourceTest, ManyEventsOfOneMomentAreToldOnce) {
  for (int i = 0; i < 1000; ++i) writeFile(watched.appending(std::to_string(i)), "");
  ASSERT_TRUE(runLoopUntil([this] { return !events.empty(); }));
  QCoreApplication::processEvents();
  EXPECT_EQ(events.size(), 1u);
}

TEST_F(LiveFolderEventSourceTest, WhatHappensOutsideIsNotHeard) {
  writeFile(folder.file("outside.png"), "");
  std::filesystem::create_directory(watched.appending("sub").path());
  EXPECT_TRUE(hears(FolderEvent::changed));
  writeFile(watched.appending("sub/deep.png"), "");
  EXPECT_TRUE(hearsNothing());
}

TEST_F(LiveFolderEventSourceTest, AFolderThatIsRenamedIsLost) {
  ASSERT_EQ(::rename(watched.c_str(), folder.file("renamed").c_str()), 0);
  EXPECT_TRUE(hears(FolderEvent::lost));
}

TEST_F(LiveFolderEventSourceTest, AFolderThatIsDeletedIsLost) {
  ASSERT_EQ(::unlink(present.c_str()), 0);
  EXPECT_TRUE(hears(FolderEvent::changed));
  ASSERT_EQ(::rmdir(watched.c_str()), 0);
  EXPECT_TRUE(hears(FolderEvent::lost));
}

TEST_F(LiveFolderEventSourceTest, AFolderWhoseDiskIsUnmountedIsLost) {
  EXPECT_EQ(testing::failureWithPrivateMounts([this]() -> std::string {
              MUST(::mount("tmpfs", watched.c_str(), "tmpfs", 0, "size=1m") == 0);
              const auto onDisk = source.open(watched, [this](FolderEvent event) { events.push_back(event); });
              MUST(onDisk);
              MUST(::umount(watched.c_str()) == 0);
              MUST(hears(FolderEvent::lost));
              return {};
            }),
            "");
}

TEST_F(LiveFolderEventSourceTest, AFolderBehindALinkIsWatched) {
  const FileURL link = folder.file("link");
  ASSERT_EQ(::symlink(watched.c_str(), link.c_str()), 0);
  int heard = 0;
  const auto behindLink = source.open(link, [&](FolderEvent) { ++heard; });
  ASSERT_TRUE(behindLink);
  writeFile(fresh, "");
  EXPECT_TRUE(runLoopUntil([&] { return heard > 0; }));
}

TEST_F(LiveFolderEventSourceTest, OnlyAFolderThatIsThereCanBeOpened) {
  EXPECT_FALSE(source.open(folder.file("missing"), [](FolderEvent) {}));
  EXPECT_FALSE(source.open(present, [](FolderEvent) {}));
}

TEST_F(LiveFolderEventSourceTest, NothingIsHeardOnceItIsDropped) {
  writeFile(fresh, "");
  watch.reset();
  EXPECT_TRUE(hearsNothing());
}

TEST_F(LiveFolderEventSourceTest, ItMayBeDestroyedInItsOwnCall) {
  int heard = 0;
  std::unique_ptr<FolderEventWatch> own;
  own = source.open(watched, [&heard, &own, text = std::string(100, 'x')](FolderEvent) {
    own.reset();
    heard += static_cast<int>(text.size());  // what the function holds must outlive the watch
  });
  writeFile(fresh, "");
  EXPECT_TRUE(runLoopUntil([&] { return heard == 100; }));
  EXPECT_FALSE(own);
  writeFile(fresh, "again");
  EXPECT_TRUE(hears(FolderEvent::changed));
  EXPECT_EQ(heard, 100);
}

TEST_F(LiveFolderEventSourceTest, ItMayBeReplacedInItsOwnCall) {
  std::vector<int> heard;
  std::unique_ptr<FolderEventWatch> own;
  own = source.open(watched, [&](FolderEvent) {
    heard.push_back(1);
    own = source.open(watched, [&](FolderEvent) { heard.push_back(2); });
  });
  writeFile(fresh, "");
  ASSERT_TRUE(runLoopUntil([&] { return !heard.empty(); }));
  writeFile(fresh, "again");
  ASSERT_TRUE(runLoopUntil([&] { return heard.size() > 1; }));
  EXPECT_EQ(heard[1], 2);
}

}  // namespace
}  // namespace quillmere
