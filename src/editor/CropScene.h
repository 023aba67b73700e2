#pragma once

#include <QtCore/QRect>
#include <QtCore/QString>
#include <QtGui/QRegion>
#include <optional>
#include <vector>

#include "controls/PictureZoom.h"

namespace quillmere {

/// A text on a dark ground, and where that is.
struct CropBadge {
  QRect rect;
  QString text;
  bool operator==(const CropBadge&) const = default;
};

/// What lies round a point of the picture, magnified.
struct CropLoupe {
  QPoint point;  ///< in pixels of the picture; its corner where four of them meet
  QRect rect;    ///< of the magnified pixels, that corner in its middle
  CropBadge place;
  bool operator==(const CropLoupe&) const = default;

  /// How large a pixel of the picture is, in pixels of the screen.
  static constexpr int kMagnification = 8;
};

/// Where all is that the crop editor paints over the picture: in pixels of the screen, from the canvas's top left
/// corner.
struct CropScene {
  qreal displayScale = 1;
  QRect visible;                ///< the canvas
  QRect picture;                ///< the part of it that is seen
  std::optional<QRect> crop;    ///< which may be far larger than the canvas, or have less than a pixel of the screen
  std::vector<QPoint> handles;  ///< the corner of pixels in the middle of each
  std::optional<CropBadge> size;
  std::optional<QRect> window;  ///< that the pointer is over
  std::optional<CropBadge> windowName;
  std::optional<CropLoupe> loupe;
  bool operator==(const CropScene&) const = default;

  /// How wide the crop's edge is; it lies round the crop.
  int line() const;
  int handleRadius() const;
  /// What has to be painted anew after what was painted before.
  QRegion changesFrom(const CropScene& before) const;
};

namespace CropScenes {

/// A rectangle of the picture's pixels on the screen.
QRect onScreen(const QRect& pixels, const PictureZoom& zoom, qreal displayScale);
/// Those that have room: all, the corners, or none. Where the crop ends at the canvas's edge they are moved into it.
std::vector<QPoint> handles(const QRect& crop, const QRect& visible, int radius, qreal displayScale);
/// Beside the part of the crop that is seen: above its top left corner, else below it, else inside.
QRect badge(const QRect& crop, QSize size, const QRect& visible, qreal displayScale);
/// Inside the top left corner of the part of a window that is seen.
QRect label(const QRect& window, QSize size, const QRect& visible, qreal displayScale);
/// Beside the pointer where it fits and doesn't cover `beside`, if there is such a place. Of `place` the size counts.
CropLoupe loupe(QPoint point, QPoint pointer, const CropBadge& place, const std::optional<CropBadge>& beside,
                const QRect& visible, qreal displayScale);
/// The first rectangle; below the other one if that is in its way.
QRect below(const QRect& rect, const QRect& other, qreal displayScale);

}  // namespace CropScenes
}  // namespace quillmere
