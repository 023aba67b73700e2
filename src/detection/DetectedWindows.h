#pragma once

#include <QtCore/QRectF>
#include <QtGui/QImage>
#include <optional>
#include <vector>

#include "detection/WindowDetector.h"
#include "detection/WindowShadow.h"

namespace quillmere::ImageOperations {

/// A window in a picture, with its shadow. The frame is whole-numbered and inside the picture.
struct DetectedWindow {
  QRectF frame;
  WindowShadowMargin shadow;
  bool hasTitleBarButtons = false;
  bool isFullyDrawn = false;
  bool isCovered = false;
  bool isEnclosed = false;
  bool operator==(const DetectedWindow&) const = default;
};

/// Largest first. `scale` is the picture's pixels per point, where known. Not for the main thread.
std::vector<DetectedWindow> detectWindows(const QImage& image, std::optional<double> scale);
std::vector<DetectedWindow> detectWindows(const GrayImage& gray, std::optional<double> scale,
                                          const WindowDetector::RectangleFinder& rectangles);

/// The window to take without asking; none of none, or where all are enclosed in others.
std::optional<DetectedWindow> primaryWindow(const std::vector<DetectedWindow>& windows);

}  // namespace quillmere::ImageOperations
