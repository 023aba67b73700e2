#include "controls/FittedPicture.h"

#include <QtGui/QPainter>
#include <QtWidgets/QStyle>
#include <algorithm>

#include "pixels/Downscaler.h"

namespace quillmere {

QRectF FittedPicture::placeIn(const QRect& frame, Qt::Alignment alignment, qreal displayScale) const {
  const QRectF exact(QPointF(frame.topLeft()) * displayScale, QSizeF(frame.size()) * displayScale);
  const QPoint topLeft(qCeil(exact.left()), qCeil(exact.top()));
  const QRect pixels(topLeft, QSize(qFloor(exact.right()) - topLeft.x(), qFloor(exact.bottom()) - topLeft.y()));
  QSizeF size = QSizeF(image_.size()) / scale_ * displayScale;
  if (size.width() > pixels.width() || size.height() > pixels.height()) size.scale(pixels.size(), Qt::KeepAspectRatio);
  const QSize whole(std::max(1, qRound(size.width())), std::max(1, qRound(size.height())));
  const QRect place = QStyle::alignedRect(Qt::LeftToRight, alignment, whole, pixels);
  return {QPointF(place.topLeft()) / displayScale, QSizeF(place.size()) / displayScale};
}

void FittedPicture::paint(QPainter& painter, const QRectF& place, qreal cornerRadius, qreal displayScale) {
  const QImage& image = atSize((place.size() * displayScale).toSize());
  // A brush, since a clip would leave the corners jagged.
  QBrush brush(image);
  brush.setTransform(QTransform::fromTranslate(place.x(), place.y())
                         .scale(place.width() / image.width(), place.height() / image.height()));
  painter.setPen(Qt::NoPen);
  painter.setBrush(brush);
  painter.drawRoundedRect(place, cornerRadius, cornerRadius);
}

/// Scaled by the painter, text would blur. Where the screen has more pixels than the picture, the painter must.
const QImage& FittedPicture::atSize(QSize pixels) {
  const QSize size = pixels.boundedTo(image_.size());
  if (size == image_.size()) return image_;
  if (fitted_.size() != size) fitted_ = Downscaler::scaled(image_, size);
  return fitted_.isNull() ? image_ : fitted_;
}

}  // namespace quillmere
