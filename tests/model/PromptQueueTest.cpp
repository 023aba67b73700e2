#include "model/PromptQueue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fakes/ModelFakes.h"
#include "support/Records.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using State = ScreenshotItem::State;

class FakeStage final : public PromptStage {
 public:
  explicit FakeStage(CallLog& log) : log_(log) {}
  void promptIsComing() override { log_.add("coming"); }
  void promptIsLeft() override { log_.add("left"); }
  void showPrompt(const ScreenshotItem& item) override { log_.add("show " + item.url.lastPathComponent()); }
  std::optional<QString> spokenReviewShortcut() const override { return shortcut; }

  std::optional<QString> shortcut;

 private:
  CallLog& log_;
};

class PromptQueueTest : public ::testing::Test {
 protected:
  PromptQueueTest() {
    for (int number = 1; number <= 3; ++number) items.insertNewest(bareItem(number));
    world.promptPresenter = &presenter;
    world.announcer = &announcer;
  }
  void decide(int number) {
    items.update(*items.indexOf(uuid(number)), [](ScreenshotItem& item) { item.state = State::permanent; });
  }

  CallLog log;
  FakePresenter presenter{log};
  FakeAnnouncer announcer{log};
  FakeStage stage{log};
  ScreenshotList items;
  AppModelDependencies world;
  Signal<const ModelChange&> changed;
  std::vector<ModelField> told;
  Connection follower = changed.connect([this](const ModelChange& change) { told.push_back(change.field); });
  PromptQueue prompts{world, items, stage, changed};
};

TEST_F(PromptQueueTest, TheFirstComesUpAndIsAnnounced) {
  prompts.enqueue(uuid(1));
  EXPECT_EQ(prompts.front(), uuid(1));
  EXPECT_THAT(log.calls(), ElementsAre("coming", "left", "show 1.png", "announce"));
  EXPECT_THAT(told, ElementsAre(ModelField::promptQueue, ModelField::promptContentGeneration));
  EXPECT_THAT(announcer.said,
              ElementsAre(Announcement{"Screenshot ready for a decision.", AnnouncementPriority::high}));
}

TEST_F(PromptQueueTest, LaterOnesWaitBehindItWithoutAWord) {
  prompts.enqueue(uuid(1));
  log.clear();
  prompts.enqueue(uuid(2));
  prompts.enqueue(uuid(2));
  EXPECT_THAT(*prompts.queue, ElementsAre(uuid(1), uuid(2)));
  EXPECT_THAT(log.calls(), IsEmpty());
}

TEST_F(PromptQueueTest, WhatHasLeftCanWaitAgain) {
  for (const int number : {1, 404, 2}) prompts.enqueue(uuid(number));
  prompts.resolve({uuid(1)});
  items.insertNewest(bareItem(404));
  for (const int number : {404, 1, 2}) prompts.enqueue(uuid(number));
  EXPECT_THAT(*prompts.queue, ElementsAre(uuid(2), uuid(404), uuid(1)));
}

TEST_F(PromptQueueTest, WhatIsNotInItLeavesItAlone) {
  prompts.enqueue(uuid(1));
  told.clear();
  prompts.resolve({uuid(2)});
  EXPECT_THAT(told, IsEmpty());
}

TEST_F(PromptQueueTest, WhatIsDecidedOrGoneIsPassedOver) {
  for (const int number : {1, 2, 404, 3}) prompts.enqueue(uuid(number));
  decide(2);
  log.clear();
  prompts.resolve({uuid(1)});
  EXPECT_THAT(*prompts.queue, ElementsAre(uuid(3)));
  EXPECT_THAT(log.calls(), ElementsAre("coming", "left", "show 3.png", "announce"));
  EXPECT_EQ(*prompts.contentGeneration, 2);
}

TEST_F(PromptQueueTest, TheLastOnesLeavingHidesThePopup) {
  prompts.enqueue(uuid(1));
  log.clear();
  prompts.resolve({uuid(1)});
  EXPECT_EQ(prompts.front(), std::nullopt);
  EXPECT_THAT(log.calls(), ElementsAre("left", "hide"));
}

TEST_F(PromptQueueTest, OnlyTheFrontsLeavingChangesWhatIsShown) {
  prompts.enqueue(uuid(1));
  prompts.enqueue(uuid(2));
  log.clear();
  prompts.resolve({uuid(2), uuid(404)});
  EXPECT_THAT(*prompts.queue, ElementsAre(uuid(1)));
  EXPECT_THAT(log.calls(), IsEmpty());
}

TEST_F(PromptQueueTest, TheSameScreenshotShownAgainKeepsWhatWasBegunWithIt) {
  prompts.enqueue(uuid(1));
  log.clear();
  prompts.showNext();
  EXPECT_THAT(log.calls(), ElementsAre("coming", "show 1.png", "announce"));
  EXPECT_EQ(*prompts.contentGeneration, 1);
}

TEST_F(PromptQueueTest, ChangesThatThePersonDidNotAskForAreAnnouncedPolitely) {
  prompts.enqueue(uuid(1));
  prompts.enqueue(uuid(2));
  announcer.said.clear();
  prompts.setPriority(AnnouncementPriority::low);
  prompts.resolve({uuid(1)});
  EXPECT_EQ(announcer.said.at(0).priority, AnnouncementPriority::low);
}

TEST_F(PromptQueueTest, AnEmptyQueueIsFilledForAReviewWithoutNamingTheShortcut) {
  stage.shortcut = QStringLiteral("Control Option S");
  prompts.review([] { return std::vector{uuid(2), uuid(3)}; }, FocusNews::announced);
  EXPECT_THAT(*prompts.queue, ElementsAre(uuid(2), uuid(3)));
  EXPECT_THAT(announcer.said,
              ElementsAre(Announcement{"Screenshot ready for a decision.", AnnouncementPriority::high}));
  EXPECT_EQ(presenter.focuses, 1);
  EXPECT_EQ(*prompts.focusRequest, 1);
}

TEST_F(PromptQueueTest, AQueueThatIsNotEmptyIsOnlyFocused) {
  prompts.enqueue(uuid(1));
  announcer.said.clear();
  const auto unasked = []() -> std::vector<UUID> {
    ADD_FAILURE() << "the queue has what it shows";
    return {};
  };
  prompts.review(unasked, FocusNews::silent);
  EXPECT_THAT(announcer.said, IsEmpty());
  prompts.review(unasked, FocusNews::announced);
  EXPECT_THAT(announcer.said, ElementsAre(Announcement{"Screenshot popup focused", AnnouncementPriority::low}));
  EXPECT_EQ(*prompts.focusRequest, 2);
}

TEST_F(PromptQueueTest, AReviewOfNothingSaysSo) {
  prompts.review([] { return std::vector<UUID>(); }, FocusNews::silent);
  EXPECT_TRUE(announcer.hasSaid("No screenshots are waiting for a decision."));
  EXPECT_EQ(*prompts.focusRequest, 0);
  EXPECT_EQ(presenter.focuses, 0);
}

}  // namespace
}  // namespace quillmere::testing
