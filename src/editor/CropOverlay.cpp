#include "editor/CropOverlay.h"

#include <QtGui/QFontMetrics>
#include <algorithm>
#include <array>

#include "controls/Metrics.h"
#include "controls/PictureCanvas.h"
#include "controls/PictureDrawing.h"
#include "controls/StylePainting.h"

namespace quillmere {
namespace {

// The picture may be of any colour, so what stands on it can't be the theme's: white beside black is seen on all.
constexpr QColor kLight(255, 255, 255);
constexpr QColor kShade(0, 0, 0, 150);
/// With white on it a text has a contrast of more than 10 on whatever is below.
constexpr QColor kBadgeGround(0, 0, 0, 200);
/// Fainter where there are more lines, between small pixels.
QColor gridColor(qreal scale) {
  constexpr int kMost = 90;
  return {128, 128, 128, qRound(kMost * std::clamp(scale / (2 * PictureCanvas::kSquareScale), 0.5, 1.0))};
}

// In points.
constexpr qreal kBadgeFontScale = 0.92;
constexpr qreal kBadgePadding = 8;
constexpr qreal kBadgeMargin = 3;

QColor dimming(const Theme& theme) {
  // A light window beside the picture makes the dimmed part look darker.
  return {0, 0, 0, theme.isDark ? 140 : 115};
}

/// A frame that lies round `rect`; on a side where the canvas ends there, inside. What is far away is not painted.
void paintFrame(QPainter& painter, const QRect& rect, const QRect& visible, int width, const QColor& color) {
  const auto outside = [width](int edge, int length) { return std::min(edge, length - width); };
  const auto before = [width](int edge) { return std::max(edge - width, 0); };
  const int leftEdge = rect.x();
  const int topEdge = rect.y();
  const int rightEdge = rect.x() + rect.width();
  const int bottomEdge = rect.y() + rect.height();
  const bool hasLeft = leftEdge >= 0 && leftEdge <= visible.width();
  const bool hasTop = topEdge >= 0 && topEdge <= visible.height();
  const bool hasRight = rightEdge >= 0 && rightEdge <= visible.width();
  const bool hasBottom = bottomEdge >= 0 && bottomEdge <= visible.height();
  const int left = hasLeft ? before(leftEdge) : std::max(leftEdge, 0);
  const int top = hasTop ? before(topEdge) : std::max(topEdge, 0);
  const int right = hasRight ? outside(rightEdge, visible.width()) : std::min(rightEdge, visible.width());
  const int bottom = hasBottom ? outside(bottomEdge, visible.height()) : std::min(bottomEdge, visible.height());
  const int end = hasRight ? right + width : right;
  if (hasTop && left < end) painter.fillRect(left, top, end - left, width, color);
  if (hasBottom && left < end) painter.fillRect(left, bottom, end - left, width, color);
  const int first = hasTop ? top + width : top;
  if (first >= bottom) return;
  if (hasLeft) painter.fillRect(left, first, width, bottom - first, color);
  if (hasRight) painter.fillRect(right, first, width, bottom - first, color);
}

void paintHandle(QPainter& painter, QPoint middle, int radius, qreal displayScale) {
  const SmoothPainting smooth(painter);
  painter.setPen(Qt::NoPen);
  const qreal edge = std::max(1.0, displayScale);
  painter.setBrush(kShade);
  painter.drawEllipse(QPointF(middle), radius + edge, radius + edge);
  painter.setBrush(kLight);
  painter.drawEllipse(QPointF(middle), radius, radius);
}

void paintBadge(QPainter& painter, const CropBadge& badge, const QColor& ground, const QColor& ink, const QFont& font,
                qreal displayScale) {
  const SmoothPainting smooth(painter);
  painter.setPen(Qt::NoPen);
  painter.setBrush(ground);
  const qreal radius = std::min(Radius::kItem * displayScale, badge.rect.height() / 2.0);
  painter.drawRoundedRect(badge.rect, radius, radius);
  painter.setFont(CropOverlay::badgeFont(font, displayScale));
  painter.setPen(ink);
  painter.drawText(badge.rect, Qt::AlignCenter | Qt::TextSingleLine, badge.text);
}

}  // namespace

QFont CropOverlay::badgeFont(const QFont& font, qreal displayScale) {
  QFont result = scaled(font, kBadgeFontScale, QFont::DemiBold);
  result.setPixelSize(std::max(1, qRound(QFontInfo(result).pixelSize() * displayScale)));
  return result;
}

QSize CropOverlay::badgeSize(const QString& text, const QFont& font, qreal displayScale) {
  const QFontMetrics metrics(badgeFont(font, displayScale));
  return {metrics.horizontalAdvance(text) + 2 * qRound(kBadgePadding * displayScale),
          metrics.height() + 2 * qRound(kBadgeMargin * displayScale)};
}

void CropOverlay::paint(QPainter& painter, const CropScene& scene, const Theme& theme, const QFont& font) {
  if (scene.crop) {
    for (const QRect& beside : QRegion(scene.picture) - (*scene.crop & scene.picture)) {
      painter.fillRect(beside, dimming(theme));
    }
    const int line = scene.line();
    const int hair = std::max(1, line / 2);
    paintFrame(painter, scene.crop->adjusted(-line, -line, line, line), scene.visible, hair, kShade);
    paintFrame(painter, *scene.crop, scene.visible, line, kLight);
  }
  if (scene.window) {
    const int line = scene.line();
    paintFrame(painter, scene.window->adjusted(-line, -line, line, line), scene.visible, line, kLight);
    paintFrame(painter, *scene.window, scene.visible, line, theme.accent);
    paintFrame(painter, scene.window->adjusted(line, line, -line, -line), scene.visible, line, theme.accent);
  }
  for (const QPoint& handle : scene.handles) paintHandle(painter, handle, scene.handleRadius(), scene.displayScale);
  if (scene.windowName) {
    paintBadge(painter, *scene.windowName, theme.accent, theme.onAccent, font, scene.displayScale);
  }
  if (scene.size) paintBadge(painter, *scene.size, kBadgeGround, kLight, font, scene.displayScale);
}

void CropOverlay::paintLoupe(QPainter& painter, const CropLoupe& loupe, const CropScene& scene, const QImage& picture,
                             const QRect& crop, const Theme& theme, const QFont& font) {
  constexpr int kCell = CropLoupe::kMagnification;
  const QRect& lens = loupe.rect;
  const QPoint middle = lens.topLeft() + QPoint(lens.width() / 2, lens.height() / 2);
  const QRect place(middle - loupe.point * kCell, picture.size() * kCell);
  painter.fillRect(lens, theme.card);
  painter.drawImage((place & lens).topLeft(), asSquares(picture, place, lens));
  const QRect inside(middle + (crop.topLeft() - loupe.point) * kCell, crop.size() * kCell);
  for (const QRect& beside : QRegion(place & lens) - (inside & lens)) painter.fillRect(beside, dimming(theme));
  painter.fillRect(lens.left(), middle.y() - 1, lens.width(), 1, kLight);
  painter.fillRect(lens.left(), middle.y(), lens.width(), 1, kShade);
  painter.fillRect(middle.x() - 1, lens.top(), 1, lens.height(), kLight);
  painter.fillRect(middle.x(), lens.top(), 1, lens.height(), kShade);
  const int line = scene.line();
  paintFrame(painter, lens, scene.visible, line, kLight);
  paintFrame(painter, lens.adjusted(-line, -line, line, line), scene.visible, line, kShade);
  paintBadge(painter, loupe.place, kBadgeGround, kLight, font, scene.displayScale);
}

void CropOverlay::paintGrid(QPainter& painter, const QRect& place, const QRect& visible, QSize pixels) {
  const QRect seen = place & visible;
  if (seen.isEmpty() || pixels.isEmpty()) return;
  const QColor color = gridColor(qreal(place.width()) / pixels.width());
  // Where a pixel begins, as the squares are.
  const auto lines = [](int from, int to, int start, int length, int count, auto paint) {
    const auto at = [&](int64_t index) {
      return static_cast<int>(start + (2 * index * length + count - 1) / (2 * int64_t{count}));
    };
    for (int64_t index = int64_t{from - start} * count / length; index <= count; ++index) {
      const int line = at(index);
      if (line > to) break;
      if (index > 0 && index < count && line >= from) paint(line);
    }
  };
  lines(seen.left(), seen.right(), place.left(), place.width(), pixels.width(),
        [&](int x) { painter.fillRect(x, seen.top(), 1, seen.height(), color); });
  lines(seen.top(), seen.bottom(), place.top(), place.height(), pixels.height(),
        [&](int y) { painter.fillRect(seen.left(), y, seen.width(), 1, color); });
}

void CropOverlay::paintFocusRing(QPainter& painter, const CropScene& scene, const Theme& theme) {
  const int width = qRound(2 * scene.displayScale);
  const QRect within = scene.visible.adjusted(width, width, -width, -width);
  paintFrame(painter, within, scene.visible, width, theme.focusRing);
  // The picture may have the ring's colour.
  paintFrame(painter, within.adjusted(1, 1, -1, -1), scene.visible, 1, theme.card);
}

}  // namespace quillmere
