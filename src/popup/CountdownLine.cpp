#include "popup/CountdownLine.h"

#include <QtGui/QPainter>
#include <QtWidgets/QStyle>

#include "controls/AccessibleRole.h"
#include "controls/AppearanceStyle.h"
#include "controls/Theme.h"

namespace quillmere {
namespace {

/// As often as the time that is left is told.
constexpr int kStepMilliseconds = 250;

}  // namespace

CountdownLine::CountdownLine(QWidget* parent) : QWidget(parent) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setFixedHeight(kThickness);
  // A screen reader has the same from the settings; a line that changes all the time would say nothing.
  setAccessibleRole(*this, QAccessible::NoRole);
  motion_.setDuration(kStepMilliseconds);
  connect(&motion_, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
    shown_ = value.toDouble();
    update();
  });
  hide();
}

void CountdownLine::show(std::optional<double> remaining) {
  motion_.stop();
  setVisible(remaining.has_value());
  if (!remaining) return;
  const double next = std::clamp(*remaining, 0.0, 1.0);
  if (next >= shown_ || isMotionReduced(*this)) {
    shown_ = next;
    update();
    return;
  }
  motion_.setStartValue(shown_);
  motion_.setEndValue(next);
  motion_.start();
}

void CountdownLine::paintEvent(QPaintEvent*) {
  const Theme theme(palette());
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(theme.focusRing);
  const QRect left(0, 0, qRound(width() * shown_), kThickness);
  painter.drawRoundedRect(QStyle::visualRect(layoutDirection(), rect(), left), kThickness / 2.0, kThickness / 2.0);
}

}  // namespace quillmere
