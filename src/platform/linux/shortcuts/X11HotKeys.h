#pragma once

#include <xcb/xcb.h>
#include <QtCore/QSocketNotifier>
#include <map>
#include <memory>

#include "hotkeys/HotKeySystem.h"
#include "platform/linux/shortcuts/X11Modifiers.h"

namespace quillmere {

/// Keys that the X server gives to nobody else, on a connection of its own. Beside a Wayland compositor they are heard
/// only where a program of X11 has the keyboard.
class X11HotKeys final : public HotKeySystem {
 public:
  X11HotKeys();
  ~X11HotKeys() override;
  X11HotKeys(const X11HotKeys&) = delete;
  X11HotKeys& operator=(const X11HotKeys&) = delete;

  qint32 installHandler(Handler handler) override;
  void removeHandler() override;
  Answer registerHotKey(const HotKeyShortcut& shortcut, HotKeyID key) override;
  void unregisterHotKey(Reference reference) override;

 private:
  struct Grab {
    HotKeyShortcut shortcut;
    HotKeyID key;
    xcb_keycode_t keycode = 0;
    std::vector<uint16_t> masks;  ///< all that the server was asked for; the first is the shortcut's own
  };

  bool isConnected() const;
  void askForKeyboard();
  qint32 take(Grab& grab);
  void release(Grab& grab);
  void read();
  void hear(const xcb_generic_event_t& event);
  void hearPress(const xcb_key_press_event_t& event);
  bool isRepeat(const xcb_key_press_event_t& event);
  void takeAnew();

  struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
  };
  std::unique_ptr<xcb_connection_t, Disconnect> connection_;
  xcb_window_t root_ = XCB_WINDOW_NONE;
  X11Modifiers modifiers_;
  uint8_t keyboardEvent_ = 0;  ///< of the keyboard extension; 0 where there is none
  std::unique_ptr<QSocketNotifier> notifier_;
  Handler handler_;
  std::map<Reference, Grab> grabs_;
  Reference lastReference_ = 0;
  bool isMapOther_ = false;
  std::map<xcb_keycode_t, xcb_timestamp_t> held_;  ///< when the key was last told as pressed
};

}  // namespace quillmere
