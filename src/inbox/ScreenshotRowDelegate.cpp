#include "inbox/ScreenshotRowDelegate.h"

#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

#include "controls/Grounds.h"
#include "controls/Metrics.h"
#include "controls/Symbol.h"
#include "controls/Theme.h"
#include "inbox/InboxListModel.h"

namespace quillmere {
namespace {

constexpr int kRowHeight = 64;
constexpr int kPadding = 8;
constexpr int kTextGap = 12;
constexpr QSize kPicture(64, 44);
constexpr int kSymbol = 14;
constexpr int kSymbolGap = 6;
constexpr int kLineGap = 3;

QFont statusFont(const QStyleOptionViewItem& option) {
  return scaled(option.font, 0.92);
}

/// Where everything stands, from the side where reading begins.
struct RowLayout {
  explicit RowLayout(const QStyleOptionViewItem& option) {
    // Behind it the list's scroll bar has its place, which is as wide as the margin.
    ground = QStyle::visualRect(option.direction, option.rect,
                                option.rect.adjusted(ScreenshotRowDelegate::kMargin, 1, 0, -1));
    const auto place = [&](QRect rect) { return QStyle::visualRect(option.direction, ground, rect); };
    const int middle = ground.center().y();
    picture = place({QPoint(ground.left() + kPadding, middle - kPicture.height() / 2), kPicture});
    const int left = ground.left() + kPadding + kPicture.width() + kTextGap;
    const int width = ground.right() - kPadding - left;
    const int nameHeight = QFontMetrics(ScreenshotRowDelegate::nameFont(option)).height();
    const int statusHeight = QFontMetrics(statusFont(option)).height();
    const int top = middle - (nameHeight + kLineGap + statusHeight) / 2;
    const int statusTop = top + nameHeight + kLineGap;
    name = place({left, top, width, nameHeight});
    symbol = place({left, statusTop + (statusHeight - kSymbol) / 2, kSymbol, kSymbol});
    const int statusLeft = left + kSymbol + kSymbolGap;
    status = place({statusLeft, statusTop, width - kSymbol - kSymbolGap, statusHeight});
  }
  QRect ground;
  QRect picture;
  QRect name;
  QRect symbol;
  QRect status;
};

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
  // A white page would have no edge on a white ground.
  painter.setPen(QPen(theme.hairline, 1));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(QRectF(place).adjusted(0.5, 0.5, -0.5, -0.5), Radius::kMark - 0.5, Radius::kMark - 0.5);
}

void paintGround(QPainter& painter, const QRect& ground, const QStyleOptionViewItem& option, const Theme& theme) {
  const bool isSelected = option.state.testFlag(QStyle::State_Selected);
  if (isSelected || option.state.testFlag(QStyle::State_MouseOver)) {
    quillmere::paintGround(painter, ground, Radius::kControl, isSelected ? theme.accent : theme.fill, theme);
  }
  // Where the keyboard is can differ from what is selected.
  const bool hasKeyboard = option.state.testFlag(QStyle::State_HasFocus);
  if (!hasKeyboard || isSelected) return;
  painter.setPen(QPen(theme.focusRing, 2));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(QRectF(ground).adjusted(1, 1, -1, -1), Radius::kControl, Radius::kControl);
}

}  // namespace

QSize ScreenshotRowDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const {
  const int lines = QFontMetrics(nameFont(option)).height() + kLineGap + QFontMetrics(statusFont(option)).height();
  return {200, std::max(kRowHeight, lines + 2 * kPadding + 4)};
}

QRect ScreenshotRowDelegate::nameRect(const QStyleOptionViewItem& option) {
  return RowLayout(option).name;
}

QFont ScreenshotRowDelegate::nameFont(const QStyleOptionViewItem& option) {
  return fileNameFont(scaled(option.font, 1, QFont::Medium));
}

void ScreenshotRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                  const QModelIndex& index) const {
  const Theme theme(option.palette);
  const RowLayout row(option);
  const bool isSelected = option.state.testFlag(QStyle::State_Selected);
  const qreal ratio = option.widget ? option.widget->devicePixelRatioF() : 1;
  const QColor text = isSelected ? theme.onAccent : theme.text;
  const QColor secondary = isSelected ? theme.onAccent : theme.secondaryText;
  painter->save();
  painter->setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
  // Each text runs as it reads, whatever the program's language: the parts of a name would change places.
  painter->setLayoutDirection(Qt::LayoutDirectionAuto);
  paintGround(*painter, row.ground, option, theme);
  paintPicture(*painter, row.picture, index.data(InboxListModel::thumbnailRole).value<QImage>(), theme, secondary,
               ratio);

  const auto alignment = QStyle::visualAlignment(option.direction, Qt::AlignLeft | Qt::AlignVCenter);
  if (!renamed_ || *renamed_ != index.data(InboxListModel::idRole).value<QUuid>()) {
    const QFont font = nameFont(option);
    painter->setFont(font);
    painter->setPen(text);
    // In the middle, so that the number at the end of a name is still seen.
    painter->drawText(row.name, static_cast<int>(alignment) | Qt::TextSingleLine,
                      QFontMetrics(font).elidedText(index.data(InboxListModel::nameRole).toString().simplified(),
                                                    Qt::ElideMiddle, row.name.width()));
  }
  QString symbol = index.data(InboxListModel::symbolRole).toString();
  // The mark in a filled symbol is white, and so would be the symbol.
  if (isSelected) symbol.remove(QStringLiteral(".fill"));
  const bool warns = index.data(InboxListModel::unavailableRole).toBool() && !isSelected;
  painter->drawPixmap(row.symbol.topLeft(), symbolPixmap(symbol, kSymbol, warns ? theme.warning : secondary, ratio));
  const QFont font = statusFont(option);
  painter->setFont(font);
  painter->setPen(secondary);
  painter->drawText(row.status, static_cast<int>(alignment),
                    QFontMetrics(font).elidedText(index.data(InboxListModel::statusRole).toString(), Qt::ElideRight,
                                                  row.status.width()));
  painter->restore();
}

}  // namespace quillmere
