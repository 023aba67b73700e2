#pragma once

#include <QtCore/QRectF>
#include <algorithm>
#include <cmath>

namespace quillmere {

/// Rectangles of image pixels. Qt's own `contains` and `intersects` treat empty rectangles in ways of their own.

/// The smallest whole-numbered rectangle that holds `rect`.
inline QRectF integralRect(const QRectF& rect) {
  return {QPointF(std::floor(rect.left()), std::floor(rect.top())),
          QPointF(std::ceil(rect.right()), std::ceil(rect.bottom()))};
}

/// The common part; empty where there is none.
inline QRectF commonRect(const QRectF& a, const QRectF& b) {
  const double left = std::max(a.left(), b.left());
  const double top = std::max(a.top(), b.top());
  const double right = std::min(a.right(), b.right());
  const double bottom = std::min(a.bottom(), b.bottom());
  if (right < left || bottom < top) return {};
  return {QPointF(left, top), QPointF(right, bottom)};
}

inline bool rectContains(const QRectF& outer, const QRectF& inner) {
  return inner.left() >= outer.left() && inner.top() >= outer.top() && inner.right() <= outer.right() &&
         inner.bottom() <= outer.bottom();
}

inline double rectArea(const QRectF& rect) {
  return rect.width() * rect.height();
}

}  // namespace quillmere
