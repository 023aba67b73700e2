#include "fakes/ModelFixture.h"
#include "formats/ImageOperations.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;
using Unavailability = AnalysisError::Unavailability;

const ScreenshotAnalysisResult kResult{QStringLiteral("An invoice."), QStringLiteral("Invoice")};

class AppModelAnalysis : public ModelFixture {
 protected:
  void SetUp() override {
    analyzer.holdsDescriptions = true;
    analyzer.text = QStringLiteral("Total 12");
    launchWatching();
  }
  void answerNext(const DescribeOutcome& outcome = kResult) {
    for (const auto& call : analyzer.descriptions) {
      if (!call->waiter) continue;
      FakeAnalyzer::answer(call, outcome);
      return;
    }
    FAIL() << "the model was not asked";
  }
  void becomeActive() {
    systemEvents.didBecomeActive();
    executor.drain();
  }
};

TEST_F(AppModelAnalysis, ANewScreenshotIsDescribed) {
  const UUID id = arrive("shot.png");
  EXPECT_THAT(*model->analyzingIDs, UnorderedElementsAre(id));
  answerNext();
  EXPECT_THAT(*model->analyzingIDs, IsEmpty());
  advance(1);
  EXPECT_EQ(savedRecord(id)->recognizedText, "Total 12");
  EXPECT_EQ(savedRecord(id)->imageDescription, "An invoice.");
  EXPECT_EQ(savedRecord(id)->suggestedName, "Invoice");
}

TEST_F(AppModelAnalysis, DescriptionsAreSavedTogether) {
  const UUID id = arrive("shot.png");
  wasSaved();
  answerNext();
  EXPECT_FALSE(wasSaved());
  EXPECT_EQ(item(id).imageDescription, "An invoice.");
  advance(0.75);
  EXPECT_TRUE(wasSaved());
}

TEST_F(AppModelAnalysis, AFileFromElsewhereIsNotDescribedUnasked) {
  writeFile(shots.appending("old.png"), "a picture");
  monitor.onArrivedScreenshot(shots.appending("old.png"));
  EXPECT_THAT(*model->analyzingIDs, IsEmpty());
  model->startAnalysis(model->items()[0].id);
  EXPECT_EQ(model->analyzingIDs->size(), 1u);
}

TEST_F(AppModelAnalysis, ARenamedFileIsNotDescribedAgain) {
  const UUID id = arrive("shot.png");
  answerNext();
  const FileURL moved = shots.appending("renamed.png");
  moveFile(item(id).url, moved);
  monitor.onScreenshot(moved);
  EXPECT_EQ(item(id).url, moved);
  EXPECT_EQ(analyzer.descriptions.size(), 1u);
}

TEST_F(AppModelAnalysis, SwitchedOffNothingIsDescribedAndWhatRanIsEnded) {
  const UUID id = arrive("shot.png");
  model->setAnalyzeScreenshots(false);
  EXPECT_THAT(*model->analyzingIDs, IsEmpty());
  EXPECT_TRUE(analyzer.descriptions[0]->isCancelled);
  EXPECT_EQ(item(id).analysisFailure, std::nullopt);
  arrive("another.png");
  EXPECT_THAT(*model->analyzingIDs, IsEmpty());
  EXPECT_EQ(model->analysisAvailability(), AnalysisAvailability::turnedOff);
}

TEST_F(AppModelAnalysis, SwitchedOnWhatIsMissingIsMadeUpFor) {
  model->setAnalyzeScreenshots(false);
  const UUID first = arrive("one.png");
  const UUID second = arrive("two.png");
  model->setAnalyzeScreenshots(true);
  EXPECT_THAT(*model->analyzingIDs, UnorderedElementsAre(first, second));
}

TEST_F(AppModelAnalysis, AtTheStartOnlyRecordsThatNeedItAreDescribed) {
  auto fresh = storedItem(1, "fresh.png");
  auto described = storedItem(2, "described.png");
  described.imageDescription = "A page.";
  auto blocked = storedItem(3, "blocked.png");
  blocked.analysisFailure = AnalysisFailureCode::contentBlocked;
  blocked.analysisRetryable = false;
  auto invalid = storedItem(4, "invalid.png");
  invalid.analysisFailure = AnalysisFailureCode::invalidResponse;
  invalid.analysisRetryable = true;
  storeRecords({invalid, blocked, described, fresh});
  launch();
  EXPECT_THAT(*model->analyzingIDs, UnorderedElementsAre(fresh.id, invalid.id));
}

TEST_F(AppModelAnalysis, AtTheStartWithTheSettingOffNothingIsDescribed) {
  storeRecords({storedItem(1, "fresh.png")});
  model.reset();
  setSettings(R"({"quillmere.analyze": false})");
  launch();
  EXPECT_THAT(*model->analyzingIDs, IsEmpty());
}

TEST_F(AppModelAnalysis, AModelThatIsBackDescribesWhatItMissed) {
  const UUID id = arrive("shot.png");
  answerNext(AnalysisError::unavailable(Unavailability::modelNotReady));
  EXPECT_EQ(model->analysisAvailability(), AnalysisAvailability::unavailable);
  EXPECT_EQ(item(id).analysisFailure, std::nullopt);
  EXPECT_THAT(*model->analyzingIDs, IsEmpty());
  becomeActive();
  EXPECT_EQ(model->analysisAvailability(), AnalysisAvailability::enabled);
  EXPECT_THAT(*model->analyzingIDs, UnorderedElementsAre(id));
  answerNext();
  EXPECT_EQ(item(id).imageDescription, "An invoice.");
}

TEST_F(AppModelAnalysis, AModelThatWasAwayAtTheStartIsNoticedWhenItComes) {
  analyzer.unavailability = Unavailability::deviceNotEligible;
  launch();
  EXPECT_EQ(*model->intelligenceUnavailability, AnalysisError::unavailable(Unavailability::deviceNotEligible));
  analyzer.unavailability.reset();
  becomeActive();
  EXPECT_EQ(*model->intelligenceUnavailability, std::nullopt);
}

TEST_F(AppModelAnalysis, WhatLacksItsDescriptionAloneWaitsForAModel) {
  ScreenshotItem read = storedItem(1, "read.png");
  read.recognizedText = "Invoice";
  const ScreenshotItem unread = storedItem(2, "unread.png");
  storeRecords({unread, read});
  analyzer.unavailability = Unavailability::deviceNotEligible;
  launch();
  EXPECT_THAT(*model->analyzingIDs, UnorderedElementsAre(unread.id)) << "nobody would describe the other one";
  analyzer.unavailability.reset();
  becomeActive();
  EXPECT_THAT(*model->analyzingIDs, UnorderedElementsAre(unread.id, read.id));
}

TEST_F(AppModelAnalysis, WithTheSettingOffNobodyLooksForAModel) {
  model->setAnalyzeScreenshots(false);
  const int looks = analyzer.availabilityLooks;
  becomeActive();
  EXPECT_EQ(analyzer.availabilityLooks, looks);
}

TEST_F(AppModelAnalysis, ARemovedRecordEndsItsJob) {
  const UUID id = arrive("shot.png");
  finish(model->disposeItem(item(id), ErrorScope::inbox, AppModel::DisposalReason::chosen));
  EXPECT_THAT(*model->analyzingIDs, IsEmpty());
  EXPECT_TRUE(analyzer.descriptions[0]->isCancelled);
}

TEST_F(AppModelAnalysis, APictureThatWasReplacedIsDescribedAnew) {
  const UUID id = arrive("shot.png");
  QImage picture(20, 20, QImage::Format_RGB32);
  picture.fill(Qt::red);
  const auto task = model->replaceOriginal(id, picture, QRectF(0, 0, 10, 10));
  executor.drain();
  ASSERT_TRUE(task.isDone());
  ASSERT_EQ(task.await_resume(), std::nullopt);
  EXPECT_TRUE(analyzer.descriptions[0]->isCancelled);
  EXPECT_THAT(*model->analyzingIDs, UnorderedElementsAre(id));
  EXPECT_EQ(analyzer.read.size(), 2u) << "its text too";
  answerNext();
  EXPECT_EQ(item(id).imageDescription, "An invoice.");
}

TEST_F(AppModelAnalysis, TheModelMayGoWhileAScreenshotIsDescribed) {
  arrive("one.png");
  arrive("two.png");
  model.reset();
  EXPECT_EQ(analyzer.describing, 0);
}

}  // namespace
}  // namespace quillmere::testing
