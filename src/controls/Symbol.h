#pragma once

#include <QtCore/QString>
#include <QtGui/QColor>
#include <QtGui/QIcon>
#include <QtGui/QPixmap>

namespace quillmere {

/// One of the program's own symbols, drawn in one colour on a square of `points`.
QPixmap symbolPixmap(const QString& name, int points, const QColor& color, qreal devicePixelRatio);

/// The application's own icon, on a square of `points`.
QPixmap applicationPixmap(int points, qreal devicePixelRatio);
QIcon applicationIcon();

}  // namespace quillmere
