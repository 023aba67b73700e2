#include "popup/PromptActionGate.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

using std::chrono::milliseconds;

class PromptActionGateTest : public ::testing::Test {
 protected:
  Instant start = Instant(seconds(100));
  PromptActionGate gate{1, start};
};

TEST_F(PromptActionGateTest, AClickTooSoonIsRefused) {
  EXPECT_FALSE(gate.allows(start));
  EXPECT_FALSE(gate.allows(start + milliseconds(290)));
  EXPECT_FALSE(gate.allows(start + milliseconds(300) - Duration(1)));
}

TEST_F(PromptActionGateTest, ExactlyThreeTenthsOfASecondAreEnough) {
  EXPECT_TRUE(gate.allows(start + milliseconds(300)));
  EXPECT_TRUE(gate.allows(start + milliseconds(310)));
}

TEST_F(PromptActionGateTest, ANewGenerationStartsTheTimeAnew) {
  gate.observe(2, start + milliseconds(250));
  EXPECT_FALSE(gate.allows(start + milliseconds(540)));
  EXPECT_TRUE(gate.allows(start + milliseconds(550)));
}

TEST_F(PromptActionGateTest, TheSameGenerationLeavesTheTimeAlone) {
  gate.observe(1, start + milliseconds(250));
  EXPECT_TRUE(gate.allows(start + milliseconds(300)));
}

}  // namespace
}  // namespace quillmere
