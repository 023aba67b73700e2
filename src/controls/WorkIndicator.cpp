#include "controls/WorkIndicator.h"

#include <QtGui/QPainter>

#include "controls/Theme.h"

namespace quillmere {

WorkIndicator::WorkIndicator(QWidget* parent) : QWidget(parent) {
  setFixedSize(kSide, kSide);
  setAttribute(Qt::WA_TransparentForMouseEvents);
}

void WorkIndicator::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  ring_.paint(painter, QRectF(rect()).center(), Theme(palette()).secondaryText);
}

void WorkIndicator::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  ring_.setWorking(true);
}

/// What nobody sees need not turn.
void WorkIndicator::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  ring_.setWorking(false);
}

}  // namespace quillmere
