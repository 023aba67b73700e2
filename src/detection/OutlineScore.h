#pragma once

#include <QtCore/QRectF>
#include <optional>

#include "detection/LineProfiles.h"

namespace quillmere::WindowDetector {

/// How much of `frame`'s outline, where it passes through `inside`, is drawn as long unbroken edges, 0 to 1. None where
/// too little of it does. All sides of `frame` are lines of `profiles`; width and height are those of the picture.
std::optional<double> outlineScore(const QRectF& frame, const QRectF& inside, const LineProfiles& profiles,
                                   int64_t width, int64_t height);

}  // namespace quillmere::WindowDetector
