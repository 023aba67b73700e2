#include "popup/DurationPicker.h"

#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>

#include "controls/ActionButton.h"
#include "controls/Grounds.h"
#include "controls/Symbol.h"
#include "controls/Theme.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

constexpr int kHeight = 36;
constexpr int kPadding = 12;
constexpr int kChevron = 16;
constexpr qreal kRadius = 10;

}  // namespace

DurationPicker::DurationPicker(QWidget* parent) : QComboBox(parent) {
  for (const TemporaryDuration duration : kTemporaryDurations) addItem(menuText(duration), static_cast<int>(duration));
  setFocusPolicy(Qt::TabFocus);
  setAttribute(Qt::WA_Hover);
  setAccessibleName(localized("Temporary duration"));
  setToolTip(localized("Choose how long to keep this screenshot"));
}

TemporaryDuration DurationPicker::duration() const {
  return temporaryDuration(currentData().toInt()).value_or(TemporaryDuration::fiveMinutes);
}

void DurationPicker::setDuration(TemporaryDuration duration) {
  setCurrentIndex(findData(static_cast<int>(duration)));
}

QSize DurationPicker::sizeHint() const {
  int widest = 0;
  for (int i = 0; i < count(); ++i) {
    const QString text = localized("Temporary for") + QLatin1Char(' ') + itemText(i);
    widest = std::max(widest, fontMetrics().horizontalAdvance(text));
  }
  return {widest + 2 * kPadding + kChevron + 6, kHeight};
}

/// The time changes by choice alone, never because somebody scrolls past it.
void DurationPicker::wheelEvent(QWheelEvent* event) {
  event->ignore();
}

void DurationPicker::paintEvent(QPaintEvent*) {
  const Theme theme(palette());
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  paintGround(painter, rect(), kRadius, underMouse() ? theme.fillHover : theme.fill, theme);
  const QString label = localized("Temporary for") + QLatin1Char(' ');
  const QRect inner = rect().adjusted(kPadding, 0, -kPadding, 0);
  painter.setPen(theme.secondaryText);
  painter.drawText(inner, Qt::AlignVCenter | Qt::AlignLeft, label);
  painter.setPen(theme.text);
  painter.drawText(inner.adjusted(fontMetrics().horizontalAdvance(label), 0, 0, 0), Qt::AlignVCenter | Qt::AlignLeft,
                   currentText());
  painter.drawPixmap(inner.right() - kChevron + 1, (height() - kChevron) / 2,
                     symbolPixmap(QStringLiteral("chevron.down"), kChevron, theme.secondaryText, devicePixelRatioF()));
  if (hasFocus()) paintFocusRing(painter, rect(), kRadius, theme.focusRing);
}

}  // namespace quillmere
