#pragma once

#include <QtGui/QImage>
#include <optional>
#include <vector>

#include "detection/WindowDetector.h"
#include "reading/DetectedWindow.h"

namespace quillmere::ImageOperations {

/// Largest first. `scale` is the picture's pixels per point, where known. Not for the main thread.
std::vector<DetectedWindow> detectWindows(const QImage& image, std::optional<double> scale);
std::vector<DetectedWindow> detectWindows(const GrayImage& gray, std::optional<double> scale,
                                          const WindowDetector::RectangleFinder& rectangles);

}  // namespace quillmere::ImageOperations
