#include "model/ReconciliationRuns.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fakes/ModelFakes.h"
#include "foundation/ManualExecutor.h"
#include "support/Records.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class FakeReconciledRecords final : public ReconciledRecords {
 public:
  ReconcileRun prepareRun(const std::optional<UUIDSet>& ids) override {
    prepared.push_back(ids);
    return run;
  }
  void applyRun(const ReconcileRun&, const ReconcileRequest& request) override {
    applied.push_back(request);
    if (onApply) onApply();
  }

  ReconcileRun run;
  std::vector<std::optional<UUIDSet>> prepared;
  std::vector<ReconcileRequest> applied;
  std::function<void()> onApply;
};

class ReconciliationRunsTest : public ::testing::Test {
 protected:
  ReconcileRequest of(int number, const char* name = nullptr) {
    ReconcileRequest request{.ids = UUIDSet{uuid(number)}, .completions = {}};
    if (name) request.completions.push_back([this, name] { completed.emplace_back(name); });
    return request;
  }

  CallLog log;
  ManualExecutor executor;
  FakeReconciledRecords records;
  std::vector<std::string> completed;
  std::unique_ptr<ReconciliationRuns> runs = std::make_unique<ReconciliationRuns>(executor, records);
};

TEST_F(ReconciliationRunsTest, ARunIsAppliedAndThenCompleted) {
  records.onApply = [&] { EXPECT_THAT(completed, IsEmpty()); };
  runs->request(of(1, "one"));
  EXPECT_TRUE(runs->isRunning());
  EXPECT_THAT(records.applied, IsEmpty());
  executor.drain();
  EXPECT_FALSE(runs->isRunning());
  EXPECT_EQ(records.applied.size(), 1u);
  EXPECT_THAT(completed, ElementsAre("one"));
}

TEST_F(ReconciliationRunsTest, WhatIsAskedForDuringARunIsGatheredToOneRunAfterIt) {
  runs->request(of(1, "one"));
  auto polite = of(2, "two");
  polite.polite = true;
  auto dropping = of(3, "three");
  dropping.dropsUnavailableFromQueue = true;
  runs->request(std::move(polite));
  runs->request(std::move(dropping));
  EXPECT_EQ(records.prepared.size(), 1u) << "the world is looked at when its run begins";
  executor.drain();
  ASSERT_EQ(records.applied.size(), 2u);
  EXPECT_THAT(*records.applied[1].ids, UnorderedElementsAre(uuid(2), uuid(3)));
  EXPECT_TRUE(records.applied[1].polite);
  EXPECT_TRUE(records.applied[1].dropsUnavailableFromQueue);
  EXPECT_THAT(completed, ElementsAre("one", "two", "three"));
}

TEST_F(ReconciliationRunsTest, ARequestForEverythingTakesInTheOthers) {
  for (const bool everythingComesFirst : {true, false}) {
    runs->request(of(1));
    if (everythingComesFirst) runs->request({});
    runs->request(of(2));
    if (!everythingComesFirst) runs->request({});
    executor.drain();
    EXPECT_EQ(records.applied.back().ids, std::nullopt);
  }
  EXPECT_EQ(records.applied.size(), 4u);
}

TEST_F(ReconciliationRunsTest, ArrivalsCountForTheRunDuringWhichTheyCame) {
  runs->noteArrival(uuid(1));
  runs->request(of(1));
  EXPECT_FALSE(runs->hasArrived(uuid(1))) << "it came before, so the run sees it";
  runs->noteArrival(uuid(2));
  bool hadArrived = false;
  records.onApply = [&] { hadArrived = runs->hasArrived(uuid(2)); };
  executor.drain();
  EXPECT_TRUE(hadArrived);
  runs->request(of(2));
  EXPECT_FALSE(runs->hasArrived(uuid(2)));
  executor.drain();
}

TEST_F(ReconciliationRunsTest, WhatIsAskedForWhileARunIsAppliedComesAfterIt) {
  records.onApply = [&] {
    records.onApply = nullptr;
    runs->request(of(2, "two"));
  };
  runs->request(of(1, "one"));
  executor.drain();
  EXPECT_THAT(completed, ElementsAre("one", "two"));
}

TEST_F(ReconciliationRunsTest, ARunWhoseOwnerIsGoneIsDropped) {
  runs->request(of(1, "one"));
  runs.reset();
  executor.drain();
  EXPECT_THAT(records.applied, IsEmpty());
  EXPECT_THAT(completed, IsEmpty());
}

TEST_F(ReconciliationRunsTest, ARunWhoseOwnerIsGoneLooksAtNothingAnyMore) {
  int looks = 0;
  FakeSecurityScope scope{log};
  records.run.inputs = {{uuid(1), FileURL::fromPath("/shots/1.png"), std::nullopt, std::nullopt}};
  records.run.environment.scope = &scope;
  records.run.environment.isInTrash = [&](const FileURL&) { return ++looks > 0; };
  runs->request({});
  runs.reset();
  executor.drain();
  EXPECT_EQ(looks, 0);

  runs = std::make_unique<ReconciliationRuns>(executor, records);
  runs->request({});
  executor.drain();
  EXPECT_EQ(looks, 1);
}

TEST_F(ReconciliationRunsTest, ACompletionMayEndItAll) {
  auto request = of(1, "one");
  request.completions.push_back([&] { runs.reset(); });
  request.completions.push_back([&] { completed.emplace_back("never"); });
  runs->request(std::move(request));
  runs->request(of(2, "two"));
  executor.drain();
  EXPECT_THAT(completed, ElementsAre("one"));
  EXPECT_EQ(records.applied.size(), 1u);
}

}  // namespace
}  // namespace quillmere::testing
