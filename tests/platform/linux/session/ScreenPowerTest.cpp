#include "platform/linux/session/ScreenPower.h"

#include <gmock/gmock.h>
#include <vector>

#include "foundation/ManualExecutor.h"

namespace quillmere {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ScreenPowerTest : public ::testing::Test {
 protected:
  std::vector<bool> told() { return std::exchange(seen, {}); }

  ManualExecutor executor;
  int looks = 0;
  std::optional<bool> areOff = false;
  std::vector<bool> seen;
  ScreenPowerPoll poll{executor,
                       [this] {
                         ++looks;
                         return areOff;
                       },
                       [this](bool value) { seen.push_back(value); }};
};

TEST_F(ScreenPowerTest, NobodyLooksUntilItIsOn) {
  executor.advance(seconds(60));
  EXPECT_EQ(looks, 0);
  EXPECT_EQ(executor.pendingDelays(), 0u);
}

TEST_F(ScreenPowerTest, ItLooksInTheNextTurnAndThenEveryTwoSeconds) {
  poll.setOn(true);
  EXPECT_EQ(looks, 0) << "not while it is being switched on";
  executor.advance(Duration::zero());
  EXPECT_EQ(looks, 1);
  executor.advance(seconds(1.9));
  EXPECT_EQ(looks, 1);
  executor.advance(seconds(0.1));
  EXPECT_EQ(looks, 2);
  executor.advance(seconds(20));
  EXPECT_EQ(looks, 12);
}

TEST_F(ScreenPowerTest, ItTellsWhatItSees) {
  poll.setOn(true);
  executor.advance(Duration::zero());
  areOff = true;
  executor.advance(seconds(2));
  areOff = false;
  executor.advance(seconds(2));
  EXPECT_THAT(told(), ElementsAre(false, true, false));
}

TEST_F(ScreenPowerTest, SwitchedOffItLooksNoMoreAndKnowsOfNothingThatIsOff) {
  areOff = true;
  poll.setOn(true);
  executor.advance(Duration::zero());
  EXPECT_THAT(told(), ElementsAre(true));
  poll.setOn(false);
  EXPECT_THAT(told(), ElementsAre(false));
  executor.advance(seconds(60));
  EXPECT_EQ(looks, 1);
  EXPECT_THAT(told(), IsEmpty());
}

TEST_F(ScreenPowerTest, SwitchedOnTwiceItLooksOnce) {
  poll.setOn(true);
  poll.setOn(true);
  executor.advance(seconds(2));
  EXPECT_EQ(looks, 2);
  poll.setOn(false);
  poll.setOn(true);
  executor.advance(Duration::zero());
  EXPECT_EQ(looks, 3);
  EXPECT_EQ(executor.pendingDelays(), 1u);
}

TEST_F(ScreenPowerTest, WhereThePowerIsNotManagedOneLookIsEnough) {
  areOff = std::nullopt;
  poll.setOn(true);
  executor.advance(seconds(60));
  EXPECT_EQ(looks, 1);
  EXPECT_EQ(executor.pendingDelays(), 0u);
  EXPECT_THAT(told(), IsEmpty());
}

TEST_F(ScreenPowerTest, AListenerMaySwitchItOff) {
  ScreenPowerPoll* self = nullptr;
  int told = 0;
  ScreenPowerPoll once{executor, [] { return std::optional(true); },
                       [&](bool isOff) {
                         ++told;
                         if (isOff) self->setOn(false);
                       }};
  self = &once;
  once.setOn(true);
  executor.advance(seconds(60));
  EXPECT_EQ(told, 2);
}

TEST_F(ScreenPowerTest, ADestroyedPollLeavesNoDelayBehind) {
  {
    ScreenPowerPoll brief{executor, [] { return std::optional(false); }, [](bool) {}};
    brief.setOn(true);
  }
  EXPECT_EQ(executor.pendingDelays(), 0u);
}

TEST(AreScreensOffTest, WithoutAnXServerNobodyKnows) {
  EXPECT_FALSE(areScreensOff());
}

}  // namespace
}  // namespace quillmere
