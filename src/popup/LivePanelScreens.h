#pragma once

#include <QtCore/QRect>

#include "popup/PanelPlacement.h"

namespace quillmere {

/// The desktop's screens, turned from Qt's top-left coordinates into the bottom-left ones of the placement rules. The
/// turning, both ways, happens here alone.
class LivePanelScreens final : public PanelScreenProviding {
 public:
  std::vector<PanelScreen> screens() const override;
  std::optional<PanelScreen> mainScreen() const override;
  QPointF mouseLocation() const override;

  static QRect toQt(const QRectF& bottomLeft);
};

}  // namespace quillmere
