#include "model/ListSaver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <cmath>

#include "foundation/FileStatus.h"
#include "foundation/ManualExecutor.h"
#include "records/ScreenshotRecordStore.h"
#include "support/Files.h"
#include "support/Printing.h"
#include "support/Records.h"
#include "support/TemporaryFolder.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Cause = ListSaver::Cause;

class ListSaverTest : public ::testing::Test {
 protected:
  ListSaverTest() { make(); }
  void make() {
    saver = std::make_unique<ListSaver>(
        ListSaver::Services{&executor, &disk, [this] { flushedWith.push_back(savedCount()); }, file,
                            [this] { return awaitedSince; }},
        list);
    saver->onEnd = [this](bool isSaved, Cause cause) { ends.emplace_back(isSaved, cause); };
    saver->onPendingChanged = [this] { pendings.push_back(saver->isPending()); };
  }
  void add() { list.insertNewest(bareItem(next++)); }
  size_t savedCount() const { return ScreenshotRecordStore{file}.load(Date{}).items.size(); }
  void makeFail() { std::filesystem::create_directory(file.path() + ".saving"); }
  void makeWork() { std::filesystem::remove(file.path() + ".saving"); }
  Task<> note(std::optional<Duration> longest = std::nullopt) {
    auto saving = saver->whenSaved(longest);
    const SaveOutcome outcome = co_await saving;
    outcomes.push_back(outcome);
  }
  /// As often as a stream of one a tenth of a second saves in so many seconds.
  size_t savesOfStream(double lasting) {
    const size_t before = flushedWith.size();
    for (int i = 0; i < static_cast<int>(lasting * 10); ++i) {
      add();
      saver->saveInStream(seconds(1));
      disk.drain();
      executor.advance(seconds(0.1));
      disk.drain();
    }
    return flushedWith.size() - before;
  }

  TemporaryFolder folder;
  const FileURL file = folder.file("screenshots.json");
  ManualExecutor executor;
  ManualExecutor disk;
  ScreenshotList list;
  std::optional<Date> awaitedSince;
  int next = 1;
  std::vector<size_t> flushedWith;  ///< how many records were on the disk when the files were flushed
  std::vector<std::pair<bool, Cause>> ends;
  std::vector<bool> pendings;
  std::vector<SaveOutcome> outcomes;
  std::unique_ptr<ListSaver> saver;
};

TEST_F(ListSaverTest, AListThatMayLackSomethingIsDatedBeforeItCame) {
  const auto dated = [&] { return fileStatus(file)->modified; };
  add();
  saver->save();
  disk.drain();
  const Date usual = dated();
  awaitedSince = usual + -20.5;
  saver->save();
  disk.drain();
  EXPECT_EQ(dated().seconds, std::floor(usual.seconds - 20.5));
  awaitedSince = usual + 1000.0;
  saver->save();
  disk.drain();
  EXPECT_GE(dated(), usual);
  EXPECT_LT(dated(), usual + 900.0);
}

TEST_F(ListSaverTest, NothingIsWrittenWhereItWasAskedFor) {
  add();
  saver->save();
  EXPECT_FALSE(fileExists(file));
  EXPECT_TRUE(saver->isPending());
  disk.drain();
  EXPECT_EQ(savedCount(), 1u);
  EXPECT_FALSE(saver->isPending());
  EXPECT_THAT(pendings, ElementsAre(true, false));
}

TEST_F(ListSaverTest, TheListIsWrittenAsItWasWhenTheSaveBegan) {
  add();
  saver->save();
  add();
  list.update(1, [](ScreenshotItem& item) { item.suggestedName = "later"; });
  disk.drain();
  const auto saved = ScreenshotRecordStore{file}.load(Date{}).items;
  EXPECT_THAT(saved, ElementsAre(bareItem(1)));
}

TEST_F(ListSaverTest, FilesAreFlushedBeforeTheListThatTellsOfThem) {
  add();
  saver->save();
  disk.drain();
  add();
  saver->save();
  disk.drain();
  EXPECT_THAT(flushedWith, ElementsAre(0, 1));
}

TEST_F(ListSaverTest, WhatIsAskedForDuringASaveIsOneMoreOfTheNewestState) {
  add();
  saver->save();
  for (int i = 0; i < 5; ++i) {
    add();
    saver->save();
  }
  EXPECT_EQ(disk.heldBackground(), 1u);
  disk.drain();
  EXPECT_EQ(savedCount(), 6u);
  EXPECT_THAT(ends, ElementsAre(std::pair(true, Cause::asked), std::pair(true, Cause::asked)));
}

TEST_F(ListSaverTest, OfAStreamTheFirstFewAreSavedAtOnce) {
  for (int i = 0; i < 3; ++i) {
    add();
    saver->saveInStream(seconds(1));
    disk.drain();
    EXPECT_EQ(savedCount(), list.size());
  }
}

TEST_F(ListSaverTest, ALongStreamIsSavedOnceASecond) {
  savesOfStream(5);
  EXPECT_LE(savesOfStream(20), 21u);
  EXPECT_GE(savesOfStream(20), 19u);
  executor.advance(seconds(1));
  disk.drain();
  EXPECT_EQ(savedCount(), list.size());
}

TEST_F(ListSaverTest, ADecisionDuringAStreamIsSavedAtOnce) {
  savesOfStream(5);
  add();
  saver->saveInStream(seconds(1));
  saver->save();
  disk.drain();
  EXPECT_EQ(savedCount(), list.size());
}

TEST_F(ListSaverTest, ATrickleIsSavedOneByOneAgainAfterAPause) {
  savesOfStream(10);
  executor.advance(seconds(20));
  add();
  saver->saveInStream(seconds(1));
  disk.drain();
  EXPECT_EQ(savedCount(), list.size());
}

TEST_F(ListSaverTest, SmallChangesAreSavedTogetherCountedFromTheFirst) {
  add();
  saver->saveWithin(seconds(0.75));
  executor.advance(seconds(0.5));
  saver->saveWithin(seconds(0.75));
  executor.advance(seconds(0.25));
  disk.drain();
  EXPECT_EQ(savedCount(), 1u);
  executor.advance(seconds(5));
  EXPECT_THAT(ends, ElementsAre(std::pair(true, Cause::asked)));
}

TEST_F(ListSaverTest, ASaveThatFailsIsTriedAgainAfterDoublingPauses) {
  makeFail();
  add();
  saver->save();
  disk.drain();
  EXPECT_FALSE(saver->isSaved());
  EXPECT_TRUE(saver->isPending());
  for (const double pause : {1.0, 2.0, 4.0, 8.0, 16.0, 32.0, 32.0}) {
    const size_t before = ends.size();
    executor.advance(seconds(pause - 0.01));
    disk.drain();
    EXPECT_EQ(ends.size(), before) << pause;
    executor.advance(seconds(0.01));
    disk.drain();
    ASSERT_EQ(ends.size(), before + 1) << pause;
    EXPECT_EQ(ends.back(), std::pair(false, Cause::retry));
  }
  makeWork();
  executor.advance(seconds(32));
  disk.drain();
  EXPECT_TRUE(saver->isSaved());
  EXPECT_FALSE(saver->isPending());
  EXPECT_EQ(savedCount(), 1u);
}

TEST_F(ListSaverTest, AFailureInTheMiddleTakesNothingAwayFromTheNextSave) {
  add();
  saver->save();
  disk.drain();
  makeFail();
  add();
  saver->save();
  add();
  saver->save();
  disk.holdBackground();
  disk.drain();
  disk.runHeldBackground();
  EXPECT_THAT(
      ends, ElementsAre(std::pair(true, Cause::asked), std::pair(false, Cause::asked), std::pair(false, Cause::asked)));
  EXPECT_EQ(savedCount(), 1u);
  makeWork();
  add();
  saver->save();
  disk.drain();
  EXPECT_EQ(savedCount(), 4u);
}

TEST_F(ListSaverTest, WhoeverWaitsIsToldWhenItsStateIsOnTheDisk) {
  note().detach();
  EXPECT_THAT(outcomes, ElementsAre(SaveOutcome::saved)) << "nothing was asked for";
  outcomes.clear();
  add();
  saver->save();
  note().detach();
  disk.holdBackground();
  add();
  saver->save();
  note().detach();
  EXPECT_THAT(outcomes, IsEmpty());
  disk.runHeldBackground();
  EXPECT_THAT(outcomes, ElementsAre(SaveOutcome::saved, SaveOutcome::saved));
}

TEST_F(ListSaverTest, AStateThatCameDuringASaveIsNotOnTheDiskWithIt) {
  add();
  saver->save();
  bool wasTold = true;
  saver->onEnd = [&](bool, Cause) {
    if (savedCount() == 1) wasTold = !outcomes.empty();
  };
  add();
  saver->save();
  note().detach();
  disk.drain();
  EXPECT_FALSE(wasTold);
  EXPECT_THAT(outcomes, ElementsAre(SaveOutcome::saved));
  EXPECT_EQ(savedCount(), 2u);
}

TEST_F(ListSaverTest, WhoeverWaitsIsToldOfAFailure) {
  makeFail();
  saver->save();
  note().detach();
  disk.drain();
  EXPECT_THAT(outcomes, ElementsAre(SaveOutcome::failed));
  note().detach();
  EXPECT_THAT(outcomes, ElementsAre(SaveOutcome::failed, SaveOutcome::failed)) << "not before the next try";
}

TEST_F(ListSaverTest, NobodyWaitsLongerThanTheyWantTo) {
  add();
  saver->save();
  note(seconds(0.25)).detach();
  executor.advance(seconds(0.24));
  EXPECT_THAT(outcomes, IsEmpty());
  executor.advance(seconds(0.01));
  EXPECT_THAT(outcomes, ElementsAre(SaveOutcome::waiting));
  disk.drain();
  EXPECT_THAT(outcomes, ElementsAre(SaveOutcome::waiting)) << "told once";
}

TEST_F(ListSaverTest, ADiskThatDoesNotAnswerIsSlow) {
  add();
  saver->save();
  executor.advance(seconds(1.9));
  EXPECT_FALSE(saver->isSlow());
  executor.advance(seconds(0.1));
  EXPECT_TRUE(saver->isSlow());
  disk.drain();
  EXPECT_FALSE(saver->isSlow());
  EXPECT_EQ(executor.pendingDelays(), 0u);
}

TEST_F(ListSaverTest, WhatRunsIsBroughtToItsEndWithoutTheSaver) {
  add();
  saver->save();
  note().detach();
  note(seconds(1)).detach();
  saver.reset();
  EXPECT_EQ(executor.pendingDelays(), 0u);
  disk.drain();
  EXPECT_EQ(savedCount(), 1u);
  EXPECT_THAT(outcomes, IsEmpty());
}

TEST_F(ListSaverTest, WhatHasNotBegunIsSavedAtTheEndAllTheSame) {
  add();
  saver->save();
  add();
  saver->save();
  saver->saveLast();
  saver.reset();
  EXPECT_EQ(executor.pendingDelays(), 0u);
  disk.drain();
  EXPECT_EQ(savedCount(), 2u);
  EXPECT_THAT(ends, IsEmpty());
}

TEST_F(ListSaverTest, WhatWaitsForAPauseIsSavedAtTheEndAtOnce) {
  add();
  saver->saveWithin(seconds(5));
  saver->saveLast();
  saver.reset();
  disk.drain();
  EXPECT_EQ(savedCount(), 1u);
}

TEST_F(ListSaverTest, NothingIsSavedAtTheEndThatIsOnItsWay) {
  add();
  saver->save();
  saver->saveLast();
  saver.reset();
  disk.drain();
  EXPECT_EQ(flushedWith.size(), 1u);
}

}  // namespace
}  // namespace quillmere::testing
