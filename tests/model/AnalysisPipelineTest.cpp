#include "model/AnalysisPipeline.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

#include "fakes/FakeAnalyzer.h"
#include "foundation/ManualExecutor.h"
#include "support/Printing.h"
#include "support/Records.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;
using Kind = AnalysisError::Kind;
using Unavailability = AnalysisError::Unavailability;

const ScreenshotAnalysisResult kResult{QStringLiteral("An invoice."), QStringLiteral("Invoice")};

class FakeRecords final : public AnalysisRecords {
 public:
  const ScreenshotItem* find(const UUID& id) const override {
    const auto found = items.find(id);
    return found == items.end() ? nullptr : &found->second;
  }
  void change(const UUID& id, const std::function<void(ScreenshotItem&)>& change) override {
    ASSERT_TRUE(items.contains(id)) << "a write to a record that is gone";
    change(items.at(id));
    ++changes;
  }
  void saveRecords() override { ++saves; }
  void saveRecordsSoon() override { ++laterSaves; }
  void analyzingChanged(const UUIDSet& ids) override { analyzing = ids; }
  void analyzingChanged(const UUID& id, bool isAnalyzing) override {
    if (isAnalyzing) {
      analyzing.insert(id);
    } else {
      analyzing.erase(id);
    }
  }
  void foreignServerChanged(const std::optional<ForeignModelServer>& server) override {
    foreignServers.push_back(server);
  }
  void unavailabilityChanged(const std::optional<AnalysisError>& error) override { unavailability.push_back(error); }

  UUIDMap<ScreenshotItem> items;
  UUIDSet analyzing;
  std::vector<std::optional<AnalysisError>> unavailability;
  std::vector<std::optional<ForeignModelServer>> foreignServers;
  int changes = 0;
  int saves = 0;
  int laterSaves = 0;
};

class AnalysisPipelineTest : public ::testing::Test {
 protected:
  AnalysisPipelineTest() { make(); }
  ~AnalysisPipelineTest() override {
    if (pipeline) expectIdle();
  }
  void make() {
    pipeline = std::make_unique<AnalysisPipeline>(
        analyzer, executor,
        [this] { return Date{1000.0 + std::chrono::duration<double>(executor.instant().time_since_epoch()).count()}; },
        records);
  }
  UUID add(int number) {
    ScreenshotItem item = bareItem(number);
    const UUID id = item.id;
    records.items[id] = item;
    return id;
  }
  UUID addWithText(int number) {
    const UUID id = add(number);
    records.items[id].recognizedText = "known text";
    return id;
  }
  const ScreenshotItem& item(const UUID& id) const { return records.items.at(id); }
  void remove(const UUID& id) {
    pipeline->cancel(id);
    records.items.erase(id);
  }
  void advance(double bySeconds) { executor.advance(seconds(bySeconds)); }
  void expectIdle() const {
    EXPECT_EQ(pipeline->modelGate().running(), 0);
    EXPECT_EQ(pipeline->ocrGate().running(), 0);
    EXPECT_EQ(pipeline->modelGate().waiting(), 0u);
    EXPECT_EQ(pipeline->ocrGate().waiting(), 0u);
    EXPECT_THAT(records.analyzing, IsEmpty());
  }
  static AnalysisError failure(Kind kind) { return {.kind = kind}; }
  DescribeOutcome describedAs(const UUID& id) const {
    return ScreenshotAnalysisResult{QStringLiteral("of ") + id.toString(), QStringLiteral("Name")};
  }

  ManualExecutor executor;
  FakeAnalyzer analyzer;
  FakeRecords records;
  std::unique_ptr<AnalysisPipeline> pipeline;
};

// --- A job ---

TEST_F(AnalysisPipelineTest, ARecordGetsItsTextItsDescriptionAndAName) {
  analyzer.text = QStringLiteral("Total 12");
  analyzer.immediateDescriptions = {kResult};
  const UUID id = add(1);
  pipeline->start({id});
  EXPECT_EQ(item(id).recognizedText, "Total 12");
  EXPECT_EQ(item(id).imageDescription, "An invoice.");
  EXPECT_EQ(item(id).suggestedName, "Invoice");
  EXPECT_EQ(analyzer.described[0].text, QStringLiteral("Total 12"));
  EXPECT_EQ(records.saves, 1) << "the text at once";
  EXPECT_EQ(records.laterSaves, 1);
}

TEST_F(AnalysisPipelineTest, KnownTextIsNotReadAgain) {
  analyzer.immediateDescriptions = {kResult};
  pipeline->start({addWithText(1)});
  EXPECT_THAT(analyzer.read, IsEmpty());
  EXPECT_EQ(analyzer.described[0].text, QStringLiteral("known text"));
}

TEST_F(AnalysisPipelineTest, TwoQuickRequestsRunOneJob) {
  analyzer.holdsDescriptions = true;
  const UUID id = addWithText(1);
  pipeline->start({id});
  pipeline->start({id});
  pipeline->start({id, id});
  EXPECT_EQ(analyzer.descriptions.size(), 1u);
  EXPECT_THAT(records.analyzing, UnorderedElementsAre(id));
  FakeAnalyzer::answer(analyzer.descriptions[0], describedAs(id));
}

TEST_F(AnalysisPipelineTest, AFileThatCannotBeReadIsDescribedByThePictureAlone) {
  analyzer.immediateDescriptions = {kResult};
  const UUID id = add(1);
  pipeline->start({id});
  EXPECT_EQ(analyzer.described[0].text, std::nullopt);
  EXPECT_EQ(item(id).recognizedText, std::nullopt);
  EXPECT_EQ(item(id).imageDescription, "An invoice.");
}

TEST_F(AnalysisPipelineTest, AnUnknownRecordEndsAtOnce) {
  pipeline->start({uuid(9)});
  EXPECT_FALSE(pipeline->isAnalyzing(uuid(9)));
}

TEST_F(AnalysisPipelineTest, ASuccessClearsAnEarlierFailure) {
  analyzer.immediateDescriptions = {kResult};
  const UUID id = addWithText(1);
  records.items[id].analysisFailure = AnalysisFailureCode::busy;
  records.items[id].analysisRetryable = true;
  pipeline->start({id});
  EXPECT_EQ(item(id).analysisFailure, std::nullopt);
  EXPECT_EQ(item(id).analysisRetryable, std::nullopt);
}

TEST_F(AnalysisPipelineTest, AFailureIsStoredWithWhetherItMayBeTriedAgain) {
  for (const auto& [error, code, retryable] :
       {std::tuple{failure(Kind::contentBlocked), AnalysisFailureCode::contentBlocked, false},
        std::tuple{failure(Kind::tooMuchContent), AnalysisFailureCode::tooMuchContent, false},
        std::tuple{failure(Kind::unsupportedLanguage), AnalysisFailureCode::unsupportedLanguage, false},
        std::tuple{failure(Kind::invalidResponse), AnalysisFailureCode::invalidResponse, true},
        std::tuple{AnalysisError::other(true), AnalysisFailureCode::other, true},
        std::tuple{AnalysisError::other(false), AnalysisFailureCode::other, false}}) {
    const UUID id = addWithText(1);
    analyzer.immediateDescriptions = {error};
    pipeline->start({id});
    EXPECT_EQ(item(id).analysisFailure, code);
    EXPECT_EQ(item(id).analysisRetryable, retryable);
    EXPECT_EQ(item(id).imageDescription, std::nullopt);
  }
}

TEST_F(AnalysisPipelineTest, AModelThatIsAwayIsNoFailureOfTheRecord) {
  const UUID id = addWithText(1);
  records.items[id].analysisFailure = AnalysisFailureCode::busy;
  analyzer.immediateDescriptions = {AnalysisError::unavailable(Unavailability::modelNotReady)};
  pipeline->start({id});
  EXPECT_EQ(item(id).analysisFailure, std::nullopt);
  EXPECT_EQ(item(id).analysisRetryable, std::nullopt);
  EXPECT_THAT(records.unavailability, ElementsAre(AnalysisError::unavailable(Unavailability::modelNotReady)));
}

TEST_F(AnalysisPipelineTest, UnavailabilityIsToldOnlyWhenItChangesAndASuccessClearsIt) {
  const auto away = AnalysisError::unavailable(Unavailability::modelNotReady);
  analyzer.immediateDescriptions = {away, away, kResult, kResult};
  pipeline->start({addWithText(1), addWithText(2), addWithText(3), addWithText(4)});
  EXPECT_THAT(records.unavailability, ElementsAre(away, std::nullopt));
}

// --- Busy ---

class BusyModel : public AnalysisPipelineTest {
 protected:
  /// Seconds until the second try after this answer.
  double wait(std::optional<double> retryIn) {
    std::optional<Date> retryAfter;
    if (retryIn) retryAfter = Date{1000.0 + *retryIn};
    analyzer.immediateDescriptions = {AnalysisError::busy(retryAfter), kResult};
    id = addWithText(1);
    pipeline->start({id});
    EXPECT_EQ(analyzer.described.size(), 1u);
    const auto delay = executor.nextDelay();
    advance(31);
    EXPECT_EQ(analyzer.described.size(), 2u);
    return delay ? std::chrono::duration<double>(*delay).count() : -1;
  }
  UUID id;
};

TEST_F(BusyModel, ADateTwoMinutesAwayWaitsThirtySeconds) {
  EXPECT_EQ(wait(120), 30);
  EXPECT_EQ(item(id).imageDescription, "An invoice.");
}
TEST_F(BusyModel, ADateInThePastWaitsOneSecond) {
  EXPECT_EQ(wait(-50), 1);
}
TEST_F(BusyModel, ADateIsKept) {
  EXPECT_NEAR(wait(12), 12, 1e-6);
}
TEST_F(BusyModel, WithoutADateItWaitsFiveSeconds) {
  EXPECT_EQ(wait(std::nullopt), 5);
}

TEST_F(BusyModel, ASecondBusyIsStored) {
  analyzer.immediateDescriptions = {AnalysisError::busy({}), AnalysisError::busy({}), kResult};
  id = addWithText(1);
  pipeline->start({id});
  advance(600);
  EXPECT_EQ(analyzer.described.size(), 2u);
  EXPECT_EQ(item(id).analysisFailure, AnalysisFailureCode::busy);
  EXPECT_EQ(item(id).analysisRetryable, true);
}

TEST_F(BusyModel, TheModelIsKeptThroughTheWait) {
  analyzer.immediateDescriptions = {AnalysisError::busy({}), kResult, kResult};
  id = addWithText(1);
  const UUID other = addWithText(2);
  pipeline->start({id, other});
  EXPECT_EQ(analyzer.described.size(), 1u);
  EXPECT_THAT(records.analyzing, UnorderedElementsAre(id, other));
  advance(5);
  EXPECT_EQ(analyzer.described.size(), 3u);
}

TEST_F(BusyModel, CancellingDuringTheWaitEndsTheJobWithoutAFailure) {
  analyzer.immediateDescriptions = {AnalysisError::busy({}), kResult};
  id = addWithText(1);
  pipeline->start({id});
  pipeline->cancelAll();
  expectIdle();
  advance(600);
  EXPECT_EQ(analyzer.described.size(), 1u);
  EXPECT_EQ(item(id).analysisFailure, std::nullopt);
}

// --- Gates and cancelling ---

TEST_F(AnalysisPipelineTest, OneModelCallAndTwoRecognitionsAtATime) {
  analyzer.holdsDescriptions = true;
  analyzer.holdsReadings = true;
  for (int number = 1; number <= 5; ++number) pipeline->start({add(number)});
  EXPECT_EQ(analyzer.readings.size(), 2u);
  for (size_t i = 0; i < 5; ++i) {
    FakeAnalyzer::answer<std::optional<QString>>(analyzer.readings[i], QStringLiteral("text"));
  }
  EXPECT_EQ(analyzer.descriptions.size(), 1u);
  for (size_t i = 0; i < 5; ++i) FakeAnalyzer::answer<DescribeOutcome>(analyzer.descriptions[i], kResult);
  EXPECT_EQ(analyzer.mostReading, 2);
  EXPECT_EQ(analyzer.mostDescribing, 1);
}

TEST_F(AnalysisPipelineTest, ARecordRemovedDuringTheModelCallGetsNoWrite) {
  analyzer.holdsDescriptions = true;
  const UUID id = addWithText(1);
  pipeline->start({id});
  remove(id);
  EXPECT_TRUE(analyzer.descriptions[0]->isCancelled);
  EXPECT_EQ(records.changes, 0);
  expectIdle();
}

TEST_F(AnalysisPipelineTest, ARecordRemovedWhileItWaitsLeavesTheQueue) {
  analyzer.holdsDescriptions = true;
  const UUID first = addWithText(1);
  const UUID second = addWithText(2);
  pipeline->start({first, second});
  remove(second);
  EXPECT_EQ(pipeline->modelGate().waiting(), 0u);
  FakeAnalyzer::answer(analyzer.descriptions[0], describedAs(first));
  EXPECT_EQ(analyzer.descriptions.size(), 1u);
}

TEST_F(AnalysisPipelineTest, ACancelledJobDoesNotTouchTheNextOne) {
  analyzer.holdsDescriptions = true;
  const UUID id = addWithText(1);
  pipeline->start({id});
  const auto old = analyzer.descriptions[0];
  // An analyzer that answers although it was cancelled.
  const auto waiter = std::exchange(old->waiter, nullptr);
  pipeline->cancel(id);
  pipeline->start({id});
  EXPECT_THAT(records.analyzing, UnorderedElementsAre(id));
  old->isCancelled = false;
  old->value = DescribeOutcome(kResult);
  waiter->resume();
  EXPECT_EQ(item(id).imageDescription, std::nullopt) << "its token is stale";
  EXPECT_THAT(records.analyzing, UnorderedElementsAre(id));
  ASSERT_EQ(analyzer.descriptions.size(), 2u);
  FakeAnalyzer::answer(analyzer.descriptions[1], describedAs(id));
  EXPECT_NE(item(id).imageDescription, std::nullopt);
}

TEST_F(AnalysisPipelineTest, CancellingAllEmptiesEverything) {
  analyzer.holdsDescriptions = true;
  analyzer.holdsReadings = true;
  pipeline->start({add(1), addWithText(2), add(3), add(4), addWithText(5)});
  pipeline->cancelAll();
  expectIdle();
  EXPECT_EQ(analyzer.describing, 0);
  EXPECT_EQ(analyzer.reading, 0);
  EXPECT_EQ(records.changes, 0);
}

TEST_F(AnalysisPipelineTest, ThePipelineMayGoInTheMiddle) {
  analyzer.holdsDescriptions = true;
  analyzer.holdsReadings = true;
  pipeline->start({add(1), addWithText(2), add(3), addWithText(4)});
  pipeline.reset();
  EXPECT_EQ(analyzer.describing, 0);
  EXPECT_EQ(analyzer.reading, 0);
  advance(60);
}

// --- Text ---

class RecognizedText : public AnalysisPipelineTest {
 protected:
  static std::optional<QString> valueOf(const Task<std::optional<QString>>& task) {
    EXPECT_TRUE(task.isDone());
    return task.isDone() ? task.await_resume() : std::nullopt;
  }
};

TEST_F(RecognizedText, TextThatIsKnownIsGivenAtOnce) {
  EXPECT_EQ(valueOf(pipeline->recognizedText(addWithText(1))), QStringLiteral("known text"));
  EXPECT_THAT(analyzer.read, IsEmpty());
}

TEST_F(RecognizedText, ConcurrentRequestsShareOneRecognition) {
  analyzer.holdsReadings = true;
  const UUID id = add(1);
  const auto first = pipeline->recognizedText(id);
  const auto second = pipeline->recognizedText(id);
  pipeline->start({id});
  ASSERT_EQ(analyzer.readings.size(), 1u);
  FakeAnalyzer::answer<std::optional<QString>>(analyzer.readings[0], QStringLiteral("text"));
  EXPECT_EQ(valueOf(first), QStringLiteral("text"));
  EXPECT_EQ(valueOf(second), QStringLiteral("text"));
  EXPECT_EQ(item(id).recognizedText, "text");
  EXPECT_EQ(records.saves, 1);
}

TEST_F(RecognizedText, AnEmptyTextIsStoredToo) {
  analyzer.text = QString();
  const UUID id = add(1);
  pipeline->recognizedText(id).detach();
  EXPECT_EQ(item(id).recognizedText, QByteArray());
  EXPECT_TRUE(item(id).recognizedText.has_value());
  pipeline->recognizedText(id).detach();
  EXPECT_EQ(analyzer.read.size(), 1u);
}

TEST_F(RecognizedText, AReadingThatFailedIsTriedAgainWhenAsked) {
  const UUID id = add(1);
  EXPECT_EQ(valueOf(pipeline->recognizedText(id)), std::nullopt);
  EXPECT_EQ(valueOf(pipeline->recognizedText(id)), std::nullopt);
  EXPECT_EQ(analyzer.read.size(), 2u);
  EXPECT_EQ(item(id).recognizedText, std::nullopt);
}

TEST_F(RecognizedText, ACancelledReadingWritesNothing) {
  analyzer.holdsReadings = true;
  const UUID id = add(1);
  const auto task = pipeline->recognizedText(id);
  pipeline->cancel(id);
  EXPECT_EQ(valueOf(task), std::nullopt);
  EXPECT_EQ(records.changes, 0);
}

TEST_F(RecognizedText, ACancelledOneThatWaitsLeavesTheQueue) {
  analyzer.holdsReadings = true;
  std::vector<UUID> ids;
  for (int number = 1; number <= 4; ++number) {
    ids.push_back(add(number));
    pipeline->recognizedText(ids.back()).detach();
  }
  EXPECT_EQ(pipeline->ocrGate().waiting(), 2u);
  pipeline->cancel(ids[2]);
  EXPECT_EQ(pipeline->ocrGate().waiting(), 1u);
  pipeline->cancelAll();
  expectIdle();
}

TEST_F(RecognizedText, AnUnknownRecordHasNone) {
  EXPECT_EQ(valueOf(pipeline->recognizedText(uuid(9))), std::nullopt);
}

// --- Availability ---

TEST_F(AnalysisPipelineTest, AModelThatComesBackIsToldOnce) {
  int returns = 0;
  const auto refresh = [&] { pipeline->refreshAvailability([&] { ++returns; }); };
  analyzer.unavailability = Unavailability::deviceNotEligible;
  refresh();
  EXPECT_THAT(records.unavailability, ElementsAre(AnalysisError::unavailable(Unavailability::deviceNotEligible)));
  analyzer.unavailability.reset();
  refresh();
  refresh();
  EXPECT_EQ(returns, 1);
  EXPECT_EQ(records.unavailability.size(), 2u);
  EXPECT_EQ(records.unavailability.back(), std::nullopt);
}

TEST_F(AnalysisPipelineTest, AForeignServerIsToldWhenItChanges) {
  analyzer.foreign = ForeignModelServer{QStringLiteral("someone"), QStringLiteral("there"), QStringLiteral("key")};
  pipeline->refreshAvailability([] {});
  pipeline->refreshAvailability([] {});
  const auto first = analyzer.foreign;
  analyzer.foreign.reset();
  pipeline->refreshAvailability([] {});
  EXPECT_THAT(records.foreignServers, ElementsAre(first, std::nullopt));
}

TEST_F(AnalysisPipelineTest, AModelThatWasThereAllTheTimeIsNoReturn) {
  int returns = 0;
  pipeline->refreshAvailability([&] { ++returns; });
  pipeline->refreshAvailability([&] { ++returns; });
  EXPECT_EQ(returns, 0);
}

using Seen = std::optional<Unavailability>;

TEST_F(AnalysisPipelineTest, ASlowLookDoesNotOverwriteALaterOne) {
  int returns = 0;
  analyzer.holdsLooks = true;
  pipeline->refreshAvailability([&] { ++returns; });
  pipeline->refreshAvailability([&] { ++returns; });
  FakeAnalyzer::answer(analyzer.looks[1], Seen(Unavailability::deviceNotEligible));
  FakeAnalyzer::answer(analyzer.looks[0], Seen());
  EXPECT_EQ(returns, 0);
  EXPECT_THAT(records.unavailability, ElementsAre(AnalysisError::unavailable(Unavailability::deviceNotEligible)));
}

TEST_F(AnalysisPipelineTest, ASlowLookDoesNotOverwriteWhatADescriptionShowed) {
  analyzer.holdsLooks = true;
  pipeline->refreshAvailability([] {});
  analyzer.immediateDescriptions = {kResult};
  pipeline->start({addWithText(1)});
  FakeAnalyzer::answer(analyzer.looks[0], Seen(Unavailability::deviceNotEligible));
  EXPECT_THAT(records.unavailability, IsEmpty());

  pipeline->refreshAvailability([] {});
  analyzer.immediateDescriptions = {AnalysisError::unavailable(Unavailability::modelNotReady)};
  pipeline->start({addWithText(2)});
  FakeAnalyzer::answer(analyzer.looks[1], Seen());
  EXPECT_THAT(records.unavailability, ElementsAre(AnalysisError::unavailable(Unavailability::modelNotReady)));
}

TEST_F(AnalysisPipelineTest, AJobThatMissedTheModelIsMadeUpForWhenItReturns) {
  analyzer.immediateDescriptions = {AnalysisError::unavailable(Unavailability::modelNotReady)};
  pipeline->start({addWithText(1)});
  int returns = 0;
  pipeline->refreshAvailability([&] { ++returns; });
  EXPECT_EQ(returns, 1);
}

TEST(NeedsAnalysis, WithoutADescriptionAndNotFailedForGood) {
  ScreenshotItem item;
  EXPECT_TRUE(AnalysisPipeline::needsAnalysis(item));
  item.analysisFailure = AnalysisFailureCode::contentBlocked;
  item.analysisRetryable = false;
  EXPECT_FALSE(AnalysisPipeline::needsAnalysis(item));
  item.analysisRetryable.reset();
  EXPECT_FALSE(AnalysisPipeline::needsAnalysis(item));
  item.analysisFailure = AnalysisFailureCode::invalidResponse;
  item.analysisRetryable = true;
  EXPECT_TRUE(AnalysisPipeline::needsAnalysis(item));
  item.imageDescription = "A page.";
  EXPECT_FALSE(AnalysisPipeline::needsAnalysis(item));
}

// --- Anything in any order ---

class AnyOrder : public AnalysisPipelineTest, public ::testing::WithParamInterface<unsigned> {};

INSTANTIATE_TEST_SUITE_P(OfSteps, AnyOrder, ::testing::Range(0u, 400u));

TEST_P(AnyOrder, GatesAreFreeAtTheEndAndNobodyWritesWhereHeMayNot) {
  SCOPED_TRACE(::testing::Message() << "seed " << GetParam());
  std::mt19937 random(GetParam());
  const auto pick = [&](size_t count) { return static_cast<size_t>(random() % count); };
  analyzer.holdsDescriptions = true;
  analyzer.holdsReadings = true;
  std::vector<UUID> ids;
  for (int number = 1; number <= 6; ++number) ids.push_back(random() % 2 ? add(number) : addWithText(number));
  for (int step = 0; step < 80; ++step) {
    const UUID id = ids[pick(ids.size())];
    switch (pick(9)) {
      case 0:
      case 1:
        if (records.items.contains(id)) pipeline->start({id});
        break;
      case 2:
        pipeline->cancel(id);
        break;
      case 3:
        if (random() % 4 == 0) remove(id);
        break;
      case 4:
        if (random() % 8 == 0) pipeline->cancelAll();
        break;
      case 5:
        if (!analyzer.readings.empty()) {
          const auto call = analyzer.readings[pick(analyzer.readings.size())];
          const auto text = random() % 3 ? std::optional(QStringLiteral("text")) : std::nullopt;
          if (call->waiter) FakeAnalyzer::answer<std::optional<QString>>(call, text);
        }
        break;
      case 6:
        if (!analyzer.descriptions.empty()) {
          const auto call = analyzer.descriptions[pick(analyzer.descriptions.size())];
          const DescribeOutcome answers[] = {kResult, AnalysisError::busy({}), failure(Kind::invalidResponse),
                                             AnalysisError::unavailable(Unavailability::modelNotReady)};
          if (call->waiter) FakeAnalyzer::answer(call, answers[pick(4)]);
        }
        break;
      case 7:
        advance(static_cast<double>(pick(12)));
        break;
      case 8:
        analyzer.unavailability = random() % 2 ? std::optional(Unavailability::modelNotReady) : std::nullopt;
        pipeline->refreshAvailability([this] {
          std::vector<UUID> missing;
          for (const auto& [one, record] : records.items) {
            if (AnalysisPipeline::needsAnalysis(record)) missing.push_back(one);
          }
          pipeline->start(missing);
        });
        break;
    }
    EXPECT_LE(analyzer.describing, 1);
    EXPECT_LE(analyzer.reading, 2);
  }
  // Whatever is still open is answered; then nothing runs any more.
  for (int round = 0; round < 200; ++round) {
    for (size_t i = 0; i < analyzer.readings.size(); ++i) {
      const auto call = analyzer.readings[i];
      if (call->waiter) FakeAnalyzer::answer<std::optional<QString>>(call, QStringLiteral("text"));
    }
    for (size_t i = 0; i < analyzer.descriptions.size(); ++i) {
      const auto call = analyzer.descriptions[i];
      if (call->waiter) FakeAnalyzer::answer<DescribeOutcome>(call, kResult);
    }
    advance(31);
  }
  expectIdle();
  EXPECT_EQ(analyzer.describing, 0);
  EXPECT_EQ(analyzer.reading, 0);
}

}  // namespace
}  // namespace quillmere::testing
