#include "detection/DetectedWindows.h"

#include <gtest/gtest.h>

#include "detection/CapturedWindows.h"
#include "detection/DrawnScreen.h"
#include "detection/WindowShadow.h"
#include "support/DrawnPictures.h"

namespace quillmere::ImageOperations {
namespace {

TEST(DetectWindowsTest, WindowsComeWithTheirShadows) {
  plain::Gray gray(700, 600, 200);
  const QRectF frame(150, 120, 400, 300);
  for (int64_t distance = 30; distance > 0; --distance) {
    const auto out = static_cast<double>(distance);
    const QRectF ring = frame.adjusted(-out, -out, out, out);
    pictures::fill(gray, static_cast<int64_t>(ring.x()) + 1, static_cast<int64_t>(ring.y()) + 1,
                   static_cast<int64_t>(ring.width()), static_cast<int64_t>(ring.height()),
                   static_cast<int>(200 - (31 - distance)));
  }
  pictures::fill(gray, 151, 121, 400, 300, 250);
  const auto windows = detectWindows(pictures::image(gray), 2.0);
  ASSERT_EQ(windows.size(), 1u);
  EXPECT_EQ(windows[0].frame, frame);
  EXPECT_TRUE(windows[0].isFullyDrawn);
  EXPECT_EQ(windows[0].shadow, WindowShadow::margins({frame}, pictures::image(gray), 2.0)[0]);
  EXPECT_EQ(windows[0].shadow.source, WindowShadowMargin::Source::measured);
  EXPECT_EQ(windows[0].shadow.left, 45);
  EXPECT_LT(detectWindows(pictures::image(gray), std::nullopt)[0].shadow.left, 45) << "the scale decides";
}

TEST(DetectWindowsTest, WindowsThatAreKnownOfThesePixelsStandIn) {
  CapturedWindows::DrawnScreen screen(QSize(800, 600));
  screen.add(QRect(60, 50, 520, 400));
  screen.add(QRect(200, 150, 300, 200), QColor(245, 240, 230));
  const auto known = CapturedWindows::resolve(screen.image, {screen.stack}, Date{1000});
  const auto windows = detectWindows(screen.image, 1, known);
  ASSERT_EQ(windows.size(), 2u);
  EXPECT_EQ(windows[0].frame, QRectF(60, 50, 520, 400)) << "the largest first";
  EXPECT_TRUE(windows[0].isCovered);
  EXPECT_FALSE(windows[0].isInFront);
  EXPECT_TRUE(windows[1].isEnclosed);
  EXPECT_TRUE(windows[1].isInFront);
  EXPECT_EQ(primaryWindow(windows)->frame, QRectF(200, 150, 300, 200)) << "though it lies inside another";
  EXPECT_EQ(windows[1].shadow, WindowShadow::margins({windows[1].frame}, screen.image, 1)[0]);

  const auto found = detectWindows(screen.image, 1);
  auto other = known;
  other->checksum ^= 1;
  EXPECT_EQ(detectWindows(screen.image, 1, other), found) << "of other pixels";
  other = known;
  other->windows.clear();
  EXPECT_EQ(detectWindows(screen.image, 1, other), found);
}

TEST(DetectWindowsTest, AShadowThatIsKnownIsNotMeasured) {
  CapturedWindows::DrawnScreen screen(QSize(800, 600));
  screen.add(QRect(60, 50, 520, 400));
  auto known = CapturedWindows::resolve(screen.image, {screen.stack}, Date{1000});
  const WindowShadowMargin shadow{11, 7, 12, 15, WindowShadowMargin::Source::measured};
  known->windows[0].shadow = shadow;
  EXPECT_EQ(detectWindows(screen.image, 1, known)[0].shadow, shadow);
}

TEST(DetectWindowsTest, APictureWithoutWindowsHasNone) {
  EXPECT_TRUE(detectWindows(QImage(), 1).empty());
  EXPECT_TRUE(detectWindows(pictures::image(plain::Gray(300, 300, 90)), 1).empty());
}

}  // namespace
}  // namespace quillmere::ImageOperations
