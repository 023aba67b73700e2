#pragma once

#include <QtCore/QRect>
#include <optional>

namespace quillmere {

/// What stands where in the preview's well, in the well's points, from its upper left corner, for a language that runs
/// from the left.
struct PreviewLayout {
  QRect picture;  ///< the picture is fitted into it
  QRect actions;
  bool operator==(const PreviewLayout&) const = default;

  /// The actions keep their place for as long as the screenshot is the same, so that the one that was just pressed
  /// stays under the pointer: in the upper trailing corner of the screenshot, or of the well where that is not filled.
  /// They lie over a screenshot only where it would have to shrink to make room, and never over a window out of it.
  ///
  /// Sizes in points; unknown ones fill the well.
  static PreviewLayout of(QSize well, QSize actions, const std::optional<QSizeF>& screenshot,
                          const std::optional<QSizeF>& window);
};

}  // namespace quillmere
