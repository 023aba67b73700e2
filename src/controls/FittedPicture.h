#pragma once

#include <QtCore/QRectF>
#include <QtGui/QImage>

class QPainter;

namespace quillmere {

/// A picture shown inside a frame, its shape kept and never enlarged, pixel by pixel where the screen's pixels are.
class FittedPicture {
 public:
  FittedPicture() = default;
  /// With `scale` pixels to a point.
  FittedPicture(const QImage& image, qreal scale) : image_(image), scale_(scale) {}

  bool isNull() const { return image_.isNull(); }
  const QImage& image() const { return image_; }
  /// Where it is on a screen of `displayScale` pixels to a point; in points, on whole pixels of the screen.
  QRectF placeIn(const QRect& frame, Qt::Alignment alignment, qreal displayScale) const;
  void paint(QPainter& painter, const QRectF& place, qreal cornerRadius, qreal displayScale);

 private:
  const QImage& atSize(QSize pixels);

  QImage image_;
  qreal scale_ = 1;
  QImage fitted_;  ///< as it was painted last
};

}  // namespace quillmere
