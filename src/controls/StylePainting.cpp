#include "controls/StylePainting.h"

#include "controls/Symbol.h"

namespace quillmere {

Touch touchOf(const QStyleOption& option) {
  if (!isEnabled(option)) return Touch::none;
  if (option.state.testFlag(QStyle::State_Sunken)) return Touch::pressed;
  return option.state.testFlag(QStyle::State_MouseOver) ? Touch::hovered : Touch::none;
}

bool isEnabled(const QStyleOption& option) {
  return option.state.testFlag(QStyle::State_Enabled);
}

bool showsFocus(const QStyleOption& option) {
  return option.state.testFlag(QStyle::State_HasFocus) && isEnabled(option);
}

void paintSymbol(QPainter& painter, const QRect& place, const QString& name, int points, const QColor& ink) {
  QRect symbol(0, 0, points, points);
  symbol.moveCenter(place.center());
  painter.drawPixmap(symbol.topLeft(), symbolPixmap(name, points, ink, painter.device()->devicePixelRatioF()));
}

}  // namespace quillmere
