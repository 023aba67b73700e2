#include "controls/Grounds.h"

#include <QtGui/QPainter>

#include "controls/Metrics.h"
#include "controls/Theme.h"

namespace quillmere {

void paintGround(QPainter& painter, const QRectF& place, qreal radius, const QColor& color, const Theme& theme) {
  const qreal half = theme.isHighContrast ? 0.5 : 0;
  painter.setPen(theme.isHighContrast ? QPen(theme.hairline, 1) : QPen(Qt::NoPen));
  painter.setBrush(color);
  painter.drawRoundedRect(place.adjusted(half, half, -half, -half), radius, radius);
}

void paintField(QPainter& painter, const QRectF& place, const Theme& theme, bool isFocused) {
  const qreal line = isFocused ? 2 : 1;
  const qreal inset = line / 2;
  painter.setPen(QPen(isFocused ? theme.focusRing : theme.fieldBorder, line));
  painter.setBrush(theme.field);
  painter.drawRoundedRect(place.adjusted(inset, inset, -inset, -inset), Radius::kControl - inset,
                          Radius::kControl - inset);
}

void letFieldShow(QWidget& field) {
  const QColor text = Theme(field.palette()).text;
  QPalette own = field.palette();
  // Setting a palette is itself a change of it.
  if (own.color(QPalette::Base).alpha() == 0 && own.color(QPalette::Text) == text) return;
  own.setColor(QPalette::Base, Qt::transparent);
  own.setColor(QPalette::Text, text);
  field.setPalette(own);
}

void paintWarningGround(QWidget& widget) {
  const Theme theme(widget.palette());
  QPainter painter(&widget);
  painter.setRenderHint(QPainter::Antialiasing);
  paintGround(painter, widget.rect(), Radius::kControl, theme.warningGround, theme);
}

void setTextColor(QWidget& widget, const QColor& color) {
  QPalette palette = widget.palette();
  palette.setColor(QPalette::WindowText, color);
  palette.setColor(QPalette::Text, color);
  widget.setPalette(palette);
}

}  // namespace quillmere
