#include "controls/Grounds.h"

#include <QtGui/QPainter>

#include "controls/Theme.h"

namespace quillmere {

void paintWarningGround(QWidget& widget) {
  constexpr qreal kRadius = 10;
  const Theme theme(widget.palette());
  QColor ground = theme.warning;
  ground.setAlphaF(theme.isDark ? 0.18F : 0.12F);
  QPainter painter(&widget);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(ground);
  painter.drawRoundedRect(widget.rect(), kRadius, kRadius);
}

void setTextColor(QWidget& widget, const QColor& color) {
  QPalette palette = widget.palette();
  palette.setColor(QPalette::WindowText, color);
  palette.setColor(QPalette::Text, color);
  widget.setPalette(palette);
}

}  // namespace quillmere
