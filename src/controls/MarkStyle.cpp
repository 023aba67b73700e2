#include "controls/MarkStyle.h"

#include "controls/Metrics.h"
#include "controls/StylePainting.h"
#include "controls/Theme.h"

namespace quillmere::MarkStyle {
namespace {

QRectF square(const QStyleOption& option) {
  QRectF place(0, 0, kSide, kSide);
  place.moveCenter(QRectF(option.rect).center());
  return place;
}

/// Grounds, edge and ink of a mark that is on or off.
struct Look {
  Look(const QStyleOption& option, bool isOn) {
    const Theme theme(option.palette);
    const ButtonLook accent = buttonLook(theme, ButtonRole::primary, touchOf(option), true);
    const bool isUsable = isEnabled(option);
    edge = QPen(isUsable ? theme.fieldBorder : theme.disabledText, 1);
    if (!isOn) {
      ground = theme.field;
      over = touchOf(option) == Touch::none ? QColor(Qt::transparent)
                                            : buttonLook(theme, ButtonRole::secondary, touchOf(option), true).ground;
      return;
    }
    ground = isUsable ? accent.ground : theme.disabledText;
    ink = isUsable ? accent.ink : theme.card;
    // An accent may be as light as the window.
    edge = QPen(isUsable ? theme.focusRing : theme.disabledText, 1);
  }
  QColor ground;
  QColor over = Qt::transparent;
  QColor ink;
  QPen edge;
};

}  // namespace

void paintCheckBox(const QStyleOption& box, QPainter& painter) {
  const SmoothPainting smooth(painter);
  const bool isHalf = box.state.testFlag(QStyle::State_NoChange);
  const bool isOn = isHalf || box.state.testFlag(QStyle::State_On);
  const Look look(box, isOn);
  const QRectF place = square(box).adjusted(0.5, 0.5, -0.5, -0.5);
  painter.setPen(look.edge);
  painter.setBrush(look.ground);
  painter.drawRoundedRect(place, Radius::kMark, Radius::kMark);
  painter.setPen(Qt::NoPen);
  painter.setBrush(look.over);
  painter.drawRoundedRect(place, Radius::kMark, Radius::kMark);
  if (!isOn) return;
  paintSymbol(painter, square(box).toRect(), isHalf ? QStringLiteral("minus") : QStringLiteral("checkmark"), kSide - 2,
              look.ink);
}

void paintRadioButton(const QStyleOption& button, QPainter& painter) {
  const SmoothPainting smooth(painter);
  const bool isOn = button.state.testFlag(QStyle::State_On);
  const Look look(button, isOn);
  const QRectF place = square(button).adjusted(0.5, 0.5, -0.5, -0.5);
  painter.setPen(look.edge);
  painter.setBrush(look.ground);
  painter.drawEllipse(place);
  painter.setPen(Qt::NoPen);
  painter.setBrush(look.over);
  painter.drawEllipse(place);
  if (!isOn) return;
  constexpr qreal kDot = 3.5;
  painter.setBrush(look.ink);
  painter.drawEllipse(place.center(), kDot, kDot);
}

}  // namespace quillmere::MarkStyle
