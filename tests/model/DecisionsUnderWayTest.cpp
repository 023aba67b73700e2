#include "model/DecisionsUnderWay.h"

#include <gmock/gmock.h>

#include <optional>

#include "foundation/ManualExecutor.h"
#include "support/Records.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class DecisionsUnderWayTest : public ::testing::Test, public DecidedRecords {
 protected:
  bool isInPopups(const UUID& id) const override { return inPopups.contains(id); }
  void leavePopup(const UUID& id) override { left.push_back(id); }
  void decisionEnded(const UUID& id, Ended how) override {
    ended.push_back(id);
    last = how;
  }
  void advance(int milliseconds) { executor.advance(std::chrono::milliseconds(milliseconds)); }

  ManualExecutor executor;
  UUIDSet inPopups;
  std::vector<UUID> left;
  std::vector<UUID> ended;
  Ended last;
  std::optional<DecisionsUnderWay> decisions{std::in_place, executor, *this};
};

TEST_F(DecisionsUnderWayTest, IsUnderWayUntilAsManyEndsAsBeginnings) {
  decisions->begin(uuid(1));
  decisions->begin(uuid(1));
  decisions->end(uuid(1));
  EXPECT_TRUE(decisions->contains(uuid(1)));
  EXPECT_THAT(ended, IsEmpty());
  decisions->end(uuid(1));
  EXPECT_FALSE(decisions->contains(uuid(1)));
  EXPECT_THAT(ended, ElementsAre(uuid(1)));
  decisions->end(uuid(1));
  EXPECT_THAT(ended, ElementsAre(uuid(1)));
}

TEST_F(DecisionsUnderWayTest, AGuardEndsWhatItBegan) {
  {
    const DecisionsUnderWay::Guard guard(*decisions, uuid(1));
    EXPECT_TRUE(decisions->contains(uuid(1)));
  }
  EXPECT_THAT(ended, ElementsAre(uuid(1)));
}

TEST_F(DecisionsUnderWayTest, AGuardMayOutliveThem) {
  std::optional<DecisionsUnderWay::Guard> guard(std::in_place, *decisions, uuid(1));
  decisions.reset();
  guard.reset();
  EXPECT_THAT(ended, IsEmpty());
}

TEST_F(DecisionsUnderWayTest, ThePopupWaitsAQuarterOfASecond) {
  inPopups.insert(uuid(1));
  decisions->begin(uuid(1));
  advance(249);
  EXPECT_THAT(left, IsEmpty());
  advance(1);
  EXPECT_THAT(left, ElementsAre(uuid(1)));
  decisions->end(uuid(1));
  EXPECT_TRUE(last.hasLeftPopup);
}

TEST_F(DecisionsUnderWayTest, ADecisionThatIsOverLeavesThePopupWhereItIs) {
  inPopups.insert(uuid(1));
  decisions->begin(uuid(1));
  decisions->end(uuid(1));
  advance(1000);
  EXPECT_THAT(left, IsEmpty());
  EXPECT_FALSE(last.hasLeftPopup);
}

TEST_F(DecisionsUnderWayTest, WhatIsInNoPopupLeavesNone) {
  decisions->begin(uuid(1));
  advance(1000);
  EXPECT_THAT(left, IsEmpty());
}

TEST_F(DecisionsUnderWayTest, IsKeptAfterwardsOnlyIfSomethingWasUnderWay) {
  decisions->keepAfterwards(uuid(1));
  decisions->begin(uuid(1));
  decisions->end(uuid(1));
  EXPECT_FALSE(last.isKept);
  decisions->begin(uuid(1));
  decisions->keepAfterwards(uuid(1));
  decisions->end(uuid(1));
  EXPECT_TRUE(last.isKept);
}

TEST_F(DecisionsUnderWayTest, IsAskedAboutOnce) {
  EXPECT_TRUE(decisions->beginQuestion(uuid(1)));
  EXPECT_FALSE(decisions->beginQuestion(uuid(1)));
  EXPECT_TRUE(decisions->beginQuestion(uuid(2)));
  decisions->endQuestion(uuid(1));
  EXPECT_TRUE(decisions->beginQuestion(uuid(1)));
}

TEST_F(DecisionsUnderWayTest, IsProtectedUntilUnprotectedAsOften) {
  decisions->protect(uuid(1));
  decisions->protect(uuid(1));
  decisions->unprotect(uuid(1));
  EXPECT_TRUE(decisions->isProtected(uuid(1)));
  decisions->unprotect(uuid(1));
  EXPECT_FALSE(decisions->isProtected(uuid(1)));
  decisions->unprotect(uuid(1));
  decisions->protect(uuid(1));
  EXPECT_TRUE(decisions->isProtected(uuid(1)));
  decisions->dropProtection(uuid(1));
  EXPECT_FALSE(decisions->isProtected(uuid(1)));
}

}  // namespace
}  // namespace quillmere::testing
