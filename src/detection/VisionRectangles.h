#pragma once

#include <QtCore/QRectF>
#include <vector>

#include "pixels/GrayImage.h"

namespace quillmere::WindowDetector {

/// The bounding boxes, in pixels of the picture, of what a general rectangle detector sees: four-sided contours with
/// corners within 30 degrees of right ones, of an aspect between 0.1 and 1, with no side below 5 in 100 of the
/// picture's smaller side; the 30 largest at most. Works on a reduced picture. None where it fails.
std::vector<QRectF> visionRectangles(const GrayImage& gray);

}  // namespace quillmere::WindowDetector
