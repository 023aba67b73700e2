#pragma once

#include <xcb/xcb.h>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/panel/X11Display.h"
#include "reading/WindowStack.h"

namespace quillmere {

/// Asks an X server which windows it shows, by the same few round trips for all of them together. What tells of a
/// change are events of the root window alone.
class X11WindowReader {
 public:
  /// Windows of the client whose identifiers begin with `ownBase` are left out; 0 is nobody. The connection outlives
  /// this, which asks it for the events.
  X11WindowReader(xcb_connection_t* connection, int screen, uint32_t ownBase);

  /// What is shown now; of no date.
  WindowStack read();

  enum class Change {
    none,     ///< of what is shown
    moved,    ///< a window alone, which `shown` has at its new place
    unknown,  ///< only a new reading tells
  };
  /// `shown` is what was shown before.
  Change hear(const xcb_generic_event_t& event, WindowStack& shown);

 private:
  struct Child {
    bool isSeen = false;       ///< mapped, and no window that only takes clicks
    bool isBypassing = false;  ///< no window manager decides about it
  };
  /// A program's window with what the window manager put around it, which are the same where there is nothing.
  struct Client {
    xcb_window_t window;
    xcb_window_t outer;
  };

  void learn(const std::vector<xcb_window_t>& children);
  std::vector<Client> clients(const std::vector<xcb_window_t>& children);
  std::vector<WindowStack::Window> described(const std::vector<Client>& clients, uint32_t desktop);
  std::vector<QRect> geometries(const std::vector<xcb_window_t>& windows);
  std::vector<QPoint> places(const std::vector<xcb_window_t>& windows);
  Change hearConfigured(const xcb_configure_notify_event_t& event, WindowStack& shown);
  void readScreens();
  bool isOwn(xcb_window_t window) const { return ownBase_ != 0 && (window & ~ownMask_) == ownBase_; }

  X11Display display_;
  uint32_t ownBase_;
  uint32_t ownMask_;
  uint8_t screenEvent_ = 0;  ///< of the extension that tells of monitors; 0 where there is none
  std::map<xcb_window_t, Child> children_;
  std::map<xcb_window_t, xcb_window_t> below_;   ///< the sibling just below each
  std::map<xcb_window_t, xcb_window_t> outers_;  ///< what is around each window that is shown
  bool isBesideWayland_ = false;  ///< as newer servers say themselves, and older ones by their monitors' names
  bool knowsScreens_ = false;
  QSize root_;
  std::vector<QRect> monitors_;
  double scale_ = 1;
  std::string manager_;
};

}  // namespace quillmere
