#include "popup/CardShape.h"

#include <QtGui/QTransform>
#include <algorithm>
#include <cmath>

namespace quillmere::CardShape {
namespace {

/// The middle of a corner's curve: so far in from either side.
const qreal kMiddle = kCornerRadius * (1 - std::sqrt(0.5));
const qreal kExponent = std::log(0.5) / std::log(1 - kMiddle / kCornerReach);

/// The upper left corner's curve, from the left side to the upper edge.
QPolygonF corner() {
  constexpr int kSteps = 24;
  QPolygonF points;
  for (int step = 0; step <= kSteps; ++step) {
    const qreal y = kCornerReach + (kMiddle - kCornerReach) * step / kSteps;
    points << QPointF(cornerInset(y), y);
  }
  // The other half mirrors the first.
  for (int step = kSteps - 1; step >= 0; --step) points << points[step].transposed();
  return points;
}

}  // namespace

qreal cornerInset(qreal distance) {
  const qreal rest = 1 - std::clamp(distance / kCornerReach, 0.0, 1.0);
  return kCornerReach * (1 - std::pow(1 - std::pow(rest, kExponent), 1 / kExponent));
}

QPainterPath path(const QRectF& card) {
  static const QPolygonF kCorner = corner();
  const qreal scale = std::min(1.0, std::min(card.width(), card.height()) / (2 * kCornerReach));
  const auto placed = [&](const QPointF& place, qreal towardsX, qreal towardsY) {
    return QTransform(towardsX * scale, 0, 0, towardsY * scale, place.x(), place.y()).map(kCorner);
  };
  const auto reversed = [](QPolygonF points) {
    std::reverse(points.begin(), points.end());
    return points;
  };
  QPainterPath path;
  path.addPolygon(placed(card.topLeft(), 1, 1) + reversed(placed(card.topRight(), -1, 1)) +
                  placed(card.bottomRight(), -1, -1) + reversed(placed(card.bottomLeft(), 1, -1)));
  path.closeSubpath();
  return path;
}

}  // namespace quillmere::CardShape
