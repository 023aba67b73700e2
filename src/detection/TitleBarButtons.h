#pragma once

#include <QtCore/QRectF>

#include "pixels/GrayImage.h"

namespace quillmere::WindowDetector {

/// Whether three shapes like buttons stand in a row in the frame's top-left corner. Grey levels alone decide.
bool hasTitleBarButtons(const GrayImage& gray, const QRectF& frame);

}  // namespace quillmere::WindowDetector
