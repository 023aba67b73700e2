#include "platform/linux/panel/X11KeyboardHolder.h"

#include <unistd.h>
#include <array>

#include "platform/linux/panel/X11Display.h"

namespace quillmere {
namespace {

constexpr uint8_t kSent = 0x80;
/// "Decorations are told" and then none, as `_MOTIF_WM_HINTS` has it.
constexpr uint32_t kTellsDecorations = 2;

}  // namespace

X11KeyboardHolder::~X11KeyboardHolder() {
  giveBack();
}

void X11KeyboardHolder::take(xcb_window_t panel) {
  panel_ = panel;
  if (isHolding()) {
    handOver();
  } else {
    make();
  }
}

void X11KeyboardHolder::giveBack() {
  if (!isHolding()) return;
  xcb_destroy_window(display_.connection(), std::exchange(window_, static_cast<xcb_window_t>(XCB_WINDOW_NONE)));
  xcb_flush(display_.connection());
}

/// One pixel, of a kind that floats also where windows are tiled. It has a ground, since a window that is never painted
/// is never shown either.
void X11KeyboardHolder::make() {
  xcb_connection_t* connection = display_.connection();
  window_ = xcb_generate_id(connection);
  const std::array<uint32_t, 2> values{0, XCB_EVENT_MASK_FOCUS_CHANGE};
  xcb_create_window(connection, XCB_COPY_FROM_PARENT, window_, display_.root(), 0, 0, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK,
                    values.data());
  display_.setNumber(window_, "_NET_WM_PID", static_cast<uint32_t>(getpid()));
  display_.setAtoms(window_, "_NET_WM_WINDOW_TYPE", {"_NET_WM_WINDOW_TYPE_DIALOG"});
  display_.setAtoms(window_, "_NET_WM_STATE", {"_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER"});
  // A companion of the window that fills the screen gets the keyboard there; any other window would have to wait.
  if (const xcb_window_t active = display_.number(display_.root(), "_NET_ACTIVE_WINDOW")) {
    display_.setWindow(window_, "WM_TRANSIENT_FOR", active);
  }
  // Without it a compositor that closes the window would end the program.
  display_.setAtoms(window_, "WM_PROTOCOLS", {"WM_DELETE_WINDOW"});
  const xcb_atom_t motif = display_.atom("_MOTIF_WM_HINTS");
  const std::array<uint32_t, 5> hints{kTellsDecorations, 0, 0, 0, 0};
  xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window_, motif, motif, 32, hints.size(), hints.data());
  xcb_map_window(connection, window_);
  xcb_flush(connection);
}

void X11KeyboardHolder::handOver() const {
  xcb_set_input_focus(display_.connection(), XCB_INPUT_FOCUS_PARENT, panel_, XCB_CURRENT_TIME);
  xcb_flush(display_.connection());
}

bool X11KeyboardHolder::hear(const xcb_generic_event_t& event) {
  if (!isHolding()) return false;
  switch (event.response_type & ~kSent) {
    case XCB_FOCUS_IN: {
      const auto& focus = reinterpret_cast<const xcb_focus_in_event_t&>(event);
      if (focus.event != window_) return false;
      if (focus.detail != XCB_NOTIFY_DETAIL_POINTER) handOver();
      return true;
    }
    case XCB_CLIENT_MESSAGE: {
      const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
      if (message.window != window_) return false;
      const bool isClose =
          message.type == display_.atom("WM_PROTOCOLS") && message.data.data32[0] == display_.atom("WM_DELETE_WINDOW");
      if (isClose && onCloseRequested) onCloseRequested();
      return true;
    }
    default:
      return false;
  }
}

}  // namespace quillmere
