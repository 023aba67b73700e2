#pragma once

#include <QtGui/QColor>

namespace quillmere {

// The contrast of two opaque colours by the Web Content Accessibility Guidelines 2.2, "relative luminance" and
// "contrast ratio": https://www.w3.org/TR/WCAG22/#dfn-contrast-ratio

/// What text needs on its ground (success criterion 1.4.3).
constexpr double kTextContrast = 4.5;
/// What a control's mark needs to be seen, as a focus ring does (1.4.11).
constexpr double kMarkContrast = 3.0;

/// From 0 for black to 1 for white.
double relativeLuminance(const QColor& color);
/// From 1 for equal colours to 21 for black on white, in either order.
double contrastRatio(const QColor& one, const QColor& other);

/// From `from` at 0 to `to` at 1, without their opacity.
QColor mixed(const QColor& from, const QColor& to, double amount);
/// What is seen of a translucent colour on an opaque ground.
QColor painted(const QColor& color, const QColor& ground);
/// The nearest colour on the way to `end` that stands out from the ground by the ratio; `end`, if none does.
QColor standingOut(const QColor& color, const QColor& ground, double ratio, const QColor& end);

}  // namespace quillmere
