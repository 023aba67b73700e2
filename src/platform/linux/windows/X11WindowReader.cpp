#include "platform/linux/windows/X11WindowReader.h"

#include <xcb/randr.h>
#include <QtCore/QList>
#include <QtCore/QMargins>
#include <algorithm>
#include <array>
#include <cmath>
#include <set>
#include <string_view>
#include <utility>

namespace quillmere {
namespace {

constexpr uint8_t kSent = 0x80;
constexpr double kDotsPerInch = 96;
/// A program's window, its frame, and what some window managers put between them.
constexpr int kDeepest = 4;
constexpr uint32_t kAllDesktops = 0xFFFFFFFF;

QRect rectOf(const xcb_get_geometry_reply_t& reply) {
  return {reply.x, reply.y, reply.width + 2 * reply.border_width, reply.height + 2 * reply.border_width};
}

/// Left, right, top and bottom, as the window manager writes them.
QMargins marginsOf(const std::vector<uint32_t>& values) {
  constexpr uint32_t kMost = 1000;
  if (values.size() < 4 || std::any_of(values.begin(), values.begin() + 4, [](uint32_t one) { return one > kMost; })) {
    return {};
  }
  const auto at = [&](size_t place) { return static_cast<int>(values[place]); };
  return {at(0), at(2), at(1), at(3)};
}

bool has(const std::vector<uint32_t>& values, uint32_t wanted) {
  return std::find(values.begin(), values.end(), wanted) != values.end();
}

/// Of "Xft.dpi:\t192" among the lines.
double scaleIn(const QByteArray& resources) {
  for (const QByteArray& line : resources.split('\n')) {
    if (!line.startsWith("Xft.dpi:")) continue;
    const double dots = line.mid(line.indexOf(':') + 1).trimmed().toDouble();
    if (dots >= kDotsPerInch / 2 && dots <= kDotsPerInch * 8) return dots / kDotsPerInch;
  }
  return 1;
}

}  // namespace

X11WindowReader::X11WindowReader(xcb_connection_t* connection, int screen, uint32_t ownBase)
    : display_(connection, screen), ownBase_(ownBase), ownMask_(xcb_get_setup(connection)->resource_id_mask) {
  const uint32_t mask =
      XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  xcb_change_window_attributes(connection, display_.root(), XCB_CW_EVENT_MASK, &mask);
  constexpr std::string_view kWayland = "XWAYLAND";
  const auto wayland = X11Display::owned(xcb_query_extension_reply(
      connection, xcb_query_extension(connection, kWayland.size(), kWayland.data()), nullptr));
  isBesideWayland_ = wayland && wayland->present != 0;
  const auto* randr = xcb_get_extension_data(connection, &xcb_randr_id);
  if (randr && randr->present) {
    screenEvent_ = static_cast<uint8_t>(randr->first_event + XCB_RANDR_SCREEN_CHANGE_NOTIFY);
    // Monitors came with 1.5.
    X11Display::owned(xcb_randr_query_version_reply(connection, xcb_randr_query_version(connection, 1, 5), nullptr));
    xcb_randr_select_input(connection, display_.root(), XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE);
  }
}

WindowStack X11WindowReader::read() {
  xcb_connection_t* connection = display_.connection();
  const xcb_window_t root = display_.root();
  if (!std::exchange(knowsScreens_, true)) readScreens();
  WindowStack stack;
  stack.root = root_;
  stack.monitors = monitors_;
  stack.scale = scale_;
  stack.manager = manager_;
  stack.isPartial = isBesideWayland_;
  stack.active = display_.number(root, "_NET_ACTIVE_WINDOW");
  stack.desktop = display_.number(root, "_NET_CURRENT_DESKTOP");
  const auto tree = X11Display::owned(xcb_query_tree_reply(connection, xcb_query_tree(connection, root), nullptr));
  if (!tree) return stack;
  const xcb_window_t* first = xcb_query_tree_children(tree.get());
  const std::vector<xcb_window_t> children(first, first + xcb_query_tree_children_length(tree.get()));
  learn(children);

  const auto managed = clients(children);
  outers_.clear();
  std::set<xcb_window_t> frames;
  for (const Client& client : managed) {
    outers_[client.window] = client.outer;
    frames.insert(client.outer);
  }
  std::map<xcb_window_t, WindowStack::Window> byOuter;
  for (const WindowStack::Window& window : described(managed, stack.desktop)) byOuter[outers_[window.id]] = window;
  std::vector<xcb_window_t> covers;
  for (const xcb_window_t child : children) {
    const Child& known = children_[child];
    if (known.isSeen && known.isBypassing && frames.count(child) == 0 && !isOwn(child)) covers.push_back(child);
  }
  const auto covered = geometries(covers);
  for (size_t i = 0; i < covers.size(); ++i) {
    WindowStack::Window cover;
    cover.id = covers[i];
    cover.type = WindowStack::Window::Type::cover;
    cover.frame = cover.client = cover.outer = covered[i];
    // Those that only hold a selection are points, or stand beside the screen.
    constexpr int kSmallest = 4;
    const bool isOnScreen = cover.frame.intersects(QRect(QPoint(), root_));
    if (isOnScreen && cover.frame.width() >= kSmallest && cover.frame.height() >= kSmallest) {
      byOuter[covers[i]] = cover;
      outers_[covers[i]] = covers[i];
    }
  }
  for (const xcb_window_t child : children) {
    const auto found = byOuter.find(child);
    if (found != byOuter.end()) stack.windows.push_back(found->second);
  }
  below_.clear();
  for (size_t i = 0; i < children.size(); ++i)
    below_[children[i]] = i > 0 ? children[i - 1] : xcb_window_t{XCB_WINDOW_NONE};
  return stack;
}

/// Asks about those that are new; events tell what becomes of them.
void X11WindowReader::learn(const std::vector<xcb_window_t>& children) {
  xcb_connection_t* connection = display_.connection();
  std::map<xcb_window_t, Child> known;
  std::vector<std::pair<xcb_window_t, xcb_get_window_attributes_cookie_t>> asked;
  for (const xcb_window_t child : children) {
    const auto before = children_.find(child);
    if (before != children_.end()) {
      known.insert(*before);
    } else {
      asked.emplace_back(child, xcb_get_window_attributes(connection, child));
    }
  }
  for (const auto& [child, cookie] : asked) {
    const auto reply = X11Display::owned(xcb_get_window_attributes_reply(connection, cookie, nullptr));
    if (!reply || reply->_class == XCB_WINDOW_CLASS_INPUT_ONLY) {
      known[child] = {};
    } else {
      known[child] = {reply->map_state != XCB_MAP_STATE_UNMAPPED, reply->override_redirect != 0};
    }
  }
  children_ = std::move(known);
}

/// The windows of programs that can be seen. Without a window manager all that ask for one.
std::vector<X11WindowReader::Client> X11WindowReader::clients(const std::vector<xcb_window_t>& children) {
  xcb_connection_t* connection = display_.connection();
  std::vector<Client> result;
  auto listed = display_.property(display_.root(), "_NET_CLIENT_LIST");
  if (listed.empty()) {
    for (const xcb_window_t child : children) {
      if (children_[child].isSeen && !children_[child].isBypassing && !isOwn(child)) result.push_back({child, child});
    }
    return result;
  }
  std::erase_if(listed, [this](xcb_window_t window) { return isOwn(window); });
  std::vector<Client> open;
  for (const xcb_window_t window : listed) open.push_back({window, window});
  for (int depth = 0; depth < kDeepest && !open.empty(); ++depth) {
    std::vector<std::pair<Client, xcb_query_tree_cookie_t>> asked;
    for (const Client& client : open) {
      const auto child = children_.find(client.outer);
      if (child == children_.end()) {
        asked.emplace_back(client, xcb_query_tree(connection, client.outer));
      } else if (child->second.isSeen) {
        result.push_back(client);
      }
    }
    open.clear();
    for (const auto& [client, cookie] : asked) {
      const auto reply = X11Display::owned(xcb_query_tree_reply(connection, cookie, nullptr));
      if (reply && reply->parent != XCB_WINDOW_NONE) open.push_back({client.window, reply->parent});
    }
  }
  return result;
}

std::vector<WindowStack::Window> X11WindowReader::described(const std::vector<Client>& clients, uint32_t desktop) {
  std::vector<xcb_window_t> windows;
  std::vector<xcb_window_t> outers;
  for (const Client& client : clients) {
    windows.push_back(client.window);
    outers.push_back(client.outer);
  }
  const auto sizes = geometries(windows);
  const auto origins = places(windows);
  const auto around = geometries(outers);
  const auto extents = display_.properties(windows, "_NET_FRAME_EXTENTS");
  const auto ownExtents = display_.properties(windows, "_GTK_FRAME_EXTENTS");
  const auto types = display_.properties(windows, "_NET_WM_WINDOW_TYPE");
  const auto states = display_.properties(windows, "_NET_WM_STATE");
  const auto desktops = display_.properties(windows, "_NET_WM_DESKTOP");

  std::vector<WindowStack::Window> result;
  for (size_t i = 0; i < windows.size(); ++i) {
    // Some window managers leave these mapped and draw them nowhere.
    const bool isElsewhere = !desktops[i].empty() && desktops[i][0] != desktop && desktops[i][0] != kAllDesktops;
    const bool isHidden = has(states[i], display_.atom("_NET_WM_STATE_HIDDEN"));
    if (isElsewhere || isHidden || sizes[i].isEmpty()) continue;
    WindowStack::Window window;
    window.id = windows[i];
    window.client = QRect(origins[i], sizes[i].size());
    window.outer = around[i];
    window.decoratesItself = !ownExtents[i].empty();
    window.frame = window.decoratesItself ? window.client.marginsRemoved(marginsOf(ownExtents[i]))
                                          : window.client.marginsAdded(marginsOf(extents[i]));
    if (has(types[i], display_.atom("_NET_WM_WINDOW_TYPE_DESKTOP"))) {
      window.type = WindowStack::Window::Type::ground;
    } else if (has(types[i], display_.atom("_NET_WM_WINDOW_TYPE_DOCK"))) {
      window.type = WindowStack::Window::Type::panel;
    }
    result.push_back(window);
  }
  return result;
}

/// In the coordinates of their parents; empty for one that has gone.
std::vector<QRect> X11WindowReader::geometries(const std::vector<xcb_window_t>& windows) {
  std::vector<xcb_get_geometry_cookie_t> asked;
  for (const xcb_window_t window : windows) asked.push_back(xcb_get_geometry(display_.connection(), window));
  std::vector<QRect> result;
  for (const auto cookie : asked) {
    const auto reply = X11Display::owned(xcb_get_geometry_reply(display_.connection(), cookie, nullptr));
    result.push_back(reply ? rectOf(*reply) : QRect());
  }
  return result;
}

/// On the screen.
std::vector<QPoint> X11WindowReader::places(const std::vector<xcb_window_t>& windows) {
  std::vector<xcb_translate_coordinates_cookie_t> asked;
  for (const xcb_window_t window : windows) {
    asked.push_back(xcb_translate_coordinates(display_.connection(), window, display_.root(), 0, 0));
  }
  std::vector<QPoint> result;
  for (const auto cookie : asked) {
    const auto reply = X11Display::owned(xcb_translate_coordinates_reply(display_.connection(), cookie, nullptr));
    result.push_back(reply ? QPoint(reply->dst_x, reply->dst_y) : QPoint());
  }
  return result;
}

void X11WindowReader::readScreens() {
  xcb_connection_t* connection = display_.connection();
  root_ = display_.rootSize();
  monitors_.clear();
  if (screenEvent_ != 0) {
    const auto reply = X11Display::owned(
        xcb_randr_get_monitors_reply(connection, xcb_randr_get_monitors(connection, display_.root(), 1), nullptr));
    if (reply) {
      for (auto one = xcb_randr_get_monitors_monitors_iterator(reply.get()); one.rem > 0;
           xcb_randr_monitor_info_next(&one)) {
        monitors_.emplace_back(one.data->x, one.data->y, one.data->width, one.data->height);
        const auto name = X11Display::owned(
            xcb_get_atom_name_reply(connection, xcb_get_atom_name(connection, one.data->name), nullptr));
        if (name && QByteArray(xcb_get_atom_name_name(name.get()), xcb_get_atom_name_name_length(name.get()))
                        .startsWith("XWAYLAND")) {
          isBesideWayland_ = true;
        }
      }
    }
  }
  if (monitors_.empty()) monitors_.emplace_back(QPoint(), root_);
  constexpr uint32_t kMostResources = 16384;  // in words of four
  const auto resources = X11Display::owned(xcb_get_property_reply(
      connection,
      xcb_get_property(connection, 0, display_.root(), XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING, 0, kMostResources),
      nullptr));
  scale_ = resources ? scaleIn(QByteArray(static_cast<const char*>(xcb_get_property_value(resources.get())),
                                          xcb_get_property_value_length(resources.get())))
                     : 1;
  const auto manager = display_.number(display_.root(), "_NET_SUPPORTING_WM_CHECK");
  manager_ = manager != 0 ? display_.text(manager, "_NET_WM_NAME").toStdString() : std::string();
}

X11WindowReader::Change X11WindowReader::hear(const xcb_generic_event_t& event, WindowStack& shown) {
  const uint8_t type = event.response_type & ~kSent;
  if (screenEvent_ != 0 && type == screenEvent_) {
    knowsScreens_ = false;
    return Change::unknown;
  }
  switch (type) {
    case XCB_PROPERTY_NOTIFY: {
      const auto atom = reinterpret_cast<const xcb_property_notify_event_t&>(event).atom;
      if (atom == XCB_ATOM_RESOURCE_MANAGER || atom == display_.atom("_NET_SUPPORTING_WM_CHECK")) {
        knowsScreens_ = false;
        return Change::unknown;
      }
      const bool tells = atom == display_.atom("_NET_ACTIVE_WINDOW") || atom == display_.atom("_NET_CURRENT_DESKTOP") ||
                         atom == display_.atom("_NET_CLIENT_LIST") ||
                         atom == display_.atom("_NET_CLIENT_LIST_STACKING");
      return tells ? Change::unknown : Change::none;
    }
    case XCB_CONFIGURE_NOTIFY:
      return hearConfigured(reinterpret_cast<const xcb_configure_notify_event_t&>(event), shown);
    case XCB_MAP_NOTIFY: {
      const auto& mapped = reinterpret_cast<const xcb_map_notify_event_t&>(event);
      children_.erase(mapped.window);  // asked about anew
      return isOwn(mapped.window) ? Change::none : Change::unknown;
    }
    case XCB_UNMAP_NOTIFY: {
      const auto window = reinterpret_cast<const xcb_unmap_notify_event_t&>(event).window;
      const auto known = children_.find(window);
      const bool wasSeen = known == children_.end() || std::exchange(known->second.isSeen, false);
      return wasSeen && !isOwn(window) ? Change::unknown : Change::none;
    }
    case XCB_REPARENT_NOTIFY:
      children_.erase(reinterpret_cast<const xcb_reparent_notify_event_t&>(event).window);
      return Change::unknown;
    case XCB_CIRCULATE_NOTIFY:
      return Change::unknown;
    default:
      // What is made is not seen yet, and what is destroyed not any more.
      return Change::none;
  }
}

/// One that is dragged tells its place itself, so that nobody has to be asked thirty times a second.
X11WindowReader::Change X11WindowReader::hearConfigured(const xcb_configure_notify_event_t& event, WindowStack& shown) {
  if (event.window == display_.root()) {
    knowsScreens_ = false;
    return Change::unknown;
  }
  const auto known = children_.find(event.window);
  if (isOwn(event.window) || (known != children_.end() && !known->second.isSeen)) return Change::none;
  const auto below = below_.find(event.window);
  if (below == below_.end() || below->second != event.above_sibling) return Change::unknown;
  const QRect outer(event.x, event.y, event.width + 2 * event.border_width, event.height + 2 * event.border_width);
  for (WindowStack::Window& window : shown.windows) {
    const bool isSame = window.outer.size() == outer.size() && outers_[window.id] == event.window;
    if (!isSame) continue;
    const QPoint by = outer.topLeft() - window.outer.topLeft();
    if (by.isNull()) return Change::none;
    for (QRect* rect : {&window.frame, &window.client, &window.outer}) rect->translate(by);
    return Change::moved;
  }
  return Change::unknown;
}

}  // namespace quillmere
