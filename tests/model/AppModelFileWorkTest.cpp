#include "fakes/ModelFixture.h"
#include "model/HistoryExecutor.h"

// What happens to a record while its file is being worked on.

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Reason = AppModel::DisposalReason;

class AppModelFileWork : public ModelFixture {
 protected:
  void SetUp() override { launchWatching(); }
  Task<> beginDisposal(const UUID& id, ErrorScope shownIn = ErrorScope::inbox) {
    executor.holdBackground();
    return model->disposeItem(item(id), shownIn, Reason::chosen);
  }
  void end() { executor.runHeldBackground(); }
  const FileURL shot = shots.appending("shot.png");
};

// --- The popup ---

TEST_F(AppModelFileWork, TheCardLeavesWhenTheFileIsThrownAway) {
  const UUID first = arrive("shot.png"), second = arrive("2.png");
  beginDisposal(first, ErrorScope::popup).detach();
  EXPECT_EQ(presenter.visible, first);
  end();
  EXPECT_EQ(presenter.visible, second);
  EXPECT_FALSE(hasRecord(first));
}

TEST_F(AppModelFileWork, TheCardLeavesASlowDiskAlone) {
  const UUID first = arrive("shot.png"), second = arrive("2.png");
  beginDisposal(first, ErrorScope::popup).detach();
  advance(0.249);
  EXPECT_EQ(presenter.visible, first);
  advance(0.001);
  EXPECT_EQ(presenter.visible, second);
  EXPECT_TRUE(hasRecord(first));
  end();
  EXPECT_FALSE(hasRecord(first));
  EXPECT_THAT(queue(), ElementsAre(second));
  EXPECT_THAT(savedRecords(), ElementsAre(item(second)));
}

TEST_F(AppModelFileWork, ACardThatWasDecidedAboutTakesNoSecondDecision) {
  const UUID id = arrive("shot.png");
  beginDisposal(id, ErrorScope::popup).detach();
  const auto kept = model->keepPrompt(id, QStringLiteral("Named"));
  const auto temporary = model->markTemporary(id, TemporaryDuration::oneHour);
  const auto again = model->disposeChosen(id, ErrorScope::popup);
  model->markTemporaryBatch({id}, TemporaryDuration::oneHour);
  model->dismissPrompt();
  EXPECT_TRUE(kept.isDone() && temporary.isDone() && again.isDone());
  EXPECT_EQ(again.await_resume(), AppModel::ChosenDisposal::declined);
  EXPECT_EQ(stateOf(id), State::pending);
  EXPECT_EQ(presenter.visible, id);
  end();
  EXPECT_FALSE(hasRecord(id));
  EXPECT_TRUE(isInTrashFolder("shot.png"));
  EXPECT_EQ(files.calls(), 1);
}

TEST_F(AppModelFileWork, ALateRefusalIsToldInTheInboxAndThePersonIsAskedAgain) {
  const UUID first = arrive("shot.png"), second = arrive("2.png");
  files.refuse(shot);
  beginDisposal(first, ErrorScope::popup).detach();
  advance(0.25);
  ASSERT_EQ(presenter.visible, second);
  end();
  EXPECT_EQ(*model->promptError, std::nullopt);
  EXPECT_EQ((*model->inboxError)->title, "Couldn’t Move to Trash");
  EXPECT_THAT(queue(), ElementsAre(second, first));
}

TEST_F(AppModelFileWork, ALateRefusalOfTheOnlyCardBringsItBackWithTheReason) {
  const UUID id = arrive("shot.png");
  files.refuse(shot);
  beginDisposal(id, ErrorScope::popup).detach();
  advance(0.25);
  ASSERT_THAT(queue(), IsEmpty());
  model->reviewPending(FocusNews::silent);
  EXPECT_THAT(queue(), IsEmpty()) << "it is being decided about";
  end();
  EXPECT_EQ(presenter.visible, id);
  EXPECT_EQ((*model->promptError)->title, "Couldn’t Move to Trash");
}

TEST_F(AppModelFileWork, ACardIsNotKeptByItsTimeMeanwhile) {
  setSettings(R"({"quillmere.popup-autosave":true,"quillmere.popup-seconds":3})");
  launchWatching();
  const UUID id = arrive("shot.png");
  executor.holdBackground();
  const auto renaming = model->rename(id, QStringLiteral("Named"), ErrorScope::inbox);
  advance(60);
  EXPECT_EQ(stateOf(id), State::pending);
  end();
  EXPECT_TRUE(renaming.isDone());
  advance(10);
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(item(id).url, shots.appending("Named.png"));
}

TEST_F(AppModelFileWork, ADecisionWithANameRenamesFirst) {
  const UUID first = arrive("shot.png"), second = arrive("2.png");
  executor.holdBackground();
  const auto deciding = model->markTemporary(first, TemporaryDuration::oneHour, QStringLiteral("Named"));
  EXPECT_EQ(stateOf(first), State::pending);
  model->keepPrompt(first, QStringLiteral("Otherwise")).detach();
  advance(0.25);
  EXPECT_EQ(presenter.visible, second);
  end();
  EXPECT_TRUE(deciding.isDone());
  EXPECT_EQ(stateOf(first), State::temporary);
  EXPECT_EQ(item(first).url, shots.appending("Named.png"));
  EXPECT_EQ(savedRecord(first), item(first));
}

// --- Other decisions ---

TEST_F(AppModelFileWork, OneAfterAnotherForOneRecord) {
  const UUID id = arrivePermanent("shot.png");
  executor.holdBackground();
  const auto renaming = model->rename(id, QStringLiteral("Named"), ErrorScope::inbox);
  const auto disposing = model->disposeItem(item(id), ErrorScope::inbox, Reason::chosen);
  const auto late = model->rename(id, QStringLiteral("Late"), ErrorScope::inbox);
  end();
  EXPECT_TRUE(renaming.await_resume());
  EXPECT_TRUE(disposing.isDone());
  EXPECT_FALSE(late.await_resume());
  EXPECT_TRUE(isInTrashFolder("Named.png"));
  EXPECT_THAT(savedRecords(), IsEmpty());
  EXPECT_EQ(*model->inboxError, std::nullopt);
}

TEST_F(AppModelFileWork, WhoeverKeepsWhatCouldNotBeThrownAwayHasItKept) {
  const UUID id = arrive("shot.png");
  files.refuse(shot);
  beginDisposal(id).detach();
  model->keepBatch({id});
  EXPECT_EQ(stateOf(id), State::pending);
  end();
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(savedRecord(id), item(id));
}

TEST_F(AppModelFileWork, ARecordThatIsForgottenMeanwhileIsNoError) {
  const UUID id = arrivePermanent("shot.png");
  beginDisposal(id).detach();
  model->clearRecords();
  end();
  EXPECT_TRUE(isInTrashFolder("shot.png"));
  EXPECT_TRUE(model->items().empty());
  EXPECT_EQ(*model->inboxError, std::nullopt);
}

TEST_F(AppModelFileWork, AFileOfARecordThatIsForgottenWhileItIsRenamedMakesNoNewOne) {
  const UUID id = arrive("shot.png");
  executor.holdBackground();
  const auto renaming = model->rename(id, QStringLiteral("Named"), ErrorScope::inbox);
  model->clearRecords();
  end();
  EXPECT_TRUE(renaming.isDone());
  EXPECT_THAT(monitor.known, ::testing::Contains(shots.appending("Named.png")));
  EXPECT_TRUE(model->items().empty());
}

// --- Expiry ---

TEST_F(AppModelFileWork, WhatIsBeingRenamedDoesNotExpireUntilLater) {
  const UUID id = arriveTemporary("shot.png", TemporaryDuration::oneMinute);
  executor.holdBackground();
  const auto renaming = model->rename(id, QStringLiteral("Named"), ErrorScope::inbox);
  advance(61);
  end();
  EXPECT_TRUE(renaming.isDone());
  EXPECT_EQ(stateOf(id), State::temporary) << "no rename in the program keeps it";
  advance(10);
  EXPECT_FALSE(hasRecord(id));
  EXPECT_TRUE(isInTrashFolder("Named.png"));
}

TEST_F(AppModelFileWork, WhatIsBeingThrownAwayDoesNotExpireAsWell) {
  const UUID id = arriveTemporary("shot.png", TemporaryDuration::oneMinute);
  beginDisposal(id).detach();
  advance(61);
  end();
  advance(100);
  EXPECT_EQ(files.calls(), 1);
  EXPECT_FALSE(hasRecord(id));
}

TEST_F(AppModelFileWork, AnExpiryThatIsRefusedLetsThePersonKeepIt) {
  const UUID id = arriveTemporary("shot.png", TemporaryDuration::oneMinute);
  files.refuse(shot);
  executor.holdBackground();
  advance(61);
  model->keepBatch({id});
  end();
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(scheduledAt(id), std::nullopt);
  EXPECT_EQ(banner(), std::nullopt);
}

TEST_F(AppModelFileWork, WhatIsKeptBeforeItsTurnComesStays) {
  const UUID id = arriveTemporary("shot.png", TemporaryDuration::oneMinute);
  executor.holdBackground();
  advance(61);
  model->keepBatch({id});
  end();
  EXPECT_TRUE(fileExists(shot));
  EXPECT_EQ(files.calls(), 0);
  EXPECT_EQ(stateOf(id), State::permanent);
}

TEST_F(AppModelFileWork, WhatIsOpenedBeforeItsTurnComesExpiresLater) {
  const UUID id = arriveTemporary("shot.png", TemporaryDuration::oneMinute);
  executor.holdBackground();
  advance(61);
  model->protect(id);
  end();
  EXPECT_TRUE(fileExists(shot));
  EXPECT_EQ(stateOf(id), State::temporary);
  advance(30);
  EXPECT_TRUE(fileExists(shot));
  model->unprotect(id);
  advance(11);
  EXPECT_TRUE(isInTrashFolder("shot.png"));
  EXPECT_FALSE(hasRecord(id));
}

TEST_F(AppModelFileWork, WhatWasToBeDeletedGoesToTrashWhenThatIsSaidBeforeItsTurnComes) {
  model->setDeletesExpiredImmediately(true);
  const UUID id = arriveTemporary("shot.png", TemporaryDuration::oneMinute);
  executor.holdBackground();
  advance(61);
  model->setDeletesExpiredImmediately(false);
  end();
  EXPECT_TRUE(fileExists(shot));
  advance(11);
  EXPECT_TRUE(isInTrashFolder("shot.png"));
  EXPECT_FALSE(hasRecord(id));
}

// --- What is heard of the file meanwhile ---

TEST_F(AppModelFileWork, AnotherFileInThePlaceIsSeenByTheWorkItself) {
  const UUID id = arrivePermanent("shot.png");
  beginDisposal(id).detach();
  identities[shot.path()] = FileIdentity{"volume", 4711, Date{kStart + 50}, 7};
  end();
  EXPECT_EQ(files.calls(), 0);
  EXPECT_TRUE(fileExists(shot));
  EXPECT_EQ((*model->inboxError)->title, "Screenshot Has Changed");
}

TEST_F(AppModelFileWork, WhatWasAskedTwiceThrowsAwayNoFileThatCameMeanwhile) {
  const UUID id = arrivePermanent("shot.png");
  beginDisposal(id).detach();
  beginDisposal(id).detach();
  identities[shot.path()] = FileIdentity{"volume", 4711, Date{kStart + 50}, 7};
  end();
  EXPECT_EQ(files.calls(), 0);
  EXPECT_TRUE(hasRecord(id));
}

TEST_F(AppModelFileWork, ALookDuringTheWorkDecidesNothing) {
  const UUID id = arrivePermanent("shot.png");
  files.refuse(shot);
  executor.holdBackground();
  model->reconcile({});
  const auto disposing = model->disposeItem(item(id), ErrorScope::inbox, Reason::chosen);
  end();
  EXPECT_TRUE(disposing.isDone());
  EXPECT_TRUE(hasRecord(id));
  EXPECT_FALSE(model->isReconciling());
}

TEST_F(AppModelFileWork, WhatALookFoundDuringTheWorkIsLookedForAgain) {
  const UUID id = arrivePermanent("shot.png");
  executor.holdBackground();
  model->reconcile({});
  files.answers[shot.path()] = FileOutcome::failed;
  const auto disposing = model->disposeItem(item(id), ErrorScope::inbox, Reason::chosen);
  deleteFile(shot);
  end();
  EXPECT_TRUE(disposing.isDone());
  EXPECT_FALSE(hasRecord(id)) << "it is gone";
}

// --- Between the work and its result ---

/// The work and the delivery of what came of it are two steps of the test.
class BetweenWorkAndResult : public ModelFixture {
 protected:
  void SetUp() override {
    chooseFolderBefore(shots);
    defaults = std::make_unique<UserDefaults>(settingsFile.displayPath());
    AppModelDependencies world = dependencies();
    world.executor = &background;
    world.now = [this] {
      return now() + std::chrono::duration<double>(background.instant().time_since_epoch()).count();
    };
    model = std::make_unique<AppModel>(std::move(world));
    model->start();
    background.drain();
    background.hold();
  }
  void TearDown() override { model.reset(); }
  void rename(const UUID& id) {
    model->rename(id, QStringLiteral("Named"), ErrorScope::inbox).detach();
    background.runWork();
  }
  void dispose(const UUID& id) {
    model->disposeItem(item(id), ErrorScope::inbox, Reason::chosen).detach();
    background.runWork();
  }
  void deliver() {
    background.release();
    background.hold();
  }
  const FileURL shot = shots.appending("shot.png");
  const FileURL named = shots.appending("Named.png");

  HistoryExecutor background{[] { return std::nullopt; }, [](int) {}};
};

TEST_F(BetweenWorkAndResult, AnExpiredFileThatWentHasNoRecordWhateverBecameOfIt) {
  const UUID id = arriveTemporary("shot.png", TemporaryDuration::oneMinute);
  for (Duration left = seconds(61); left > Duration::zero();) left = background.advanceOnce(left);
  background.runWork();
  model->keepBatch({id});
  deliver();
  EXPECT_TRUE(isInTrashFolder("shot.png"));
  EXPECT_FALSE(hasRecord(id));
  EXPECT_THAT(savedRecords(), IsEmpty());
}

TEST_F(BetweenWorkAndResult, NewsOfTheNewNameKeepsNothingAndMakesNoSecondRecord) {
  const UUID id = arriveTemporary("shot.png");
  rename(id);
  monitor.onScreenshot(named);
  monitor.onRemoval({shot});
  EXPECT_EQ(model->items().size(), 1u);
  deliver();
  EXPECT_EQ(model->items().size(), 1u);
  EXPECT_EQ(stateOf(id), State::temporary);
  EXPECT_EQ(item(id).url, named);
  EXPECT_THAT(queue(), IsEmpty());
}

TEST_F(BetweenWorkAndResult, NewsOfTheNewNameOfAFileWithoutANumberMakesNoSecondRecord) {
  identities[shot.path()] = std::nullopt;
  identities[named.path()] = std::nullopt;
  const UUID id = arrive("shot.png");
  rename(id);
  monitor.onScreenshot(named);
  deliver();
  EXPECT_EQ(model->items().size(), 1u);
  EXPECT_THAT(queue(), ElementsAre(id));
}

TEST_F(BetweenWorkAndResult, NewsOfTheNewNameOfAForgottenRecordMakesNoNewOne) {
  const UUID id = arrivePermanent("shot.png");
  rename(id);
  monitor.onScreenshot(named);
  model->clearRecords();
  deliver();
  EXPECT_TRUE(model->items().empty());
  EXPECT_THAT(monitor.known, ::testing::Contains(named));
}

TEST_F(BetweenWorkAndResult, ANewScreenshotUnderTheOldNameHasItsOwnRecord) {
  const UUID id = arrivePermanent("shot.png");
  rename(id);
  writeFile(shot, "the next picture");
  monitor.onScreenshot(shot);
  deliver();
  ASSERT_EQ(model->items().size(), 2u);
  EXPECT_EQ(item(id).url, named);
  EXPECT_EQ(model->items()[0].url, shot);
  EXPECT_EQ(presenter.visible, model->items()[0].id);
}

TEST_F(BetweenWorkAndResult, ANewScreenshotInThePlaceOfOneThatWentHasARecord) {
  const UUID id = arrivePermanent("shot.png");
  dispose(id);
  writeFile(shot, "the next picture");
  monitor.onScreenshot(shot);
  deliver();
  ASSERT_EQ(model->items().size(), 1u);
  EXPECT_NE(model->items()[0].id, id);
  EXPECT_EQ(model->items()[0].url, shot);
  EXPECT_EQ(queue().size(), 1u);
}

TEST_F(BetweenWorkAndResult, AFileThatThePersonTookBackOutOfTrashHasARecord) {
  const UUID id = arrivePermanent("shot.png");
  dispose(id);
  moveFile(trash.appending("shot.png"), shot);
  monitor.onScreenshot(shot);
  deliver();
  ASSERT_EQ(model->items().size(), 1u);
  EXPECT_EQ(model->items()[0].url, shot);
}

TEST_F(BetweenWorkAndResult, ALookThatFoundTheFileGoneTakesNoRecordOfARenamedOne) {
  const UUID id = arrivePermanent("shot.png");
  scope.lose(shot);
  identities[named.path()] = std::nullopt;
  rename(id);
  monitor.onRemoval({shot});
  background.runWork();
  background.deliver(1);
  EXPECT_TRUE(hasRecord(id)) << "what it saw is not told of a record that is being worked on";
  deliver();
  EXPECT_EQ(item(id).url, named);
  EXPECT_EQ(savedRecord(id), item(id));
}

TEST_F(BetweenWorkAndResult, AFileThatThePersonRenamedInThatMomentIsNotForgotten) {
  const UUID id = arrivePermanent("shot.png");
  moveFileFollowed(shot, shots.appending("by hand.png"));
  dispose(id);
  monitor.onScreenshot(shots.appending("by hand.png"));
  deliver();
  ASSERT_EQ(model->items().size(), 1u);
  EXPECT_EQ(model->items()[0].url, shots.appending("by hand.png"));
  EXPECT_FALSE(isInTrashFolder("shot.png"));
}

TEST_F(BetweenWorkAndResult, AWatchedFolderThatGetsAnotherNameTakesTheRecordAlong) {
  const UUID id = arrivePermanent("shot.png");
  rename(id);
  const FileURL moved = home.file("moved shots");
  moveFile(shots, moved);
  scope.follow(shots, moved);
  monitor.onStatusChange(WatcherStatus::notFound);
  ASSERT_EQ(*model->watchFolderURL, moved);
  deliver();
  EXPECT_EQ(item(id).url, moved.appending("Named.png"));
}

// --- The end of the program ---

TEST_F(AppModelFileWork, WhoeverWantsToQuitWaitsForIt) {
  const UUID id = arrivePermanent("shot.png");
  bool isTold = false;
  model->onFilesWritten = [&] { isTold = true; };
  changes.clear();
  beginDisposal(id).detach();
  EXPECT_TRUE(model->isWritingFiles());
  EXPECT_TRUE(model->hasUnsavedWork());
  EXPECT_EQ(changesOf(ModelField::unsavedWork), 1u);
  EXPECT_FALSE(isTold);
  end();
  EXPECT_TRUE(isTold);
  EXPECT_FALSE(model->hasUnsavedWork());
  EXPECT_THAT(savedRecords(), IsEmpty()) << "by then";
}

TEST_F(AppModelFileWork, WorkThatOutlivesTheModelTouchesNothingOfIt) {
  const UUID id = arrivePermanent("shot.png");
  const UUID waiting = arrivePermanent("2.png");
  executor.holdBackground();
  model->disposeItem(item(id), ErrorScope::inbox, Reason::chosen).detach();
  model->rename(id, QStringLiteral("Named"), ErrorScope::inbox).detach();
  model->disposeBatch({item(id), item(waiting)}, ErrorScope::inbox, Reason::chosen).detach();
  model.reset();
  end();
  EXPECT_TRUE(isInTrashFolder("shot.png"));
  EXPECT_TRUE(fileExists(shots.appending("2.png"))) << "it had not begun";
}

}  // namespace
}  // namespace quillmere::testing
