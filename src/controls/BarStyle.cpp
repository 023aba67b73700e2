#include "controls/BarStyle.h"

#include <algorithm>

#include "controls/Grounds.h"
#include "controls/Metrics.h"
#include "controls/StylePainting.h"
#include "controls/Theme.h"

namespace quillmere::BarStyle {
namespace {

constexpr int kLeastHandle = 32;
constexpr int kHandle = 6;
/// While nobody is at it.
constexpr int kQuietHandle = 4;
constexpr int kTitleHeight = 28;
constexpr int kTitlePadding = 8;
/// Below a tab's ground, for the line that says which one is shown.
constexpr int kUnderTab = 5;

bool isHorizontal(const QStyleOptionSlider& bar) {
  return bar.orientation == Qt::Horizontal;
}

QRect along(const QStyleOptionSlider& bar, int from, int length) {
  const QRect& all = bar.rect;
  return isHorizontal(bar) ? QRect(all.left() + from, all.top(), length, all.height())
                           : QRect(all.left(), all.top() + from, all.width(), length);
}

}  // namespace

void paintScrollBar(const QStyleOptionSlider& bar, QPainter& painter) {
  if (bar.maximum <= bar.minimum) return;
  const Theme theme(bar.palette);
  const SmoothPainting smooth(painter);
  const QRect all = QStyle::visualRect(bar.direction, bar.rect, scrollBarPart(bar, QStyle::SC_ScrollBarSlider));
  const int across = isHorizontal(bar) ? all.height() : all.width();
  const bool isTouched = isEnabled(bar) && bar.activeSubControls.testFlag(QStyle::SC_ScrollBarSlider) &&
                         bar.state & (QStyle::State_MouseOver | QStyle::State_Sunken);
  const qreal inset = std::max(0, across - (isTouched ? kHandle : kQuietHandle)) / 2.0;
  const QRectF handle =
      isHorizontal(bar) ? QRectF(all).adjusted(2, inset, -2, -inset) : QRectF(all).adjusted(inset, 2, -inset, -2);
  painter.setPen(Qt::NoPen);
  painter.setBrush(isTouched ? theme.secondaryText : theme.fieldBorder);
  const qreal radius = std::min(handle.width(), handle.height()) / 2;
  painter.drawRoundedRect(handle, radius, radius);
}

QRect scrollBarPart(const QStyleOptionSlider& bar, QStyle::SubControl part) {
  const int length = isHorizontal(bar) ? bar.rect.width() : bar.rect.height();
  const qint64 range = qint64(bar.maximum) - bar.minimum;
  const qint64 whole = range + bar.pageStep;
  const int share = whole > 0 ? static_cast<int>(qint64(length) * bar.pageStep / whole) : length;
  const int handle = range > 0 ? std::min(length, std::max(kLeastHandle, share)) : length;
  const int start =
      QStyle::sliderPositionFromValue(bar.minimum, bar.maximum, bar.sliderPosition, length - handle, bar.upsideDown);
  switch (part) {
    case QStyle::SC_ScrollBarSlider:
      return along(bar, start, handle);
    case QStyle::SC_ScrollBarSubPage:
      return along(bar, 0, start);
    case QStyle::SC_ScrollBarAddPage:
      return along(bar, start + handle, length - start - handle);
    case QStyle::SC_ScrollBarGroove:
      return bar.rect;
    default:
      return {};
  }
}

void paintTab(const QStyleOptionTab& tab, QPainter& painter) {
  const Theme theme(tab.palette);
  const SmoothPainting smooth(painter);
  const QRectF ground = QRectF(tab.rect).adjusted(2, 0, -2, -kUnderTab);
  const bool isShown = tab.state.testFlag(QStyle::State_Selected);
  painter.setPen(Qt::NoPen);
  if (isShown || touchOf(tab) != Touch::none) {
    painter.setBrush(isShown ? theme.fillHover : theme.fill);
    painter.drawRoundedRect(ground, Radius::kControl, Radius::kControl);
  }
  if (isShown) {
    constexpr qreal kLine = 2;
    painter.setBrush(isEnabled(tab) ? theme.focusRing : theme.disabledText);
    painter.drawRoundedRect(
        QRectF(ground.left() + Metrics::kPadding, ground.bottom() + 2, ground.width() - 2 * Metrics::kPadding, kLine),
        kLine / 2, kLine / 2);
  }
  if (showsFocus(tab)) paintFocusRing(painter, ground, Radius::kControl, theme.focusRing);
}

QSize tabSize(const QSize& contents) {
  return {contents.width(), std::max(Metrics::kControlHeight, contents.height()) + kUnderTab};
}

void paintProgress(const QStyleOptionProgressBar& bar, QPainter& painter) {
  const Theme theme(bar.palette);
  const SmoothPainting smooth(painter);
  QRectF groove(bar.rect);
  groove.setHeight(kHandle);
  groove.moveCenter(QRectF(bar.rect).center());
  painter.setPen(QPen(theme.fieldBorder, 1));
  painter.setBrush(theme.fill);
  painter.drawRoundedRect(groove.adjusted(0.5, 0.5, -0.5, -0.5), kHandle / 2.0, kHandle / 2.0);
  if (bar.maximum <= bar.minimum) return;
  QRectF done = groove;
  done.setWidth(groove.width() * (bar.progress - bar.minimum) / (bar.maximum - bar.minimum));
  if ((bar.direction == Qt::RightToLeft) != bar.invertedAppearance) done.moveRight(groove.right());
  painter.setPen(Qt::NoPen);
  painter.setBrush(isEnabled(bar) ? theme.focusRing : theme.disabledText);
  painter.drawRoundedRect(done, kHandle / 2.0, kHandle / 2.0);
}

void paintMenuTitle(const QStyleOptionMenuItem& title, QPainter& painter, bool showsMnemonics) {
  const Theme theme(title.palette);
  const SmoothPainting smooth(painter);
  const bool isOpen = title.state.testFlag(QStyle::State_Sunken);
  if (isEnabled(title) && (isOpen || title.state.testFlag(QStyle::State_Selected))) {
    paintGround(painter, title.rect, Radius::kItem, isOpen ? theme.fillPressed : theme.fillHover, theme);
  }
  painter.setPen(isEnabled(title) ? theme.text : theme.disabledText);
  painter.drawText(title.rect,
                   static_cast<int>(Qt::AlignCenter) | Qt::TextSingleLine |
                       (showsMnemonics ? Qt::TextShowMnemonic : Qt::TextHideMnemonic),
                   title.text);
}

QSize menuTitleSize(const QSize& text) {
  return {text.width() + 2 * kTitlePadding, std::max(kTitleHeight, text.height() + 8)};
}

void paintMenuBar(const QStyleOption& bar, QPainter& painter) {
  painter.fillRect(bar.rect, bar.palette.window());
  painter.fillRect(bar.rect.left(), bar.rect.bottom(), bar.rect.width(), 1, Theme(bar.palette).hairline);
}

void paintSplitter(const QStyleOption& handle, QPainter& painter) {
  QRect line = handle.rect;
  // A handle that lies beside its neighbour, not above it, is upright.
  handle.state.testFlag(QStyle::State_Horizontal) ? line.setWidth(1) : line.setHeight(1);
  line.moveCenter(handle.rect.center());
  painter.fillRect(line, Theme(handle.palette).hairline);
}

}  // namespace quillmere::BarStyle
