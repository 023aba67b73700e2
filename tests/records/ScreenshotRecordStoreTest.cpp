#include "records/ScreenshotRecordStore.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <ctime>

#include "records/ScreenshotListWriter.h"
#include "support/ChildProcess.h"
#include "support/Files.h"
#include "support/Printing.h"
#include "support/Records.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::bareItem;
using testing::encoded;
using testing::envelope;
using testing::namesIn;
using testing::readBytes;
using testing::recordJson;
using testing::TemporaryFolder;
using testing::writeFile;

/// 2024-01-02 03:04:05 UTC.
constexpr Date kNow{725857445.0};
const std::string kUnreadable = "screenshots.unreadable-20240102-030405.json";
const std::string kBackup = "screenshots.backup-20240102-030405.json";

class ScreenshotRecordStoreTest : public ::testing::Test {
 protected:
  ScreenshotRecordStoreTest() { useZone("UTC"); }
  ~ScreenshotRecordStoreTest() override { useZone("UTC"); }

  static void useZone(const char* zone) {
    ::setenv("TZ", zone, 1);
    ::tzset();
  }
  std::vector<std::string> copies() const {
    auto names = namesIn(folder.url());
    std::erase(names, "screenshots.json");
    return names;
  }

  const TemporaryFolder folder;
  const FileURL file = folder.file("screenshots.json");
  const ScreenshotRecordStore store{file};
};

// --- What loads without a copy ---

TEST_F(ScreenshotRecordStoreTest, AbsentFileIsAFirstLaunch) {
  const auto result = store.load(kNow);
  EXPECT_TRUE(result.items.empty());
  EXPECT_FALSE(result.isReadOnly);
  EXPECT_TRUE(copies().empty());
}

TEST_F(ScreenshotRecordStoreTest, AbsentFolderIsAFirstLaunch) {
  const auto result = ScreenshotRecordStore{folder.file("absent/screenshots.json")}.load(kNow);
  EXPECT_TRUE(result.items.empty());
  EXPECT_FALSE(result.isReadOnly);
}

TEST_F(ScreenshotRecordStoreTest, EmptyListsOfBothFormsLoadWithoutACopy) {
  for (const std::string& bytes : {std::string("[]"), envelope(""), envelope("", 0)}) {
    writeFile(file, bytes);
    const auto result = store.load(kNow);
    EXPECT_TRUE(result.items.empty());
    EXPECT_FALSE(result.isReadOnly);
    EXPECT_TRUE(copies().empty()) << bytes;
    EXPECT_EQ(readBytes(file), bytes);
  }
}

TEST_F(ScreenshotRecordStoreTest, GoodRecordsOfBothFormsLoadInOrderWithoutACopy) {
  const std::string records = encoded(bareItem(2)) + "," + encoded(bareItem(1));
  for (const std::string& bytes : {"[" + records + "]", envelope(records)}) {
    writeFile(file, bytes);
    const auto result = store.load(kNow);
    EXPECT_EQ(result.items, (std::vector{bareItem(2), bareItem(1)}));
    EXPECT_FALSE(result.isReadOnly);
    EXPECT_TRUE(copies().empty());
  }
}

// --- What loads with a copy ---

TEST_F(ScreenshotRecordStoreTest, OneMalformedRecordIsLeftOutAndTheFileCopied) {
  const std::string bytes = envelope(recordJson() + ",{}");
  writeFile(file, bytes);
  const auto result = store.load(kNow);
  EXPECT_EQ(result.items.size(), 1u);
  EXPECT_FALSE(result.isReadOnly);
  EXPECT_EQ(copies(), std::vector{kBackup});
  EXPECT_EQ(readBytes(folder.file(kBackup)), bytes);
  EXPECT_EQ(readBytes(file), bytes);
}

TEST_F(ScreenshotRecordStoreTest, NewerVersionLoadsAndIsCopiedThoughNothingWasDropped) {
  const std::string bytes = envelope(recordJson(R"(,"starred":true)"), 2);
  writeFile(file, bytes);
  const auto result = store.load(kNow);
  EXPECT_EQ(result.items.size(), 1u);
  EXPECT_FALSE(result.isReadOnly);
  EXPECT_EQ(copies(), std::vector{kBackup});
  EXPECT_EQ(readBytes(folder.file(kBackup)), bytes);
}

TEST_F(ScreenshotRecordStoreTest, MalformedRecordInTheLegacyFormIsCopiedToo) {
  writeFile(file, "[" + recordJson() + ",5]");
  EXPECT_EQ(store.load(kNow).items.size(), 1u);
  EXPECT_EQ(copies(), std::vector{kBackup});
}

TEST_F(ScreenshotRecordStoreTest, UnknownStateDropsTheRecordButUnknownKindOrFailureDoesNot) {
  writeFile(file,
            envelope(recordJson(R"(,"captureKind":"hologram")") + "," + recordJson(R"(,"analysisFailure":"newer")")));
  EXPECT_EQ(store.load(kNow).items.size(), 2u);
  EXPECT_TRUE(copies().empty());

  writeFile(file,
            envelope(R"({"id":"00000000-0000-4000-8000-100000000001","url":"file:///a","createdAt":5,"state":"new"})"));
  EXPECT_TRUE(store.load(kNow).items.empty());
  EXPECT_EQ(copies(), std::vector{kBackup});
}

// --- What cannot be read ---

TEST_F(ScreenshotRecordStoreTest, WhatIsNoListIsCopiedAsUnreadable) {
  for (const std::string& bytes : {std::string(), std::string("garbage"), std::string("{}"), std::string("[1,"),
                                   envelope("").substr(0, 15), std::string(64, '\0'), std::string("\xef\xbb\xbf[]")}) {
    const TemporaryFolder own;
    const ScreenshotRecordStore ownStore{own.file("screenshots.json")};
    writeFile(ownStore.fileURL, bytes);
    const auto result = ownStore.load(kNow);
    EXPECT_TRUE(result.items.empty());
    EXPECT_FALSE(result.isReadOnly);
    EXPECT_EQ(namesIn(own.url()), (std::vector<std::string>{"screenshots.json", kUnreadable})) << bytes;
    EXPECT_EQ(readBytes(own.file(kUnreadable)), bytes);
    EXPECT_EQ(readBytes(ownStore.fileURL), bytes);
  }
}

TEST_F(ScreenshotRecordStoreTest, TwoUnreadableLoadsWithinASecondMakeTwoCopies) {
  writeFile(file, "garbage");
  store.load(kNow);
  store.load(kNow + 0.4);
  EXPECT_EQ(copies(), (std::vector<std::string>{"screenshots.unreadable-20240102-030405-2.json", kUnreadable}));
}

TEST_F(ScreenshotRecordStoreTest, LargeGarbageIsCopiedWhole) {
  constexpr off_t kSize = 200'000'000;
  writeFile(file, std::string(1 << 20, 'x'));
  ASSERT_EQ(::truncate(file.c_str(), kSize), 0);
  const auto result = store.load(kNow);
  EXPECT_TRUE(result.items.empty());
  EXPECT_FALSE(result.isReadOnly);
  struct stat copy {};
  ASSERT_EQ(::stat(folder.file(kUnreadable).c_str(), &copy), 0);
  EXPECT_EQ(copy.st_size, kSize);
}

TEST_F(ScreenshotRecordStoreTest, LargeGarbageWithoutNulsIsCopiedWhole) {
  std::string bytes;
  bytes.resize(24'000'000, '"');
  writeFile(file, bytes);
  EXPECT_TRUE(store.load(kNow).items.empty());
  EXPECT_TRUE(readBytes(folder.file(kUnreadable)) == bytes);
}

TEST_F(ScreenshotRecordStoreTest, DeeplyNestedGarbageIsCopied) {
  writeFile(file, std::string(4'000'000, '['));
  EXPECT_FALSE(store.load(kNow).isReadOnly);
  EXPECT_EQ(copies(), std::vector{kUnreadable});
}

// --- Things in the list's place ---

TEST_F(ScreenshotRecordStoreTest, SymbolicLinkIsFollowedAndItsCopyStandsBesideTheLink) {
  const TemporaryFolder elsewhere;
  writeFile(elsewhere.file("real.json"), envelope(recordJson() + ",{}"));
  ASSERT_EQ(::symlink(elsewhere.file("real.json").c_str(), file.c_str()), 0);
  const auto result = store.load(kNow);
  EXPECT_EQ(result.items.size(), 1u);
  EXPECT_EQ(copies(), std::vector{kBackup});
  EXPECT_EQ(readBytes(folder.file(kBackup)), readBytes(elsewhere.file("real.json")));
}

TEST_F(ScreenshotRecordStoreTest, LinkThatLeadsNowhereIsAFirstLaunch) {
  ASSERT_EQ(::symlink("nowhere.json", file.c_str()), 0);
  const auto result = store.load(kNow);
  EXPECT_TRUE(result.items.empty());
  EXPECT_FALSE(result.isReadOnly);
  EXPECT_TRUE(copies().empty());
}

TEST_F(ScreenshotRecordStoreTest, FolderInTheListsPlaceMakesItReadOnly) {
  ASSERT_EQ(::mkdir(file.c_str(), 0700), 0);
  const auto result = store.load(kNow);
  EXPECT_TRUE(result.items.empty());
  EXPECT_TRUE(result.isReadOnly);
  EXPECT_TRUE(copies().empty());
}

TEST_F(ScreenshotRecordStoreTest, PipeInTheListsPlaceMakesItReadOnlyAndHoldsNobody) {
  ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
  const auto result = store.load(kNow);
  EXPECT_TRUE(result.items.empty());
  EXPECT_TRUE(result.isReadOnly);
  EXPECT_TRUE(copies().empty());
}

// --- When no copy can be made ---

/// Loads in a child and answers 1 for read-only plus 2 for each record; 99 when the situation could not be made.
int loadInChild(const FileURL& list, const std::function<bool()>& prepare) {
  return testing::exitCodeOfChild([&] {
    if (!prepare()) return testing::kCannotSetUp;
    const auto result = ScreenshotRecordStore{list}.load(kNow);
    return (result.isReadOnly ? 1 : 0) + 2 * static_cast<int>(result.items.size());
  });
}

TEST_F(ScreenshotRecordStoreTest, InAReadOnlyFolderADamagedListIsReadOnly) {
  writeFile(file, envelope(recordJson() + ",{}"));
  ASSERT_EQ(::chmod(file.c_str(), 0644), 0);
  ASSERT_EQ(::chmod(folder.path().c_str(), 0555), 0);
  EXPECT_EQ(loadInChild(file, testing::becomeOrdinaryUser), 1 + 2);
  EXPECT_TRUE(copies().empty());
}

TEST_F(ScreenshotRecordStoreTest, InAReadOnlyFolderAnUnreadableListIsReadOnlyAndANewerOneLoads) {
  ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
  writeFile(file, "garbage");
  ASSERT_EQ(::chmod(file.c_str(), 0644), 0);
  ASSERT_EQ(::chmod(folder.path().c_str(), 0555), 0);
  EXPECT_EQ(loadInChild(file, testing::becomeOrdinaryUser), 1);
  writeFile(file, envelope(recordJson() + "," + recordJson(), 2));
  EXPECT_EQ(loadInChild(file, testing::becomeOrdinaryUser), 1 + 4);
}

TEST_F(ScreenshotRecordStoreTest, InAReadOnlyFolderAGoodListIsNotReadOnly) {
  writeFile(file, envelope(recordJson()));
  ASSERT_EQ(::chmod(file.c_str(), 0644), 0);
  ASSERT_EQ(::chmod(folder.path().c_str(), 0555), 0);
  EXPECT_EQ(loadInChild(file, testing::becomeOrdinaryUser), 2);
}

TEST_F(ScreenshotRecordStoreTest, ListThatMayNotBeReadIsReadOnly) {
  writeFile(file, envelope(recordJson()));
  ASSERT_EQ(::chmod(file.c_str(), 0), 0);
  ASSERT_EQ(::chmod(folder.path().c_str(), 0777), 0);
  EXPECT_EQ(loadInChild(file, testing::becomeOrdinaryUser), 1);
  EXPECT_TRUE(copies().empty());
}

TEST_F(ScreenshotRecordStoreTest, OnAFullDiskADamagedListIsReadOnlyAndNoHalfCopyStays) {
  const std::string bytes = envelope(recordJson() + ",{}," + std::string(70'000, ' '));
  EXPECT_EQ(testing::exitCodeOfChild([&] {
              if (!testing::mountSmallDisk(folder.path(), "96k")) return testing::kCannotSetUp;
              std::FILE* list = std::fopen(file.c_str(), "w");
              std::fwrite(bytes.data(), 1, bytes.size(), list);
              if (std::fclose(list) != 0) return testing::kCannotSetUp;
              const auto result = store.load(kNow);
              if (!result.isReadOnly) return 1;
              return copies().empty() ? 0 : 2;
            }),
            0);
}

// --- Copies ---

TEST_F(ScreenshotRecordStoreTest, CopyIsNamedByItsReasonAndTheLocalTime) {
  using Reason = ScreenshotRecordStore::BackupReason;
  writeFile(file, "bytes");
  useZone("Asia/Kathmandu");
  EXPECT_EQ(store.backup(Reason::backup, kNow), folder.file("screenshots.backup-20240102-084905.json"));
  EXPECT_EQ(store.backup(Reason::unreadable, kNow), folder.file("screenshots.unreadable-20240102-084905.json"));
}

TEST_F(ScreenshotRecordStoreTest, CopyTakesTheListsNameWithoutItsExtension) {
  const ScreenshotRecordStore other{folder.file("my.list.dat")};
  writeFile(other.fileURL, "bytes");
  EXPECT_EQ(other.backup(ScreenshotRecordStore::BackupReason::backup, kNow),
            folder.file("my.list.backup-20240102-030405.json"));
}

TEST_F(ScreenshotRecordStoreTest, CopiesAreNumberedFromTwoToAHundred) {
  writeFile(file, "bytes");
  std::vector<FileURL> places;
  while (const auto place = store.backup(ScreenshotRecordStore::BackupReason::backup, kNow)) places.push_back(*place);
  ASSERT_EQ(places.size(), 100u);
  EXPECT_EQ(places[0].lastPathComponent(), "screenshots.backup-20240102-030405.json");
  EXPECT_EQ(places[1].lastPathComponent(), "screenshots.backup-20240102-030405-2.json");
  EXPECT_EQ(places[99].lastPathComponent(), "screenshots.backup-20240102-030405-100.json");
  for (const auto& place : places) EXPECT_EQ(readBytes(place), "bytes");
}

TEST_F(ScreenshotRecordStoreTest, AfterAHundredCopiesADamagedListIsReadOnly) {
  writeFile(file, "garbage");
  for (int i = 0; i < 100; ++i) EXPECT_FALSE(store.load(kNow).isReadOnly);
  EXPECT_TRUE(store.load(kNow).isReadOnly);
  EXPECT_FALSE(store.load(kNow + 1).isReadOnly);
}

TEST_F(ScreenshotRecordStoreTest, CopyOfAFileThatIsGoneIsNone) {
  EXPECT_EQ(store.backup(ScreenshotRecordStore::BackupReason::backup, kNow), std::nullopt);
  EXPECT_TRUE(copies().empty());
}

// --- Together with saving ---

TEST_F(ScreenshotRecordStoreTest, WhatIsSavedLoads) {
  ScreenshotList list({testing::fullItem(2), bareItem(1)});
  EXPECT_TRUE(ScreenshotListWriter().save(list, file));
  EXPECT_EQ(store.load(kNow).items, (std::vector{testing::fullItem(2), bareItem(1)}));
  EXPECT_TRUE(copies().empty());
}

TEST_F(ScreenshotRecordStoreTest, LegacyListIsSavedAsAnEnvelope) {
  writeFile(file, "[" + encoded(bareItem(1)) + "]");
  ScreenshotList list(store.load(kNow).items);
  EXPECT_TRUE(ScreenshotListWriter().save(list, file));
  EXPECT_EQ(readBytes(file), envelope(encoded(bareItem(1))));
}

}  // namespace
}  // namespace quillmere
