#include "model/RecordIndex.h"

#include <gmock/gmock.h>

#include "support/Files.h"
#include "support/Printing.h"
#include "support/Records.h"
#include "support/TemporaryFolder.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class PathKey : public ::testing::Test {
 protected:
  PathKey() {
    root = FileURL::fromPath(std::filesystem::canonical(home.path()).string());
    std::filesystem::create_directories(root.appending("real").path());
    std::filesystem::create_directory_symlink(root.appending("real").path(), root.appending("link").path());
  }
  TemporaryFolder home;
  FileURL root;
};

TEST_F(PathKey, FileInTheWatchedFolderIsKeyedByTheCanonicalFolder) {
  const auto folder = watchFolderPaths(root.appending("link"));
  EXPECT_EQ(folder.standardized, root.appending("link").path());
  EXPECT_EQ(folder.canonical, root.appending("real").path());
  EXPECT_EQ(pathKey(root.appending("link/shot.png"), folder), root.appending("real/shot.png").path());
}

TEST_F(PathKey, FileInTheWatchedFolderCostsNoLookAtTheDisk) {
  const WatchFolderPaths folder{"/nowhere/shots", "/somewhere/else"};
  EXPECT_EQ(pathKey(FileURL::fromPath("/nowhere/shots/a.png"), folder), "/somewhere/else/a.png");
  EXPECT_EQ(pathKey(FileURL::fromPath("/nowhere/./shots//a.png"), folder), "/somewhere/else/a.png");
}

TEST_F(PathKey, FileElsewhereIsKeyedByItsRealPath) {
  writeFile(root.appending("real/shot.png"), "shot");
  std::filesystem::create_symlink(root.appending("real/shot.png").path(), root.appending("alias.png").path());
  EXPECT_EQ(pathKey(root.appending("link/shot.png"), std::nullopt), root.appending("real/shot.png").path());
  EXPECT_EQ(pathKey(root.appending("alias.png"), std::nullopt), root.appending("real/shot.png").path());
}

TEST_F(PathKey, TheKeyStaysWhenTheFileVanishes) {
  const FileURL url = root.appending("link/shot.png");
  writeFile(url, "shot");
  const std::string before = pathKey(url, std::nullopt);
  std::filesystem::remove(url.path());
  EXPECT_EQ(pathKey(url, std::nullopt), before);
}

TEST_F(PathKey, WhatCannotBeResolvedIsKeyedByItsStandardizedPath) {
  EXPECT_EQ(pathKey(FileURL::fromPath("/nowhere/at/./all.png"), std::nullopt), "/nowhere/at/all.png");
  EXPECT_EQ(pathKey(FileURL::fromPath("/nothing-here.png"), std::nullopt), "/nothing-here.png");
}

TEST_F(PathKey, OnlyANameOfTheFolderIsTakenAsItStands) {
  const WatchFolderPaths folder{"/given", "/canonical"};
  const auto key = [&](const char* path) { return pathKey(FileURL::fromPath(std::string_view(path)), folder); };
  EXPECT_EQ(key("/given/a.png"), "/canonical/a.png");
  EXPECT_EQ(key("/given/..a"), "/canonical/..a");
  EXPECT_EQ(key("/given/./a.png"), "/canonical/a.png");
  EXPECT_EQ(key("/given//a.png"), "/canonical/a.png");
  EXPECT_EQ(key("/given/a.png/"), "/canonical/a.png");
  EXPECT_EQ(key("/given/../tmp"), "/tmp");
  EXPECT_EQ(key("/given/.."), "/");
  EXPECT_EQ(key("/given/."), "/given");
  EXPECT_EQ(key("/given/"), "/given");
  EXPECT_EQ(key("/given"), "/given");
  EXPECT_EQ(key("/givenother/a.png"), "/givenother/a.png");
  EXPECT_EQ(key("/given/deeper/a.png"), "/given/deeper/a.png");
}

TEST_F(PathKey, AFolderContainsWhatLiesBelowItAndNotItsNeighbours) {
  const WatchFolderPaths folder{"/shots", "/shots"};
  EXPECT_TRUE(folder.contains("/shots/a.png"));
  EXPECT_TRUE(folder.contains("/shots/deeper/a.png"));
  EXPECT_FALSE(folder.contains("/shots"));
  EXPECT_FALSE(folder.contains("/shots2/a.png"));
}

TEST(RecordIndex, RecordsAreFoundByPathAndByFileNumber) {
  ScreenshotItem first = bareItem(1);
  first.fileIdentity = FileIdentity{"volume", 42, Date{1}, 2};
  ScreenshotItem second = bareItem(2);
  second.fileIdentity = FileIdentity{std::nullopt, 42, std::nullopt, std::nullopt};
  const RecordIndex index(ScreenshotList({first, second, bareItem(3)}), std::nullopt);
  EXPECT_EQ(index.atPath("/shots/2.png"), uuid(2));
  EXPECT_EQ(index.atPath("/shots/4.png"), std::nullopt);
  EXPECT_THAT(index.withFileNumber(42), UnorderedElementsAre(uuid(1), uuid(2)));
  EXPECT_THAT(index.withFileNumber(0), IsEmpty()) << "a record without an identity has no number";
  EXPECT_THAT(index.paths(), UnorderedElementsAre("/shots/1.png", "/shots/2.png", "/shots/3.png"));
}

TEST(RecordIndex, ARecordCanBeAdded) {
  RecordIndex index(ScreenshotList(), std::nullopt);
  ScreenshotItem item = bareItem(1);
  item.fileIdentity = FileIdentity{"volume", 7, Date{1}, 2};
  index.add(item, std::nullopt);
  EXPECT_EQ(index.atPath("/shots/1.png"), uuid(1));
  EXPECT_THAT(index.withFileNumber(7), ElementsAre(uuid(1)));
}

TEST(RecordIndexTest, ARemovedRecordIsNotFoundByPathOrNumber) {
  ScreenshotItem item;
  item.id = uuid(1);
  item.url = FileURL::fromPath("/nowhere/shots/a.png");
  item.fileIdentity = FileIdentity{"volume", 7, Date{1}, 8};
  ScreenshotItem other = item;
  other.id = uuid(2);
  other.url = FileURL::fromPath("/nowhere/shots/b.png");
  RecordIndex index(ScreenshotList({item, other}), std::nullopt);
  EXPECT_TRUE(index.remove(item));
  EXPECT_EQ(index.atPath("/nowhere/shots/a.png"), std::nullopt);
  EXPECT_THAT(index.withFileNumber(7), ElementsAre(uuid(2)));
  EXPECT_EQ(index.atPath("/nowhere/shots/b.png"), uuid(2));
  EXPECT_TRUE(index.remove(item)) << "twice is once";
}

TEST(RecordIndexTest, WhereRecordsSharedAPathTheIndexMustBeMadeAnew) {
  ScreenshotItem item;
  item.id = uuid(1);
  item.url = FileURL::fromPath("/nowhere/shots/a.png");
  ScreenshotItem second = item;
  second.id = uuid(2);
  RecordIndex index(ScreenshotList({item, second}), std::nullopt);
  EXPECT_FALSE(index.remove(item));
}

}  // namespace
}  // namespace quillmere::testing
