#include "editor/CropHistory.h"

#include <gtest/gtest.h>

#include "editor/CropsForTests.h"

namespace quillmere::testing {
namespace {

class CropHistoryTest : public ::testing::Test {
 protected:
  bool select(int width) {
    return history.change([&](CropSelection& crop) { crop.setByHand({0, 0, width, 10}); });
  }
  /// Its width, which tells what is there.
  int selected() const { return history.current().selection().width(); }

  CropHistory history{CropSelection({1000, 80}, {candidate(1, {30, 20, 40, 30}, shadow(5, 3, 6, 9))})};
};

TEST_F(CropHistoryTest, BeginsWithNothingToTakeBack) {
  EXPECT_FALSE(history.canUndo());
  EXPECT_FALSE(history.canRedo());
  const CropSelection before = history.current();
  history.undo();
  history.redo();
  history.end();
  history.cancel();
  EXPECT_EQ(history.current(), before);
}

TEST_F(CropHistoryTest, ChangesAreTakenBackAndMadeAgainOneByOne) {
  EXPECT_TRUE(select(1));
  EXPECT_TRUE(select(2));
  EXPECT_TRUE(history.canUndo());
  history.undo();
  EXPECT_EQ(selected(), 1);
  history.undo();
  EXPECT_TRUE(history.current().isEmpty());
  EXPECT_FALSE(history.canUndo());
  history.redo();
  EXPECT_EQ(selected(), 1);
  history.redo();
  EXPECT_EQ(selected(), 2);
  EXPECT_FALSE(history.canRedo());
}

TEST_F(CropHistoryTest, WhatChangesNothingIsNoChange) {
  select(1);
  history.undo();
  EXPECT_FALSE(history.change([](CropSelection& crop) { crop.moveBy(1, 1); }));
  EXPECT_FALSE(history.canUndo());
  EXPECT_TRUE(history.canRedo());
}

TEST_F(CropHistoryTest, AfterANewChangeWhatWasTakenBackIsGone) {
  select(1);
  select(2);
  history.undo();
  select(3);
  EXPECT_FALSE(history.canRedo());
  history.redo();
  EXPECT_EQ(selected(), 3);
  history.undo();
  EXPECT_EQ(selected(), 1);
}

TEST_F(CropHistoryTest, TheWindowAndItsShadowComeBackToo) {
  history.change([](CropSelection& crop) { crop.pick(uuid(1)); });
  history.change([](CropSelection& crop) { crop.setIncludesShadow(true); });
  const CropSelection with = history.current();
  select(1);
  history.undo();
  EXPECT_EQ(history.current(), with);
  EXPECT_TRUE(history.current().appliedShadow());
  history.undo();
  EXPECT_FALSE(history.current().includesShadow());
  EXPECT_EQ(history.current().selectedCandidate(), uuid(1));
  history.undo();
  EXPECT_EQ(history.current().selectedCandidate(), std::nullopt);
}

// --- Steps ---

TEST_F(CropHistoryTest, AllOfADragIsTakenBackAtOnce) {
  select(1);
  history.begin();
  EXPECT_TRUE(history.isInStep());
  for (int width = 2; width < 9; ++width) select(width);
  history.end();
  EXPECT_FALSE(history.isInStep());
  select(9);
  history.undo();
  EXPECT_EQ(selected(), 8);
  history.undo();
  EXPECT_EQ(selected(), 1);
  history.redo();
  EXPECT_EQ(selected(), 8);
}

TEST_F(CropHistoryTest, AStepThatLedBackIsNone) {
  select(1);
  select(2);
  history.undo();
  history.begin();
  select(5);
  EXPECT_FALSE(history.canRedo());
  select(1);
  EXPECT_TRUE(history.canRedo());
  history.end();
  EXPECT_EQ(selected(), 1);
  history.redo();
  EXPECT_EQ(selected(), 2) << "what was taken back before it";
  history.undo();
  history.undo();
  EXPECT_TRUE(history.current().isEmpty());
}

TEST_F(CropHistoryTest, ACancelledStepLeavesAllAsItWas) {
  select(1);
  select(2);
  history.undo();
  history.begin();
  select(5);
  history.cancel();
  EXPECT_FALSE(history.isInStep());
  EXPECT_EQ(selected(), 1);
  history.redo();
  EXPECT_EQ(selected(), 2);
  history.undo();
  history.undo();
  EXPECT_TRUE(history.current().isEmpty());
}

TEST_F(CropHistoryTest, AStepEndsWhereTheNextBegins) {
  history.begin();
  select(1);
  history.begin();
  select(2);
  history.end();
  history.undo();
  EXPECT_EQ(selected(), 1);
  history.undo();
  EXPECT_TRUE(history.current().isEmpty());
}

TEST_F(CropHistoryTest, UndoInAStepTakesTheStepBack) {
  select(1);
  history.begin();
  select(2);
  select(3);
  EXPECT_TRUE(history.canUndo());
  history.undo();
  EXPECT_FALSE(history.isInStep());
  EXPECT_EQ(selected(), 1);
  history.redo();
  EXPECT_EQ(selected(), 3);
}

TEST_F(CropHistoryTest, AStepAloneCanBeUndoneAsSoonAsItLedAway) {
  history.begin();
  EXPECT_FALSE(history.canUndo());
  select(1);
  EXPECT_TRUE(history.canUndo());
}

TEST_F(CropHistoryTest, RedoInAStepEndsIt) {
  select(1);
  history.undo();
  history.begin();
  history.redo();
  EXPECT_FALSE(history.isInStep());
  EXPECT_EQ(selected(), 1);
  history.undo();
  history.begin();
  select(7);
  history.redo();
  EXPECT_FALSE(history.isInStep());
  EXPECT_EQ(selected(), 7) << "it led elsewhere";
}

TEST_F(CropHistoryTest, OfMoreThanTheMostStepsTheOldestAreForgotten) {
  const int most = static_cast<int>(CropHistory::kMostSteps);
  EXPECT_EQ(most, 200);
  for (int width = 1; width <= most + 50; ++width) select(width);
  int steps = 0;
  for (; history.canUndo(); ++steps) history.undo();
  EXPECT_EQ(steps, most);
  EXPECT_EQ(selected(), 50);
  for (steps = 0; history.canRedo(); ++steps) history.redo();
  EXPECT_EQ(steps, most);
  EXPECT_EQ(selected(), most + 50);
}

}  // namespace
}  // namespace quillmere::testing
