#pragma once

#include <QtCore/QRect>
#include <QtCore/QString>

class QPainter;
class QWidget;

namespace quillmere {

/// Why a screenshot has no picture to show.
enum class MissingPicture {
  unreadable,    ///< damaged, or gone
  notDownloaded  ///< kept elsewhere by a sync client; it isn't read, for that would bring it here
};

/// The symbol that stands in a picture's place, with a title where that has room; nothing where a symbol has none. In
/// the colours and the font of the widget that is painted.
void paintMissingPicture(QPainter& painter, const QRect& place, MissingPicture missing, const QWidget& widget);

/// How to bring it back; empty where nothing does.
QString adviceFor(MissingPicture missing);

}  // namespace quillmere
