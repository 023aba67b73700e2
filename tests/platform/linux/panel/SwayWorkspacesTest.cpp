#include "platform/linux/panel/SwayWorkspaces.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

using namespace SwayWorkspaces;

constexpr const char* kList = R"([
  {"num": 1, "visible": true, "output": "A", "rect": {"x": 0, "y": 30, "width": 1280, "height": 770}},
  {"num": 2, "visible": false, "output": "A", "rect": {"x": 0, "y": 0, "width": 1280, "height": 800}},
  {"num": 3, "visible": true, "output": "B", "rect": {"x": 1280, "y": 0, "width": 1920, "height": 1040}}])";

TEST(SwayWorkspacesTest, TheVisibleOnesAreRead) {
  EXPECT_EQ(visible(kList), (std::vector{QRect(0, 30, 1280, 770), QRect(1280, 0, 1920, 1040)}));
}

TEST(SwayWorkspacesTest, WhatIsNoListHasNone) {
  EXPECT_TRUE(visible("").empty());
  EXPECT_TRUE(visible("[1, null, {}]").empty());
  EXPECT_TRUE(visible(R"([{"visible": true, "rect": {"x": 0, "y": 0, "width": 0, "height": 5}}])").empty());
}

TEST(SwayWorkspacesTest, AScreenHasWhatItsWorkspaceHas) {
  const auto workspaces = visible(kList);
  EXPECT_EQ(within(QRect(0, 0, 1280, 800), workspaces), QRect(0, 30, 1280, 770));
  EXPECT_EQ(within(QRect(1280, 0, 1920, 1080), workspaces), QRect(1280, 0, 1920, 1040));
  EXPECT_EQ(within(QRect(5000, 0, 800, 600), workspaces), QRect(5000, 0, 800, 600));
  EXPECT_EQ(within(QRect(0, 0, 1280, 800), {}), QRect(0, 0, 1280, 800));
}

TEST(SwayWorkspacesTest, WithoutASocketNobodyIsAsked) {
  qunsetenv("SWAYSOCK");
  EXPECT_TRUE(ask().empty());
  qputenv("SWAYSOCK", "/nonexistent/socket");
  EXPECT_TRUE(ask().empty());
  qunsetenv("SWAYSOCK");
}

}  // namespace
}  // namespace quillmere
