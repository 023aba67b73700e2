#pragma once

#include "foundation/Signal.h"

namespace quillmere {

/// The place where the desktop shows the icons of programs that run without a window. It may appear late, as at login,
/// vanish with its panel, and never be there.
class DesktopTray {
 public:
  virtual ~DesktopTray() = default;
  virtual bool isThere() const = 0;

  Signal<> changed;
};

}  // namespace quillmere
