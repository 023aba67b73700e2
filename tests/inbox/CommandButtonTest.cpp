#include "inbox/CommandButton.h"

#include <gtest/gtest.h>

#include "controls/ActionButton.h"
#include "support/Printing.h"

namespace quillmere {
namespace {

TEST(CommandButton, SaysWhatTheCommandSays) {
  ActionButton button(ActionButton::Role::secondary, {}, {});
  const int bare = button.sizeHint().width();
  showCommand(button, {ScreenshotCommand::crop,
                       QStringLiteral("Crop…"),
                       QStringLiteral("crop"),
                       QStringLiteral("Crop this screenshot into a new image"),
                       false,
                       false,
                       {}});
  EXPECT_EQ(button.text(), QStringLiteral("Crop…"));
  EXPECT_EQ(button.toolTip(), QStringLiteral("Crop this screenshot into a new image"));
  EXPECT_FALSE(button.isEnabled());
  EXPECT_GT(button.sizeHint().width(), bare);
}

}  // namespace
}  // namespace quillmere
