#include "controls/ViewStyle.h"

#include "controls/Grounds.h"
#include "controls/Metrics.h"
#include "controls/StylePainting.h"
#include "controls/Theme.h"

namespace quillmere::ViewStyle {
namespace {

int titleHeight(const QStyleOptionGroupBox& group) {
  constexpr int kBelow = 6;
  return group.text.isEmpty() ? 0 : group.fontMetrics.height() + kBelow;
}

/// A part of a row goes on beyond its edges to where the row begins or ends.
QRectF wholeRow(const QStyleOptionViewItem& row) {
  using Position = QStyleOptionViewItem::ViewItemPosition;
  const bool isMirrored = row.direction == Qt::RightToLeft;
  const bool goesOn = row.viewItemPosition == Position::Beginning || row.viewItemPosition == Position::Middle;
  const bool goesBack = row.viewItemPosition == Position::End || row.viewItemPosition == Position::Middle;
  constexpr qreal kBeyond = Radius::kItem;
  return QRectF(row.rect).adjusted((isMirrored ? goesOn : goesBack) ? -kBeyond : 0, 0,
                                   (isMirrored ? goesBack : goesOn) ? kBeyond : 0, 0);
}

}  // namespace

void paintRow(const QStyleOptionViewItem& row, QPainter& painter) {
  const Theme theme(row.palette);
  const SmoothPainting smooth(painter);
  if (row.backgroundBrush.style() != Qt::NoBrush) painter.fillRect(row.rect, row.backgroundBrush);
  const bool isChosen = row.state.testFlag(QStyle::State_Selected);
  if (!isChosen && (!row.state.testFlag(QStyle::State_MouseOver) || !isEnabled(row))) return;
  painter.setClipRect(row.rect, Qt::IntersectClip);
  painter.setPen(Qt::NoPen);
  painter.setBrush(isChosen ? theme.accent : theme.fill);
  painter.drawRoundedRect(wholeRow(row), Radius::kItem, Radius::kItem);
}

void paintHeader(const QStyleOption& header, QPainter& painter) {
  const Theme theme(header.palette);
  painter.fillRect(header.rect, header.palette.color(QPalette::Base));
  painter.fillRect(QRect(header.rect.left(), header.rect.bottom(), header.rect.width(), 1), theme.hairline);
}

void paintSortArrow(const QStyleOptionHeader& header, QPainter& painter) {
  if (header.sortIndicator == QStyleOptionHeader::None) return;
  const bool isUp = header.sortIndicator == QStyleOptionHeader::SortUp;
  paintSymbol(painter, header.rect, isUp ? QStringLiteral("chevron.up") : QStringLiteral("chevron.down"), 12,
              Theme(header.palette).secondaryText);
}

void paintFrame(const QStyleOption& frame, QPainter& painter) {
  const Theme theme(frame.palette);
  const SmoothPainting smooth(painter);
  painter.setPen(QPen(theme.fieldBorder, 1));
  painter.setBrush(frame.palette.color(QPalette::Base));
  painter.drawRoundedRect(QRectF(frame.rect).adjusted(0.5, 0.5, -0.5, -0.5), Radius::kControl, Radius::kControl);
}

void paintGroup(const QStyleOptionGroupBox& group, QPainter& painter) {
  const Theme theme(group.palette);
  const SmoothPainting smooth(painter);
  const QRectF frame = groupPart(group, QStyle::SC_GroupBoxFrame);
  painter.setPen(QPen(theme.hairline, 1));
  painter.setBrush(theme.card);
  painter.drawRoundedRect(frame.adjusted(0.5, 0.5, -0.5, -0.5), Radius::kSurface, Radius::kSurface);
  const QRect title = groupPart(group, QStyle::SC_GroupBoxLabel);
  const auto alignment = QStyle::visualAlignment(group.direction, Qt::AlignLeft) | Qt::AlignTop | Qt::AlignAbsolute;
  painter.setFont(scaled(painter.font(), 1, QFont::DemiBold));
  painter.setPen(isEnabled(group) ? theme.text : theme.disabledText);
  painter.drawText(title, static_cast<int>(alignment) | Qt::TextSingleLine | Qt::TextHideMnemonic, group.text);
}

QRect groupPart(const QStyleOptionGroupBox& group, QStyle::SubControl part) {
  const int title = titleHeight(group);
  constexpr int kInset = 4;
  switch (part) {
    case QStyle::SC_GroupBoxLabel:
      return {group.rect.left() + 2, group.rect.top(), group.rect.width() - 4, title};
    case QStyle::SC_GroupBoxFrame:
      return group.rect.adjusted(0, title, 0, 0);
    case QStyle::SC_GroupBoxContents:
      return group.rect.adjusted(kInset, title + kInset, -kInset, -kInset);
    default:
      return {};
  }
}

}  // namespace quillmere::ViewStyle
