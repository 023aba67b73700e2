#include "inbox/QuickLookPlacement.h"

#include <QtCore/qmath.h>
#include <algorithm>

namespace quillmere {
namespace {

constexpr qreal kMostOfScreen = 0.85;
constexpr QSize kSmallest(420, 300);

}  // namespace

QSize quickLookSize(QSize picturePixels, const QuickLookRoom& room) {
  const QSizeF most = QSizeF(room.available.size()) * kMostOfScreen - QSizeF(0, room.footer);
  QSizeF picture = QSizeF(picturePixels) / room.displayScale;
  if (picture.width() > most.width() || picture.height() > most.height()) picture.scale(most, Qt::KeepAspectRatio);
  // Half a point less would cost the picture its real size.
  const QSize size(qCeil(picture.width()), qCeil(picture.height()) + room.footer);
  return size.expandedTo(kSmallest).boundedTo(room.available.size());
}

QRect quickLookPlace(QSize size, QPoint centre, const QuickLookRoom& room) {
  const QRect inside = room.available.marginsRemoved(room.frame);
  QRect place(QPoint(), size.boundedTo(inside.size()));
  place.moveCenter(centre);
  place.moveLeft(std::clamp(place.left(), inside.left(), inside.right() + 1 - place.width()));
  place.moveTop(std::clamp(place.top(), inside.top(), inside.bottom() + 1 - place.height()));
  return place;
}

}  // namespace quillmere
