#pragma once

#include <QtCore/QRect>
#include <QtCore/QString>
#include <QtGui/QColor>
#include <QtGui/QPainter>
#include <QtWidgets/QStyleOption>

#include "controls/ButtonLook.h"

namespace quillmere {

/// What Qt's widgets tell a style, in the program's own terms.
Touch touchOf(const QStyleOption& option);
bool isEnabled(const QStyleOption& option);
/// By key, or it shows where keys go in any case.
bool showsFocus(const QStyleOption& option);

/// One of the program's symbols in the middle of a place.
void paintSymbol(QPainter& painter, const QRect& place, const QString& name, int points, const QColor& ink);

/// While it lives the painter smooths; then all is as it was.
class SmoothPainting {
 public:
  explicit SmoothPainting(QPainter& painter) : painter_(painter) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
  }
  ~SmoothPainting() { painter_.restore(); }
  SmoothPainting(const SmoothPainting&) = delete;
  SmoothPainting& operator=(const SmoothPainting&) = delete;

 private:
  QPainter& painter_;
};

}  // namespace quillmere
