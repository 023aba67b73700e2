#include "platform/linux/X11PanelWindowSystem.h"

#include <QtGui/private/qtx11extras_p.h>
#include <QtGui/qguiapplication_platform.h>
#include <xcb/shape.h>
#include <xcb/xcb.h>
#include <QtGui/QGuiApplication>
#include <array>
#include <cstring>
#include <map>
#include <string>
#include <vector>

namespace quillmere {
namespace {

/// On every desktop.
constexpr uint32_t kAllDesktops = 0xFFFFFFFF;
/// "Source indication" of a pager or task bar: window managers honour it where they refuse an application's own wish.
constexpr uint32_t kSourcePager = 2;

}  // namespace

class X11PanelWindowSystem::Display {
 public:
  Display(xcb_connection_t* connection, int screen) : connection_(connection) {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int i = 0; i < screen; ++i) xcb_screen_next(&screens);
    root_ = screens.data->root;
    compositorSelection_ = atom("_NET_WM_CM_S" + std::to_string(screen));
  }

  xcb_connection_t* connection() const { return connection_; }

  xcb_atom_t atom(const std::string& name) {
    const auto known = atoms_.find(name);
    if (known != atoms_.end()) return known->second;
    const auto cookie = xcb_intern_atom(connection_, 0, static_cast<uint16_t>(name.size()), name.c_str());
    const auto reply = owned(xcb_intern_atom_reply(connection_, cookie, nullptr));
    return atoms_[name] = reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
  }

  void setAtoms(xcb_window_t window, const char* property, const std::vector<const char*>& names) {
    std::vector<xcb_atom_t> values;
    for (const char* name : names) values.push_back(atom(name));
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atom(property), XCB_ATOM_ATOM, 32,
                        static_cast<uint32_t>(values.size()), values.data());
  }

  void setNumber(xcb_window_t window, const char* property, uint32_t value) {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atom(property), XCB_ATOM_CARDINAL, 32, 1, &value);
  }

  uint32_t rootWindowProperty(const char* property) {
    const auto cookie = xcb_get_property(connection_, 0, root_, atom(property), XCB_ATOM_WINDOW, 0, 1);
    const auto reply = owned(xcb_get_property_reply(connection_, cookie, nullptr));
    if (!reply || xcb_get_property_value_length(reply.get()) < static_cast<int>(sizeof(uint32_t))) return 0;
    uint32_t value = 0;
    std::memcpy(&value, xcb_get_property_value(reply.get()), sizeof value);
    return value;
  }

  void askWindowManager(xcb_window_t window, const char* message, const std::array<uint32_t, 5>& data) {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atom(message);
    std::memcpy(event.data.data32, data.data(), sizeof event.data.data32);
    xcb_send_event(connection_, 0, root_, XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&event));
    xcb_flush(connection_);
  }

  bool hasCompositor() const {
    const auto cookie = xcb_get_selection_owner(connection_, compositorSelection_);
    const auto reply = owned(xcb_get_selection_owner_reply(connection_, cookie, nullptr));
    return reply && reply->owner != XCB_WINDOW_NONE;
  }

 private:
  template <typename Reply>
  static std::unique_ptr<Reply, decltype(&std::free)> owned(Reply* reply) {
    return {reply, &std::free};
  }

  xcb_connection_t* connection_;
  xcb_window_t root_ = XCB_WINDOW_NONE;
  xcb_atom_t compositorSelection_ = XCB_ATOM_NONE;
  std::map<std::string, xcb_atom_t> atoms_;
};

X11PanelWindowSystem::X11PanelWindowSystem() {
  auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  if (x11 && x11->connection()) display_ = std::make_unique<Display>(x11->connection(), QX11Info::appScreen());
}

X11PanelWindowSystem::~X11PanelWindowSystem() = default;

void X11PanelWindowSystem::prepare(QWindow& window) {
  if (!display_) return;
  const auto id = static_cast<xcb_window_t>(window.winId());
  // The first kind that a window manager knows counts; the first lies over full-screen windows.
  display_->setAtoms(id, "_NET_WM_WINDOW_TYPE",
                     {"_KDE_NET_WM_WINDOW_TYPE_CRITICAL_NOTIFICATION", "_NET_WM_WINDOW_TYPE_NOTIFICATION",
                      "_NET_WM_WINDOW_TYPE_UTILITY", "_NET_WM_WINDOW_TYPE_NORMAL"});
  display_->setAtoms(id, "_NET_WM_STATE",
                     {"_NET_WM_STATE_ABOVE", "_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER"});
  // Before every showing: the window manager takes it away when the window is hidden.
  display_->setNumber(id, "_NET_WM_DESKTOP", kAllDesktops);
}

void X11PanelWindowSystem::finish(QWindow& window) {
  if (!display_) return;
  // For the window managers that read the property only of windows that belong to no other.
  display_->askWindowManager(static_cast<xcb_window_t>(window.winId()), "_NET_WM_DESKTOP",
                             {kAllDesktops, kSourcePager, 0, 0, 0});
}

void X11PanelWindowSystem::setClickableArea(QWindow& window, const QRect& area) {
  if (!display_) return;
  const qreal scale = window.devicePixelRatio();
  const auto device = [scale](int points) { return qRound(points * scale); };
  const xcb_rectangle_t rectangle{static_cast<int16_t>(device(area.x())), static_cast<int16_t>(device(area.y())),
                                  static_cast<uint16_t>(device(area.width())),
                                  static_cast<uint16_t>(device(area.height()))};
  xcb_shape_rectangles(display_->connection(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED,
                       static_cast<xcb_window_t>(window.winId()), 0, 0, 1, &rectangle);
  xcb_flush(display_->connection());
}

bool X11PanelWindowSystem::isCompositing() const {
  return !display_ || display_->hasCompositor();
}

quintptr X11PanelWindowSystem::activeWindow() const {
  return display_ ? display_->rootWindowProperty("_NET_ACTIVE_WINDOW") : 0;
}

void X11PanelWindowSystem::activate(quintptr window) {
  if (!display_ || window == 0) return;
  display_->askWindowManager(static_cast<xcb_window_t>(window), "_NET_ACTIVE_WINDOW",
                             {kSourcePager, static_cast<uint32_t>(QX11Info::getTimestamp()), 0, 0, 0});
}

}  // namespace quillmere
