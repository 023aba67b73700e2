#pragma once

#include <QtGui/QIcon>
#include <QtWidgets/QStyle>

namespace quillmere {

/// The program's own symbol for what Qt's file dialog shows, in the colours of the palette; none for anything else.
QIcon styleIcon(QStyle::StandardPixmap which, Qt::LayoutDirection direction, const QPalette& palette);

}  // namespace quillmere
