#include "editor/ReplaceabilityWatch.h"

#include "editor/EditorFixture.h"

namespace quillmere::testing {
namespace {

class ReplaceabilityWatchTest : public EditorFixture {
 protected:
  void SetUp() override {
    EditorFixture::SetUp();
    watch = std::make_unique<ReplaceabilityWatch>(*model, executor, id, file, model->stampOf(file));
    watch->onChanged = [this] { ++told; };
  }
  void TearDown() override { watch.reset(); }
  std::unique_ptr<ReplaceabilityWatch> watch;
  int told = 0;
};

TEST_F(ReplaceabilityWatchTest, AFileThatStaysAsItIsIsNothingToTell) {
  executor.advance(seconds(10));
  EXPECT_TRUE(watch->isReplaceable());
  EXPECT_EQ(told, 0);
}

TEST_F(ReplaceabilityWatchTest, WhatTheModelHearsCountsAtOnce) {
  finish(model->rename(id, QStringLiteral("Other"), ErrorScope::inbox));
  EXPECT_FALSE(watch->isReplaceable());
  EXPECT_EQ(told, 1);
  finish(model->rename(id, QStringLiteral("Shot"), ErrorScope::inbox));
  executor.drain();
  EXPECT_TRUE(watch->isReplaceable()) << "it has come back under its name";
  EXPECT_EQ(told, 2);
  model->removeRecords({id});
  EXPECT_FALSE(watch->isReplaceable());
}

TEST_F(ReplaceabilityWatchTest, AnotherFileUnderTheNameIsFoundWithinASecond) {
  rewrite();
  executor.advance(ReplaceabilityWatch::kPause);
  EXPECT_FALSE(watch->isReplaceable());
  EXPECT_EQ(told, 1);
}

TEST_F(ReplaceabilityWatchTest, AFileThatIsAwayForATimeCanBeReplacedAgain) {
  moveFile(file, home.file("Shot.png"));
  executor.advance(ReplaceabilityWatch::kPause);
  EXPECT_FALSE(watch->isReplaceable());
  moveFile(home.file("Shot.png"), file);
  executor.advance(ReplaceabilityWatch::kPause);
  EXPECT_TRUE(watch->isReplaceable());
  EXPECT_EQ(told, 2);
}

TEST_F(ReplaceabilityWatchTest, ASlowDiskIsAskedOnce) {
  executor.holdBackground();
  const auto first = watch->look();
  const auto second = watch->look();
  executor.advance(seconds(20));
  EXPECT_EQ(executor.heldBackground(), 1U);
  EXPECT_EQ(first, second);
  executor.runHeldBackground();
  executor.drain();
  EXPECT_TRUE(second.isDone());
  EXPECT_TRUE(second.await_resume());
  executor.holdBackground();
  executor.advance(ReplaceabilityWatch::kPause);
  EXPECT_EQ(executor.heldBackground(), 1U) << "it goes on a second after the answer";
}

TEST_F(ReplaceabilityWatchTest, GoneItLooksNoMore) {
  executor.holdBackground();
  const auto looking = watch->look();
  watch.reset();
  executor.runHeldBackground();
  executor.drain();
  EXPECT_FALSE(looking.await_resume());
  executor.advance(seconds(5));
  EXPECT_EQ(executor.heldBackground(), 0U);
}

}  // namespace
}  // namespace quillmere::testing
