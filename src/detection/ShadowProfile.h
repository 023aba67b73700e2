#pragma once

#include <QtCore/QRectF>
#include <array>
#include <optional>
#include <vector>

#include "pixels/GrayImage.h"

namespace quillmere::WindowShadow {

/// The order in which sides are always handled.
enum Side { left, top, right, bottom };
inline constexpr std::array kSides{left, top, right, bottom};

/// The typical brightness at each of `depth` distances from the side, the nearest first: over the lines of the side's
/// middle part, the mean of the middle half. None where the side is too short or a line leaves the picture. Without the
/// first `known` distances, which are those of a smaller depth.
std::optional<std::vector<double>> brightnessProfile(Side side, const GrayImage& gray, const QRectF& frame,
                                                     int64_t depth, int64_t known = 0);

}  // namespace quillmere::WindowShadow
