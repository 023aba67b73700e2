#include "detection/DetectedWindows.h"

#include <algorithm>

#include "detection/CapturedWindows.h"
#include "detection/VisionRectangles.h"
#include "detection/WindowDetector.h"
#include "detection/WindowShadow.h"
#include "pixels/PixelRects.h"

namespace quillmere::ImageOperations {
namespace {

/// As the detector counts a window as enclosed.
constexpr double kEnclosingMargin = 4;

bool isOf(const QImage& image, const KnownWindows& known) {
  return !known.windows.empty() && known.size == image.size() && known.checksum == CapturedWindows::checksum(image);
}

std::vector<DetectedWindow> standingIn(const QImage& image, std::optional<double> scale, const KnownWindows& known) {
  const auto gray = grayImage(image);
  std::vector<DetectedWindow> windows;
  for (size_t i = 0; i < known.windows.size(); ++i) {
    const KnownWindows::Window& one = known.windows[i];
    DetectedWindow window;
    window.frame = QRectF(one.frame);
    window.isFullyDrawn = true;
    window.isCovered = one.isCovered;
    if (one.shadow) {
      window.shadow = *one.shadow;
    } else if (gray) {
      window.shadow = WindowShadow::measure(*gray, window.frame, scale).margin;
    }
    window.isInFront = known.front == i;
    window.isEnclosed = std::any_of(known.windows.begin(), known.windows.end(), [&](const KnownWindows::Window& other) {
      const QRectF grown =
          QRectF(other.frame).adjusted(-kEnclosingMargin, -kEnclosingMargin, kEnclosingMargin, kEnclosingMargin);
      return &other != &one && other.frame != one.frame && rectContains(grown, window.frame);
    });
    windows.push_back(window);
  }
  std::stable_sort(windows.begin(), windows.end(), [](const DetectedWindow& a, const DetectedWindow& b) {
    return rectArea(a.frame) > rectArea(b.frame);
  });
  return windows;
}

}  // namespace

std::vector<DetectedWindow> detectWindows(const QImage& image, std::optional<double> scale,
                                          const std::optional<KnownWindows>& known) {
  if (known && isOf(image, *known)) return standingIn(image, scale, *known);
  // One gray copy for the outlines and the shadows.
  const auto gray = grayImage(image);
  return gray ? detectWindows(*gray, scale, &WindowDetector::visionRectangles) : std::vector<DetectedWindow>();
}

std::vector<DetectedWindow> detectWindows(const GrayImage& gray, std::optional<double> scale,
                                          const WindowDetector::RectangleFinder& rectangles) {
  const QRectF whole(0, 0, static_cast<double>(gray.width()), static_cast<double>(gray.height()));
  std::vector<DetectedWindow> windows;
  for (const auto& found : WindowDetector::find(gray, rectangles).windows) {
    const QRectF frame = commonRect(integralRect(found.frame), whole);
    windows.push_back({frame, WindowShadow::measure(gray, frame, scale).margin, found.hasTitleBarButtons,
                       found.isFullyDrawn, found.isCovered, found.isEnclosed});
  }
  return windows;
}

}  // namespace quillmere::ImageOperations
