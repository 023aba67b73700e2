#include "platform/linux/windows/SwayTree.h"

#include <gmock/gmock.h>

#include <string>

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using Type = WindowStack::Window::Type;

std::string rect(const char* name, const QRectF& at) {
  return std::string("\"") + name + "\":{\"x\":" + std::to_string(at.x()) + ",\"y\":" + std::to_string(at.y()) +
         ",\"width\":" + std::to_string(at.width()) + ",\"height\":" + std::to_string(at.height()) + "}";
}

struct Leaf {
  int id;
  QRectF at;
  QRectF title = {};
  bool isVisible = true;
  bool isFocused = false;
  int process = 100;
  std::string border = "normal";
  int fullscreen = 0;
};

std::string coded(const Leaf& leaf) {
  return "{\"id\":" + std::to_string(leaf.id) + ",\"type\":\"con\"," + rect("rect", leaf.at) + "," +
         rect("deco_rect", leaf.title) + ",\"visible\":" + (leaf.isVisible ? "true" : "false") +
         ",\"focused\":" + (leaf.isFocused ? "true" : "false") + ",\"pid\":" + std::to_string(leaf.process) +
         ",\"border\":\"" + leaf.border + "\",\"fullscreen_mode\":" + std::to_string(leaf.fullscreen) +
         ",\"layout\":\"none\",\"nodes\":[],\"floating_nodes\":[]}";
}

std::string container(const std::string& layout, const QRectF& at, const std::string& nodes) {
  return "{\"id\":9,\"type\":\"con\",\"layout\":\"" + layout + "\"," + rect("rect", at) + ",\"nodes\":[" + nodes +
         "],\"floating_nodes\":[]}";
}

const QRectF kOutput(0, 0, 1600, 1000);
const QRectF kWorkspace(0, 0, 1600, 977);

std::string workspace(const std::string& name, const std::string& tiled, const std::string& floating,
                      const QRectF& at = kWorkspace) {
  return "{\"id\":4,\"type\":\"workspace\",\"name\":\"" + name + "\",\"layout\":\"splith\"," + rect("rect", at) +
         ",\"nodes\":[" + tiled + "],\"floating_nodes\":[" + floating + "]}";
}

std::string output(const std::string& workspaces, const QRectF& at = kOutput, const std::string& shown = "1") {
  return "{\"id\":3,\"type\":\"output\",\"name\":\"A\",\"current_workspace\":\"" + shown + "\"," + rect("rect", at) +
         ",\"nodes\":[" + workspaces + "],\"floating_nodes\":[]}";
}

std::string tree(const std::string& outputs) {
  return "{\"id\":1,\"type\":\"root\"," + rect("rect", kOutput) +
         ",\"nodes\":[{\"id\":2,\"type\":\"output\",\"name\":\"__i3\",\"nodes\":[" +
         workspace("__i3_scratch", "", coded({.id = 77, .at = QRectF(5, 5, 50, 50)})) + "]}," + outputs + "]}";
}

std::string screen(const QRectF& at = kOutput, double scale = 1, bool isActive = true) {
  return "{\"name\":\"A\",\"active\":" + std::string(isActive ? "true" : "false") +
         ",\"scale\":" + std::to_string(scale) + "," + rect("rect", at) + "}";
}

std::optional<WindowStack> stackOf(const std::string& outputs, const std::string& screens = screen()) {
  return swayStack(tree(outputs), "[" + screens + "]", 1);
}

std::vector<QRect> framesOf(const WindowStack& stack) {
  std::vector<QRect> frames;
  for (const auto& window : stack.windows) {
    if (window.type == Type::window) frames.push_back(window.frame);
  }
  return frames;
}

TEST(SwayTreeTest, AWindowIsSeenWithItsTitleBar) {
  const auto stack = stackOf(output(workspace(
      "1", "",
      coded({.id = 8, .at = QRectF(100, 425, 746, 429), .title = QRectF(100, 400, 746, 25), .isFocused = true}))));
  ASSERT_TRUE(stack);
  EXPECT_EQ(stack->manager, "sway");
  EXPECT_EQ(stack->root, QSize(1600, 1000));
  EXPECT_THAT(stack->monitors, ElementsAre(QRect(0, 0, 1600, 1000)));
  EXPECT_EQ(stack->active, 8u);
  EXPECT_FALSE(stack->isPartial);
  EXPECT_THAT(framesOf(*stack), ElementsAre(QRect(100, 400, 746, 454)));
}

TEST(SwayTreeTest, ATitleBarMayBeToldFromItsParent) {
  const QRectF half(800, 0, 800, 977);
  const auto stack = stackOf(output(workspace(
      "1", container("splitv", half, coded({.id = 8, .at = QRectF(800, 25, 800, 952), .title = QRectF(0, 0, 800, 25)})),
      "")));
  EXPECT_THAT(framesOf(*stack), ElementsAre(QRect(800, 0, 800, 977)));
}

TEST(SwayTreeTest, AWindowThatDecoratesItselfHasNone) {
  const auto stack =
      stackOf(output(workspace("1", "", coded({.id = 8, .at = QRectF(300, 200, 742, 427), .border = "csd"}))));
  EXPECT_THAT(framesOf(*stack), ElementsAre(QRect(300, 200, 742, 427)));
  EXPECT_TRUE(stack->windows.back().decoratesItself);
}

TEST(SwayTreeTest, OfTabsTheShownOneHasTheirRow) {
  for (const char* layout : {"tabbed", "stacked"}) {
    const std::string tabs =
        coded({.id = 8, .at = QRectF(0, 25, 1600, 952), .title = QRectF(0, 0, 800, 25), .isVisible = false}) + "," +
        coded({.id = 10, .at = QRectF(0, 25, 1600, 952), .title = QRectF(800, 0, 800, 25)});
    const auto stack = stackOf(output(workspace("1", container(layout, kWorkspace, tabs), "")));
    EXPECT_THAT(framesOf(*stack), ElementsAre(QRect(0, 0, 1600, 977))) << layout;
  }
}

TEST(SwayTreeTest, WindowsThatFloatLieAboveTheOthersInTheirOrder) {
  const auto stack = stackOf(output(workspace(
      "1", coded({.id = 1, .at = QRectF(0, 0, 1600, 977)}),
      coded({.id = 2, .at = QRectF(10, 10, 300, 200)}) + "," + coded({.id = 3, .at = QRectF(50, 60, 300, 200)}))));
  EXPECT_THAT(framesOf(*stack), ElementsAre(QRect(0, 0, 1600, 977), QRect(10, 10, 300, 200), QRect(50, 60, 300, 200)));
}

TEST(SwayTreeTest, AWindowInFullScreenIsTheScreen) {
  const auto stack = stackOf(
      output(workspace("1", container("tabbed", kWorkspace, coded({.id = 8, .at = kOutput, .fullscreen = 1})), "")));
  EXPECT_THAT(framesOf(*stack), ElementsAre(QRect(0, 0, 1600, 1000)));
}

TEST(SwayTreeTest, OtherWorkspacesTheScratchpadAndTheProgramsOwnWindowsAreNotShown) {
  const auto stack = stackOf(output(workspace("2", coded({.id = 5, .at = QRectF(0, 0, 500, 500)}), "") + "," +
                                    workspace("1", "", coded({.id = 6, .at = QRectF(0, 0, 300, 300), .process = 1}))));
  ASSERT_TRUE(stack);
  EXPECT_THAT(framesOf(*stack), IsEmpty());
}

TEST(SwayTreeTest, WhatAWorkspaceLeavesFreeIsNoWindow) {
  const QRectF within(40, 40, 1520, 900);
  const auto stack = stackOf(output(workspace("1", coded({.id = 8, .at = within}), "", within)));
  ASSERT_THAT(stack->windows, SizeIs(1));
  EXPECT_EQ(stack->windows[0].frame, QRect(40, 40, 1520, 900));
}

TEST(SwayTreeTest, PlacesArePixelsOfTheFinestOutput) {
  const QRectF right(1600, 0, 800, 500);
  const auto stack = stackOf(output(workspace("1", "", coded({.id = 8, .at = QRectF(100, 50, 400, 300)}), kOutput)) +
                                 "," + output(workspace("1", "", coded({.id = 9, .at = right}), right), right),
                             screen() + "," + screen(right, 2));
  EXPECT_EQ(stack->scale, 2);
  EXPECT_EQ(stack->root, QSize(4800, 2000));
  EXPECT_THAT(stack->monitors, ElementsAre(QRect(0, 0, 3200, 2000), QRect(3200, 0, 1600, 1000)));
  EXPECT_THAT(framesOf(*stack), ElementsAre(QRect(200, 100, 800, 600), QRect(3200, 0, 1600, 1000)));
}

TEST(SwayTreeTest, PlacesCountFromTheOutermostOutput) {
  const QRectF left(-800, 0, 800, 600);
  const auto stack =
      stackOf(output(workspace("1", "", coded({.id = 9, .at = QRectF(-700, 10, 200, 100)}), left), left), screen(left));
  EXPECT_EQ(stack->root, QSize(800, 600));
  EXPECT_THAT(framesOf(*stack), ElementsAre(QRect(100, 10, 200, 100)));
}

TEST(SwayTreeTest, AtOneAndAQuarterEdgesAreTheNearestPixels) {
  const auto stack = stackOf(output(workspace("1", "", coded({.id = 8, .at = QRectF(101, 51, 401, 301)}))),
                             screen(QRectF(0, 0, 1600, 1000), 1.25));
  EXPECT_EQ(stack->root, QSize(2000, 1250));
  EXPECT_THAT(framesOf(*stack), ElementsAre(QRect(QPoint(126, 64), QPoint(627, 439))));
}

TEST(SwayTreeTest, WhatIsNoSuchAnswerTellsNothing) {
  EXPECT_FALSE(swayStack("", "", 1));
  EXPECT_FALSE(swayStack("{}", "[]", 1));
  EXPECT_FALSE(swayStack("[1,2]", "[" + screen() + "]", 1));
  EXPECT_FALSE(swayStack(tree(output("")), "{}", 1));
  EXPECT_FALSE(stackOf(output(workspace("1", "", "")), screen(kOutput, 1, false)));
  EXPECT_FALSE(stackOf(output(workspace("1", "", "")), screen(kOutput, 0)));
  EXPECT_FALSE(stackOf(output(workspace("1", "", "")), screen(kOutput, 1000)));
  const std::string wild = R"({"id":-1e300,"pid":1e300,"visible":true,"nodes":{}})";
  EXPECT_TRUE(stackOf(output(workspace("1", wild, ""))));
  EXPECT_TRUE(
      swayStack("{\"type\":\"root\",\"nodes\":[7,\"x\",{\"type\":null,\"nodes\":{}}]}", "[" + screen() + "]", 1));
}

TEST(SwayTreeTest, AnAnswerMayBeNestedAsDeepAsItLikes) {
  std::string nodes = coded({.id = 8, .at = QRectF(0, 0, 100, 100)});
  for (int i = 0; i < 20'000; ++i) nodes = "{\"type\":\"con\",\"nodes\":[" + nodes + "]}";
  const auto stack = stackOf(output(workspace("1", nodes, "")));
  ASSERT_TRUE(stack);
  EXPECT_THAT(framesOf(*stack), IsEmpty());
}

}  // namespace
}  // namespace quillmere::testing
