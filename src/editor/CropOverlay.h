#pragma once

#include <QtGui/QImage>
#include <QtGui/QPainter>

#include "controls/Theme.h"
#include "editor/CropScene.h"

namespace quillmere {

// What is painted over a picture that may have any colours: black, white and the accent, never one of them alone. By a
// painter whose unit is a pixel of the screen.
namespace CropOverlay {

QFont badgeFont(const QFont& font, qreal displayScale);
/// How large the ground of a text is.
QSize badgeSize(const QString& text, const QFont& font, qreal displayScale);

/// All but the loupe.
void paint(QPainter& painter, const CropScene& scene, const Theme& theme, const QFont& font);
/// `picture` with all its pixels, of which `crop` are selected.
void paintLoupe(QPainter& painter, const CropLoupe& loupe, const CropScene& scene, const QImage& picture,
                const QRect& crop, const Theme& theme, const QFont& font);
/// Lines between the pixels of a picture of `pixels`.
void paintGrid(QPainter& painter, const QRect& place, const QRect& visible, QSize pixels);
/// At the canvas's edge.
void paintFocusRing(QPainter& painter, const CropScene& scene, const Theme& theme);

}  // namespace CropOverlay
}  // namespace quillmere
