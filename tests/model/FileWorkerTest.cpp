#include "model/FileWorker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/ManualExecutor.h"
#include "support/Records.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;

const FileURL kShot = FileURL::fromPath("/shots/shot.png");
const FileURL kOther = FileURL::fromPath("/shots/other.png");

class FileWorking : public ::testing::Test {
 protected:
  static FileClaim claimOf(int record, const FileURL& place) { return FileClaim{UUIDSet{uuid(record)}, {place}}; }
  /// Notes its name when it begins, works in the background, and notes it again at its end.
  static Task<> operate(FileWorking* self, FileClaim claim, std::string name) {
    auto entering = self->worker->enter(std::move(claim));
    const auto hold = co_await entering;
    self->notes.push_back(name);
    const std::function<int()> work = [] { return 1; };
    const auto working = self->worker->run(work);
    co_await working;
    self->notes.push_back(name + " ended");
  }
  void begin(FileClaim claim, const std::string& name) { operate(this, std::move(claim), name).detach(); }

  ManualExecutor executor;
  std::vector<std::string> notes;
  int ends = 0;
  std::unique_ptr<FileWorker> worker = std::make_unique<FileWorker>(executor, [this] { ++ends; });
};

TEST_F(FileWorking, OperationsOnOneFileFollowOneAnother) {
  begin(claimOf(1, kShot), "first");
  begin(claimOf(2, kShot), "same place");
  begin(claimOf(1, kOther), "same record");
  EXPECT_THAT(notes, ElementsAre("first"));
  executor.drain();
  EXPECT_THAT(
      notes, ElementsAre("first", "first ended", "same place", "same record", "same place ended", "same record ended"));
  EXPECT_FALSE(worker->isBusy());
  EXPECT_EQ(ends, 3);
}

TEST_F(FileWorking, APlaceIsTheSameInEveryWriting) {
  begin(claimOf(1, kShot), "first");
  begin(claimOf(2, FileURL::fromPath("/shots/./shot.png")), "second");
  EXPECT_THAT(notes, ElementsAre("first"));
  executor.drain();
  EXPECT_EQ(notes.size(), 4u);
}

TEST_F(FileWorking, FewRunAtATime) {
  executor.holdBackground();
  for (int i = 0; i < 5; ++i) begin(claimOf(i, FileURL::fromPath("/shots/" + std::to_string(i))), std::to_string(i));
  EXPECT_EQ(notes.size(), 5u) << "they have their files";
  EXPECT_EQ(executor.heldBackground(), 2u);
  executor.runHeldBackground();
  EXPECT_EQ(notes.size(), 10u);
}

TEST_F(FileWorking, WhoeverWantsTwoFilesWaitsForBothAndNobodyOvertakesIt) {
  executor.holdBackground();
  begin(claimOf(1, kShot), "first");
  begin(FileClaim{UUIDSet{}, {kShot, kOther}}, "both");
  begin(claimOf(2, kOther), "last");
  EXPECT_THAT(notes, ElementsAre("first"));
  executor.runHeldBackground();
  EXPECT_THAT(notes, ElementsAre("first", "first ended", "both", "both ended", "last", "last ended"));
}

TEST_F(FileWorking, ARecordIsBusyFromTheWaitToTheEnd) {
  executor.holdBackground();
  begin(claimOf(1, kShot), "first");
  begin(claimOf(2, kShot), "second");
  EXPECT_TRUE(worker->isBusy(uuid(1)));
  EXPECT_TRUE(worker->isBusy(uuid(2)));
  EXPECT_FALSE(worker->isBusy(uuid(3)));
  executor.runHeldBackground();
  EXPECT_FALSE(worker->isBusy(uuid(1)));
  EXPECT_FALSE(worker->isBusy(uuid(2)));
}

TEST_F(FileWorking, ANewNameConcernsItsNumbersInItsFolderToo) {
  FileClaim claim = claimOf(1, kShot);
  claim.newName = FileClaim::NewName{FileURL::fromPath("/shots"), "Invoice"};
  executor.holdBackground();
  begin(std::move(claim), "rename");
  EXPECT_TRUE(worker->concerns(kShot));
  EXPECT_TRUE(worker->concerns(FileURL::fromPath("/shots/Invoice.png")));
  EXPECT_TRUE(worker->concerns(FileURL::fromPath("/shots/Invoice (2).png")));
  EXPECT_FALSE(worker->concerns(FileURL::fromPath("/elsewhere/Invoice.png")));
  EXPECT_FALSE(worker->concerns(kOther));
  executor.runHeldBackground();
  EXPECT_FALSE(worker->concerns(FileURL::fromPath("/shots/Invoice.png")));
}

TEST_F(FileWorking, WhatWaitsGoesWithTheWorkerAndWhatRunsEndsWithoutIt) {
  executor.holdBackground();
  begin(claimOf(1, kShot), "first");
  begin(claimOf(1, kShot), "second");
  worker.reset();
  executor.runHeldBackground();
  EXPECT_THAT(notes, ElementsAre("first", "first ended"));
  EXPECT_EQ(ends, 0);
}

}  // namespace
}  // namespace quillmere::testing
