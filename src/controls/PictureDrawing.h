#pragma once

#include <QtCore/QRect>
#include <QtGui/QImage>

class QPainter;

namespace quillmere {

// A picture at any scale, for the price of what is seen of it. `place` is where the whole picture would be, which may
// be far larger than the screen, and `visible` the part of it that is wanted, both in pixels of the screen.

/// Painted smoothly, by a painter whose unit is a pixel of the screen. At the picture's own size it is copied.
void drawSmoothly(QPainter& painter, const QImage& image, const QRect& place, const QRect& visible);

/// What is seen in `visible`, each pixel of the picture a sharp square. Of pictures with 32 bits to a pixel.
QImage asSquares(const QImage& image, const QRect& place, const QRect& visible);

/// Quiet squares of two shades that go with the picture, under what is translucent.
void drawCheckers(QPainter& painter, const QRect& place, const QRect& visible, int side, QColor one, QColor other);

}  // namespace quillmere
