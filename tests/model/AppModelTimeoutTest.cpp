#include "fakes/ModelFixture.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// The look at where the desktop saves screenshots waits all the time.
constexpr size_t kLocationCheck = 1;

class AppModelTimeout : public ModelFixture {
 protected:
  void SetUp() override {
    setSettings(R"({"quillmere.popup-autosave": true, "quillmere.popup-seconds": 3})");
    launchWatching();
  }
  std::optional<double> remaining(const UUID& id) const { return model->popupAutoSaveScheduler().remaining(id); }
  /// A pending record that analysis has named.
  UUID arriveNamed(const char* suggestion) {
    auto stored = storedItem(1, "shot.png");
    stored.suggestedName = suggestion;
    stored.imageDescription = "A window";
    storeRecords({stored});
    launchWatching();
    return uuid(1);
  }
};

TEST_F(AppModelTimeout, PopupLeftAloneIsKeptAfterItsSecondsUnderItsOwnName) {
  const UUID id = arrive("shot.png");
  advance(2.7);
  EXPECT_EQ(stateOf(id), State::pending);
  advance(0.4);
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(item(id).url, shots.appending("shot.png"));
  EXPECT_EQ(item(id).expiresAt, std::nullopt);
  EXPECT_THAT(queue(), IsEmpty());
  EXPECT_EQ(presenter.visible, std::nullopt);
  EXPECT_EQ(savedRecord(id), item(id));
  EXPECT_EQ(files.calls(), 0);
  EXPECT_EQ(executor.pendingDelays(), kLocationCheck) << "nothing is left to count";
}

TEST_F(AppModelTimeout, NothingTimesOutWhenSwitchedOff) {
  model->setPopupAutoSaveEnabled(false);
  const UUID id = arrive("shot.png");
  advance(3600);
  EXPECT_EQ(stateOf(id), State::pending);
}

TEST_F(AppModelTimeout, SwitchingOffEndsTheVisibleCountdownAndOnStartsItInFull) {
  const UUID id = arrive("shot.png");
  advance(2);
  model->setPopupAutoSaveEnabled(false);
  EXPECT_EQ(remaining(id), std::nullopt);
  advance(60);
  model->setPopupAutoSaveEnabled(true);
  EXPECT_EQ(remaining(id), 3.0);
  advance(2.5);
  EXPECT_EQ(stateOf(id), State::pending);
  advance(1);
  EXPECT_EQ(stateOf(id), State::permanent);
}

TEST_F(AppModelTimeout, ThePointerOnThePopupStopsTheCountAndLeavingResumesIt) {
  const UUID id = arrive("shot.png");
  advance(2);
  const auto left = remaining(id);
  presenter.isEngaged = true;
  advance(60);
  EXPECT_EQ(remaining(id), left);
  presenter.isEngaged = false;
  advance(1.3);
  EXPECT_EQ(stateOf(id), State::permanent);
}

TEST_F(AppModelTimeout, SleepForAnHourResumesWhereTheCountStood) {
  const UUID id = arrive("shot.png");
  advance(1);
  EXPECT_DOUBLE_EQ(*remaining(id), 2.0);
  setClock(3600);
  advance(0.25);
  EXPECT_DOUBLE_EQ(*remaining(id), 1.5);
}

TEST_F(AppModelTimeout, CountdownStandsStillWhileTheScreenIsOff) {
  const UUID id = arrive("shot.png");
  advance(1);
  systemEvents.screensDidSleep();
  EXPECT_EQ(executor.pendingDelays(), kLocationCheck);
  advance(3600);
  systemEvents.screensDidWake();
  EXPECT_DOUBLE_EQ(*remaining(id), 2.0);
  advance(1.5);
  EXPECT_DOUBLE_EQ(*remaining(id), 0.5);
}

TEST_F(AppModelTimeout, TheNextPopupStartsWithTheFullTime) {
  arrive("first.png");
  advance(1);
  const UUID second = arrive("second.png");
  EXPECT_EQ(remaining(second), std::nullopt) << "a waiting screenshot does not age";
  advance(2);
  EXPECT_EQ(presenter.visible, second);
  EXPECT_DOUBLE_EQ(*remaining(second), 3.0);
  advance(2.5);
  EXPECT_EQ(stateOf(second), State::pending);
  advance(0.75);
  EXPECT_EQ(stateOf(second), State::permanent);
}

TEST_F(AppModelTimeout, ADecisionEndsTheCountdown) {
  const UUID id = arrive("shot.png");
  model->dismissPrompt();
  EXPECT_EQ(remaining(id), std::nullopt);
  advance(60);
  EXPECT_EQ(stateOf(id), State::pending);
}

TEST_F(AppModelTimeout, TypingInTheNameFieldStopsTheCount) {
  const UUID id = arrive("shot.png");
  for (const auto& edit :
       {AppModel::PromptNameEdit{id, "typed", true, false}, AppModel::PromptNameEdit{id, "shot", false, true}}) {
    model->setPromptNameEdit(edit);
    EXPECT_TRUE(model->isPopupPaused(id));
    advance(60);
    EXPECT_DOUBLE_EQ(*remaining(id), 3.0);
  }
  model->setPromptNameEdit(AppModel::PromptNameEdit{id, "shot", false, false});
  EXPECT_FALSE(model->isPopupPaused(id));
  advance(3.5);
  EXPECT_EQ(stateOf(id), State::permanent);
}

TEST_F(AppModelTimeout, PopupIsPausedForItsOwnReasonsAlone) {
  const UUID head = arrive("head.png");
  const UUID waiting = arrive("waiting.png");
  EXPECT_FALSE(model->isPopupPaused(head));
  model->setPromptNameEdit(AppModel::PromptNameEdit{waiting, "typed", true, true});
  EXPECT_FALSE(model->isPopupPaused(head));
  model->setPromptNameEdit(std::nullopt);

  model->protect(head);
  EXPECT_TRUE(model->isPopupPaused(head));
  EXPECT_FALSE(model->isPopupPaused(waiting));
  model->unprotect(head);

  presenter.isEngaged = true;
  EXPECT_TRUE(model->isPopupPaused(head));
  EXPECT_FALSE(model->isPopupPaused(waiting));
  presenter.isEngaged = false;

  model->show(ErrorScope::popup, "A title", "A message.");
  EXPECT_TRUE(model->isPopupPaused(head));
  EXPECT_FALSE(model->isPopupPaused(waiting));
}

TEST_F(AppModelTimeout, ATypedNameIsUsedEvenWhenNamesStayOriginal) {
  const UUID id = arrive("shot.png");
  advance(2.75);
  // An edited field pauses, so the edit comes in the last tick, after the field was asked for.
  presenter.onPointerAsked = [&] { model->setPromptNameEdit(AppModel::PromptNameEdit{id, "By hand", true, true}); };
  advance(0.25);
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(item(id).url, shots.appending("By hand.png"));
}

TEST_F(AppModelTimeout, ATypedNameGoesBeforeTheSuggestedOneUnlessNothingIsLeftOfIt) {
  model->setScreenshotNaming(ScreenshotNaming::suggested);
  for (const auto& [typed, used] : {std::pair{"By hand", "By hand.png"}, std::pair{" / ", "A window.png"}}) {
    const UUID id = arriveNamed("A window");
    advance(2.75);
    presenter.onPointerAsked = [&, text = QString(typed)] {
      model->setPromptNameEdit(AppModel::PromptNameEdit{id, text, true, true});
    };
    advance(0.25);
    presenter.onPointerAsked = nullptr;
    EXPECT_EQ(item(id).url, shots.appending(used));
  }
}

TEST_F(AppModelTimeout, AnUneditedNameFieldIsNoTypedName) {
  const UUID id = arrive("shot.png");
  model->setPromptNameEdit(AppModel::PromptNameEdit{id, "Not typed", false, false});
  advance(3.5);
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(item(id).url, shots.appending("shot.png"));
}

TEST_F(AppModelTimeout, SuggestedNameIsUsedWhereTheSettingsAskForIt) {
  model->setScreenshotNaming(ScreenshotNaming::suggested);
  const UUID id = arriveNamed("A window of mail");
  const auto identity = item(id).fileIdentity;
  advance(3.5);
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(item(id).url, shots.appending("A window of mail.png"));
  EXPECT_TRUE(fileExists(shots.appending("A window of mail.png")));
  EXPECT_EQ(item(id).fileBookmark, FakeSecurityScope::bookmarkOf(shots.appending("A window of mail.png")));
  EXPECT_EQ(item(id).fileIdentity, identity);
  EXPECT_EQ(savedRecord(id), item(id));
  EXPECT_EQ(banner(), std::nullopt);
}

TEST_F(AppModelTimeout, SuggestedNameIsNotUsedWhereNamesStayOriginal) {
  const UUID id = arriveNamed("A window of mail");
  advance(3.5);
  EXPECT_EQ(item(id).url, shots.appending("shot.png"));
}

TEST_F(AppModelTimeout, SuggestedWithNoResultYetKeepsTheOriginalName) {
  model->setScreenshotNaming(ScreenshotNaming::suggested);
  const UUID id = arrive("shot.png");
  advance(3.5);
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(item(id).url, shots.appending("shot.png"));
  EXPECT_EQ(files.calls(), 0);
}

TEST_F(AppModelTimeout, ASuggestionOfNothingButStopsKeepsTheOriginalName) {
  model->setScreenshotNaming(ScreenshotNaming::suggested);
  const UUID id = arriveNamed("...");
  advance(3.5);
  EXPECT_EQ(item(id).url, shots.appending("shot.png"));
}

TEST_F(AppModelTimeout, ChangingTheSecondsRestartsTheVisiblePopup) {
  const UUID id = arrive("shot.png");
  advance(2.5);
  model->setPopupAutoSaveSeconds(20);
  EXPECT_DOUBLE_EQ(*remaining(id), 20.0);
  advance(19.5);
  EXPECT_EQ(stateOf(id), State::pending);
  advance(0.75);
  EXPECT_EQ(stateOf(id), State::permanent);
}

TEST_F(AppModelTimeout, AFailedRenameKeepsTheOldNameAndRaisesTheBanner) {
  model->setScreenshotNaming(ScreenshotNaming::suggested);
  const UUID id = arriveNamed("A window of mail");
  files.refuse(shots.appending("shot.png"));
  advance(3.5);
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(item(id).url, shots.appending("shot.png"));
  EXPECT_EQ(banner(), Issue::automaticRenameFailed);
  EXPECT_EQ(message(**model->backgroundIssue),
            "A screenshot was kept with its original filename because automatic renaming failed.");
  EXPECT_EQ(*model->promptError, std::nullopt);
  EXPECT_THAT(queue(), IsEmpty());
  EXPECT_EQ(savedRecord(id), item(id));
}

TEST_F(AppModelTimeout, ATimeoutMovesNothingToTrash) {
  model->setDeletesChosenImmediately(true);
  model->setDeletesExpiredImmediately(true);
  const UUID first = arrive("first.png");
  const UUID second = arrive("second.png");
  advance(30);
  EXPECT_EQ(stateOf(first), State::permanent);
  EXPECT_EQ(stateOf(second), State::permanent);
  EXPECT_EQ(files.trashCalls + files.removeCalls, 0);
}

TEST_F(AppModelTimeout, PopupsOfAnEarlierRunCountDownOneAfterAnother) {
  storeRecords({storedItem(2, "two.png"), storedItem(1, "one.png")});
  launchWatching();
  EXPECT_DOUBLE_EQ(*remaining(uuid(1)), 3.0);
  advance(3.25);
  EXPECT_EQ(stateOf(uuid(1)), State::permanent);
  EXPECT_EQ(presenter.visible, uuid(2));
  advance(3.25);
  EXPECT_EQ(stateOf(uuid(2)), State::permanent);
}

}  // namespace
}  // namespace quillmere::testing
