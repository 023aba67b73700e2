#pragma once

#include <QtGui/QImage>
#include <optional>
#include <vector>

#include "detection/WindowDetector.h"
#include "reading/DetectedWindow.h"
#include "reading/KnownWindows.h"

namespace quillmere::ImageOperations {

/// Largest first. `scale` is the picture's pixels per point, where known. Windows that are `known` of these very pixels
/// stand in for what would be found. Not for the main thread.
std::vector<DetectedWindow> detectWindows(const QImage& image, std::optional<double> scale,
                                          const std::optional<KnownWindows>& known = {});
std::vector<DetectedWindow> detectWindows(const GrayImage& gray, std::optional<double> scale,
                                          const WindowDetector::RectangleFinder& rectangles);

}  // namespace quillmere::ImageOperations
