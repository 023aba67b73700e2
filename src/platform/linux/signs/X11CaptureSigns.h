#pragma once

#include <xcb/xcb.h>
#include <QtCore/QSocketNotifier>
#include <memory>
#include <set>
#include <string>

#include "popup/CaptureSigns.h"

namespace quillmere {

class X11Display;

/// The Print key, whoever else takes it (raw events of the X Input Extension, version 2.1 and later), and windows of
/// capture tools that come up. Heard by a connection of its own, since Qt's is asked for events of its own choice.
/// Nothing where Qt runs on another platform.
class X11CaptureSigns final : public CaptureSigns {
 public:
  X11CaptureSigns();
  ~X11CaptureSigns() override;
  X11CaptureSigns(const X11CaptureSigns&) = delete;
  X11CaptureSigns& operator=(const X11CaptureSigns&) = delete;

  bool isChoosing() const override { return !choosing_.empty(); }

 private:
  void askForKeys();
  void askForWindows();
  void read();
  void hear(const xcb_generic_event_t& event);
  void hearKey(const xcb_ge_generic_event_t& event);
  void hearWindow(xcb_window_t window, bool isBypassing);
  void hearGone(xcb_window_t window);
  bool isCaptureTool(xcb_window_t window);
  bool coversScreen(xcb_window_t window) const;

  struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
  };
  std::unique_ptr<xcb_connection_t, Disconnect> connection_;  // none where there is no X server
  std::unique_ptr<X11Display> display_;
  std::unique_ptr<QSocketNotifier> notifier_;
  std::set<xcb_keycode_t> printKeys_;
  std::set<xcb_window_t> choosing_;
};

}  // namespace quillmere
