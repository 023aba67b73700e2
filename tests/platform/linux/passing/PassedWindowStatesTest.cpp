#include "platform/linux/passing/PassedWindowStates.h"

#include <gtest/gtest.h>

namespace quillmere::PassedWindowStates {
namespace {

Question question() {
  WindowStack state;
  state.since = Date{12.5};
  state.root = QSize(1920, 1080);
  state.monitors = {QRect(0, 0, 1920, 1080), QRect(1920, 0, 800, 600)};
  state.scale = 1.25;
  state.manager = "Some manager";
  state.active = 7;
  state.desktop = 2;
  state.isPartial = true;
  state.windows.push_back({.id = 7,
                           .type = WindowStack::Window::Type::panel,
                           .decoratesItself = true,
                           .frame = QRect(1, 2, 3, 4),
                           .client = QRect(5, 6, 7, 8),
                           .outer = QRect(-9, -10, 11, 12)});
  return {{state, WindowStack()}, Date{99.5}};
}

TEST(PassedWindowStatesTest, WhatIsPassedIsWhatComes) {
  const auto passed = decoded(coded(question()));
  ASSERT_TRUE(passed);
  EXPECT_EQ(passed->closedAt, Date{99.5});
  ASSERT_EQ(passed->states.size(), 2u);
  EXPECT_EQ(passed->states[0].since, Date{12.5});
  EXPECT_TRUE(passed->states[0].showsTheSameAs(question().states[0]));
  EXPECT_TRUE(decoded(coded({})));
}

TEST(PassedWindowStatesTest, BytesThatAreNoSuchListAreNone) {
  const std::string whole = coded(question());
  EXPECT_FALSE(decoded(""));
  for (size_t length = 0; length < whole.size(); ++length) EXPECT_FALSE(decoded(whole.substr(0, length))) << length;
  EXPECT_FALSE(decoded(whole + '\0'));
  EXPECT_FALSE(decoded(std::string(64, '\xff')));
}

}  // namespace
}  // namespace quillmere::PassedWindowStates
