#include "controls/MissingPicture.h"

#include <QtGui/QPainter>
#include <QtWidgets/QWidget>
#include <algorithm>

#include "controls/Symbol.h"
#include "controls/Theme.h"
#include "foundation/Localized.h"

namespace quillmere {

void paintMissingPicture(QPainter& painter, const QRect& place, MissingPicture missing, const QWidget& widget) {
  constexpr int kSmallestSymbol = 8;
  constexpr int kLargestSymbol = 48;
  constexpr int kGap = 8;
  const bool isElsewhere = missing == MissingPicture::notDownloaded;
  const int side = std::min({kLargestSymbol, place.width() / 2, place.height() / 2});
  if (side < kSmallestSymbol) return;
  const Theme theme(widget.palette());
  const QString title = isElsewhere ? localized("Screenshot Unavailable") : QString();
  const QFont titleFont = scaled(widget.font(), 1, QFont::DemiBold);
  const QSize text(QFontMetrics(titleFont).horizontalAdvance(title), QFontMetrics(titleFont).height());
  const bool hasRoom = text.width() + 2 * kGap <= place.width() && side + text.height() + 3 * kGap <= place.height();
  const bool hasTitle = !title.isEmpty() && hasRoom;
  const int top = place.top() + (place.height() - side - (hasTitle ? kGap + text.height() : 0)) / 2;
  painter.drawPixmap(place.left() + (place.width() - side) / 2, top,
                     symbolPixmap(isElsewhere ? QStringLiteral("photo.badge.exclamationmark") : QStringLiteral("photo"),
                                  side, theme.secondaryText, widget.devicePixelRatioF()));
  if (!hasTitle) return;
  painter.setFont(titleFont);
  painter.setPen(theme.secondaryText);
  painter.drawText(QRect(place.left(), top + side + kGap, place.width(), text.height()),
                   Qt::AlignHCenter | Qt::AlignTop, title);
}

QString adviceFor(MissingPicture missing) {
  return missing == MissingPicture::notDownloaded
             ? localized(
                   "The image isn’t on this Mac. Choose Download, or open the screenshot in Finder, to bring it "
                   "back.")
             : QString();
}

}  // namespace quillmere
