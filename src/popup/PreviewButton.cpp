#include "popup/PreviewButton.h"

#include <QtGui/QPainter>

#include "controls/ButtonLook.h"
#include "controls/Symbol.h"
#include "controls/Theme.h"

namespace quillmere {
namespace {

constexpr int kSymbol = 18;

}  // namespace

PreviewButton::PreviewButton(const QString& symbol, const QString& name, QWidget* parent)
    : QPushButton(parent), symbol_(symbol) {
  setAccessibleName(name);
  setFocusPolicy(Qt::TabFocus);
  setAttribute(Qt::WA_Hover);
  setAutoDefault(false);
  setFixedSize(kSide, kSide);
}

void PreviewButton::setOn(bool isOn) {
  setCheckable(true);
  setChecked(isOn);
}

void PreviewButton::paintEvent(QPaintEvent*) {
  const Theme theme(palette());
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const bool isOn = isCheckable() && isChecked();
  const QRectF disc = QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5);
  const qreal radius = disc.width() / 2;
  if (isOn) {
    painter.setBrush(isDown() ? theme.accentPressed : underMouse() ? theme.accentHover : theme.accent);
    painter.setPen(Qt::NoPen);
  } else {
    painter.setBrush(theme.card);
    // A picture may be as light, or as dark, as the disc.
    painter.setPen(QPen(theme.fieldBorder, 1));
  }
  painter.drawEllipse(disc);
  if (!isOn && (underMouse() || isDown())) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(isDown() ? theme.fillPressed : theme.fillHover);
    painter.drawEllipse(disc);
  }
  const QColor ink = isOn ? theme.onAccent : isEnabled() ? theme.text : theme.disabledText;
  if (ring_.isWorking()) {
    ring_.paint(painter, QRectF(rect()).center(), ink);
  } else {
    const int inset = (kSide - kSymbol) / 2;
    painter.drawPixmap(inset, inset, symbolPixmap(symbol_, kSymbol, ink, devicePixelRatioF()));
  }
  if (hasFocus()) paintFocusRing(painter, disc, radius, isOn ? theme.onAccent : theme.focusRing);
}

}  // namespace quillmere
