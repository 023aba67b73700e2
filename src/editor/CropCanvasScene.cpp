#include <QtGui/QPainter>

#include "controls/Theme.h"
#include "editor/CropCanvas.h"
#include "editor/CropOverlay.h"
#include "foundation/Localized.h"

namespace quillmere {

CropScene CropCanvas::scene() const {
  CropScene scene;
  scene.displayScale = devicePixelRatioF();
  scene.visible = QRect(0, 0, qCeil(width() * scene.displayScale), qCeil(height() * scene.displayScale));
  if (!isReady()) return scene;
  scene.picture = placeInPixels() & scene.visible;
  const auto badgeSize = [&](const QString& text) { return CropOverlay::badgeSize(text, font(), scene.displayScale); };
  if (!selection().isEmpty()) {
    const QSize size = selection().selection().size();
    scene.crop = CropScenes::onScreen(selection().selection(), zoom(), scene.displayScale);
    if (!isLocked_) {
      scene.handles = CropScenes::handles(*scene.crop, scene.visible, scene.handleRadius(), scene.displayScale);
    }
    const QString text = localized("%@ × %@", {QString::number(size.width()), QString::number(size.height())});
    // Of what is out of view nothing is told.
    const bool isSeen = scene.crop->adjusted(-1, -1, 1, 1).intersects(scene.visible);
    if (isSeen) scene.size = {CropScenes::badge(*scene.crop, badgeSize(text), scene.visible, scene.displayScale), text};
  }
  const bool hovers = pointer_ && !held_ && !hasHand() && !isSpaceHeld_ && !isLocked_;
  const WindowCandidate* window = hovers ? windowAt(*pointer_) : nullptr;
  if (window && window->id != selection().selectedCandidate()) {
    scene.window = CropScenes::onScreen(window->rect, zoom(), scene.displayScale);
    const QString text = localized("Possible Window %lld", {window->number});
    QRect place = CropScenes::label(*scene.window, badgeSize(text), scene.visible, scene.displayScale);
    if (scene.size) place = CropScenes::below(place, scene.size->rect, scene.displayScale);
    scene.windowName = {place, text};
  }
  scene.loupe = loupe(scene);
  return scene;
}

std::optional<CropLoupe> CropCanvas::loupe(const CropScene& scene) const {
  const bool isWanted = held_ && held_->drag.movesEdge() && pointer_ && !fullPicture().isNull() &&
                        zoom().scale() < CropLoupe::kMagnification;
  if (!isWanted) return std::nullopt;
  const QPoint point = held_->drag.point(selection(), zoom().pictureAt(*pointer_));
  const QString text = localized("%@, %@", {QString::number(point.x()), QString::number(point.y())});
  const CropBadge place{{QPoint(), CropOverlay::badgeSize(text, font(), scene.displayScale)}, text};
  return CropScenes::loupe(point, (*pointer_ * scene.displayScale).toPoint(), place, scene.size, scene.visible,
                           scene.displayScale);
}

void CropCanvas::showScene() {
  CropScene next = scene();
  if (next == shown_) return;
  // A pixel of the screen may have parts in several points.
  for (const QRect& pixels : next.changesFrom(shown_)) {
    const qreal displayScale = next.displayScale;
    update(QRectF(pixels.x() / displayScale, pixels.y() / displayScale, pixels.width() / displayScale,
                  pixels.height() / displayScale)
               .toAlignedRect()
               .adjusted(-1, -1, 1, 1));
  }
  shown_ = std::move(next);
}

void CropCanvas::paintMarks(QPainter& painter, const QRect& place, const QRect& visible) {
  if (zoom().scale() >= kSquareScale) CropOverlay::paintGrid(painter, place, visible, zoom().picture());
}

void CropCanvas::paintOver(QPainter& painter, const QRect& place, const QRect& visible) {
  const Theme theme(palette());
  PictureCanvas::paintOver(painter, place, visible);
  const CropScene now = scene();
  CropOverlay::paint(painter, now, theme, font());
  if (now.loupe)
    CropOverlay::paintLoupe(painter, *now.loupe, now, fullPicture(), selection().selection(), theme, font());
  if (showsRing_ && hasFocus()) CropOverlay::paintFocusRing(painter, now, theme);
}

}  // namespace quillmere
