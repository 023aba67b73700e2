#include "pixels/ScalingWeights.h"

#include <gtest/gtest.h>
#include <numeric>

namespace quillmere {
namespace {

int sumOf(const ScalingWeights& plan, int newPixel) {
  return std::accumulate(plan.weightsOf(newPixel), plan.weightsOf(newPixel) + plan.taps, 0);
}

TEST(ScalingWeightsTest, WeightsAddUpToOneWhateverTheSides) {
  for (int from = 1; from <= 90; ++from) {
    for (int to = 1; to <= from; ++to) {
      const auto plan = ScalingWeights::of(from, to);
      ASSERT_EQ(plan.firsts.size(), static_cast<size_t>(to));
      for (int i = 0; i < to; ++i) ASSERT_EQ(sumOf(plan, i), ScalingWeights::kOne) << from << " to " << to;
    }
  }
}

TEST(ScalingWeightsTest, NothingBeyondTheLastCellHasWeight) {
  for (const auto& [from, to] : {std::pair(5120, 408), {4999, 816}, {100, 99}, {7, 3}, {3, 2}, {5000, 7}}) {
    const auto plan = ScalingWeights::of(from, to);
    EXPECT_EQ(plan.taps % 2, 0);
    for (int i = 0; i < to; ++i) {
      const int first = plan.firsts[static_cast<size_t>(i)];
      ASSERT_GE(first, 0);
      ASSERT_LT(first, plan.cells);
      for (int tap = plan.cells - first; tap < plan.taps; ++tap) ASSERT_EQ(plan.weightsOf(i)[tap], 0);
    }
  }
}

TEST(ScalingWeightsTest, CellsLeaveAtLeastTwoForEachNewPixel) {
  EXPECT_EQ(ScalingWeights::of(5120, 408).cell, 6);
  EXPECT_EQ(ScalingWeights::of(5120, 816).cell, 3);
  EXPECT_EQ(ScalingWeights::of(400, 100).cell, 2);
  EXPECT_EQ(ScalingWeights::of(399, 100).cell, 1);
  EXPECT_EQ(ScalingWeights::of(100, 100).cell, 1);
}

TEST(ScalingWeightsTest, TheLastCellHasWhatIsLeft) {
  const auto plan = ScalingWeights::of(5120, 408);
  EXPECT_EQ(plan.cells, 854);
  EXPECT_EQ(plan.pixelsIn(0), 6);
  EXPECT_EQ(plan.pixelsIn(852), 6);
  EXPECT_EQ(plan.pixelsIn(853), 2);
}

TEST(ScalingWeightsTest, CellsAreNoLargerThanSumsAllow) {
  const auto plan = ScalingWeights::of(1'000'000, 100);
  EXPECT_EQ(plan.cell, ScalingWeights::kLargestCell);
  for (int i = 0; i < 100; ++i) EXPECT_EQ(sumOf(plan, i), ScalingWeights::kOne);
}

TEST(ScalingWeightsTest, ASideThatStaysIsCopied) {
  const auto plan = ScalingWeights::of(50, 50);
  for (int i = 0; i < 50; ++i) {
    for (int tap = 0; tap < plan.taps; ++tap) {
      const bool isItself = plan.firsts[static_cast<size_t>(i)] + tap == i;
      EXPECT_EQ(plan.weightsOf(i)[tap], isItself ? ScalingWeights::kOne : 0);
    }
  }
}

TEST(ScalingWeightsTest, BothEndsAreTreatedAlike) {
  const auto plan = ScalingWeights::of(600, 100);
  ASSERT_EQ(plan.cells * plan.cell, plan.from);
  std::vector<int> forward(static_cast<size_t>(plan.cells));
  std::vector<int> backward(forward);
  for (const int i : {0, 1, 7}) {
    for (int tap = 0; tap < plan.taps; ++tap) {
      const auto place = [&](int pixel) -> size_t { return plan.firsts[static_cast<size_t>(pixel)] + tap; };
      if (place(i) < forward.size()) forward[place(i)] = plan.weightsOf(i)[tap];
      const int mirrored = plan.to - 1 - i;
      if (place(mirrored) < forward.size())
        backward[forward.size() - 1 - place(mirrored)] = plan.weightsOf(mirrored)[tap];
    }
    for (size_t cell = 0; cell < forward.size(); ++cell) EXPECT_NEAR(forward[cell], backward[cell], 1);
  }
}

}  // namespace
}  // namespace quillmere
