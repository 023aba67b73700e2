#include "inbox/ScreenshotStatus.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

using State = ScreenshotItem::State;

ScreenshotItem itemWith(State state) {
  ScreenshotItem item;
  item.state = state;
  return item;
}

TEST(ScreenshotStatus, EachStateHasItsWordsAndItsSymbol) {
  EXPECT_EQ(screenshotStatus(itemWith(State::pending), false), QStringLiteral("Pending decision"));
  EXPECT_EQ(screenshotStatus(itemWith(State::temporary), false), QStringLiteral("Temporary"));
  EXPECT_EQ(screenshotStatus(itemWith(State::permanent), false), QStringLiteral("Saved"));
  EXPECT_EQ(statusSymbol(State::pending), QStringLiteral("circle.dashed"));
  EXPECT_EQ(statusSymbol(State::temporary), QStringLiteral("clock"));
  EXPECT_EQ(statusSymbol(State::permanent), QStringLiteral("checkmark.circle"));
}

TEST(ScreenshotStatus, ALostFileComesBeforeWhatWasDecided) {
  for (const State state : {State::pending, State::temporary, State::permanent}) {
    EXPECT_EQ(screenshotStatus(itemWith(state), true), QStringLiteral("Unavailable"));
    EXPECT_EQ(statusSymbol(itemWith(state), true), QStringLiteral("exclamationmark.triangle.fill"));
    EXPECT_EQ(statusSymbol(itemWith(state), false), statusSymbol(state));
  }
}

}  // namespace
}  // namespace quillmere
