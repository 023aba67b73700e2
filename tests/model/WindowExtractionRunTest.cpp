#include "model/WindowExtractionRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fakes/FakeWindowScanner.h"
#include "fakes/ModelFakes.h"
#include "support/Records.h"

namespace quillmere::testing {
namespace {

using ImageOperations::OperationError;
using Sought = WindowExtractionRun::Sought;

const QRectF kWindow(1, 2, 30, 20);

class NoStage final : public PromptStage {
 public:
  void promptIsComing() override {}
  void promptIsLeft() override {}
  void showPrompt(const ScreenshotItem&) override {}
  std::optional<QString> spokenReviewShortcut() const override { return std::nullopt; }
};

class WindowExtractionRunTest : public ::testing::Test {
 protected:
  WindowExtractionRunTest() {
    for (int number = 1; number <= 2; ++number) items.insertNewest(bareItem(number));
    world.promptPresenter = &presenter;
    world.announcer = &announcer;
    world.fileIdentity = [this](const FileURL&) { return std::optional(FileIdentity{"volume", inode, {}, 1}); };
    prompts.enqueue(uuid(1));
    prompts.enqueue(uuid(2));
  }
  using Seeking = Task<Result<Sought, OperationError>>;
  Seeking seek() {
    const FileURL url = items.find(uuid(1))->url;
    return run->seek(uuid(1), url, scanner.scan(url, {}));
  }
  static QImage picture() {
    QImage image(60, 50, QImage::Format_RGB32);
    image.fill(Qt::blue);
    return image;
  }
  Seeking find() {
    auto seeking = seek();
    scanner.answer(scanner.calls.size() - 1, picture(), kWindow);
    return seeking;
  }

  CallLog log;
  FakePresenter presenter{log};
  FakeAnnouncer announcer{log};
  FakeWindowScanner scanner;
  uint64_t inode = 7;
  NoStage stage;
  ScreenshotList items;
  AppModelDependencies world;
  Signal<const ModelChange&> changed;
  PromptQueue prompts{world, items, stage, changed};
  std::unique_ptr<WindowExtractionRun> run = std::make_unique<WindowExtractionRun>(world, prompts, changed);
};

TEST_F(WindowExtractionRunTest, AWindowThatIsFoundIsKeptWithItsPictureAndStamp) {
  const auto seeking = seek();
  EXPECT_TRUE(run->isSeeking(uuid(1)));
  EXPECT_FALSE(run->isSeeking(uuid(2)));
  EXPECT_EQ(run->window(uuid(1)), std::nullopt);
  inode = 8;
  scanner.answer(0, picture(), kWindow);
  EXPECT_EQ(*seeking.await_resume(), Sought::found);
  EXPECT_FALSE(run->isSeeking(uuid(1)));
  ASSERT_TRUE(run->window(uuid(1)));
  EXPECT_EQ(run->window(uuid(1))->rect, kWindow);
  EXPECT_EQ(run->window(uuid(1))->image.size(), QSize(60, 50));
  EXPECT_EQ(run->window(uuid(2)), std::nullopt);
  EXPECT_EQ(run->readFrom().identity->file, 7u) << "as the file was before it was read";
}

TEST_F(WindowExtractionRunTest, WithoutAWindowTheWholeScreenshotIsShown) {
  const auto seeking = seek();
  scanner.answer(0, picture(), std::nullopt);
  EXPECT_EQ(*seeking.await_resume(), Sought::nothing);
  EXPECT_FALSE(run->state->has_value());
}

TEST_F(WindowExtractionRunTest, AFailureIsToldAndTheWholeScreenshotIsShown) {
  const auto seeking = seek();
  scanner.answer(0, FakeWindowScanner::Outcome(OperationError::unreadable));
  ASSERT_FALSE(seeking.await_resume());
  EXPECT_EQ(seeking.await_resume().reason(), OperationError::unreadable);
  EXPECT_FALSE(run->state->has_value());
}

TEST_F(WindowExtractionRunTest, WhatWasTurnedOffIsOvertaken) {
  const auto seeking = seek();
  run->clear();
  scanner.answer(0, picture(), kWindow);
  EXPECT_EQ(*seeking.await_resume(), Sought::overtaken);
  EXPECT_FALSE(run->state->has_value());
}

TEST_F(WindowExtractionRunTest, OfTwoSearchesTheLaterCounts) {
  const auto first = seek();
  run->clear();
  const auto second = seek();
  scanner.answer(0, picture(), std::nullopt);
  EXPECT_EQ(*first.await_resume(), Sought::overtaken);
  EXPECT_TRUE(run->isSeeking(uuid(1)));
  scanner.answer(1, picture(), kWindow);
  EXPECT_EQ(*second.await_resume(), Sought::found);
}

TEST_F(WindowExtractionRunTest, ASearchIsOvertakenWhenThePopupGoesOn) {
  const auto seeking = seek();
  prompts.resolve({uuid(1)});
  scanner.answer(0, picture(), kWindow);
  EXPECT_EQ(*seeking.await_resume(), Sought::overtaken);
  EXPECT_EQ(run->window(uuid(1)), std::nullopt);
}

TEST_F(WindowExtractionRunTest, TheWindowStaysKnownWhileItIsSavedAndComesBackAfterwards) {
  ASSERT_EQ(*find().await_resume(), Sought::found);
  run->beginSaving(uuid(1));
  EXPECT_TRUE(run->isSaving(uuid(1)));
  EXPECT_FALSE(run->isSaving(uuid(2)));
  EXPECT_EQ(run->window(uuid(1))->rect, kWindow);
  run->returnFromSaving();
  EXPECT_FALSE(run->isSaving(uuid(1)));
  EXPECT_EQ((*run->state)->phase, PromptWindowExtraction::Phase(PromptWindowExtraction::Extracted{kWindow}));
}

TEST_F(WindowExtractionRunTest, NothingIsSavedOfAnotherScreenshotOrOfNone) {
  run->beginSaving(uuid(1));
  EXPECT_FALSE(run->state->has_value());
  ASSERT_EQ(*find().await_resume(), Sought::found);
  run->beginSaving(uuid(2));
  EXPECT_FALSE(run->isSaving(uuid(2)));
  EXPECT_TRUE(run->window(uuid(1)));
}

TEST_F(WindowExtractionRunTest, ASearchMayOutliveIt) {
  const auto seeking = seek();
  run.reset();
  scanner.answer(0, picture(), kWindow);
  EXPECT_EQ(*seeking.await_resume(), Sought::overtaken);
}

}  // namespace
}  // namespace quillmere::testing
