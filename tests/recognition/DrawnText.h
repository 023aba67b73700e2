#pragma once

#include <QtGui/QImage>
#include <QtGui/QPainter>

#include "recognition/TextLines.h"

namespace quillmere::testing {

/// Blocks stand for letters: a screen of one colour, and rectangles on it.
class DrawnText {
 public:
  explicit DrawnText(QSize size, QRgb ground = qRgb(255, 255, 255)) : image(size, QImage::Format_RGB32) {
    image.fill(ground);
  }
  DrawnText& fill(const QRect& rect, QRgb color = qRgb(0, 0, 0)) {
    QPainter(&image).fillRect(rect, QColor(color));
    return *this;
  }
  /// Blocks of 6 x `height`, 3 apart.
  DrawnText& word(int left, int top, int letters = 4, int height = 12, QRgb color = qRgb(0, 0, 0)) {
    for (int i = 0; i < letters; ++i) fill({left + 9 * i, top, 6, height}, color);
    return *this;
  }
  TextGrounds grounds() const { return TextGrounds(image); }
  std::vector<TextLine> lines() const { return textLines(image, grounds()); }

  QImage image;
};

}  // namespace quillmere::testing
