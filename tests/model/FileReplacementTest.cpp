#include "model/FileReplacement.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fakes/DecodedPictures.h"
#include "fakes/ModelFakes.h"
#include "formats/ImageEncoding.h"
#include "formats/ImageOperations.h"
#include "foundation/FileStatus.h"
#include "foundation/ManualExecutor.h"
#include "reading/ImageWriting.h"
#include "support/Files.h"
#include "support/Records.h"
#include "support/TemporaryFolder.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class FakeReplacedRecords final : public ReplacedRecords {
 public:
  FakeReplacedRecords() { disk.answerAtOnce(); }
  void protect(const UUID& id) override { protectedIDs.insert(id); }
  void unprotect(const UUID& id) override { protectedIDs.erase(id); }
  /// There is nobody else.
  Task<FileWorker::Hold> claimFiles(std::vector<UUID>) override { co_return nullptr; }
  void fileWasReplaced(const UUID& id) override {
    replaced.push_back(id);
    if (onReplaced) onReplaced();
  }
  void fileWasPutAt(const UUID&, const FileURL& url) override { putAt.push_back(url); }
  Task<bool> whenReplacedIsSaved() override {
    auto saving = disk.background([this] { return isSaved; });
    const bool result = co_await saving;
    co_return result;
  }

  ManualExecutor disk;  ///< with the list
  bool isSaved = true;

  UUIDSet protectedIDs;
  std::vector<UUID> replaced;
  std::vector<FileURL> putAt;
  std::function<void()> onReplaced;
};

class FileReplacementTest : public ::testing::Test {
 protected:
  FileReplacementTest() {
    std::filesystem::create_directories(shots.path());
    world.recordStore.fileURL = home.file("list.json");
    world.executor = &executor;
    world.fileOperations = &files;
    world.pictures = decodedPictures();
    world.fileIdentity = [](const FileURL& url) -> std::optional<FileIdentity> {
      const auto status = fileStatus(url);
      return status ? std::optional(FileIdentity{"volume", status->inode, {}, status->size}) : std::nullopt;
    };
    world.isDataless = [](const FileURL&) { return false; };
    world.isFolderReachable = [this](const FileURL&) { return isFolderReachable; };
    make();
    const auto data = ImageOperations::encode(picture(), PictureFormat::png);
    writeFile(original, data->toStdString());
    ScreenshotItem item = bareItem(1);
    item.url = original;
    items.insertNewest(item);
  }
  void make() { replacement = std::make_unique<FileReplacement>(world, items, records); }
  static QImage picture() {
    QImage image(20, 10, QImage::Format_RGB32);
    image.fill(Qt::red);
    return image;
  }
  Task<std::optional<QString>> begin() {
    return replacement->replace(uuid(1), picture(), QRectF(0, 0, 5, 4), fileStamp(original, world.fileIdentity));
  }
  std::optional<QString> replace() {
    const auto task = begin();
    executor.drain();
    return task.isDone() ? task.await_resume() : QStringLiteral("not done");
  }
  FileURL journal() const { return home.file("replacing.json"); }

  TemporaryFolder home;
  const FileURL shots = home.file("shots");
  const FileURL original = shots.appending("shot.png");
  const FileURL trash = home.file("trash");
  ManualExecutor executor;
  FakeFileOperations files{trash};
  FakeReplacedRecords records;
  bool isFolderReachable = true;
  AppModelDependencies world;
  ScreenshotList items;
  std::unique_ptr<FileReplacement> replacement;
};

TEST_F(FileReplacementTest, TheJournalIsThereUntilTheRecordKnowsItsNewFile) {
  records.onReplaced = [&] { EXPECT_TRUE(fileExists(journal())); };
  EXPECT_EQ(replace(), std::nullopt);
  EXPECT_THAT(records.replaced, ElementsAre(uuid(1)));
  EXPECT_FALSE(fileExists(journal()));
  EXPECT_TRUE(fileExists(trash.appending("shot.png")));
  EXPECT_EQ(QImage(original.displayPath()).size(), QSize(5, 4));
}

TEST_F(FileReplacementTest, TheJournalIsThereUntilTheListThatTellsOfItIsSaved) {
  records.disk.holdBackground();
  EXPECT_EQ(replace(), std::nullopt) << "the crop stands in its place; nobody waits for the list";
  EXPECT_THAT(ReplacementJournal(journal()).load(), SizeIs(1));
  records.disk.runHeldBackground();
  executor.drain();
  EXPECT_FALSE(fileExists(journal()));
}

TEST_F(FileReplacementTest, AListThatCannotBeSavedLeavesTheNoteToTheNextStart) {
  records.isSaved = false;
  EXPECT_EQ(replace(), std::nullopt);
  ASSERT_THAT(ReplacementJournal(journal()).load(), SizeIs(1));
  records.isSaved = true;
  make();
  replacement->finishBegun(shots);
  executor.drain();
  EXPECT_THAT(records.replaced, ElementsAre(uuid(1), uuid(1)));
  EXPECT_EQ(QImage(original.displayPath()).size(), QSize(5, 4));
  EXPECT_FALSE(fileExists(journal()));
}

TEST_F(FileReplacementTest, ANoteIsForgottenAlone) {
  records.disk.holdBackground();
  EXPECT_EQ(replace(), std::nullopt);
  const Replacement other{uuid(9), shots.appending("other.png"), shots.appending("crop.png"), 9};
  ReplacementJournal(journal()).add(other);
  records.disk.runHeldBackground();
  executor.drain();
  EXPECT_THAT(ReplacementJournal(journal()).load(), ElementsAre(other));
}

TEST_F(FileReplacementTest, TheRecordIsProtectedWhileTheCropIsWritten) {
  const auto task = begin();
  EXPECT_TRUE(records.protectedIDs.contains(uuid(1)));
  executor.drain();
  EXPECT_TRUE(task.isDone());
  EXPECT_THAT(records.protectedIDs, IsEmpty());
}

TEST_F(FileReplacementTest, AFileThatWasWrittenMeanwhileStays) {
  const auto task = begin();
  writeFile(original, "another picture");
  executor.drain();
  EXPECT_TRUE(task.await_resume());
  EXPECT_EQ(readBytes(original), "another picture");
  EXPECT_THAT(records.replaced, IsEmpty());
  EXPECT_THAT(namesIn(shots), ElementsAre("shot.png")) << "the crop is gone again";
  EXPECT_EQ(files.trashCalls, 0);
}

TEST_F(FileReplacementTest, AFileThatCameAfterTheLastLookIsTakenBackOutOfTrash) {
  files.onTrash = [&] {
    std::filesystem::rename(original.path(), home.file("moved away.png").path());
    writeFile(original, "a newcomer");
  };
  EXPECT_EQ(replace(), ImageOperations::description(ImageOperations::OperationError::unreadable));
  EXPECT_EQ(readBytes(original), "a newcomer");
  EXPECT_THAT(namesIn(shots), ElementsAre("shot.png")) << "the crop is gone again";
  EXPECT_THAT(records.replaced, IsEmpty());
}

TEST_F(FileReplacementTest, WhereTheDiskTellsNoFilesApartTheLastLookHasToDo) {
  world.fileIdentity = [](const FileURL&) { return std::nullopt; };
  EXPECT_EQ(replace(), std::nullopt);
  EXPECT_THAT(records.replaced, ElementsAre(uuid(1)));
}

TEST_F(FileReplacementTest, ARefusedOriginalStaysAndTheSystemSaysWhy) {
  files.refuse(original);
  EXPECT_EQ(replace(), files.failureReason);
  EXPECT_THAT(namesIn(shots), ElementsAre("shot.png"));
  EXPECT_FALSE(fileExists(journal()));
}

TEST_F(FileReplacementTest, WhereTheCropCannotComeTheOriginalIsTakenBack) {
  files.refusesReplacements = true;
  EXPECT_EQ(replace(), files.failureReason);
  EXPECT_EQ(QImage(original.displayPath()).size(), picture().size());
  EXPECT_THAT(records.putAt, IsEmpty());
}

TEST_F(FileReplacementTest, ItIsTakenBackUnderANumberWhereItsNameIsTaken) {
  files.refusesReplacements = true;
  files.onMove = [&](const FileURL&, const FileURL&) { writeFile(original, "a newcomer"); };
  EXPECT_TRUE(replace());
  EXPECT_THAT(records.putAt, ElementsAre(shots.appending("shot (1).png")));
  EXPECT_EQ(readBytes(original), "a newcomer");
}

TEST_F(FileReplacementTest, ANewRunBringsTheCropThatIsMissing) {
  const FileURL temporary = shots.appending(std::string(ImageOperations::kReplacementPrefix) + "1.png");
  std::filesystem::rename(original.path(), temporary.path());
  ReplacementJournal(journal()).save({{uuid(1), original, temporary, fileStatus(temporary)->inode}});
  isFolderReachable = false;
  replacement->finishBegun(shots);
  executor.drain();
  EXPECT_THAT(ReplacementJournal(journal()).load(), SizeIs(1)) << "its disk may come back";
  EXPECT_TRUE(fileExists(temporary)) << "and it is awaited, not swept away";
  isFolderReachable = true;
  replacement->finishBegun(shots);
  executor.drain();
  EXPECT_THAT(namesIn(shots), ElementsAre("shot.png"));
  EXPECT_THAT(records.replaced, ElementsAre(uuid(1)));
  EXPECT_FALSE(fileExists(journal()));
}

TEST_F(FileReplacementTest, WhatWasNotEvenFinishedIsSweptAwayBeforeAnythingIsWritten) {
  writeFile(shots.appending(std::string(ImageOperations::kReplacementPrefix) + "2.png"), "half a picture");
  replacement->finishBegun(shots);
  const auto task = begin();
  executor.drain();
  EXPECT_EQ(task.await_resume(), std::nullopt);
  EXPECT_THAT(namesIn(shots), ElementsAre("shot.png"));
  EXPECT_EQ(QImage(original.displayPath()).size(), QSize(5, 4));
}

TEST_F(FileReplacementTest, ItIsSweptAwayWhereverARecordHasItsFile) {
  const FileURL elsewhere = home.file("elsewhere");
  std::filesystem::create_directory(elsewhere.path());
  ScreenshotItem item = bareItem(2);
  item.url = elsewhere.appending("moved.png");
  items.insertNewest(item);
  writeFile(item.url, "a picture");
  writeFile(elsewhere.appending(std::string(ImageOperations::kReplacementPrefix) + "3.png"), "half a picture");
  replacement->finishBegun(shots);
  executor.drain();
  EXPECT_THAT(namesIn(elsewhere), ElementsAre("moved.png"));
}

TEST_F(FileReplacementTest, ACropWhoseOwnerIsGoneIsRemoved) {
  begin().detach();
  replacement.reset();
  executor.drain();
  EXPECT_EQ(QImage(original.displayPath()).size(), picture().size());
  EXPECT_THAT(namesIn(shots), ElementsAre("shot.png"));
}

}  // namespace
}  // namespace quillmere::testing
