#include "records/ScreenshotListWriter.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <csignal>
#include <random>

#include "records/ScreenshotRecordStore.h"
#include "support/ChildProcess.h"
#include "support/Files.h"
#include "support/Printing.h"
#include "support/Records.h"
#include "support/TemporaryFolder.h"
#include "support/WithoutStandardInput.h"

namespace quillmere {
namespace {

using testing::appendToFile;
using testing::bareItem;
using testing::encoded;
using testing::envelope;
using testing::fullItem;
using testing::namesIn;
using testing::readBytes;
using testing::TemporaryFolder;
using testing::uuid;
using testing::writeFile;

/// What the file must hold, byte by byte.
std::string fullEncoding(const ScreenshotList& list) {
  std::string records;
  list.forEach([&](const ScreenshotItem& item) {
    if (!records.empty()) records.push_back(',');
    appendEncoded(records, item);
  });
  return envelope(records);
}

ScreenshotList listOf(int count) {
  std::vector<ScreenshotItem> items;
  for (int i = count; i > 0; --i) items.push_back(fullItem(i));
  return ScreenshotList(std::move(items));
}

void rename(ScreenshotItem& item) {
  item.suggestedName = item.suggestedName.value_or("") + "+";
}

class ScreenshotListWriterTest : public ::testing::Test {
 protected:
  void expectSaved(ScreenshotList& list) {
    ASSERT_TRUE(writer.save(list, file));
    ASSERT_TRUE(readBytes(file) == fullEncoding(list));
    ASSERT_EQ(namesIn(folder.url()), std::vector<std::string>{"screenshots.json"});
  }

  const TemporaryFolder folder;
  const FileURL file = folder.file("screenshots.json");
  ScreenshotListWriter writer;
};

// --- The form ---

TEST_F(ScreenshotListWriterTest, EmptyListIsAnEmptyEnvelope) {
  ScreenshotList list;
  ASSERT_TRUE(writer.save(list, file));
  EXPECT_EQ(readBytes(file), R"({"version":1,"items":[]})");
}

TEST_F(ScreenshotListWriterTest, RecordsStandNewestFirstInOneLine) {
  ScreenshotList list({bareItem(2), bareItem(1)});
  ASSERT_TRUE(writer.save(list, file));
  EXPECT_EQ(readBytes(file), R"({"version":1,"items":[)" + encoded(bareItem(2)) + "," + encoded(bareItem(1)) + "]}");
}

TEST_F(ScreenshotListWriterTest, FoldersThatAreMissingAreMade) {
  ScreenshotList list({bareItem()});
  const auto deep = folder.file("a/b/screenshots.json");
  ASSERT_TRUE(writer.save(list, deep));
  EXPECT_EQ(readBytes(deep), fullEncoding(list));
}

TEST_F(ScreenshotListWriterTest, FileMayBeReadByItsOwnerAlone) {
  ScreenshotList list;
  ASSERT_TRUE(writer.save(list, file));
  struct stat status {};
  ASSERT_EQ(::stat(file.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST_F(ScreenshotListWriterTest, ItIsDatedByWhenItsRecordsWereTaken) {
  const ScreenshotList list({bareItem()});
  const auto snapshot = list.snapshot();
  ::usleep(20'000);  // the kernel's own clock dates the file
  const auto later = list.snapshot();
  ASSERT_TRUE(writer.save(snapshot, file));
  struct stat status {};
  ASSERT_EQ(::stat(file.c_str(), &status), 0);
  EXPECT_EQ(status.st_mtim.tv_sec, snapshot.taken().tv_sec);
  EXPECT_EQ(status.st_mtim.tv_nsec, snapshot.taken().tv_nsec);
  EXPECT_NE(status.st_mtim.tv_nsec, later.taken().tv_nsec);
}

// --- Only what changed is encoded ---

TEST_F(ScreenshotListWriterTest, FirstSaveEncodesEveryRecordAndTheNextNone) {
  ScreenshotList list = listOf(100);
  expectSaved(list);
  EXPECT_EQ(writer.encodedCount(), 100u);
  expectSaved(list);
  EXPECT_EQ(writer.encodedCount(), 0u);
}

TEST_F(ScreenshotListWriterTest, WithoutStandardInputItSavesAsEver) {
  const testing::WithoutStandardInput none;
  ScreenshotListWriter first;
  ScreenshotList list = listOf(3);
  ASSERT_TRUE(first.save(list, file));
  ASSERT_TRUE(first.save(list, file));
  EXPECT_EQ(first.encodedCount(), 0u);
  EXPECT_EQ(readBytes(file), fullEncoding(list));
}

TEST_F(ScreenshotListWriterTest, ChangedAndNewRecordsAloneAreEncoded) {
  ScreenshotList list = listOf(100);
  expectSaved(list);
  list.update(0, rename);
  list.update(50, rename);
  list.update(99, rename);
  list.update(20, [](ScreenshotItem&) {});
  list.insertNewest(fullItem(200));
  expectSaved(list);
  EXPECT_EQ(writer.encodedCount(), 4u);
}

TEST_F(ScreenshotListWriterTest, RemovingRecordsEncodesNone) {
  ScreenshotList list = listOf(100);
  expectSaved(list);
  list.remove({uuid(1), uuid(50), uuid(51), uuid(100)});
  expectSaved(list);
  EXPECT_EQ(writer.encodedCount(), 0u);
  list.remove([&] {
    UUIDSet all;
    list.forEach([&](const ScreenshotItem& item) { all.insert(item.id); });
    return all;
  }());
  expectSaved(list);
}

TEST_F(ScreenshotListWriterTest, AnySequenceOfChangesGivesTheBytesOfAFullEncoding) {
  for (unsigned seed = 1; seed <= 8; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto below = [&](size_t limit) { return random() % std::max<size_t>(limit, 1); };
    ScreenshotList list = listOf(static_cast<int>(below(40)));
    int next = 1000;
    for (int save = 0; save < 40; ++save) {
      size_t changed = 0;
      for (size_t step = below(6); step > 0; --step) {
        const size_t index = below(list.size());
        const auto action = below(3);
        if (action == 0) {
          list.insertNewest(below(2) ? fullItem(next++) : bareItem(next++));
          ++changed;
        } else if (!list.empty() && action == 1) {
          list.update(index, [&](ScreenshotItem& item) {
            item.recognizedText = QByteArray(static_cast<qsizetype>(below(3000)), 'a' + static_cast<char>(below(26)));
          });
          ++changed;
        } else if (!list.empty()) {
          list.remove({list[index].id, list[below(list.size())].id});
        }
      }
      expectSaved(list);
      if (HasFatalFailure()) return;
      if (save > 0) {
        EXPECT_LE(writer.encodedCount(), changed);
      }
    }
  }
}

TEST_F(ScreenshotListWriterTest, ListLargerThanAnyBufferIsWrittenWhole) {
  ScreenshotList list = listOf(12'000);
  expectSaved(list);
  for (size_t i = 0; i < list.size(); i += 7) list.update(i, rename);
  expectSaved(list);
  EXPECT_LT(writer.encodedCount(), 2000u);
}

TEST_F(ScreenshotListWriterTest, AnotherPlaceIsWrittenFromTheSameMemory) {
  ScreenshotList list = listOf(10);
  expectSaved(list);
  list.update(3, rename);
  const auto other = folder.file("other.json");
  ASSERT_TRUE(writer.save(list, other));
  EXPECT_EQ(readBytes(other), fullEncoding(list));
}

// --- Others who touch the file ---

TEST_F(ScreenshotListWriterTest, FileThatWasEditedInPlaceIsWrittenAnew) {
  ScreenshotList list = listOf(10);
  expectSaved(list);
  std::string bytes = readBytes(file);
  bytes[bytes.size() / 2] = '#';
  writeFile(file, bytes);
  testing::setModified(file, {1000});
  list.update(0, rename);
  expectSaved(list);
  EXPECT_EQ(writer.encodedCount(), 10u);
}

TEST_F(ScreenshotListWriterTest, EditThatPutsTheDateBackIsNoticed) {
  ScreenshotList list = listOf(10);
  expectSaved(list);
  struct stat before {};
  ASSERT_EQ(::stat(file.c_str(), &before), 0);
  std::string bytes = readBytes(file);
  bytes[bytes.size() / 2] = '#';
  ::usleep(20'000);  // the kernel's own clock, which sets the date of the change, cannot be moved by hand
  writeFile(file, bytes);
  const timespec dates[2] = {before.st_atim, before.st_mtim};
  ASSERT_EQ(::utimensat(AT_FDCWD, file.c_str(), dates, 0), 0);
  expectSaved(list);
}

TEST_F(ScreenshotListWriterTest, FileThatWasCutOrGrownIsWrittenAnew) {
  ScreenshotList list = listOf(10);
  expectSaved(list);
  ASSERT_EQ(::truncate(file.c_str(), 5), 0);
  expectSaved(list);
  appendToFile(file, "more");
  expectSaved(list);
  ASSERT_EQ(::truncate(file.c_str(), 0), 0);
  list.insertNewest(bareItem(70));
  expectSaved(list);
}

TEST_F(ScreenshotListWriterTest, FileThatWasReplacedIsWrittenRight) {
  ScreenshotList list = listOf(10);
  expectSaved(list);
  const TemporaryFolder elsewhere;
  writeFile(folder.file("other"), envelope(""));
  ASSERT_EQ(::rename(folder.file("other").c_str(), file.c_str()), 0);
  list.update(4, rename);
  expectSaved(list);
}

TEST_F(ScreenshotListWriterTest, FileThatWasDeletedIsWrittenRight) {
  ScreenshotList list = listOf(10);
  expectSaved(list);
  ASSERT_EQ(::unlink(file.c_str()), 0);
  list.update(4, rename);
  expectSaved(list);
}

TEST_F(ScreenshotListWriterTest, FolderThatWasDeletedIsMadeAgain) {
  ScreenshotList list = listOf(10);
  const auto deep = folder.file("a/screenshots.json");
  ASSERT_TRUE(writer.save(list, deep));
  std::filesystem::remove_all(folder.file("a").path());
  ASSERT_TRUE(writer.save(list, deep));
  EXPECT_EQ(readBytes(deep), fullEncoding(list));
}

TEST_F(ScreenshotListWriterTest, LeftOverTemporaryFileOfAnyKindIsNoObstacle) {
  ScreenshotList list = listOf(3);
  const auto leftOver = folder.file("screenshots.json.saving");
  const TemporaryFolder elsewhere;
  writeFile(elsewhere.file("victim"), "precious");
  writeFile(leftOver, "half a list");
  expectSaved(list);
  ASSERT_EQ(::symlink(elsewhere.file("victim").c_str(), leftOver.c_str()), 0);
  expectSaved(list);
  EXPECT_EQ(readBytes(elsewhere.file("victim")), "precious");
  ASSERT_EQ(::mkfifo(leftOver.c_str(), 0600), 0);
  expectSaved(list);
}

TEST_F(ScreenshotListWriterTest, SymbolicLinkStaysOne) {
  const TemporaryFolder elsewhere;
  writeFile(elsewhere.file("real.json"), envelope(""));
  ASSERT_EQ(::symlink(elsewhere.file("real.json").c_str(), file.c_str()), 0);
  ScreenshotList list = listOf(3);
  ASSERT_TRUE(writer.save(list, file));
  struct stat status {};
  ASSERT_EQ(::lstat(file.c_str(), &status), 0);
  EXPECT_TRUE(S_ISLNK(status.st_mode));
  EXPECT_EQ(readBytes(elsewhere.file("real.json")), fullEncoding(list));
  EXPECT_EQ(namesIn(elsewhere.url()), std::vector<std::string>{"real.json"});
}

TEST_F(ScreenshotListWriterTest, SymbolicLinkThatLeadsNowhereGivesWayToTheList) {
  // What it leads to may be a list on a disk that is away: nothing may be written there unseen.
  const TemporaryFolder elsewhere;
  ASSERT_EQ(::symlink(elsewhere.file("real.json").c_str(), file.c_str()), 0);
  ScreenshotList list = listOf(3);
  expectSaved(list);
  EXPECT_TRUE(namesIn(elsewhere.url()).empty());
}

TEST_F(ScreenshotListWriterTest, FolderInTheListsPlaceFailsTheSaveAndStays) {
  ASSERT_EQ(::mkdir(file.c_str(), 0700), 0);
  ScreenshotList list = listOf(3);
  EXPECT_FALSE(writer.save(list, file));
  EXPECT_EQ(namesIn(folder.url()), std::vector<std::string>{"screenshots.json"});
}

// --- Saves that fail ---

TEST_F(ScreenshotListWriterTest, SaveThatFailsLeavesTheOldFileAndTheNextOneSucceeds) {
  ScreenshotList list = listOf(5);
  EXPECT_EQ(testing::exitCodeOfChild([&] {
              if (!testing::mountSmallDisk(folder.path(), "64k")) return testing::kCannotSetUp;
              if (!writer.save(list, file)) return 1;
              const std::string before = readBytes(file);
              list.update(2, [](ScreenshotItem& item) { item.recognizedText = QByteArray(200'000, 'x'); });
              if (writer.save(list, file)) return 2;
              if (readBytes(file) != before) return 3;
              if (namesIn(folder.url()).size() != 1) return 4;
              list.update(2, [](ScreenshotItem& item) { item.recognizedText = QByteArray("short"); });
              if (!writer.save(list, file)) return 5;
              if (readBytes(file) != fullEncoding(list)) return 6;
              return writer.encodedCount() == 1 ? 0 : 7;
            }),
            0);
}

TEST_F(ScreenshotListWriterTest, SaveIntoAReadOnlyFolderFailsAndLeavesTheOldFile) {
  ScreenshotList list = listOf(5);
  expectSaved(list);
  const std::string before = readBytes(file);
  ASSERT_EQ(::chmod(folder.path().c_str(), 0555), 0);
  list.update(2, rename);
  EXPECT_EQ(testing::exitCodeOfChild([&] {
              if (!testing::becomeOrdinaryUser()) return testing::kCannotSetUp;
              return writer.save(list, file) ? 1 : 0;
            }),
            0);
  EXPECT_EQ(readBytes(file), before);
}

TEST_F(ScreenshotListWriterTest, ProcessKilledAtAnyMomentLeavesTheOldOrTheNewList) {
  const unsigned seed = 20240102;
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  constexpr int kRecords = 300;
  ScreenshotList first = listOf(kRecords);
  ASSERT_TRUE(writer.save(first, file));
  for (int round = 0; round < 60; ++round) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      ScreenshotListWriter own;
      ScreenshotList list = listOf(kRecords);
      for (int save = 0;; ++save) {
        list.update(static_cast<size_t>(save) % kRecords, rename);
        if (!own.save(list, file)) ::_exit(1);
      }
    }
    ::usleep(static_cast<useconds_t>(random() % 12'000));  // a real process: its moments cannot be counted by hand
    ASSERT_EQ(::kill(child, SIGKILL), 0);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status)) << "the child's save failed";

    std::string bytes = readBytes(file);
    const auto list = decodeList(bytes);
    ASSERT_TRUE(list) << "round " << round;
    ASSERT_EQ(list->dropped, 0u);
    ASSERT_EQ(list->items.size(), static_cast<size_t>(kRecords));
  }
  // What the killed ones left does not stand in the way.
  ASSERT_TRUE(writer.save(first, file));
  EXPECT_EQ(readBytes(file), fullEncoding(first));
  EXPECT_EQ(namesIn(folder.url()), std::vector<std::string>{"screenshots.json"});
}

}  // namespace
}  // namespace quillmere
