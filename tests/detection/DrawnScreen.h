#pragma once

#include <QtGui/QColor>
#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <vector>

#include "reading/WindowStack.h"

namespace quillmere::CapturedWindows {

/// A screen of plain windows with a border and a title bar each, and the state that tells of them, the lowest first.
struct DrawnScreen {
  explicit DrawnScreen(const QSize& size) : image(size, QImage::Format_RGB32) {
    image.fill(QColor(60, 110, 165));
    stack.root = size;
    stack.monitors = {QRect(QPoint(), size)};
  }

  /// Its number.
  uint32_t add(const QRect& frame, const QColor& ground = Qt::white) {
    QPainter painter(&image);
    painter.fillRect(frame, QColor(70, 70, 75));
    painter.fillRect(frame.adjusted(1, 24, -1, -1), ground);
    WindowStack::Window window;
    window.id = static_cast<uint32_t>(stack.windows.size()) + 1;
    window.frame = window.outer = frame;
    window.client = frame.adjusted(1, 24, -1, -1);
    stack.windows.push_back(window);
    stack.active = window.id;
    return window.id;
  }

  QImage image;
  WindowStack stack;
};

}  // namespace quillmere::CapturedWindows
