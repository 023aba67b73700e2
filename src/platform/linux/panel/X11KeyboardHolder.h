#pragma once

#include <xcb/xcb.h>
#include <functional>

namespace quillmere {

class X11Display;

/// Gets the keyboard for a popup that the window manager knows nothing of.
///
/// Some compositors with an X server beside them give the keyboard to every window that they manage, and to none that
/// they do not. There the popup is not managed, and while it should have the keyboard an empty window that is managed
/// stands in for it: the compositor gives that one the keyboard as it does for any window, the popup takes it over from
/// there, and when the empty window goes the compositor gives the keyboard to whatever had it before, be it a window of
/// X or of Wayland.
class X11KeyboardHolder {
 public:
  explicit X11KeyboardHolder(X11Display& display) : display_(display) {}
  ~X11KeyboardHolder();
  X11KeyboardHolder(const X11KeyboardHolder&) = delete;
  X11KeyboardHolder& operator=(const X11KeyboardHolder&) = delete;

  /// The popup gets the keyboard as soon as the compositor gives it, and again whenever it comes back.
  void take(xcb_window_t panel);
  void giveBack();
  bool isHolding() const { return window_ != XCB_WINDOW_NONE; }

  /// Every event is shown to it; whether it was one of its own.
  bool hear(const xcb_generic_event_t& event);
  /// The person asked the compositor to close the window that has the keyboard.
  std::function<void()> onCloseRequested;

 private:
  void make();
  void handOver() const;

  X11Display& display_;
  xcb_window_t window_ = XCB_WINDOW_NONE;
  xcb_window_t panel_ = XCB_WINDOW_NONE;
};

}  // namespace quillmere
