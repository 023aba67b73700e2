#pragma once

#include <QtCore/QRectF>
#include <QtGui/QImage>
#include <functional>
#include <optional>
#include <vector>

#include "pixels/GrayImage.h"

namespace quillmere {

/// Finds the windows that a picture shows, from its pixels alone: the outline of a window is four long straight lines
/// that meet. Coordinates are image pixels, origin top-left. Not for the main thread: a big picture takes long.
namespace WindowDetector {

/// A window.
struct Detection {
  QRectF frame;                     ///< its outline, whole-numbered
  bool hasTitleBarButtons = false;  ///< three shapes like buttons stand in its top-left corner
  bool isFullyDrawn = false;        ///< all four sides are well backed by edges
  bool isCovered = false;           ///< another detected window seems to lie on top
  bool isEnclosed = false;          ///< it lies entirely inside another detected window
  bool operator==(const Detection&) const = default;
};

/// Rectangles that some other detector sees. They only tell candidates of exactly equal score apart.
using RectangleFinder = std::function<std::vector<QRectF>(const GrayImage&)>;

/// What was found, and how.
struct Findings {
  std::vector<Detection> windows;  ///< largest first
  std::optional<int> threshold;    ///< of the edges that gave candidates
  size_t candidateCount = 0;       ///< of rectangles before they were merged
};
Findings find(const GrayImage& gray, const RectangleFinder& rectangles);

/// The windows, largest first; none if nothing is found or the picture is too small.
std::vector<Detection> detect(const QImage& image);

}  // namespace WindowDetector
}  // namespace quillmere
