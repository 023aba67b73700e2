#include "inbox/SelectionTemporaryMenu.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

TEST(SelectionTemporaryMenu, ListsTheTimesInOrderAndGivesTheChosenOne) {
  SelectionTemporaryMenu menu(nullptr);
  std::vector<TemporaryDuration> chosen;
  menu.action = [&](TemporaryDuration duration) { chosen.push_back(duration); };
  ASSERT_EQ(menu.actions().size(), static_cast<qsizetype>(kTemporaryDurations.size()));
  for (QAction* action : menu.actions()) action->trigger();
  EXPECT_TRUE(std::equal(chosen.begin(), chosen.end(), kTemporaryDurations.begin(), kTemporaryDurations.end()));
  EXPECT_EQ(menu.actions().first()->text(), menuText(kTemporaryDurations.front()));
}

}  // namespace
}  // namespace quillmere
