#include "inbox/ScreenshotRowDelegate.h"

#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

#include "controls/Metrics.h"
#include "controls/Symbol.h"
#include "controls/Theme.h"
#include "inbox/InboxListModel.h"

namespace quillmere {
namespace {

constexpr int kRowHeight = 64;
constexpr int kInset = 6;
constexpr int kPadding = 8;
constexpr QSize kPicture(64, 44);
constexpr int kSymbol = 14;

void paintPicture(QPainter& painter, const QRect& place, const QImage& image, const Theme& theme, const QColor& ink,
                  qreal ratio) {
  QPainterPath shape;
  shape.addRoundedRect(place, Radius::kMark, Radius::kMark);
  painter.fillPath(shape, theme.fill);
  if (image.isNull()) {
    constexpr int kMissingSymbol = 20;
    QRect symbol(0, 0, kMissingSymbol, kMissingSymbol);
    symbol.moveCenter(place.center());
    painter.drawPixmap(symbol.topLeft(), symbolPixmap(QStringLiteral("photo"), kMissingSymbol, ink, ratio));
    return;
  }
  // Filled, not fitted: in a list the pictures' places should line up.
  QRectF target(QPointF(), QSizeF(image.size()).scaled(place.size(), Qt::KeepAspectRatioByExpanding));
  target.moveCenter(QRectF(place).center());
  painter.save();
  painter.setClipPath(shape);
  painter.drawImage(target, image);
  painter.restore();
}

}  // namespace

QSize ScreenshotRowDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const {
  return {200, kRowHeight};
}

void ScreenshotRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                  const QModelIndex& index) const {
  const Theme theme(option.palette);
  const bool isSelected = option.state.testFlag(QStyle::State_Selected);
  const bool isHovered = option.state.testFlag(QStyle::State_MouseOver);
  const qreal ratio = option.widget ? option.widget->devicePixelRatioF() : 1;
  painter->save();
  painter->setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);

  const QRect row = option.rect.adjusted(kInset, 1, -kInset, -1);
  if (isSelected || isHovered) {
    painter->setPen(Qt::NoPen);
    painter->setBrush(isSelected ? theme.accent : theme.fill);
    painter->drawRoundedRect(row, Radius::kControl, Radius::kControl);
  }
  const QColor text = isSelected ? theme.onAccent : theme.text;
  const QColor secondary = isSelected ? theme.onAccent : theme.secondaryText;

  const QRect picture(QPoint(row.left() + kPadding, row.center().y() - kPicture.height() / 2), kPicture);
  paintPicture(*painter, picture, index.data(InboxListModel::thumbnailRole).value<QImage>(), theme, secondary, ratio);

  const int textLeft = picture.right() + 1 + kPadding + 2;
  const int textWidth = row.right() - kPadding - textLeft;
  const QFont nameFont = fileNameFont(scaled(option.font, 1, QFont::Medium));
  const QFont statusFont = scaled(option.font, 0.92);
  const int nameHeight = QFontMetrics(nameFont).height();
  const int statusHeight = QFontMetrics(statusFont).height();
  constexpr int kLineGap = 3;
  const int top = row.center().y() - (nameHeight + kLineGap + statusHeight) / 2;
  // In the middle, so that the number at the end of a name is still seen.
  painter->setFont(nameFont);
  painter->setPen(text);
  painter->drawText(QRect(textLeft, top, textWidth, nameHeight), Qt::AlignLeft | Qt::AlignVCenter,
                    QFontMetrics(nameFont).elidedText(index.data(InboxListModel::nameRole).toString().simplified(),
                                                      Qt::ElideMiddle, textWidth));
  const int statusTop = top + nameHeight + kLineGap;
  QString symbol = index.data(InboxListModel::symbolRole).toString();
  // The mark in a filled symbol is white, and so would be the symbol.
  if (isSelected) symbol.remove(QStringLiteral(".fill"));
  painter->drawPixmap(
      textLeft, statusTop + (statusHeight - kSymbol) / 2,
      symbolPixmap(symbol, kSymbol,
                   index.data(InboxListModel::unavailableRole).toBool() && !isSelected ? theme.warning : secondary,
                   ratio));
  const int statusLeft = textLeft + kSymbol + 5;
  painter->setFont(statusFont);
  painter->setPen(secondary);
  painter->drawText(
      QRect(statusLeft, statusTop, textWidth - kSymbol - 5, statusHeight), Qt::AlignLeft | Qt::AlignVCenter,
      QFontMetrics(statusFont)
          .elidedText(index.data(InboxListModel::statusRole).toString(), Qt::ElideRight, textWidth - kSymbol - 5));
  painter->restore();
}

}  // namespace quillmere
