#include "controls/ButtonLook.h"

#include <QtGui/QPainter>

#include "controls/Theme.h"

namespace quillmere {
namespace {

QColor fillOf(const Theme& theme, Touch touch) {
  switch (touch) {
    case Touch::none:
      return theme.fill;
    case Touch::hovered:
      return theme.fillHover;
    case Touch::pressed:
      return theme.fillPressed;
  }
  return theme.fill;
}

QColor accentOf(const Theme& theme, Touch touch) {
  switch (touch) {
    case Touch::none:
      return theme.accent;
    case Touch::hovered:
      return theme.accentHover;
    case Touch::pressed:
      return theme.accentPressed;
  }
  return theme.accent;
}

}  // namespace

ButtonLook buttonLook(const Theme& theme, ButtonRole role, Touch touch, bool isEnabled) {
  if (!isEnabled) return {theme.fill, theme.disabledText, theme.focusRing};
  switch (role) {
    case ButtonRole::primary:
      return {accentOf(theme, touch), theme.onAccent, theme.onAccent};
    case ButtonRole::destructive:
      return {fillOf(theme, touch), theme.danger, theme.focusRing};
    case ButtonRole::icon:
      return {fillOf(theme, touch), theme.secondaryText, theme.focusRing};
    case ButtonRole::secondary:
      break;
  }
  return {fillOf(theme, touch), theme.text, theme.focusRing};
}

void paintFocusRing(QPainter& painter, const QRectF& around, qreal radius, const QColor& color) {
  constexpr qreal kInset = 2;
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(color, 2));
  const QRectF ring = around.adjusted(kInset, kInset, -kInset, -kInset);
  painter.drawRoundedRect(ring, radius - kInset, radius - kInset);
}

}  // namespace quillmere
