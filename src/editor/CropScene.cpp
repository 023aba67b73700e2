#include "editor/CropScene.h"

#include <algorithm>

#include "editor/CropHandles.h"

namespace quillmere {
namespace {

// In points.
constexpr qreal kHandleRadius = 4.25;
/// Handles are so far apart at least.
constexpr qreal kRoomOfAll = 44;
constexpr qreal kRoomOfCorners = 20;
constexpr qreal kBesideCrop = 8;
constexpr qreal kBesidePointer = 24;
constexpr qreal kLoupeSide = 120;
constexpr qreal kBelowLoupe = 6;

/// The rectangle as near as possible to where it is without leaving the other.
QRect within(QRect rect, const QRect& bounds) {
  rect.moveLeft(std::max(bounds.left(), std::min(rect.left(), bounds.right() + 1 - rect.width())));
  rect.moveTop(std::max(bounds.top(), std::min(rect.top(), bounds.bottom() + 1 - rect.height())));
  return rect;
}

QRegion frame(const QRect& rect, int reach) {
  const QRect outer = rect.adjusted(-reach, -reach, reach, reach);
  const QRect inner = rect.adjusted(reach, reach, -reach, -reach);
  return QRegion(outer) - (inner.isValid() ? QRegion(inner) : QRegion());
}

QRegion areaOf(const std::optional<CropBadge>& badge) {
  return badge ? QRegion(badge->rect) : QRegion();
}

}  // namespace

int CropScene::line() const {
  return std::max(1, qFloor(displayScale));
}

int CropScene::handleRadius() const {
  return qRound(kHandleRadius * displayScale);
}

QRegion CropScene::changesFrom(const CropScene& before) const {
  if (visible != before.visible || picture != before.picture || crop.has_value() != before.crop.has_value() ||
      !qFuzzyCompare(displayScale, before.displayScale)) {
    return visible;
  }
  QRegion changes;
  if (crop != before.crop) {
    // The parts of a crop that are far away would make numbers too large for a region.
    const QRect near = visible.adjusted(-100, -100, 100, 100);
    const QRect now = *crop & near;
    const QRect then = *before.crop & near;
    const int reach = 2 * line() + 2;
    changes = (QRegion(now) ^ QRegion(then)) + frame(now, reach) + frame(then, reach);
  }
  if (handles != before.handles) {
    const int reach = handleRadius() + line() + 2;
    for (const CropScene* scene : {this, &before}) {
      for (const QPoint& handle : scene->handles) {
        changes += QRect(handle - QPoint(reach, reach), QSize(2 * reach, 2 * reach));
      }
    }
  }
  if (size != before.size) changes += areaOf(size) + areaOf(before.size);
  if (window != before.window || windowName != before.windowName) {
    for (const CropScene* scene : {this, &before}) {
      if (scene->window) changes += frame(*scene->window, 2 * line() + 2);
      changes += areaOf(scene->windowName);
    }
  }
  if (loupe != before.loupe) {
    for (const auto* one : {&loupe, &before.loupe}) {
      if (*one) changes += QRegion((*one)->rect.adjusted(-4, -4, 4, 4)) + QRegion((*one)->place.rect);
    }
  }
  return changes & visible;
}

QRect CropScenes::onScreen(const QRect& pixels, const PictureZoom& zoom, qreal displayScale) {
  const QPointF first = zoom.viewAt(pixels.topLeft()) * displayScale;
  const QPointF last = zoom.viewAt(pixels.topLeft() + QPoint(pixels.width(), pixels.height())) * displayScale;
  const QPoint corner(qRound(first.x()), qRound(first.y()));
  return {corner, QSize(qRound(last.x()) - corner.x(), qRound(last.y()) - corner.y())};
}

std::vector<QPoint> CropScenes::handles(const QRect& crop, const QRect& visible, int radius, qreal displayScale) {
  const auto hasRoom = [&](qreal points) {
    return crop.width() >= points * displayScale && crop.height() >= points * displayScale;
  };
  std::vector<QPoint> result;
  if (!hasRoom(kRoomOfCorners)) return result;
  const auto inView = [radius](int position, int length) {
    const bool isBesideEdge = position >= -radius && position <= length + radius;
    return isBesideEdge ? std::clamp(position, std::min(radius, length), std::max(radius, length - radius)) : position;
  };
  for (const CropHandle handle : CropHandles::kAll) {
    if (!CropHandles::isCorner(handle) && !hasRoom(kRoomOfAll)) continue;
    const QPointF place = CropHandles::place(crop, handle);
    result.emplace_back(inView(qFloor(place.x()), visible.width()), inView(qFloor(place.y()), visible.height()));
  }
  return result;
}

QRect CropScenes::badge(const QRect& crop, QSize size, const QRect& visible, qreal displayScale) {
  const int gap = qRound(kBesideCrop * displayScale);
  const QRect seen = crop & visible;
  const QRect near = seen.isEmpty() ? within(crop, visible) : seen;
  const QRect above(QPoint(near.left(), near.top() - gap - size.height()), size);
  if (above.top() >= visible.top()) return within(above, visible);
  const QRect below(QPoint(near.left(), near.bottom() + 1 + gap), size);
  if (below.bottom() <= visible.bottom()) return within(below, visible);
  return within({QPoint(near.left() + gap, near.top() + gap), size}, visible);
}

QRect CropScenes::label(const QRect& window, QSize size, const QRect& visible, qreal displayScale) {
  const int gap = qRound(kBesideCrop * displayScale);
  return within({(window & visible).topLeft() + QPoint(gap, gap), size}, visible);
}

CropLoupe CropScenes::loupe(QPoint point, QPoint pointer, const CropBadge& place,
                            const std::optional<CropBadge>& beside, const QRect& visible, qreal displayScale) {
  constexpr int kPair = 2 * CropLoupe::kMagnification;
  const QSize text = place.rect.size();
  const int side = kPair * qRound(kLoupeSide * displayScale / kPair);
  const int gap = qRound(kBesidePointer * displayScale);
  const QSize whole(std::max(side, text.width()), side + qRound(kBelowLoupe * displayScale) + text.height());
  // Right below first, then on the other sides of the pointer, then farther away.
  std::vector<QPoint> corners;
  for (int farther = 0; farther <= 2 * side; farther += side / 2) {
    const int after = gap + farther;
    const QPoint before(-after - whole.width(), -after - whole.height());
    for (const QPoint& corner : {QPoint(after, after), QPoint(before.x(), after), QPoint(after, before.y()), before}) {
      corners.push_back(pointer + corner);
    }
  }
  const auto fits = [&](QPoint corner) { return visible.contains(QRect(corner, whole)); };
  const auto isFree = [&](QPoint corner) {
    return fits(corner) && !(beside && beside->rect.intersects(QRect(corner, whole)));
  };
  auto best = std::find_if(corners.begin(), corners.end(), isFree);
  if (best == corners.end()) best = std::find_if(corners.begin(), corners.end(), fits);
  if (best == corners.end()) best = corners.begin();
  const QRect chosen = within(QRect(*best, whole), visible);
  const QRect pixels(chosen.x() + (whole.width() - side) / 2, chosen.y(), side, side);
  const QPoint corner(chosen.x() + (whole.width() - text.width()) / 2, chosen.bottom() + 1 - text.height());
  return {point, pixels, {QRect(corner, text), place.text}};
}

QRect CropScenes::below(const QRect& rect, const QRect& other, qreal displayScale) {
  if (!rect.intersects(other)) return rect;
  return {QPoint(rect.x(), other.bottom() + 1 + qRound(kBelowLoupe * displayScale)), rect.size()};
}

}  // namespace quillmere
