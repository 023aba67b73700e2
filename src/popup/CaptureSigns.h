#pragma once

#include "foundation/Signal.h"

namespace quillmere {

/// What tells that a screenshot is about to be taken, before there is any file.
class CaptureSigns {
 public:
  enum class Sign {
    key,     ///< the key for it was pressed, once for each screenshot
    request  ///< a tool for it came up or was asked; several of these may tell of the same screenshot
  };

  virtual ~CaptureSigns() = default;
  Signal<Sign> seen;
  /// Whether a tool covers the screen, so that a part of it can be chosen.
  virtual bool isChoosing() const { return false; }
  Signal<> choosingEnded;
};

}  // namespace quillmere
