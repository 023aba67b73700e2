#pragma once

#include <QtCore/QRectF>
#include <QtGui/QColor>

class QPainter;

namespace quillmere {

struct Theme;

enum class ButtonRole { primary, secondary, destructive, icon };
/// What the pointer does with a control.
enum class Touch { none, hovered, pressed };

/// The colours of a button: of the program's own and of Qt's alike.
struct ButtonLook {
  QColor ground;
  QColor ink;
  QColor ring;  ///< where it has the focus
};
ButtonLook buttonLook(const Theme& theme, ButtonRole role, Touch touch, bool isEnabled);

/// A ring around a focused control, inside its rectangle.
void paintFocusRing(QPainter& painter, const QRectF& around, qreal radius, const QColor& color);

}  // namespace quillmere
