#pragma once

#include <QtGui/QPainterPath>

#include "controls/Metrics.h"

/// The popup's card: a rectangle whose corners, of radius 22, run into its sides without a seam. Their curve is a
/// superellipse through the middle of the circle's arc.
namespace quillmere::CardShape {

inline constexpr qreal kCornerRadius = Radius::kCard;
/// How far along a side a corner reaches, in points.
inline constexpr qreal kCornerReach = 33;

/// How far in from the side the card begins, at a distance from its upper or lower edge; in points.
qreal cornerInset(qreal distance);

/// A card lower or narrower than two corners has smaller ones.
QPainterPath path(const QRectF& card);

}  // namespace quillmere::CardShape
