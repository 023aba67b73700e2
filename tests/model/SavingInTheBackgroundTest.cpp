// What the model does while the disk has not answered: the list's saves run when the test says so.

#include "fakes/ModelFixture.h"
#include "model/HistoryExecutor.h"
#include "records/MoveJournal.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SavingInTheBackground : public ModelFixture {
 protected:
  void launchWithHeldDisk() {
    launchWatching();
    disk.holdBackground();
  }
  void letDiskAnswer() {
    disk.runHeldBackground();
    disk.holdBackground();
  }
  /// The process is killed: nothing of what was under way comes to the disk. Then it starts again.
  void killAndLaunch() {
    const std::string list = fileExists(listFile) ? readBytes(listFile) : std::string();
    model.reset();
    disk.runHeldBackground();  // frees what it holds
    if (list.empty()) {
      std::filesystem::remove(listFile.path());
    } else {
      writeFile(listFile, list);
    }
    launch();
  }
  bool isSavedAs(const UUID& id, State state) const {
    const auto saved = savedRecord(id);
    return saved && saved->state == state;
  }
};

TEST_F(SavingInTheBackground, AnArrivalIsShownBeforeItIsSaved) {
  launchWithHeldDisk();
  const UUID id = arrive("1.png");
  EXPECT_THAT(queue(), ElementsAre(id));
  EXPECT_THAT(savedRecords(), IsEmpty());
  letDiskAnswer();
  EXPECT_TRUE(savedRecord(id));
}

TEST_F(SavingInTheBackground, ADecisionLeavesTheScreenWhenItIsSaved) {
  launchWatching();
  const UUID first = arrive("1.png");
  const UUID second = arrive("2.png");
  disk.holdBackground();
  model->keepPrompt(first).detach();
  EXPECT_THAT(queue(), ElementsAre(first, second));
  EXPECT_TRUE(model->isLeavingPrompt(first));
  EXPECT_EQ(changesOf(ModelField::leavingPrompts), 1u) << "the popup is told at once";
  letDiskAnswer();
  EXPECT_THAT(queue(), ElementsAre(second));
  EXPECT_FALSE(model->isLeavingPrompt(first));
  EXPECT_TRUE(isSavedAs(first, State::permanent));
}

TEST_F(SavingInTheBackground, AFrozenDiskHoldsADecisionUpForAMomentOnly) {
  launchWatching();
  const UUID first = arrive("1.png");
  const UUID second = arrive("2.png");
  const UUID third = arrive("3.png");
  disk.holdBackground();
  model->markTemporary(first, TemporaryDuration::oneHour).detach();
  advance(0.24);
  EXPECT_THAT(queue(), ElementsAre(first, second, third));
  advance(0.01);
  EXPECT_THAT(queue(), ElementsAre(second, third));
  model->keepPrompt(second).detach();
  advance(0.25);
  EXPECT_THAT(queue(), ElementsAre(third));
  letDiskAnswer();
  EXPECT_TRUE(isSavedAs(first, State::temporary));
  EXPECT_TRUE(isSavedAs(second, State::permanent));
}

TEST_F(SavingInTheBackground, ADecidedScreenshotTakesNoSecondDecision) {
  launchWatching();
  const UUID id = arrive("1.png");
  disk.holdBackground();
  model->keepPrompt(id).detach();
  model->markTemporary(id, TemporaryDuration::oneHour).detach();
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(model->popupAutoSaveScheduler().remaining(id), std::nullopt);
}

TEST_F(SavingInTheBackground, WhatWasNotSavedComesBackAfterAKill) {
  launchWatching();
  const UUID id = arrive("1.png");
  disk.holdBackground();
  model->keepPrompt(id).detach();
  advance(1);
  EXPECT_THAT(queue(), IsEmpty());
  killAndLaunch();
  EXPECT_THAT(queue(), ElementsAre(id));
}

TEST_F(SavingInTheBackground, WhatWasShownAsSavedStaysSoAfterAKill) {
  launchWatching();
  const UUID id = arrive("1.png");
  disk.holdBackground();
  model->keepPrompt(id).detach();
  letDiskAnswer();
  EXPECT_THAT(queue(), IsEmpty());
  EXPECT_TRUE(model->isSaved() && !model->hasPendingSave());
  killAndLaunch();
  EXPECT_THAT(queue(), IsEmpty());
  EXPECT_EQ(stateOf(id), State::permanent);
}

TEST_F(SavingInTheBackground, ASaveThatFailsLetsTheDecisionGo) {
  launchWatching();
  const UUID id = arrive("1.png");
  makeSavingFail();
  disk.holdBackground();
  model->keepPrompt(id).detach();
  letDiskAnswer();
  EXPECT_THAT(queue(), IsEmpty());
  EXPECT_EQ(banner(), Issue::recordsNotSaved);
}

TEST_F(SavingInTheBackground, OneSaveTakesAllThatCameDuringTheLast) {
  launchWithHeldDisk();
  for (int i = 0; i < 100; ++i) arrive(std::to_string(i) + ".png");
  EXPECT_EQ(disk.heldBackground(), 1u);
  const int before = files.flushes;
  letDiskAnswer();
  EXPECT_EQ(savedRecords().size(), 100u);
  EXPECT_EQ(files.flushes, before + 2);
  advance(5);
  EXPECT_EQ(disk.heldBackground(), 0u);
}

TEST_F(SavingInTheBackground, TextsThatAreReadAreSavedTogether) {
  launchWatching();
  model->setAnalyzeScreenshots(true);
  std::vector<UUID> ids;
  for (int i = 0; i < 5; ++i) ids.push_back(arrive(std::to_string(i) + ".png"));
  advance(2);
  wasSaved();
  int saves = 0;
  for (const UUID& id : ids) {
    model->recognizedText(id).detach();
    saves += wasSaved() ? 1 : 0;
  }
  advance(1);
  EXPECT_LE(saves + (wasSaved() ? 1 : 0), 1);
}

TEST_F(SavingInTheBackground, AWaitingDiskIsToldAndForgottenWhenItAnswers) {
  launchWithHeldDisk();
  arrive("1.png");
  advance(1.9);
  EXPECT_FALSE(model->isDiskSlow());
  EXPECT_EQ(banner(), std::nullopt);
  advance(0.2);
  EXPECT_TRUE(model->isDiskSlow());
  EXPECT_EQ(banner(), Issue::recordsWaiting);
  letDiskAnswer();
  EXPECT_FALSE(model->isDiskSlow());
  EXPECT_EQ(banner(), std::nullopt);
}

TEST_F(SavingInTheBackground, AWaitingDiskTakesNoBannerAway) {
  launchWatching();
  const UUID id = arriveTemporary("one.png", TemporaryDuration::oneMinute);
  files.refuse(item(id).url);
  advance(61);
  ASSERT_EQ(banner(), Issue::expiredScreenshotsNotTrashed);
  disk.holdBackground();
  model->saveNow();
  advance(3);
  EXPECT_EQ(banner(), Issue::expiredScreenshotsNotTrashed);
}

TEST_F(SavingInTheBackground, UnsavedWorkIsToldUntilTheDiskHasIt) {
  launchWithHeldDisk();
  changes.clear();
  arrive("1.png");
  EXPECT_TRUE(model->hasUnsavedWork());
  EXPECT_EQ(changesOf(ModelField::unsavedWork), 1u);
  letDiskAnswer();
  EXPECT_FALSE(model->hasUnsavedWork());
  EXPECT_EQ(changesOf(ModelField::unsavedWork), 2u);
}

TEST_F(SavingInTheBackground, AMoveStaysNotedUntilTheListThatTellsOfItIsOnTheDisk) {
  HistoryExecutor stepwise{[] { return std::nullopt; }, [](int) {}};
  chooseFolderBefore(shots);
  defaults = std::make_unique<UserDefaults>(settingsFile.displayPath());
  AppModelDependencies world = dependencies();
  world.disk = &stepwise;
  model = std::make_unique<AppModel>(std::move(world));
  model->start();
  executor.drain();
  const auto saveOnce = [&] {
    stepwise.runWork();
    stepwise.deliver(0);
  };
  const UUID id = arrive("shot.png");
  const UUID other = arrive("other.png");
  const MoveJournal journal(listFile.parent().appending("moving.json"));
  stepwise.drain();
  stepwise.hold();
  model->move(id, elsewhere.appending("moved.png")).detach();
  model->move(other, elsewhere.appending("other.png")).detach();
  executor.drain();
  EXPECT_THAT(journal.load(),
              ElementsAre(BegunMove{id, shots.appending("shot.png"), elsewhere.appending("moved.png")}));
  saveOnce();
  executor.drain();
  EXPECT_EQ(savedRecord(id)->url, elsewhere.appending("moved.png"));
  EXPECT_THAT(journal.load(),
              ElementsAre(BegunMove{other, shots.appending("other.png"), elsewhere.appending("other.png")}))
      << "one after the other";
  saveOnce();
  executor.drain();
  EXPECT_THAT(journal.load(), IsEmpty());
  model.reset();
}

TEST_F(SavingInTheBackground, AKillAfterAMoveFindsTheFile) {
  launchWatching();
  const UUID id = arrive("shot.png");
  disk.holdBackground();
  model->move(id, elsewhere.appending("moved.png")).detach();
  executor.drain();
  killAndLaunch();
  EXPECT_EQ(item(id).url, elsewhere.appending("moved.png"));
}

TEST_F(SavingInTheBackground, ClearedRecordsAreGoneOnDiskTooWhenTheyAreSaid) {
  launchWatching();
  arrive("1.png");
  disk.holdBackground();
  model->clearRecords();
  const auto saved = model->whenSaved();
  EXPECT_FALSE(saved.isDone());
  EXPECT_EQ(savedRecords().size(), 1u);
  letDiskAnswer();
  ASSERT_TRUE(saved.isDone());
  EXPECT_TRUE(saved.await_resume());
  EXPECT_THAT(savedRecords(), IsEmpty());
}

TEST_F(SavingInTheBackground, FilesAreFlushedBeforeTheListThatTellsThemGone) {
  launchWatching();
  const UUID id = arrive("1.png");
  disk.holdBackground();
  const int before = files.flushes;
  model->disposeChosen(id, ErrorScope::inbox).detach();
  EXPECT_EQ(files.flushes, before) << "not where it was decided";
  executor.drain();
  const int done = files.flushes;
  EXPECT_EQ(savedRecords().size(), 1u);
  letDiskAnswer();
  EXPECT_EQ(files.flushes, done + 1);
  EXPECT_THAT(savedRecords(), IsEmpty());
}

}  // namespace
}  // namespace quillmere::testing
