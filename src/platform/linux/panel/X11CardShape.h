#pragma once

#include <xcb/xcb.h>
#include <QtCore/QRect>
#include <vector>

namespace quillmere::X11CardShape {

/// The card's place in its window, in pixels. Its edges are rounded one by one, as the window's own are, so that no
/// line between two of them is left over.
QRect pixels(const QRect& card, qreal scale);

/// The card with its corners, line by line: each pixel whose middle the curve encloses.
std::vector<xcb_rectangle_t> lines(const QRect& card, qreal scale);

}  // namespace quillmere::X11CardShape
