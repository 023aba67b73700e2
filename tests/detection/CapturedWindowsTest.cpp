#include "detection/CapturedWindows.h"

#include <gtest/gtest.h>

#include "detection/DrawnScreen.h"

namespace quillmere::CapturedWindows {
namespace {

constexpr Date kTaken{1000};

DrawnScreen twoWindows() {
  DrawnScreen screen(QSize(1000, 700));
  screen.add(QRect(60, 50, 520, 400));
  screen.add(QRect(300, 200, 480, 390), QColor(245, 240, 230));
  screen.stack.since = Date{990};
  return screen;
}

TEST(CapturedWindowsTest, OfTheWholeScreenAllWindowsAreKnown) {
  const DrawnScreen screen = twoWindows();
  const auto known = resolve(screen.image, {screen.stack}, kTaken);
  ASSERT_TRUE(known);
  EXPECT_EQ(known->kind, CaptureKind::display);
  EXPECT_EQ(known->size, screen.image.size());
  EXPECT_EQ(known->checksum, checksum(screen.image));
  ASSERT_EQ(known->windows.size(), 2u);
  EXPECT_EQ(known->windows[0].frame, QRect(60, 50, 520, 400));
  EXPECT_TRUE(known->windows[0].isCovered);
  EXPECT_EQ(known->windows[1].frame, QRect(300, 200, 480, 390));
  EXPECT_EQ(known->front, 1u);
}

TEST(CapturedWindowsTest, InFrontIsTheActiveOneUnlessItIsCovered) {
  DrawnScreen screen(QSize(1000, 700));
  const uint32_t left = screen.add(QRect(40, 50, 400, 400));
  screen.add(QRect(520, 100, 400, 400));
  EXPECT_EQ(resolve(screen.image, {screen.stack}, kTaken)->front, 1u);
  screen.stack.active = left;
  EXPECT_EQ(resolve(screen.image, {screen.stack}, kTaken)->front, 0u);
  DrawnScreen covered = twoWindows();
  covered.stack.active = 1;
  EXPECT_EQ(resolve(covered.image, {covered.stack}, kTaken)->front, 1u) << "the topmost that nothing covers";
}

TEST(CapturedWindowsTest, WhereOthersMayBeShownNoneIsInFrontForLackOfThem) {
  DrawnScreen screen = twoWindows();
  screen.stack.isPartial = true;
  EXPECT_EQ(resolve(screen.image, {screen.stack}, kTaken)->front, 1u) << "it has the keyboard and is seen whole";
  WindowStack other = screen.stack;
  other.active = 0;
  const auto known = resolve(screen.image, {other}, kTaken);
  ASSERT_TRUE(known);
  EXPECT_EQ(known->windows.size(), 2u);
  EXPECT_EQ(known->front, std::nullopt);
  QPainter(&screen.image).fillRect(QRect(700, 100, 280, 300), Qt::darkGreen);
  const auto covered = resolve(screen.image, {screen.stack}, kTaken);
  ASSERT_TRUE(covered);
  EXPECT_EQ(covered->front, std::nullopt) << "by a window that nobody told of";
}

TEST(CapturedWindowsTest, OfTwoScreensEachIsAWhole) {
  DrawnScreen screen(QSize(1600, 600));
  screen.stack.monitors = {QRect(0, 0, 800, 600), QRect(800, 0, 800, 600)};
  screen.add(QRect(60, 50, 520, 400));
  screen.add(QRect(900, 80, 500, 410), QColor(240, 240, 255));
  const auto known = resolve(screen.image.copy(QRect(800, 0, 800, 600)), {screen.stack}, kTaken);
  ASSERT_TRUE(known);
  EXPECT_EQ(known->kind, CaptureKind::display);
  ASSERT_EQ(known->windows.size(), 1u);
  EXPECT_EQ(known->windows[0].frame, QRect(100, 80, 500, 410));
}

TEST(CapturedWindowsTest, APictureOfAWindowsSizeIsOneOfIt) {
  const DrawnScreen screen = twoWindows();
  for (const QRect shown : {screen.stack.windows[1].frame, screen.stack.windows[1].client}) {
    const auto known = resolve(screen.image.copy(shown), {screen.stack}, kTaken);
    ASSERT_TRUE(known);
    EXPECT_EQ(known->kind, CaptureKind::window);
    ASSERT_EQ(known->windows.size(), 1u);
    EXPECT_EQ(known->windows[0].frame, QRect(QPoint(), shown.size()));
    EXPECT_EQ(known->front, 0u);
  }
  WindowStack twice = screen.stack;
  twice.scale = 2;
  const QRect larger(screen.stack.windows[1].frame.topLeft(), screen.stack.windows[1].frame.size() + QSize(1, 1));
  EXPECT_EQ(resolve(screen.image.copy(larger), {twice}, kTaken)->kind, CaptureKind::window) << "a step of its scale";
}

TEST(CapturedWindowsTest, WhatAToolLeavesTransparentAroundAWindowIsItsShadow) {
  const DrawnScreen screen = twoWindows();
  QImage picture(QSize(480 + 30, 390 + 40), QImage::Format_ARGB32);
  picture.fill(QColor(0, 0, 0, 60));
  QPainter(&picture).drawImage(QPoint(10, 15), screen.image.copy(QRect(300, 200, 480, 390)));
  const auto known = resolve(picture, {screen.stack}, kTaken);
  ASSERT_TRUE(known);
  EXPECT_EQ(known->kind, CaptureKind::window);
  EXPECT_EQ(known->windows[0].frame, QRect(10, 15, 480, 390));
  EXPECT_EQ(known->windows[0].shadow, (WindowShadowMargin{10, 15, 20, 25, WindowShadowMargin::Source::measured}));
}

TEST(CapturedWindowsTest, APartOfTheScreenShowsPartsOfWindows) {
  const DrawnScreen screen = twoWindows();
  const auto known = resolve(screen.image.copy(QRect(40, 30, 700, 600)), {screen.stack}, kTaken);
  ASSERT_TRUE(known);
  EXPECT_EQ(known->kind, CaptureKind::selection);
  ASSERT_EQ(known->windows.size(), 2u);
  EXPECT_EQ(known->windows[0].frame, QRect(20, 20, 520, 400));
  EXPECT_EQ(known->windows[1].frame, QRect(260, 170, 440, 390)) << "as far as the picture goes";
}

TEST(CapturedWindowsTest, TheStateThatFitsIsTaken) {
  const DrawnScreen screen = twoWindows();
  WindowStack before = screen.stack;
  before.windows[1].frame.translate(-37, 11);
  before.since = Date{980};
  WindowStack after = before;
  after.since = Date{999.9};
  EXPECT_EQ(resolve(screen.image, {before, screen.stack, after}, kTaken)->windows[1].frame, QRect(300, 200, 480, 390))
      << "it was moved while the file was written";
  WindowStack later = screen.stack;
  later.active = 1;
  later.since = Date{1001};
  later.windows.clear();
  EXPECT_TRUE(resolve(screen.image, {screen.stack, later}, kTaken)) << "what came later is not in the picture";
  EXPECT_FALSE(resolve(screen.image, {later}, kTaken));
}

TEST(CapturedWindowsTest, OfStatesThatFitAlikeTheLaterOneCounts) {
  DrawnScreen screen(QSize(1000, 700));
  screen.add(QRect(40, 50, 400, 400));
  screen.add(QRect(520, 100, 400, 400));
  WindowStack later = screen.stack;
  later.active = 1;
  later.since = Date{995};
  EXPECT_EQ(resolve(screen.image, {screen.stack, later}, kTaken)->front, 0u);
}

TEST(CapturedWindowsTest, OfAnotherDesktopsStatesNothingIsBelieved) {
  const DrawnScreen screen = twoWindows();
  DrawnScreen other(QSize(1000, 700));
  other.add(QRect(10, 350, 333, 300));
  other.add(QRect(620, 20, 333, 311), QColor(245, 240, 230));
  EXPECT_FALSE(resolve(screen.image, {other.stack}, kTaken));
  EXPECT_FALSE(resolve(screen.image, {}, kTaken));
  EXPECT_FALSE(resolve(QImage(), {screen.stack}, kTaken));
}

TEST(CapturedWindowsTest, AnyOtherPixelIsAnotherPicture) {
  QImage image = twoWindows().image;
  const uint32_t before = checksum(image);
  EXPECT_EQ(checksum(image.convertToFormat(QImage::Format_ARGB32)), before) << "whatever its form in memory";
  image.setPixelColor(500, 500, QColor(1, 2, 3));
  EXPECT_NE(checksum(image), before);
}

}  // namespace
}  // namespace quillmere::CapturedWindows
