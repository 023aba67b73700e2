#include "platform/linux/panel/X11Display.h"

#include <QtGui/private/qtx11extras_p.h>
#include <QtGui/qguiapplication_platform.h>
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>
#include <algorithm>
#include <cstring>

namespace quillmere {
namespace {

/// More numbers than any property that is read here holds.
constexpr uint32_t kMostNumbers = 16384;

std::vector<uint32_t> numbersOf(const xcb_get_property_reply_t* reply) {
  if (!reply || reply->format != 32) return {};
  std::vector<uint32_t> values(static_cast<size_t>(xcb_get_property_value_length(reply)) / sizeof(uint32_t));
  if (!values.empty()) std::memcpy(values.data(), xcb_get_property_value(reply), values.size() * sizeof(uint32_t));
  return values;
}

}  // namespace

std::unique_ptr<X11Display> X11Display::ofApplication() {
  auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  if (!x11 || !x11->connection()) return nullptr;
  return std::make_unique<X11Display>(x11->connection(), QX11Info::appScreen());
}

X11Display::X11Display(xcb_connection_t* connection, int screen) : connection_(connection) {
  auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
  for (int i = 0; i < screen; ++i) xcb_screen_next(&screens);
  root_ = screens.data->root;
  compositorSelection_ = atom("_NET_WM_CM_S" + std::to_string(screen));
  selectionEvent_ = firstEventOf("XFIXES");
  hasWaylandExtension_ = firstEventOf("XWAYLAND").has_value();
}

/// Servers from before that extension name their screens so; asked each time, since such a server starts without any.
bool X11Display::isBesideWayland() const {
  const auto screens = QGuiApplication::screens();
  return hasWaylandExtension_ || std::any_of(screens.begin(), screens.end(), [](const QScreen* screen) {
           return screen->name().startsWith(QLatin1String("XWAYLAND"));
         });
}

/// None where the server lacks the extension.
std::optional<uint8_t> X11Display::firstEventOf(std::string_view extension) const {
  const auto cookie = xcb_query_extension(connection_, static_cast<uint16_t>(extension.size()), extension.data());
  const auto reply = owned(xcb_query_extension_reply(connection_, cookie, nullptr));
  return reply && reply->present ? std::optional(reply->first_event) : std::nullopt;
}

QSize X11Display::rootSize() const {
  const auto reply = owned(xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, root_), nullptr));
  return reply ? QSize(reply->width, reply->height) : QSize();
}

xcb_atom_t X11Display::atom(const std::string& name) {
  const auto known = atoms_.find(name);
  if (known != atoms_.end()) return known->second;
  const auto cookie = xcb_intern_atom(connection_, 0, static_cast<uint16_t>(name.size()), name.c_str());
  const auto reply = owned(xcb_intern_atom_reply(connection_, cookie, nullptr));
  return atoms_[name] = reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

std::vector<uint32_t> X11Display::property(xcb_window_t window, const std::string& name) {
  return std::move(properties({window}, name).front());
}

std::vector<std::vector<uint32_t>> X11Display::properties(const std::vector<xcb_window_t>& windows,
                                                          const std::string& name) {
  const xcb_atom_t property = atom(name);
  std::vector<xcb_get_property_cookie_t> cookies;
  for (const xcb_window_t window : windows) {
    cookies.push_back(xcb_get_property(connection_, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, kMostNumbers));
  }
  std::vector<std::vector<uint32_t>> values;
  for (const auto cookie : cookies) {
    // A window that has gone by now has no properties; the error is no one's.
    xcb_generic_error_t* error = nullptr;
    values.push_back(numbersOf(owned(xcb_get_property_reply(connection_, cookie, &error)).get()));
    std::free(error);
  }
  return values;
}

uint32_t X11Display::number(xcb_window_t window, const std::string& name) {
  const auto values = property(window, name);
  return values.empty() ? 0 : values.front();
}

QByteArray X11Display::text(xcb_window_t window, const std::string& name) {
  constexpr uint32_t kLongest = 128;  // in words of four
  xcb_generic_error_t* error = nullptr;
  const auto cookie = xcb_get_property(connection_, 0, window, atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, kLongest);
  const auto reply = owned(xcb_get_property_reply(connection_, cookie, &error));
  std::free(error);
  if (!reply || reply->format != 8) return {};
  return {static_cast<const char*>(xcb_get_property_value(reply.get())), xcb_get_property_value_length(reply.get())};
}

bool X11Display::hasState(xcb_window_t window, const char* state) {
  const auto states = property(window, "_NET_WM_STATE");
  return std::find(states.begin(), states.end(), atom(state)) != states.end();
}

void X11Display::setAtoms(xcb_window_t window, const char* property, const std::vector<const char*>& names) {
  std::vector<xcb_atom_t> values;
  for (const char* name : names) values.push_back(atom(name));
  xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atom(property), XCB_ATOM_ATOM, 32,
                      static_cast<uint32_t>(values.size()), values.data());
}

void X11Display::setNumber(xcb_window_t window, const char* property, uint32_t value) {
  xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atom(property), XCB_ATOM_CARDINAL, 32, 1, &value);
}

void X11Display::setWindow(xcb_window_t window, const char* property, xcb_window_t value) {
  xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atom(property), XCB_ATOM_WINDOW, 32, 1, &value);
}

void X11Display::setInputHint(xcb_window_t window, bool accepts) {
  constexpr size_t kLength = 9;
  constexpr uint32_t kTellsInput = 1;
  auto hints = property(window, "WM_HINTS");
  hints.resize(kLength);
  hints[0] |= kTellsInput;
  hints[1] = accepts ? 1 : 0;
  xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_HINTS, XCB_ATOM_WM_HINTS, 32, kLength,
                      hints.data());
  xcb_flush(connection_);
}

void X11Display::askWindowManager(xcb_window_t window, const char* message, const std::array<uint32_t, 5>& data) {
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

bool X11Display::windowManagerKnows(const char* name) {
  const auto known = property(root_, "_NET_SUPPORTED");
  return std::find(known.begin(), known.end(), atom(name)) != known.end();
}

bool X11Display::hasCompositor() const {
  const auto cookie = xcb_get_selection_owner(connection_, compositorSelection_);
  const auto reply = owned(xcb_get_selection_owner_reply(connection_, cookie, nullptr));
  return reply && reply->owner != XCB_WINDOW_NONE;
}

bool X11Display::isViewable(xcb_window_t window) const {
  xcb_generic_error_t* error = nullptr;
  const auto cookie = xcb_get_window_attributes(connection_, window);
  const auto reply = owned(xcb_get_window_attributes_reply(connection_, cookie, &error));
  std::free(error);
  return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

}  // namespace quillmere
