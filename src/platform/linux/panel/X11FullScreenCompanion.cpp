#include "platform/linux/panel/X11FullScreenCompanion.h"

#include <algorithm>
#include <vector>

#include "platform/linux/panel/X11Display.h"

namespace quillmere {
namespace {

constexpr const char* kOwner = "WM_TRANSIENT_FOR";
/// Of `WM_STATE`.
constexpr uint32_t kIconic = 3;

}  // namespace

void X11FullScreenCompanion::begin(xcb_window_t panel) {
  leader_ = display_.number(panel, kOwner);
  companion_ = XCB_WINDOW_NONE;
}

void X11FullScreenCompanion::follow(xcb_window_t panel) {
  if (const xcb_window_t above = fullScreenAbove(panel)) {
    if (above != companion_) belongTo(panel, above);
  } else if (companion_ != XCB_WINDOW_NONE && !isFullScreenInView(companion_)) {
    belongTo(panel, XCB_WINDOW_NONE);
  }
}

void X11FullScreenCompanion::stayShown(xcb_window_t panel) {
  if (companion_ == XCB_WINDOW_NONE || display_.number(panel, "WM_STATE") != kIconic) return;
  belongTo(panel, XCB_WINDOW_NONE);
  xcb_map_window(display_.connection(), panel);
  xcb_flush(display_.connection());
}

xcb_window_t X11FullScreenCompanion::fullScreenAbove(xcb_window_t panel) {
  const auto stack = display_.property(display_.root(), "_NET_CLIENT_LIST_STACKING");
  auto window = std::find(stack.begin(), stack.end(), panel);
  if (window == stack.end()) return XCB_WINDOW_NONE;
  window = std::find_if(window + 1, stack.end(), [this](xcb_window_t above) { return isFullScreenInView(above); });
  return window == stack.end() ? static_cast<xcb_window_t>(XCB_WINDOW_NONE) : *window;
}

bool X11FullScreenCompanion::isFullScreenInView(xcb_window_t window) {
  return display_.hasState(window, "_NET_WM_STATE_FULLSCREEN") && display_.isViewable(window);
}

void X11FullScreenCompanion::belongTo(xcb_window_t panel, xcb_window_t owner) {
  companion_ = owner;
  const xcb_window_t named = owner == XCB_WINDOW_NONE ? leader_ : owner;
  if (named == XCB_WINDOW_NONE) {
    xcb_delete_property(display_.connection(), panel, display_.atom(kOwner));
  } else {
    display_.setWindow(panel, kOwner, named);
  }
  xcb_flush(display_.connection());
}

}  // namespace quillmere
