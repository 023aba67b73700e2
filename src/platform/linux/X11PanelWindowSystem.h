#pragma once

#include <memory>

#include "popup/PanelWindowSystem.h"

namespace quillmere {

/// The popup on X11, by the properties and messages that hold on the usual window managers. On any other platform of
/// Qt it does nothing.
class X11PanelWindowSystem final : public PanelWindowSystem {
 public:
  X11PanelWindowSystem();
  ~X11PanelWindowSystem() override;

  void prepare(QWindow& window) override;
  void finish(QWindow& window) override;
  void setClickableArea(QWindow& window, const QRect& area) override;
  bool isCompositing() const override;
  quintptr activeWindow() const override;
  void activate(quintptr window) override;

 private:
  class Display;
  std::unique_ptr<Display> display_;  // none where there is no X server
};

}  // namespace quillmere
