#include "platform/linux/session/WindowPlatform.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

std::string reason(const DisplayEnvironment& environment) {
  return reasonWithoutWindows(environment).toStdString();
}

TEST(ReasonWithoutWindows, NoVariableNamesADisplay) {
  EXPECT_EQ(reason({}), "there is no display: neither DISPLAY nor WAYLAND_DISPLAY is set.");
}

TEST(ReasonWithoutWindows, AnXServerThatIsNotThereIsNamed) {
  EXPECT_EQ(reason({.x11Display = ":7"}), "the X display ':7' that DISPLAY names cannot be used.");
}

TEST(ReasonWithoutWindows, TheXServerCountsWhereThereIsAWaylandDisplayToo) {
  EXPECT_EQ(reason({.x11Display = ":7", .waylandDisplay = "wayland-0"}),
            "the X display ':7' that DISPLAY names cannot be used.");
}

TEST(ReasonWithoutWindows, AWaylandDisplayAloneIsNamed) {
  EXPECT_EQ(reason({.waylandDisplay = "wayland-0"}),
            "there is no X display, and Qt cannot use the Wayland display 'wayland-0'.");
}

TEST(ReasonWithoutWindows, AskedForXTheDisplayIsWhatCounts) {
  EXPECT_EQ(reason({.platform = "xcb"}), reason({}));
  EXPECT_EQ(reason({.platform = "xcb", .x11Display = ":7"}), reason({.x11Display = ":7"}));
}

TEST(ReasonWithoutWindows, AnyOtherPlatformThatWasAskedForIsNamed) {
  EXPECT_EQ(reason({.platform = "wayland", .x11Display = ":7"}),
            "Qt cannot show windows on the platform 'wayland' that QT_QPA_PLATFORM names.");
}

}  // namespace
}  // namespace quillmere
