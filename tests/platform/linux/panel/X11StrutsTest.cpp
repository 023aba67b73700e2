#include "platform/linux/panel/X11Struts.h"

#include <gtest/gtest.h>

namespace quillmere {

inline void PrintTo(const QRect& rect, std::ostream* out) {
  *out << rect.x() << "," << rect.y() << " " << rect.width() << "x" << rect.height();
}

namespace {

using X11Struts::Strut;
using X11Struts::without;

/// Two screens side by side, the right one lower; below it the display has 32 lines that no screen shows.
constexpr QSize kDisplay(2304, 800);
constexpr QRect kLeft(0, 0, 1280, 800);
constexpr QRect kRight(1280, 0, 1024, 768);

constexpr Strut left(int pixels, int from, int to) {
  return {pixels, 0, 0, 0, from, to};
}
constexpr Strut right(int pixels, int from, int to) {
  return {0, pixels, 0, 0, 0, 0, from, to};
}
constexpr Strut top(int pixels, int from, int to) {
  return {0, 0, pixels, 0, 0, 0, 0, 0, from, to};
}
constexpr Strut bottom(int pixels, int from, int to) {
  return {0, 0, 0, pixels, 0, 0, 0, 0, 0, 0, from, to};
}

TEST(X11StrutsTest, WithoutDocksTheScreenIsWhole) {
  EXPECT_EQ(without({}, kLeft, kDisplay), kLeft);
  EXPECT_EQ(without({Strut{}}, kRight, kDisplay), kRight);
}

TEST(X11StrutsTest, ADockTakesItsEdgeOfTheScreenThatItRunsAlong) {
  EXPECT_EQ(without({bottom(40, 0, 1279)}, kLeft, kDisplay), QRect(0, 0, 1280, 760));
  EXPECT_EQ(without({bottom(40, 0, 1279)}, kRight, kDisplay), kRight);
  EXPECT_EQ(without({top(30, 1280, 2303)}, kRight, kDisplay), QRect(1280, 30, 1024, 738));
  EXPECT_EQ(without({top(30, 1280, 2303)}, kLeft, kDisplay), kLeft);
  EXPECT_EQ(without({left(60, 0, 799)}, kLeft, kDisplay), QRect(60, 0, 1220, 800));
  EXPECT_EQ(without({right(60, 0, 767)}, kRight, kDisplay), QRect(1280, 0, 964, 768));
}

TEST(X11StrutsTest, ADockIsCountedFromTheEdgeOfTheDisplay) {
  EXPECT_EQ(without({bottom(82, 1280, 2303)}, kRight, kDisplay), QRect(1280, 0, 1024, 718)) << "32 lines lie below it";
  EXPECT_EQ(without({bottom(30, 1280, 2303)}, kRight, kDisplay), kRight) << "it ends below the screen";
}

TEST(X11StrutsTest, ADockBetweenTwoScreensTakesNothingOfTheOneBefore) {
  EXPECT_EQ(without({left(1340, 0, 767)}, kRight, kDisplay), QRect(1340, 0, 964, 768));
  EXPECT_EQ(without({left(1340, 0, 767)}, kLeft, kDisplay), kLeft);
  EXPECT_EQ(without({right(1084, 0, 799)}, kLeft, kDisplay), QRect(0, 0, 1220, 800));
  EXPECT_EQ(without({right(1084, 0, 799)}, kRight, kDisplay), kRight);
}

TEST(X11StrutsTest, HalfOfAScreenCanBeTakenAndMoreCannot) {
  EXPECT_EQ(without({bottom(400, 0, 1279)}, kLeft, kDisplay), QRect(0, 0, 1280, 400));
  EXPECT_EQ(without({bottom(401, 0, 1279)}, kLeft, kDisplay), kLeft);
}

TEST(X11StrutsTest, OfTwoDocksOnOneEdgeTheWiderCounts) {
  EXPECT_EQ(without({bottom(30, 0, 600), bottom(50, 601, 1279)}, kLeft, kDisplay), QRect(0, 0, 1280, 750));
  EXPECT_EQ(without({bottom(50, 0, 600), bottom(30, 601, 1279)}, kLeft, kDisplay), QRect(0, 0, 1280, 750));
}

TEST(X11StrutsTest, DocksOnSeveralEdgesAllCount) {
  EXPECT_EQ(without({top(30, 0, 1279), bottom(40, 0, 1279), left(60, 0, 799)}, kLeft, kDisplay),
            QRect(60, 30, 1220, 730));
}

TEST(X11StrutsTest, ADockThatRunsAlongOneLineOfTheScreenCounts) {
  EXPECT_EQ(without({bottom(40, 1279, 1279)}, kLeft, kDisplay), QRect(0, 0, 1280, 760));
  EXPECT_EQ(without({bottom(40, 1280, 1280)}, kLeft, kDisplay), kLeft);
}

}  // namespace
}  // namespace quillmere
