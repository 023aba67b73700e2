#include "analysis/LiveScreenshotAnalyzer.h"

#include <QtCore/QCoreApplication>
#include <QtGui/QPainter>
#include <latch>

#include "description/FakeLanguageModel.h"
#include "fakes/DecodedPictures.h"
#include "foundation/Interruptible.h"
#include "foundation/ManualExecutor.h"
#include "support/EventLoop.h"
#include "support/Files.h"
#include "support/Printing.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::FakeLanguageModel;
using testing::runLoopUntil;

/// Hands on what the recognition's threads post, which alone comes from other threads.
class PostingExecutor final : public Executor {
 public:
  void post(std::function<void()> work) override {
    QMetaObject::invokeMethod(QCoreApplication::instance(), std::move(work), Qt::QueuedConnection);
  }
  DelayID startDelay(Duration delay, DelayEnd end) override { return manual.startDelay(delay, std::move(end)); }
  void cancelDelay(DelayID delay) override { manual.cancelDelay(delay); }
  void runInBackground(std::function<void()> work, std::function<void()> done) override {
    manual.runInBackground(std::move(work), std::move(done));
  }
  Instant instant() const override { return manual.instant(); }
  ManualExecutor manual;
};

class LiveScreenshotAnalyzerTest : public ::testing::Test {
 protected:
  using Text = std::optional<QString>;

  template <typename T>
  static Task<> keep(Task<T> task, std::optional<T>& result) {
    auto waiting = interruptible(task);
    result.emplace(co_await waiting);
  }
  Text recognized() {
    std::optional<Text> result;
    const auto keeping = keep(analyzer.recognizeText(url), result);
    EXPECT_TRUE(runLoopUntil([&] { return result.has_value(); }));
    return result.value_or(QStringLiteral("nothing came"));
  }
  void writePicture() {
    QImage image(200, 60, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(16);
    painter.setFont(font);
    painter.drawText(20, 35, QStringLiteral("Quarterly report"));
    painter.end();
    ASSERT_TRUE(image.save(url.displayPath(), "PNG"));
  }

  testing::TemporaryFolder folder;
  FileURL url = folder.file("shot.png");
  PostingExecutor executor;
  FakeLanguageModel model;
  std::function<bool(const FileURL&)> isDataless = [](const FileURL&) { return false; };
  LiveScreenshotAnalyzer analyzer{executor, model, testing::decodedPictures(),
                                  [this](const FileURL& file) { return isDataless(file); }};
};

TEST_F(LiveScreenshotAnalyzerTest, TheTextOfAPictureIsRecognised) {
  writePicture();
  EXPECT_EQ(recognized(), QStringLiteral("Quarterly report"));
}

TEST_F(LiveScreenshotAnalyzerTest, WhatIsNoPictureHasNoText) {
  EXPECT_EQ(recognized(), std::nullopt) << "no file";
  testing::writeFile(url, "no picture");
  EXPECT_EQ(recognized(), std::nullopt);
}

TEST_F(LiveScreenshotAnalyzerTest, AFileWhoseDataAreElsewhereIsNeitherReadNorAskedAbout) {
  writePicture();
  isDataless = [this](const FileURL& file) { return file == url; };
  EXPECT_EQ(recognized(), std::nullopt);
  std::optional<DescribeOutcome> outcome;
  const auto keeping = keep(analyzer.describe(url, std::nullopt), outcome);
  executor.manual.drain();
  EXPECT_EQ(outcome, DescribeOutcome(AnalysisError::other(true))) << "it may be here the next time";
  EXPECT_EQ(model.looks, 0);
  EXPECT_TRUE(model.requests.empty());
}

TEST_F(LiveScreenshotAnalyzerTest, ARecognitionThatIsCancelledMeanwhileGivesNothing) {
  writePicture();
  std::latch hasBegun(1), mayGoOn(1);
  isDataless = [&](const FileURL&) {
    hasBegun.count_down();
    mayGoOn.wait();
    return false;
  };
  std::optional<Text> result;
  const auto keeping = keep(analyzer.recognizeText(url), result);
  hasBegun.wait();
  keeping.cancel();
  mayGoOn.count_down();
  ASSERT_TRUE(runLoopUntil([&] { return result.has_value(); }));
  EXPECT_EQ(*result, std::nullopt);
}

TEST_F(LiveScreenshotAnalyzerTest, CancelledWhileItLooksForTheFileItAsksNobody) {
  executor.manual.holdBackground();
  std::optional<DescribeOutcome> outcome;
  const auto keeping = keep(analyzer.describe(url, std::nullopt), outcome);
  keeping.cancel();
  executor.manual.runHeldBackground();
  EXPECT_EQ(outcome, DescribeOutcome(AnalysisCancelled()));
  EXPECT_EQ(model.looks, 0);
}

TEST_F(LiveScreenshotAnalyzerTest, CancellingEndsTheQuestionUnderWay) {
  model.holdsAnswers = true;
  std::optional<DescribeOutcome> outcome;
  const auto keeping = keep(analyzer.describe(url, QStringLiteral("text")), outcome);
  executor.manual.drain();
  ASSERT_EQ(model.requests.size(), 1u);
  EXPECT_EQ(outcome, std::nullopt);
  keeping.cancel();
  executor.manual.drain();
  EXPECT_EQ(outcome, DescribeOutcome(AnalysisCancelled()));
}

}  // namespace
}  // namespace quillmere
