#pragma once

#include <QtCore/QRectF>
#include <QtGui/QImage>
#include <array>
#include <optional>
#include <vector>

#include "detection/ShadowProfile.h"
#include "pixels/GrayImage.h"
#include "reading/DetectedWindow.h"

namespace quillmere {

/// Measures drop shadows. A shadow is a smooth fall-off of brightness over whatever lies behind the window: a line is
/// fitted to the background farther out, and the shadow is where pixels near the window drop below it.
namespace WindowShadow {

/// What is seen on one side.
struct SideReading {
  enum class Kind { shadow, clear, unreadable };
  Kind kind = Kind::unreadable;
  int64_t extent = 0;      ///< of a shadow: how far it reaches, in pixels from the frame
  bool isClipped = false;  ///< it runs into the picture's edge
  bool operator==(const SideReading&) const = default;
};

/// A frame's margins with the readings of left, top, right and bottom behind them.
struct Measurement {
  WindowShadowMargin margin;
  std::array<SideReading, 4> sides;
};

/// `scale` is the picture's pixels per point, where known.
Measurement measure(const GrayImage& gray, const QRectF& frame, std::optional<double> scale);
/// One for each frame, in order.
std::vector<WindowShadowMargin> margins(const std::vector<QRectF>& frames, const QImage& image,
                                        std::optional<double> scale);

/// `frame` is whole-numbered and inside the picture.
SideReading sideReading(Side side, const GrayImage& gray, const QRectF& frame);

}  // namespace WindowShadow
}  // namespace quillmere
