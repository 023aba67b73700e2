#include "controls/MenuStyle.h"

#include <QtWidgets/QStyle>

#include "controls/Metrics.h"
#include "controls/StylePainting.h"
#include "controls/Theme.h"

namespace quillmere::MenuStyle {
namespace {

constexpr int kRowHeight = 30;
constexpr int kSeparatorHeight = 9;
constexpr int kPadding = 10;
constexpr int kGap = 8;
constexpr int kShortcutGap = 24;
constexpr int kArrow = 14;

/// What stands before the text, for all rows alike.
struct Columns {
  explicit Columns(const QStyleOptionMenuItem& item)
      : mark(item.menuHasCheckableItems ? Metrics::kSmallSymbol + kGap : 0),
        // Qt adds 4 to the icons' width.
        icon(item.maxIconWidth > 0 ? item.maxIconWidth - 4 + kGap : 0) {}
  int mark;
  int icon;
};

bool hasSubMenu(const QStyleOptionMenuItem& item) {
  return item.menuItemType == QStyleOptionMenuItem::SubMenu;
}

void paintSeparator(const QStyleOptionMenuItem& item, QPainter& painter, const Theme& theme) {
  const qreal y = QRectF(item.rect).center().y();
  painter.setPen(QPen(theme.hairline, 1));
  painter.drawLine(QPointF(item.rect.left() + kPadding, y), QPointF(item.rect.right() + 1 - kPadding, y));
}

void paintMark(const QStyleOptionMenuItem& item, QPainter& painter, const QRect& place, const QColor& ink) {
  if (!item.checked) return;
  if (item.checkType == QStyleOptionMenuItem::Exclusive) {
    constexpr qreal kDot = 3;
    painter.setPen(Qt::NoPen);
    painter.setBrush(ink);
    painter.drawEllipse(QRectF(place).center(), kDot, kDot);
  } else if (item.checkType == QStyleOptionMenuItem::NonExclusive) {
    paintSymbol(painter, place, QStringLiteral("checkmark"), Metrics::kSmallSymbol, ink);
  }
}

}  // namespace

void paintItem(const QStyleOptionMenuItem& item, QPainter& painter) {
  const Theme theme(item.palette);
  const SmoothPainting smooth(painter);
  if (item.menuItemType == QStyleOptionMenuItem::Separator && item.text.isEmpty()) {
    paintSeparator(item, painter, theme);
    return;
  }
  const bool isChosen = item.state.testFlag(QStyle::State_Selected) && isEnabled(item);
  if (isChosen) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.accent);
    painter.drawRoundedRect(item.rect, Radius::kItem, Radius::kItem);
  }
  const QColor ink = !isEnabled(item) ? theme.disabledText : isChosen ? theme.onAccent : theme.text;
  const QColor faint = !isEnabled(item) || isChosen ? ink : theme.secondaryText;
  const auto placed = [&item](const QRect& place) { return QStyle::visualRect(item.direction, item.rect, place); };
  const Columns columns(item);
  QRect left = item.rect.adjusted(kPadding, 0, -kPadding, 0);
  paintMark(item, painter, placed({left.left(), left.top(), Metrics::kSmallSymbol, left.height()}), ink);
  left.adjust(columns.mark, 0, 0, 0);
  if (!item.icon.isNull()) {
    const int side = columns.icon - kGap;
    const QRect place = placed({left.left(), left.top() + (left.height() - side) / 2, side, side});
    const QIcon::Mode mode = !isEnabled(item) ? QIcon::Disabled : isChosen ? QIcon::Active : QIcon::Normal;
    item.icon.paint(&painter, place, Qt::AlignCenter, mode);
  }
  left.adjust(columns.icon, 0, 0, 0);
  if (hasSubMenu(item)) {
    const bool isMirrored = item.direction == Qt::RightToLeft;
    paintSymbol(painter, placed({left.right() + 1 - kArrow, left.top(), kArrow, left.height()}),
                isMirrored ? QStringLiteral("chevron.left") : QStringLiteral("chevron.right"), kArrow, faint);
  }
  const auto parts = item.text.split(QLatin1Char('\t'));
  const auto leading = QStyle::visualAlignment(item.direction, Qt::AlignLeft) | Qt::AlignVCenter | Qt::AlignAbsolute;
  const auto trailing = QStyle::visualAlignment(item.direction, Qt::AlignRight) | Qt::AlignVCenter | Qt::AlignAbsolute;
  // Underlined letters are shown by the menus of those who look for them.
  const int mnemonic = Qt::TextSingleLine | Qt::TextShowMnemonic;
  painter.setFont(item.font);
  painter.setPen(ink);
  painter.drawText(placed(left), static_cast<int>(leading) | mnemonic, parts.first());
  if (parts.size() > 1) {
    painter.setPen(faint);
    painter.drawText(placed(left), static_cast<int>(trailing) | Qt::TextSingleLine, parts[1]);
  }
}

QSize itemSize(const QStyleOptionMenuItem& item, const QSize& contents) {
  if (item.menuItemType == QStyleOptionMenuItem::Separator && item.text.isEmpty()) return {1, kSeparatorHeight};
  const Columns columns(item);
  const bool hasShortcut = item.text.contains(QLatin1Char('\t')) || item.reservedShortcutWidth > 0;
  const int behind = (hasSubMenu(item) ? kGap + kArrow : 0) + (hasShortcut ? kShortcutGap : 0);
  return {2 * kPadding + columns.mark + columns.icon + contents.width() + behind,
          std::max(kRowHeight, contents.height() + 2 * 5)};
}

}  // namespace quillmere::MenuStyle
