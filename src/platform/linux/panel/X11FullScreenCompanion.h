#pragma once

#include <xcb/xcb.h>

namespace quillmere {

class X11Display;

/// Keeps the popup above a full-screen window also where the window manager lays those over every other window.
///
/// Most window managers have a kind of window that lies over full screen, and the popup is of that kind. Where the
/// stack nevertheless shows a full-screen window above it, it becomes that window's companion (its transient): by the
/// window managers' own rules a dialog is never covered by the window that it belongs to. This asks for no list of
/// window managers, keeps the popup managed (unlike one that bypasses the window manager, which could not be given the
/// keyboard), and moves the keyboard nowhere.
class X11FullScreenCompanion {
 public:
  explicit X11FullScreenCompanion(X11Display& display) : display_(display) {}

  /// After the popup was shown: Qt has named its own leader as the window that it belongs to.
  void begin(xcb_window_t panel);
  /// After the stack or the state of windows changed while the popup shows.
  void follow(xcb_window_t panel);
  /// When the popup's own state changed: who puts away a window puts its companions away too, and the popup stays.
  void stayShown(xcb_window_t panel);

 private:
  xcb_window_t fullScreenAbove(xcb_window_t panel);
  bool isFullScreenInView(xcb_window_t window);
  void belongTo(xcb_window_t panel, xcb_window_t owner);

  X11Display& display_;
  xcb_window_t leader_ = XCB_WINDOW_NONE;
  xcb_window_t companion_ = XCB_WINDOW_NONE;
};

}  // namespace quillmere
