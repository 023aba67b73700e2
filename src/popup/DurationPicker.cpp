#include "popup/DurationPicker.h"

#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>

#include "controls/ButtonLook.h"
#include "controls/Grounds.h"
#include "controls/Metrics.h"
#include "controls/Symbol.h"
#include "controls/Theme.h"
#include "foundation/Localized.h"
#include "popup/AccessibleDurationPicker.h"

namespace quillmere {
namespace {

constexpr int kPadding = 12;
constexpr int kChevron = Metrics::kSmallSymbol;

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
  return {widest + 2 * kPadding + kChevron + 6, Metrics::kControlHeight};
}

/// The time changes by choice alone, never because somebody scrolls past it.
void DurationPicker::wheelEvent(QWheelEvent* event) {
  event->ignore();
}

void DurationPicker::paintEvent(QPaintEvent*) {
  const Theme theme(palette());
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const ButtonLook look =
      buttonLook(theme, ButtonRole::secondary, underMouse() ? Touch::hovered : Touch::none, isEnabled());
  paintGround(painter, rect(), Radius::kControl, look.ground, theme);
  const QString label = localized("Temporary for");
  // Label, value and arrow, one after the other in the direction of the language.
  const QRect inner = rect().adjusted(kPadding, 0, -kPadding, 0);
  const int labelWidth = fontMetrics().horizontalAdvance(label);
  const int gap = fontMetrics().horizontalAdvance(QLatin1Char(' '));
  const auto placed = [this](const QRect& place) { return QStyle::visualRect(layoutDirection(), rect(), place); };
  const auto alignment =
      QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft) | Qt::AlignVCenter | Qt::AlignAbsolute;
  painter.setPen(isEnabled() ? theme.secondaryText : look.ink);
  painter.drawText(placed({inner.left(), 0, labelWidth, height()}), static_cast<int>(alignment), label);
  painter.setPen(look.ink);
  painter.drawText(placed(inner.adjusted(labelWidth + gap, 0, -kChevron, 0)), static_cast<int>(alignment),
                   currentText());
  painter.drawPixmap(placed({inner.right() - kChevron + 1, (height() - kChevron) / 2, kChevron, kChevron}),
                     symbolPixmap(QStringLiteral("chevron.down"), kChevron, theme.secondaryText, devicePixelRatioF()));
  if (hasFocus()) paintFocusRing(painter, rect(), Radius::kControl, look.ring);
}

}  // namespace quillmere
