#pragma once

#include <QtGui/QColor>
#include <QtWidgets/QWidget>

class QPainter;

namespace quillmere {

struct Theme;

/// The rounded ground of a control; with an outline where higher contrast is wanted, and a faint ground says too
/// little.
void paintGround(QPainter& painter, const QRectF& place, qreal radius, const QColor& color, const Theme& theme);

/// The ground of an input, with an edge that is seen on any window and is its focus ring too.
void paintField(QPainter& painter, const QRectF& place, const Theme& theme, bool isFocused);

/// For a text field whose ground `paintField` paints: it paints none of its own, and has the theme's text. Said again
/// when its palette changes.
void letFieldShow(QWidget& field);

/// The rounded ground of a message that warns; for a widget's paint event.
void paintWarningGround(QWidget& widget);

/// Gives the texts of one widget a colour.
void setTextColor(QWidget& widget, const QColor& color);

}  // namespace quillmere
