#include "detection/DetectedWindows.h"

#include "detection/VisionRectangles.h"
#include "detection/WindowDetector.h"
#include "detection/WindowShadow.h"
#include "pixels/PixelRects.h"

namespace quillmere::ImageOperations {

std::vector<DetectedWindow> detectWindows(const QImage& image, std::optional<double> scale) {
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
