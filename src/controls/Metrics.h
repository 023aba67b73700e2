#pragma once

#include <QtCore/QtGlobal>

namespace quillmere {

/// The corners of everything that is drawn, in points, from within outwards: what lies in a corner of something larger
/// has a smaller one.
namespace Radius {
inline constexpr qreal kMark = 5;      ///< a check box, a small picture
inline constexpr qreal kItem = 7;      ///< a row of a menu
inline constexpr qreal kControl = 10;  ///< a button, a field, a row, a picture
inline constexpr qreal kSurface = 12;  ///< a menu, a tool tip, a group
inline constexpr qreal kCard = 22;     ///< the popup
}  // namespace Radius

namespace Metrics {
inline constexpr int kControlHeight = 36;  ///< of buttons, fields and choices
inline constexpr int kPadding = 14;        ///< beside a button's text
inline constexpr int kFieldPadding = 10;   ///< beside a field's text
inline constexpr int kSmallSymbol = 16;
}  // namespace Metrics

}  // namespace quillmere
