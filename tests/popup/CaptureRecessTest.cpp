#include "popup/CaptureRecess.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

using Sign = CaptureSigns::Sign;
using std::chrono::milliseconds;

constexpr Instant kStart{std::chrono::hours(1)};

TEST(CaptureRecessTest, NothingKeepsThePopupAwayAtFirst) {
  EXPECT_FALSE(CaptureRecess().end(kStart));
}

TEST(CaptureRecessTest, AScreenshotThatWasForetoldIsWaitedForThreeSeconds) {
  CaptureRecess recess;
  recess.foretold(Sign::key, kStart);
  EXPECT_EQ(recess.end(kStart), kStart + seconds(3));
  EXPECT_TRUE(recess.end(kStart + milliseconds(2999)));
  EXPECT_FALSE(recess.end(kStart + seconds(3)));
}

TEST(CaptureRecessTest, ItsFileEndsTheWait) {
  CaptureRecess recess;
  recess.foretold(Sign::key, kStart);
  recess.arrived(kStart + milliseconds(400), {});
  EXPECT_FALSE(recess.end(kStart + milliseconds(400)));
}

TEST(CaptureRecessTest, TwoPressesOfTheKeyAreTwoScreenshots) {
  CaptureRecess recess;
  recess.foretold(Sign::key, kStart);
  recess.foretold(Sign::key, kStart + seconds(1));
  recess.arrived(kStart + seconds(1.5), {});
  EXPECT_EQ(recess.end(kStart + seconds(1.5)), kStart + seconds(4));
  recess.arrived(kStart + seconds(2), {});
  EXPECT_FALSE(recess.end(kStart + seconds(2)));
}

TEST(CaptureRecessTest, ToolsThatTheKeyBringsUpTellOfTheSameScreenshot) {
  CaptureRecess recess;
  recess.foretold(Sign::key, kStart);
  recess.foretold(Sign::request, kStart + milliseconds(100));
  recess.foretold(Sign::request, kStart + milliseconds(200));
  EXPECT_EQ(recess.end(kStart + milliseconds(200)), kStart + milliseconds(3200)) << "the last sign counts";
  recess.arrived(kStart + milliseconds(500), {});
  EXPECT_FALSE(recess.end(kStart + milliseconds(500)));
}

TEST(CaptureRecessTest, OneThatNeverCameIsForgotten) {
  CaptureRecess recess;
  recess.foretold(Sign::key, kStart);
  recess.foretold(Sign::key, kStart + seconds(10));
  recess.arrived(kStart + seconds(11), {});
  EXPECT_FALSE(recess.end(kStart + seconds(11)));
}

TEST(CaptureRecessTest, APauseBeginsAnewWithEachArrival) {
  CaptureRecess recess;
  recess.arrived(kStart, seconds(5));
  EXPECT_EQ(recess.end(kStart), kStart + seconds(5));
  recess.arrived(kStart + seconds(4), seconds(5));
  EXPECT_EQ(recess.end(kStart + seconds(5)), kStart + seconds(9));
  EXPECT_FALSE(recess.end(kStart + seconds(9)));
}

TEST(CaptureRecessTest, TheLaterEndCounts) {
  CaptureRecess recess;
  recess.arrived(kStart, seconds(1));
  recess.foretold(Sign::key, kStart);
  EXPECT_EQ(recess.end(kStart), kStart + seconds(3));
}

TEST(CaptureRecessTest, RequestsThatNoFileFollowsAreNoLongerHeeded) {
  CaptureRecess recess;
  Instant now = kStart;
  for (int i = 0; i < 2; ++i, now += seconds(5)) {
    recess.foretold(Sign::request, now);
    EXPECT_TRUE(recess.end(now));
  }
  recess.foretold(Sign::request, now);
  EXPECT_FALSE(recess.end(now)) << "a program that looks at the screen all the time";
  recess.arrived(now, {});
  recess.foretold(Sign::request, now + seconds(2));
  EXPECT_TRUE(recess.end(now + seconds(2))) << "until there is a screenshot again";
}

TEST(CaptureRecessTest, TheKeyIsAlwaysHeeded) {
  CaptureRecess recess;
  for (int i = 0; i < 5; ++i) recess.foretold(Sign::request, kStart + seconds(5.0 * i));
  recess.foretold(Sign::key, kStart + seconds(60));
  EXPECT_TRUE(recess.end(kStart + seconds(60)));
}

TEST(CaptureRecessTest, AWindowThatAToolOpensAfterItsFileForetellsNothing) {
  CaptureRecess recess;
  recess.foretold(Sign::key, kStart);
  recess.arrived(kStart + milliseconds(500), {});
  recess.foretold(Sign::request, kStart + milliseconds(900));
  EXPECT_FALSE(recess.end(kStart + milliseconds(900)));
}

TEST(CaptureRecessTest, WhatWasChosenIsWaitedFor) {
  CaptureRecess recess;
  recess.chosen(kStart);
  EXPECT_EQ(recess.end(kStart), kStart + seconds(3));
  recess.arrived(kStart + seconds(1), {});
  EXPECT_FALSE(recess.end(kStart + seconds(1)));
}

}  // namespace
}  // namespace quillmere
