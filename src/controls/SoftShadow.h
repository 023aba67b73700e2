#pragma once

#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtGui/QPixmap>
#include <functional>
#include <vector>

namespace quillmere {

/// The shadow around a rectangle of any size whose corners have a shape of their own: black, in layers, and outside the
/// shape only. It is drawn once for a scale, about the smallest rectangle with whole corners, and put together from the
/// parts of that picture.
class SoftShadow {
 public:
  struct Layer {
    qreal opacity;
    int offset;  ///< downwards, in points
    int blur;    ///< how soft it is: so far the edge is blurred either way
  };
  struct Shape {
    std::function<QPainterPath(const QRectF&)> path;
    int cornerReach;  ///< how far along a side a corner reaches, in points
  };
  /// `reach`: how far any layer reaches from the shape.
  SoftShadow(Shape shape, std::vector<Layer> layers, int reach);

  void paint(QPainter& painter, const QRect& around);
  /// How many times it was drawn anew.
  int count() const { return count_; }

 private:
  void draw(qreal scale);
  QImage drawn(const Layer& layer, const QRectF& shape, qreal scale) const;

  Shape shape_;
  std::vector<Layer> layers_;
  int reach_;
  int corner_;  ///< from the picture's edge to where the side is straight and the shadow the same all along
  int side_;
  QPixmap picture_;
  int count_ = 0;
};

}  // namespace quillmere
