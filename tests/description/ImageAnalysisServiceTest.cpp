#include "description/ImageAnalysisService.h"

#include <gtest/gtest.h>

#include "description/FakeLanguageModel.h"
#include "description/ModelQuestion.h"
#include "foundation/ManualExecutor.h"
#include "support/Printing.h"

namespace quillmere {
namespace {

using Kind = ModelError::Kind;
using Unavailability = AnalysisError::Unavailability;
using testing::FakeLanguageModel;

const FileURL kPicture = FileURL::fromPath("/pictures/shot.png");
const ModelAnswerFields kAnswer{QStringLiteral("A login page — error shown"), QStringLiteral("login page")};
const DescribeOutcome kCleaned =
    ScreenshotAnalysisResult{QStringLiteral("A login page, error shown"), QStringLiteral("Login page")};

AnalysisError errorOf(AnalysisError::Kind kind) {
  return {.kind = kind};
}
ModelFailure failure(Kind kind) {
  return ModelError{kind};
}

class ImageAnalysisServiceTest : public ::testing::Test {
 protected:
  static Task<> keep(Task<DescribeOutcome> task, std::optional<DescribeOutcome>& outcome) { outcome = co_await task; }
  Task<DescribeOutcome> begin(const std::optional<QString>& text) {
    auto task = service.describe(kPicture, text);
    keep(task, outcome).detach();
    executor.drain();
    return task;
  }
  std::optional<DescribeOutcome> describe(const std::optional<QString>& text = std::nullopt) {
    std::exchange(outcome, std::nullopt);
    begin(text).detach();
    return outcome;
  }
  std::optional<DescribeOutcome> describeWith(std::initializer_list<FakeLanguageModel::Answer> answers,
                                              const std::optional<QString>& text = std::nullopt) {
    model.answers.assign(answers);
    return describe(text);
  }

  ManualExecutor executor;
  FakeLanguageModel model;
  ImageAnalysisService service{model, executor};
  std::optional<DescribeOutcome> outcome;
};

TEST_F(ImageAnalysisServiceTest, AnAnswerIsCleaned) {
  EXPECT_EQ(describeWith({kAnswer}), kCleaned);
}

TEST_F(ImageAnalysisServiceTest, CleaningIsDoneInTheBackground) {
  executor.holdBackground();
  EXPECT_EQ(describeWith({kAnswer}), std::nullopt);
  executor.runHeldBackground();
  EXPECT_EQ(outcome, kCleaned);
}

TEST_F(ImageAnalysisServiceTest, TheTextIsSentAndServesForCheckingWords) {
  const ModelAnswerFields misspelled{QStringLiteral("Nikey login page"), QStringLiteral("Nikey login page")};
  EXPECT_EQ(
      describeWith({misspelled}, QStringLiteral("Nike")),
      DescribeOutcome(ScreenshotAnalysisResult{QStringLiteral("Nike login page"), QStringLiteral("Nike login page")}));
  EXPECT_EQ(model.requests.at(0).picture, kPicture);
  EXPECT_EQ(model.requests.at(0).recognizedText, ModelQuestion::recognizedTextPart(QStringLiteral("Nike")));
}

TEST_F(ImageAnalysisServiceTest, TheTextIsTrimmed) {
  describeWith({kAnswer}, QStringLiteral(" \n\u00a0 two\nlines\t\n"));
  EXPECT_EQ(model.requests.at(0).recognizedText, ModelQuestion::recognizedTextPart(QStringLiteral("two\nlines")));
}

TEST_F(ImageAnalysisServiceTest, BlankTextIsNone) {
  describeWith({kAnswer}, QStringLiteral(" \n\t"));
  describeWith({kAnswer}, QString());
  EXPECT_EQ(model.requests.at(0).recognizedText, std::nullopt);
  EXPECT_EQ(model.requests.at(1).recognizedText, std::nullopt);
}

TEST_F(ImageAnalysisServiceTest, AnUnavailableModelIsNotAsked) {
  for (const auto reason : {Unavailability::appleIntelligenceNotEnabled, Unavailability::modelNotReady,
                            Unavailability::deviceNotEligible}) {
    model.unavailability = reason;
    EXPECT_EQ(describe(), DescribeOutcome(AnalysisError::unavailable(reason)));
  }
  EXPECT_TRUE(model.requests.empty());
}

TEST_F(ImageAnalysisServiceTest, AvailabilityIsTheModels) {
  model.unavailability = Unavailability::deviceNotEligible;
  const auto task = service.availability();
  ASSERT_TRUE(task.isDone());
  EXPECT_EQ(task.await_resume(), Unavailability::deviceNotEligible);
}

TEST_F(ImageAnalysisServiceTest, AnAnswerOfWhichNothingIsLeftIsInvalid) {
  for (const auto& [description, filename] :
       {std::pair("", "page"), {" \n", "page"}, {"A page", ""}, {"A page", "2024 a@b example.com"}, {"A page", "/."}}) {
    EXPECT_EQ(describeWith({ModelAnswerFields{QString::fromUtf8(description), QString::fromUtf8(filename)}}),
              DescribeOutcome(errorOf(AnalysisError::Kind::invalidResponse)))
        << description << "|" << filename;
  }
}

TEST(DescribeOutcomeTest, EachFailureIsToldInThePersonsTerms) {
  const Date moment{800000000};
  const std::vector<std::pair<ModelFailure, DescribeOutcome>> rows = {
      {failure(Kind::contextSizeExceeded), errorOf(AnalysisError::Kind::tooMuchContent)},
      {ModelError{Kind::rateLimited, moment}, AnalysisError::busy(moment)},
      {failure(Kind::rateLimited), AnalysisError::busy(std::nullopt)},
      {failure(Kind::guardrailViolation), errorOf(AnalysisError::Kind::contentBlocked)},
      {failure(Kind::refusal), errorOf(AnalysisError::Kind::contentBlocked)},
      {failure(Kind::unsupportedCapability), AnalysisError::other(false)},
      {failure(Kind::unsupportedTranscriptContent), AnalysisError::other(false)},
      {failure(Kind::unsupportedGenerationGuide), AnalysisError::other(false)},
      {failure(Kind::unsupportedLanguageOrLocale), errorOf(AnalysisError::Kind::unsupportedLanguage)},
      {ModelError{Kind::concurrentRequests, moment}, AnalysisError::busy(std::nullopt)},
      {failure(Kind::modelNotUsable), AnalysisError::unavailable(Unavailability::modelNotReady)},
      {failure(Kind::unreadableAnswer), errorOf(AnalysisError::Kind::invalidResponse)},
      {failure(Kind::other), AnalysisError::other(true)},
      {AnalysisError::unavailable(Unavailability::deviceNotEligible),
       AnalysisError::unavailable(Unavailability::deviceNotEligible)},
      {errorOf(AnalysisError::Kind::contentBlocked), errorOf(AnalysisError::Kind::contentBlocked)},
      {AnalysisCancelled(), AnalysisCancelled()},
  };
  for (size_t row = 0; row < rows.size(); ++row) {
    EXPECT_EQ(describeOutcome(rows[row].first), rows[row].second) << "row " << row;
  }
}

TEST_F(ImageAnalysisServiceTest, AFailureIsTold) {
  EXPECT_EQ(describeWith({failure(Kind::refusal)}), DescribeOutcome(errorOf(AnalysisError::Kind::contentBlocked)));
}

TEST_F(ImageAnalysisServiceTest, WhereTheTextMayBeToBlameThePictureAloneIsAskedAbout) {
  for (const Kind kind : {Kind::contextSizeExceeded, Kind::guardrailViolation}) {
    model.requests.clear();
    EXPECT_EQ(describeWith({failure(kind), kAnswer}, QStringLiteral("text")), kCleaned);
    ASSERT_EQ(model.requests.size(), 2u);
    EXPECT_TRUE(model.requests[0].recognizedText);
    EXPECT_EQ(model.requests[1].recognizedText, std::nullopt);
    EXPECT_EQ(model.requests[1].picture, kPicture);
  }
}

TEST_F(ImageAnalysisServiceTest, AfterTheSecondAttemptTheTextStillServesForCheckingWords) {
  const ModelAnswerFields misspelled{QStringLiteral("Nikey page"), QStringLiteral("Nikey page")};
  EXPECT_EQ(describeWith({failure(Kind::contextSizeExceeded), misspelled}, QStringLiteral("Nike")),
            DescribeOutcome(ScreenshotAnalysisResult{QStringLiteral("Nike page"), QStringLiteral("Nike page")}));
}

TEST_F(ImageAnalysisServiceTest, WithoutTextThereIsNoSecondAttempt) {
  EXPECT_EQ(describeWith({failure(Kind::contextSizeExceeded)}, QStringLiteral(" ")),
            DescribeOutcome(errorOf(AnalysisError::Kind::tooMuchContent)));
  EXPECT_EQ(describeWith({failure(Kind::guardrailViolation)}),
            DescribeOutcome(errorOf(AnalysisError::Kind::contentBlocked)));
  EXPECT_EQ(model.requests.size(), 2u);
}

TEST_F(ImageAnalysisServiceTest, OtherFailuresBringNoSecondAttempt) {
  for (const Kind kind :
       {Kind::rateLimited, Kind::refusal, Kind::unsupportedCapability, Kind::unsupportedTranscriptContent,
        Kind::unsupportedGenerationGuide, Kind::unsupportedLanguageOrLocale, Kind::concurrentRequests,
        Kind::modelNotUsable, Kind::unreadableAnswer, Kind::other}) {
    model.requests.clear();
    EXPECT_EQ(describeWith({failure(kind), kAnswer}, QStringLiteral("text")), describeOutcome(failure(kind)));
    EXPECT_EQ(model.requests.size(), 1u);
  }
}

TEST_F(ImageAnalysisServiceTest, TheSecondAttemptsFailureIsToldAndTheLast) {
  EXPECT_EQ(describeWith({failure(Kind::contextSizeExceeded), failure(Kind::contextSizeExceeded), kAnswer},
                         QStringLiteral("text")),
            DescribeOutcome(errorOf(AnalysisError::Kind::tooMuchContent)));
  EXPECT_EQ(model.requests.size(), 2u);
  EXPECT_EQ(describeWith({failure(Kind::guardrailViolation), failure(Kind::rateLimited)}, QStringLiteral("text")),
            DescribeOutcome(AnalysisError::busy(std::nullopt)));
}

TEST_F(ImageAnalysisServiceTest, CancellingEndsALookForTheModel) {
  model.holdsLooks = true;
  const auto task = begin(std::nullopt);
  EXPECT_FALSE(outcome);
  task.cancel();
  EXPECT_EQ(outcome, DescribeOutcome(AnalysisCancelled()));
  EXPECT_TRUE(model.requests.empty());
}

TEST_F(ImageAnalysisServiceTest, CancellingEndsTheQuestionUnderWay) {
  model.holdsAnswers = true;
  const auto task = begin(QStringLiteral("text"));
  EXPECT_FALSE(outcome);
  task.cancel();
  EXPECT_EQ(outcome, DescribeOutcome(AnalysisCancelled()));
}

TEST_F(ImageAnalysisServiceTest, CancellingEndsTheSecondAttempt) {
  model.holdsAnswers = true;
  model.answers.assign({failure(Kind::contextSizeExceeded), kAnswer});
  const auto task = begin(QStringLiteral("text"));
  model.goOn();
  EXPECT_EQ(model.requests.size(), 2u);
  task.cancel();
  EXPECT_EQ(outcome, DescribeOutcome(AnalysisCancelled()));
}

TEST_F(ImageAnalysisServiceTest, AnAnswerThatComesTooLateIsDropped) {
  executor.holdBackground();
  model.answers.assign({kAnswer});
  const auto task = begin(std::nullopt);
  task.cancel();
  EXPECT_FALSE(outcome) << "the cleaning is under way";
  executor.runHeldBackground();
  EXPECT_EQ(outcome, DescribeOutcome(AnalysisCancelled()));
}

}  // namespace
}  // namespace quillmere
