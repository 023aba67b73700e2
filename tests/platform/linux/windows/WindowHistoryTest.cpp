#include "platform/linux/windows/WindowHistory.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

/// States are told apart by the window that has the keyboard.
WindowStack state(double since, uint32_t active) {
  WindowStack state;
  state.since = Date{since};
  state.active = active;
  return state;
}

std::vector<uint32_t> actives(const std::vector<WindowStack>& states) {
  std::vector<uint32_t> result;
  for (const WindowStack& one : states) result.push_back(one.active);
  return result;
}

using Actives = std::vector<uint32_t>;

TEST(WindowHistoryTest, WhatShowsTheSameIsNotNew) {
  WindowHistory history;
  EXPECT_TRUE(history.states(Date{0}).empty());
  history.add(state(1, 1));
  history.add(state(2, 1));
  ASSERT_EQ(history.states(Date{3}).size(), 1u);
  EXPECT_EQ(history.states(Date{3})[0].since, Date{1});
}

TEST(WindowHistoryTest, OfTheLastSecondsEveryStateIsKept) {
  WindowHistory history;
  history.add(state(0, 1));
  history.add(state(5, 2));
  history.add(state(5.1, 3));
  EXPECT_EQ(actives(history.states(Date{15.1})), (Actives{1, 2, 3})) << "it was shown until ten seconds ago";
  EXPECT_EQ(actives(history.states(Date{15.2})), (Actives{1, 3})) << "too short to be seen";
}

TEST(WindowHistoryTest, WhatCouldBeSeenIsKeptForAQuarterOfAnHour) {
  WindowHistory history;
  history.add(state(0, 1));
  history.add(state(0.25, 2));
  history.add(state(1, 3));
  EXPECT_EQ(actives(history.states(Date{900})), (Actives{1, 2, 3}));
  EXPECT_EQ(actives(history.states(Date{900.5})), (Actives{2, 3}));
  EXPECT_EQ(actives(history.states(Date{902})), (Actives{3})) << "which still holds";
}

TEST(WindowHistoryTest, ThereAreNeverMoreThanSoMany) {
  WindowHistory history;
  for (uint32_t i = 1; i <= 1000; ++i) history.add(state(0.001 * i, i));
  const auto states = history.states(Date{1.1});
  ASSERT_EQ(states.size(), WindowHistory::kMost);
  EXPECT_EQ(states.back().active, 1000u);
  EXPECT_EQ(states.front().active, 1000u - WindowHistory::kMost + 1);
}

}  // namespace
}  // namespace quillmere
