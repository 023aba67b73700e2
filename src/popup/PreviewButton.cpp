#include "popup/PreviewButton.h"

#include <QtGui/QPainter>

#include "controls/ActionButton.h"
#include "controls/AppearanceStyle.h"
#include "controls/Symbol.h"
#include "controls/Theme.h"

namespace quillmere {
namespace {

constexpr int kSymbol = 18;
constexpr int kTurnMilliseconds = 900;

}  // namespace

PreviewButton::PreviewButton(const QString& symbol, const QString& name, QWidget* parent)
    : QPushButton(parent), symbol_(symbol) {
  setAccessibleName(name);
  setFocusPolicy(Qt::TabFocus);
  setAttribute(Qt::WA_Hover);
  setAutoDefault(false);
  setFixedSize(kSide, kSide);
  turning_.setStartValue(0.0);
  turning_.setEndValue(360.0);
  turning_.setDuration(kTurnMilliseconds);
  turning_.setLoopCount(-1);
  connect(&turning_, &QVariantAnimation::valueChanged, this, [this] { update(); });
}

void PreviewButton::setOn(bool isOn) {
  setCheckable(true);
  setChecked(isOn);
}

void PreviewButton::setWorking(bool isWorking) {
  if (isWorking == isWorking_) return;
  isWorking_ = isWorking;
  if (isWorking && !isMotionReduced(*this)) {
    turning_.start();
  } else {
    turning_.stop();
  }
  update();
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
  const QColor ink = isOn ? theme.onAccent : theme.text;
  if (isWorking_) {
    paintWork(painter, ink);
  } else {
    const int inset = (kSide - kSymbol) / 2;
    painter.drawPixmap(inset, inset, symbolPixmap(symbol_, kSymbol, ink, devicePixelRatioF()));
  }
  if (hasFocus()) paintFocusRing(painter, disc, radius, isOn ? theme.onAccent : theme.focusRing);
}

/// An open ring, turning where things may move.
void PreviewButton::paintWork(QPainter& painter, const QColor& color) const {
  constexpr qreal kRing = 14;
  constexpr int kSixteenths = 16;
  constexpr int kOpening = 90;
  QRectF ring(0, 0, kRing, kRing);
  ring.moveCenter(QRectF(rect()).center());
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(color, 2, Qt::SolidLine, Qt::RoundCap));
  const double turned = isMotionReduced(*this) ? 0 : turning_.currentValue().toDouble();
  painter.drawArc(ring, static_cast<int>((90 - turned) * kSixteenths), -(360 - kOpening) * kSixteenths);
}

}  // namespace quillmere
