#pragma once

#include <xcb/xcb.h>
#include <optional>
#include <vector>

#include "model/HotKeyShortcut.h"

namespace quillmere {

/// Which of the server's eight modifiers are which: only Shift, Lock and Control have places of their own.
class X11Modifiers {
 public:
  static X11Modifiers ofServer(xcb_connection_t* connection);

  /// The server's mask for the shortcut's modifiers; none where the keyboard lacks one of them.
  std::optional<uint16_t> mask(quint64 modifiers) const;
  /// Every combination of those that lock and so may be on, none of them among these.
  std::vector<uint16_t> locks() const;
  /// Of an event's state only what a shortcut can ask for.
  uint16_t withoutLocks(uint16_t state) const;

 private:
  std::optional<uint16_t> alt_;
  std::optional<uint16_t> super_;
  uint16_t numLock_ = 0;
  uint16_t scrollLock_ = 0;
};

}  // namespace quillmere
