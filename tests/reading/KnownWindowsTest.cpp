#include "reading/KnownWindows.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

KnownWindows twoWindows() {
  KnownWindows known{
      .kind = CaptureKind::display, .size = QSize(1920, 1080), .checksum = 0xdeadbeef, .windows = {}, .front = 1};
  known.windows.push_back({QRect(0, 20, 700, 500), true, std::nullopt});
  known.windows.push_back(
      {QRect(100, 80, 800, 600), false, WindowShadowMargin{11, 7, 12, 15, WindowShadowMargin::Source::measured}});
  return known;
}

TEST(KnownWindowsTest, ARecordKeepsThemAsOneShortText) {
  EXPECT_EQ(twoWindows().coded(), "display 1920x1080 deadbeef _700x500+0+20 ^800x600+100+80/11,7,12,15");
  EXPECT_EQ(KnownWindows::fromCoded(twoWindows().coded()), twoWindows());
}

TEST(KnownWindowsTest, ThereMayBeNoneInFrontAndNoneAtAll) {
  KnownWindows known = twoWindows();
  known.front.reset();
  EXPECT_EQ(KnownWindows::fromCoded(known.coded()), known);
  known.windows.clear();
  known.kind = CaptureKind::selection;
  EXPECT_EQ(KnownWindows::fromCoded(known.coded()), known);
}

TEST(KnownWindowsTest, AWindowWithoutAShadowIsNotOneOfWhichNothingIsKnown) {
  KnownWindows known = twoWindows();
  known.windows[1].shadow = WindowShadowMargin{};
  EXPECT_EQ(KnownWindows::fromCoded(known.coded()), known);
}

TEST(KnownWindowsTest, WhatIsNoSuchTextIsNone) {
  for (const char* text :
       {"", "display", "display 10x10", "hologram 10x10 0", "display 10 0", "display 0x10 0", "display 10x-1 0",
        "display 10x10 z", "display 10x10 123456789", "display 10x10 0 ", "display 10x10 0 5x5",
        "display 10x10 0 5x5+0", "display 10x10 0 5x5+-1+0", "display 10x10 0 ^5x5+0+0 ^5x5+0+0",
        "display 10x10 0 _^5x5+0+0", "display 10x10 0 5x5+0+0/1,2,3", "display 10x10 0 5x5+0+0/1,2,3,-4",
        "display 10x10 0 5x5+0+0/1,2,3,4/", "display 99999999x10 0"}) {
    EXPECT_EQ(KnownWindows::fromCoded(text), std::nullopt) << text;
  }
}

TEST(KnownWindowsTest, AWindowLiesInThePicture) {
  EXPECT_TRUE(KnownWindows::fromCoded("display 10x10 0 10x10+0+0"));
  EXPECT_FALSE(KnownWindows::fromCoded("display 10x10 0 10x10+1+0"));
  EXPECT_FALSE(KnownWindows::fromCoded("display 10x10 0 5x5+0+6"));
}

TEST(KnownWindowsTest, NoDesktopShowsSoMany) {
  QByteArray text = "display 10x10 0";
  for (int i = 0; i < 512; ++i) text += " 1x1+0+0";
  EXPECT_TRUE(KnownWindows::fromCoded(text));
  EXPECT_FALSE(KnownWindows::fromCoded(text + " 1x1+0+0"));
}

}  // namespace
}  // namespace quillmere
