#pragma once

#include <QtCore/QMargins>
#include <QtCore/QRect>

namespace quillmere {

/// What the Quick Look window has to keep to; in points, but for the scale.
struct QuickLookRoom {
  QRect available;         ///< of the screen, without docks
  qreal displayScale = 1;  ///< its pixels to a point
  int footer = 0;          ///< the height below the picture
  QMargins frame;          ///< what the window manager draws around the window, as far as it is known
};

/// The size in which a picture is seen at its real size, or as large as 85 % of the screen let it; never too small to
/// be handled.
QSize quickLookSize(QSize picturePixels, const QuickLookRoom& room);

/// About a centre, pushed to where all of the window is on the screen, and made smaller where the screen is.
QRect quickLookPlace(QSize size, QPoint centre, const QuickLookRoom& room);

}  // namespace quillmere
