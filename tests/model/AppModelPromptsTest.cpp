#include "fakes/ModelFixture.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr auto kLow = AnnouncementPriority::low;
constexpr auto kHigh = AnnouncementPriority::high;
constexpr HotKeyShortcut kShortcut{1, HotKeyShortcut::control | HotKeyShortcut::option};

// --- The queue ---

class AppModelQueue : public ModelFixture {
 protected:
  void SetUp() override { launchWatching(); }
};

TEST_F(AppModelQueue, ArrivalsWaitBehindTheVisibleScreenshot) {
  const UUID first = arrive("first.png");
  const UUID second = arrive("second.png");
  const UUID third = arrive("third.png");
  EXPECT_THAT(queue(), ElementsAre(first, second, third));
  EXPECT_THAT(presenter.presented, ElementsAre(first));
  EXPECT_EQ(announcer.said.size(), 1u);
}

TEST_F(AppModelQueue, ThePopupIsMadeReadyForANewcomerWhileNothingIsInIt) {
  const FileURL newcomer = shots.appending("newcomer.png");
  monitor.onNewcomer(newcomer);
  EXPECT_THAT(presenter.expected, ElementsAre(newcomer));
  arrive("first.png");
  monitor.onNewcomer(shots.appending("second.png"));
  EXPECT_THAT(presenter.expected, ElementsAre(newcomer));
}

TEST_F(AppModelQueue, TheNextAnnouncementCountsThoseThatWait) {
  const UUID first = arrive("first.png");
  arrive("second.png");
  arrive("third.png");
  announcer.said.clear();
  model->keepPrompt(first).detach();
  EXPECT_THAT(announcer.said, ElementsAre(Announcement{"Screenshot ready for a decision. 1 more waiting.", kHigh}));
}

TEST_F(AppModelQueue, AnnouncementsFollowTheCountAndTheShortcut) {
  struct Row {
    int waiting;
    std::optional<HotKeyShortcut> shortcut;
    const char* said;
  };
  const Row rows[] = {
      {0, kShortcut, "Screenshot ready for a decision. Press Ctrl+Alt+S to review it."},
      {0, std::nullopt, "Screenshot ready for a decision."},
      {1, kShortcut, "Screenshot ready for a decision. 1 more waiting. Press Ctrl+Alt+S to review it."},
      {1, std::nullopt, "Screenshot ready for a decision. 1 more waiting."},
      {2, kShortcut, "Screenshot ready for a decision. 2 more waiting. Press Ctrl+Alt+S to review it."},
      {2, std::nullopt, "Screenshot ready for a decision. 2 more waiting."},
  };
  int number = 0;
  for (const Row& row : rows) {
    model->setHotKeyShortcut(row.shortcut);
    const auto name = [&] { return "shot " + std::to_string(++number) + ".png"; };
    const UUID head = arrive(name());
    for (int i = 0; i <= row.waiting; ++i) arrive(name());
    announcer.said.clear();
    model->keepPrompt(head).detach();
    EXPECT_THAT(announcer.said, ElementsAre(Announcement{QString::fromUtf8(row.said), kHigh}));
    while (!queue().empty()) model->dismissPrompt();
  }
}

TEST_F(AppModelQueue, DecisionInTheInboxOnAWaitingRecordDoesNotChangeThePopup) {
  const UUID first = arrive("first.png");
  const UUID second = arrive("second.png");
  const UUID third = arrive("third.png");
  announcer.said.clear();
  const int generation = *model->prompts().contentGeneration;
  model->keepBatch({second});
  EXPECT_THAT(queue(), ElementsAre(first, third));
  EXPECT_THAT(presenter.presented, ElementsAre(first));
  EXPECT_EQ(presenter.visible, first);
  EXPECT_THAT(announcer.said, IsEmpty());
  EXPECT_EQ(*model->prompts().contentGeneration, generation);
}

TEST_F(AppModelQueue, ResolvingTheHeadAndOthersShowsTheNextThatIsLeft) {
  const UUID first = arrive("first.png");
  const UUID second = arrive("second.png");
  const UUID third = arrive("third.png");
  model->resolvePrompts({second, first});
  EXPECT_THAT(queue(), ElementsAre(third));
  EXPECT_THAT(presenter.presented, ElementsAre(first, third));
}

TEST_F(AppModelQueue, DrainedQueueHidesThePopup) {
  const UUID id = arrive("first.png");
  const int generation = *model->prompts().contentGeneration;
  model->keepPrompt(id).detach();
  EXPECT_EQ(presenter.visible, std::nullopt);
  EXPECT_EQ(presenter.hides, 1);
  EXPECT_EQ(*model->prompts().contentGeneration, generation + 1);
}

TEST_F(AppModelQueue, DismissedScreenshotStaysPendingAndTheNextComesUp) {
  const UUID first = arrive("first.png");
  const UUID second = arrive("second.png");
  model->dismissPrompt();
  EXPECT_EQ(stateOf(first), State::pending);
  EXPECT_EQ(presenter.visible, second);
  EXPECT_THAT(queue(), ElementsAre(second));
  model->dismissPrompt();
  model->dismissPrompt();
  EXPECT_THAT(queue(), IsEmpty());
}

TEST_F(AppModelQueue, AnIdIsQueuedOnce) {
  const UUID id = arrive("first.png");
  model->enqueuePrompt(id);
  EXPECT_THAT(queue(), ElementsAre(id));
  EXPECT_EQ(presenter.presented.size(), 1u);
}

TEST_F(AppModelQueue, VanishedAndDecidedRecordsAreSkipped) {
  model->enqueuePrompt(uuid(404));
  EXPECT_THAT(queue(), IsEmpty());
  EXPECT_EQ(presenter.visible, std::nullopt);
  const UUID first = arrive("first.png");
  model->enqueuePrompt(uuid(405));
  const UUID decided = arrivePermanent("decided.png");
  model->enqueuePrompt(decided);
  const UUID last = arrive("last.png");
  ASSERT_THAT(queue(), ElementsAre(first, uuid(405), decided, last));
  model->dismissPrompt();
  EXPECT_THAT(queue(), ElementsAre(last));
  EXPECT_EQ(presenter.visible, last);
}

TEST_F(AppModelQueue, AHeadWhoseRecordVanishedGivesWayToTheNextPendingOne) {
  const UUID first = arrive("first.png");
  const UUID second = arrive("second.png");
  model->removeRecords({first});
  EXPECT_THAT(queue(), ElementsAre(second));
  EXPECT_EQ(presenter.visible, second);
}

TEST_F(AppModelQueue, TheNextScreenshotClearsTheErrorOfTheLast) {
  arrive("first.png");
  arrive("second.png");
  model->show(ErrorScope::popup, "A title", "A message.");
  model->dismissPrompt();
  EXPECT_EQ(*model->promptError, std::nullopt);
}

TEST_F(AppModelQueue, AWaitingArrivalLeavesTheErrorOfTheVisibleScreenshot) {
  arrive("first.png");
  model->show(ErrorScope::popup, "A title", "A message.");
  arrive("second.png");
  EXPECT_TRUE(model->promptError->has_value());
}

TEST_F(AppModelQueue, AChangeOfTheVisibleScreenshotForgetsTheNameField) {
  const UUID first = arrive("first.png");
  model->setPromptNameEdit(AppModel::PromptNameEdit{first, "typed", true, true});
  const int generation = *model->prompts().contentGeneration;
  arrive("second.png");
  EXPECT_TRUE(model->promptNameEdit());
  EXPECT_EQ(*model->prompts().contentGeneration, generation);
  model->dismissPrompt();
  EXPECT_FALSE(model->promptNameEdit());
  EXPECT_EQ(*model->prompts().contentGeneration, generation + 1);
}

TEST_F(AppModelQueue, ShowingTheSameScreenshotAgainIsNoChangeOfContent) {
  const UUID first = arrive("first.png");
  model->setPromptNameEdit(AppModel::PromptNameEdit{first, "typed", true, true});
  const int generation = *model->prompts().contentGeneration;
  model->showNextPrompt();
  EXPECT_EQ(*model->prompts().contentGeneration, generation);
  EXPECT_TRUE(model->promptNameEdit());
}

// --- The review shortcut ---

class AppModelReview : public ModelFixture {
 protected:
  void SetUp() override { launchWatching(); }
};

TEST_F(AppModelReview, EmptyQueueWithTwoPendingRecordsShowsTheOlderWithoutAnnouncingTheFocus) {
  model->setHotKeyShortcut(kShortcut);
  const UUID older = arrive("older.png");
  advance(5);
  const UUID newer = arrive("newer.png");
  model->dismissPrompt();
  model->dismissPrompt();
  announcer.said.clear();
  presenter.presented.clear();
  const int request = *model->prompts().focusRequest;
  model->reviewPending(FocusNews::announced);
  EXPECT_THAT(queue(), ElementsAre(older, newer));
  EXPECT_THAT(presenter.presented, ElementsAre(older));
  EXPECT_EQ(presenter.focuses, 1);
  EXPECT_EQ(*model->prompts().focusRequest, request + 1);
  EXPECT_THAT(announcer.said, ElementsAre(Announcement{"Screenshot ready for a decision.", kHigh}))
      << "neither the focus nor the shortcut that was just used is told";
}

TEST_F(AppModelReview, TheShortcutIsToldAgainAfterwards) {
  model->setHotKeyShortcut(kShortcut);
  arrive("older.png");
  model->dismissPrompt();
  model->reviewPending(FocusNews::silent);
  announcer.said.clear();
  arrive("newer.png");
  model->dismissPrompt();
  EXPECT_TRUE(announcer.hasSaid("Screenshot ready for a decision. Press Ctrl+Alt+S to review it."));
}

TEST_F(AppModelReview, NothingPendingIsAnnounced) {
  arrivePermanent("kept.png");
  announcer.said.clear();
  model->reviewPending(FocusNews::announced);
  EXPECT_THAT(announcer.said, ElementsAre(Announcement{"No screenshots are waiting for a decision.", kHigh}));
  EXPECT_EQ(presenter.focuses, 0);
  EXPECT_EQ(*model->prompts().focusRequest, 0);
}

TEST_F(AppModelReview, VisiblePopupIsFocusedAndSaysSoOnlyWhenAsked) {
  const UUID id = arrive("shot.png");
  announcer.said.clear();
  model->reviewPending(FocusNews::silent);
  EXPECT_THAT(announcer.said, IsEmpty());
  model->reviewPending(FocusNews::announced);
  EXPECT_THAT(announcer.said, ElementsAre(Announcement{"Screenshot popup focused", kLow}));
  EXPECT_EQ(presenter.focuses, 2);
  EXPECT_EQ(*model->prompts().focusRequest, 2);
  EXPECT_THAT(presenter.presented, ElementsAre(id));
}

TEST_F(AppModelReview, AVisiblePopupIsNotJoinedByDismissedOnes) {
  arrive("dismissed.png");
  model->dismissPrompt();
  const UUID visible = arrive("visible.png");
  model->reviewPending(FocusNews::silent);
  EXPECT_THAT(queue(), ElementsAre(visible));
}

TEST_F(AppModelReview, UnavailableRecordsAreNotReviewed) {
  const UUID id = arrive("shot.png");
  model->dismissPrompt();
  makeUnavailable(id);
  announcer.said.clear();
  model->reviewPending(FocusNews::silent);
  EXPECT_TRUE(announcer.hasSaid("No screenshots are waiting for a decision."));
  EXPECT_THAT(queue(), IsEmpty());
}

}  // namespace
}  // namespace quillmere::testing
