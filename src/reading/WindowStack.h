#pragma once

#include <QtCore/QRect>
#include <cstdint>
#include <string>
#include <vector>

#include "foundation/Date.h"

namespace quillmere {

/// What the window system showed from a moment on: which windows stood where, and which of two was above. Pixels of the
/// whole screen, origin top-left. No titles.
struct WindowStack {
  struct Window {
    enum class Type : uint8_t {
      window,  ///< one that a person takes a picture of: a program's window, a dialog
      panel,   ///< a dock or a bar, which lies above others
      ground,  ///< the desktop's own, below all
      cover,   ///< above others for a moment: a menu, a tool tip
    };
    uint32_t id = 0;
    Type type = Type::window;
    bool decoratesItself = false;  ///< its title bar and its shadow are its program's own drawing
    QRect frame;                   ///< as it is seen: with title bar and border, without shadow
    QRect client;                  ///< what its program draws, with the room for its shadow where it draws that too
    QRect outer;                   ///< all that belongs to it, with borders that are not seen
    bool operator==(const Window&) const = default;
  };

  Date since;
  QSize root;                   ///< of all screens together
  std::vector<QRect> monitors;  ///< at least one
  double scale = 1;             ///< pixels per point
  std::string manager;          ///< the window manager's name, where it tells one
  uint32_t active = 0;          ///< the window with the keyboard; 0 where there is none
  uint32_t desktop = 0;
  bool isPartial = false;       ///< windows may be shown that it cannot know of: those of a Wayland compositor's own
  std::vector<Window> windows;  ///< lowest first

  bool showsTheSameAs(const WindowStack& other) const {
    return root == other.root && monitors == other.monitors && scale == other.scale && manager == other.manager &&
           active == other.active && desktop == other.desktop && isPartial == other.isPartial &&
           windows == other.windows;
  }
};

}  // namespace quillmere
