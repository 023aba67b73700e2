#include "popup/DurationPicker.h"

#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>

#include "controls/ActionButton.h"
#include "controls/Grounds.h"
#include "controls/Symbol.h"
#include "controls/Theme.h"
#include "foundation/Localized.h"
#include "popup/AccessibleDurationPicker.h"

namespace quillmere {
namespace {

constexpr int kHeight = 36;
constexpr int kPadding = 12;
constexpr int kChevron = 16;
constexpr qreal kRadius = 10;

}  // namespace

DurationPicker::DurationPicker(QWidget* parent) : QComboBox(parent) {
  makeAccessible(*this);
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
  // Label, value and arrow, one after the other in the direction of the language.
  const QRect inner = rect().adjusted(kPadding, 0, -kPadding, 0);
  const int labelWidth = fontMetrics().horizontalAdvance(label);
  const auto placed = [this](const QRect& place) { return QStyle::visualRect(layoutDirection(), rect(), place); };
  const auto alignment =
      QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft) | Qt::AlignVCenter | Qt::AlignAbsolute;
  painter.setPen(theme.secondaryText);
  painter.drawText(placed({inner.left(), 0, labelWidth, height()}), static_cast<int>(alignment), label);
  painter.setPen(theme.text);
  painter.drawText(placed(inner.adjusted(labelWidth, 0, -kChevron, 0)), static_cast<int>(alignment), currentText());
  painter.drawPixmap(placed({inner.right() - kChevron + 1, (height() - kChevron) / 2, kChevron, kChevron}),
                     symbolPixmap(QStringLiteral("chevron.down"), kChevron, theme.secondaryText, devicePixelRatioF()));
  if (hasFocus()) paintFocusRing(painter, rect(), kRadius, theme.focusRing);
}

}  // namespace quillmere
