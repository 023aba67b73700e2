#include "detection/DetectedWindows.h"

#include <gtest/gtest.h>

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

TEST(DetectWindowsTest, APictureWithoutWindowsHasNone) {
  EXPECT_TRUE(detectWindows(QImage(), 1).empty());
  EXPECT_TRUE(detectWindows(pictures::image(plain::Gray(300, 300, 90)), 1).empty());
}

}  // namespace
}  // namespace quillmere::ImageOperations
