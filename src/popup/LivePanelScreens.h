#pragma once

#include <QtCore/QRect>

#include "popup/PanelPlacement.h"
#include "popup/PanelWindowSystem.h"

namespace quillmere {

/// The desktop's screens, turned from Qt's top-left coordinates into the bottom-left ones of the placement rules, which
/// begin at the lower left corner of the first screen. The turning, both ways, happens here alone.
class LivePanelScreens final : public PanelScreenProviding {
 public:
  /// Without a window system Qt's own answer tells what the desktop's docks leave free.
  explicit LivePanelScreens(const PanelWindowSystem* windowSystem = nullptr) : windowSystem_(windowSystem) {}

  std::vector<PanelScreen> screens() const override;
  std::optional<PanelScreen> mainScreen() const override;
  QPointF mouseLocation() const override;

  static QRect toQt(const QRectF& bottomLeft);

 private:
  PanelScreen panelScreen(const QScreen& screen) const;

  const PanelWindowSystem* windowSystem_;
};

}  // namespace quillmere
