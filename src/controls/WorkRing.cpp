#include "controls/WorkRing.h"

#include <QtGui/QPainter>
#include <QtWidgets/QWidget>

#include "controls/AppearanceStyle.h"

namespace quillmere {

WorkRing::WorkRing(QWidget& button) : button_(button) {
  constexpr int kTurnMilliseconds = 900;
  turning_.setStartValue(0.0);
  turning_.setEndValue(360.0);
  turning_.setDuration(kTurnMilliseconds);
  turning_.setLoopCount(-1);
  QObject::connect(&turning_, &QVariantAnimation::valueChanged, &button, [&button] { button.update(); });
}

void WorkRing::setWorking(bool isWorking) {
  if (isWorking == isWorking_) return;
  isWorking_ = isWorking;
  if (isWorking && !isMotionReduced(button_)) {
    turning_.start();
  } else {
    turning_.stop();
  }
  button_.update();
}

void WorkRing::paint(QPainter& painter, const QPointF& centre, const QColor& color) const {
  constexpr qreal kSide = 14;
  constexpr int kSixteenths = 16;
  constexpr int kOpening = 90;
  QRectF ring(0, 0, kSide, kSide);
  ring.moveCenter(centre);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(color, 2, Qt::SolidLine, Qt::RoundCap));
  const double turned = isMotionReduced(button_) ? 0 : turning_.currentValue().toDouble();
  painter.drawArc(ring, static_cast<int>((90 - turned) * kSixteenths), -(360 - kOpening) * kSixteenths);
}

}  // namespace quillmere
