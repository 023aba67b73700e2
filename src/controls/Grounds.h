#pragma once

#include <QtGui/QColor>
#include <QtWidgets/QWidget>

namespace quillmere {

/// The rounded ground of a message that warns; for a widget's paint event.
void paintWarningGround(QWidget& widget);

/// Gives the texts of one widget a colour.
void setTextColor(QWidget& widget, const QColor& color);

}  // namespace quillmere
