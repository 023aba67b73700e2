#pragma once

#include <xcb/xcb.h>
#include <QtCore/QByteArray>
#include <QtCore/QSize>
#include <array>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillmere {

/// The X server that Qt is connected to: properties, messages to the window manager, and who composites.
class X11Display {
 public:
  /// Null where Qt runs on another platform.
  static std::unique_ptr<X11Display> ofApplication();
  /// By another connection, which outlives it.
  X11Display(xcb_connection_t* connection, int screen);

  xcb_connection_t* connection() const { return connection_; }
  xcb_window_t root() const { return root_; }
  /// In pixels, as it is now; the connection's own figure is that of the moment it was made.
  QSize rootSize() const;

  xcb_atom_t atom(const std::string& name);

  /// Numbers, windows or atoms; empty when there are none.
  std::vector<uint32_t> property(xcb_window_t window, const std::string& name);
  /// Of many windows, at the price of one round trip.
  std::vector<std::vector<uint32_t>> properties(const std::vector<xcb_window_t>& windows, const std::string& name);
  /// The first number of a property; 0 when there is none.
  uint32_t number(xcb_window_t window, const std::string& name);
  /// The bytes of a property of texts, as long as a class or a name is.
  QByteArray text(xcb_window_t window, const std::string& name);
  bool hasState(xcb_window_t window, const char* state);

  void setAtoms(xcb_window_t window, const char* property, const std::vector<const char*>& names);
  void setNumber(xcb_window_t window, const char* property, uint32_t value);
  void setWindow(xcb_window_t window, const char* property, xcb_window_t value);
  /// Whether the window manager may give the window the keyboard (the "input" hint of `WM_HINTS`).
  void setInputHint(xcb_window_t window, bool accepts);
  void askWindowManager(xcb_window_t window, const char* message, const std::array<uint32_t, 5>& data);

  /// Whether the window manager names this property or message among those that it knows (`_NET_SUPPORTED`).
  bool windowManagerKnows(const char* name);
  /// Whether a Wayland compositor shows the windows of this X server among its own.
  bool isBesideWayland() const;
  bool hasCompositor() const;
  /// Whether a window can be seen if nothing covers it; a window on another desktop cannot.
  bool isViewable(xcb_window_t window) const;
  /// The kind of event that tells of a selection's new owner, a compositor's among them. Qt asks for those itself.
  std::optional<uint8_t> selectionEvent() const { return selectionEvent_; }

  template <typename Reply>
  static std::unique_ptr<Reply, decltype(&std::free)> owned(Reply* reply) {
    return {reply, &std::free};
  }

 private:
  std::optional<uint8_t> firstEventOf(std::string_view extension) const;

  xcb_connection_t* connection_;
  xcb_window_t root_ = XCB_WINDOW_NONE;
  xcb_atom_t compositorSelection_ = XCB_ATOM_NONE;
  std::optional<uint8_t> selectionEvent_;
  bool hasWaylandExtension_ = false;
  std::map<std::string, xcb_atom_t> atoms_;
};

}  // namespace quillmere
