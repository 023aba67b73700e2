#pragma once

#include "popup/PanelWindowSystem.h"

namespace quillmere {

/// A window system in which nothing else happens.
class StillWindowSystem : public PanelWindowSystem {
 public:
  void prepare(QWindow&) override {}
  void finish(QWindow&) override {}
  void setClickableArea(QWindow&, const QRect&) override {}
  bool isCompositing() const override { return true; }
  quintptr activeWindow() const override { return 0; }
  void activate(quintptr) override {}
};

}  // namespace quillmere
