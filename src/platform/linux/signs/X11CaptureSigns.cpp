#include "platform/linux/signs/X11CaptureSigns.h"

#include <X11/keysym.h>
#include <xcb/xinput.h>
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>
#include <algorithm>
#include <array>

#include "platform/linux/panel/X11Display.h"
#include "platform/linux/signs/CaptureToolTable.h"

namespace quillmere {
namespace {

constexpr uint8_t kSent = 0x80;

/// The keys that have the keysym in some group or level: Alt makes another one of Print.
std::set<xcb_keycode_t> keysWith(xcb_connection_t* connection, xcb_keysym_t wanted) {
  const xcb_setup_t* setup = xcb_get_setup(connection);
  const auto count = static_cast<uint8_t>(setup->max_keycode - setup->min_keycode + 1);
  const auto reply = X11Display::owned(xcb_get_keyboard_mapping_reply(
      connection, xcb_get_keyboard_mapping(connection, setup->min_keycode, count), nullptr));
  std::set<xcb_keycode_t> keys;
  if (!reply) return keys;
  const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(reply.get());
  for (int i = 0; i < xcb_get_keyboard_mapping_keysyms_length(reply.get()); ++i) {
    if (symbols[i] != wanted) continue;
    keys.insert(static_cast<xcb_keycode_t>(setup->min_keycode + i / reply->keysyms_per_keycode));
  }
  return keys;
}

}  // namespace

X11CaptureSigns::X11CaptureSigns() {
  if (!X11Display::ofApplication()) return;
  int screen = 0;
  connection_.reset(xcb_connect(nullptr, &screen));
  if (xcb_connection_has_error(connection_.get())) return;
  display_ = std::make_unique<X11Display>(connection_.get(), screen);
  askForKeys();
  askForWindows();
  xcb_flush(connection_.get());
  notifier_ = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection_.get()), QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { read(); });
}

X11CaptureSigns::~X11CaptureSigns() = default;

void X11CaptureSigns::askForKeys() {
  xcb_connection_t* connection = connection_.get();
  printKeys_ = keysWith(connection, XK_Print);
  // Raw events that a grab of another client does not hold back came with 2.1.
  xcb_discard_reply(connection, xcb_input_xi_query_version(connection, 2, 2).sequence);
  struct {
    xcb_input_event_mask_t head{XCB_INPUT_DEVICE_ALL_MASTER, 1};
    uint32_t mask = XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS;
  } events;
  xcb_input_xi_select_events(connection, display_->root(), 1, &events.head);
}

void X11CaptureSigns::askForWindows() {
  const uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
  xcb_change_window_attributes(connection_.get(), display_->root(), XCB_CW_EVENT_MASK, &mask);
}

void X11CaptureSigns::read() {
  while (const auto event = X11Display::owned(xcb_poll_for_event(connection_.get()))) hear(*event);
  if (!xcb_connection_has_error(connection_.get())) return;
  notifier_.reset();
  if (!std::exchange(choosing_, {}).empty()) choosingEnded();
}

void X11CaptureSigns::hear(const xcb_generic_event_t& event) {
  switch (event.response_type & ~kSent) {
    case XCB_GE_GENERIC:
      hearKey(reinterpret_cast<const xcb_ge_generic_event_t&>(event));
      break;
    case XCB_MAP_NOTIFY: {
      const auto& map = reinterpret_cast<const xcb_map_notify_event_t&>(event);
      if (map.event == display_->root()) hearWindow(map.window, map.override_redirect);
      break;
    }
    case XCB_REPARENT_NOTIFY: {
      // Into the frame of a window manager, before it is shown.
      const auto& reparent = reinterpret_cast<const xcb_reparent_notify_event_t&>(event);
      if (reparent.event == display_->root() && reparent.parent != display_->root()) hearWindow(reparent.window, false);
      break;
    }
    case XCB_UNMAP_NOTIFY:
      hearGone(reinterpret_cast<const xcb_unmap_notify_event_t&>(event).window);
      break;
    case XCB_DESTROY_NOTIFY:
      hearGone(reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
      break;
    case XCB_MAPPING_NOTIFY:
      printKeys_ = keysWith(display_->connection(), XK_Print);
      break;
    default:
      break;
  }
}

void X11CaptureSigns::hearKey(const xcb_ge_generic_event_t& event) {
  if (event.event_type != XCB_INPUT_RAW_KEY_PRESS) return;
  const auto& key = reinterpret_cast<const xcb_input_raw_key_press_event_t&>(event);
  if (key.flags & XCB_INPUT_KEY_EVENT_FLAGS_KEY_REPEAT) return;
  if (printKeys_.count(static_cast<xcb_keycode_t>(key.detail)) > 0) seen(Sign::key);
}

void X11CaptureSigns::hearWindow(xcb_window_t window, bool isBypassing) {
  // Menus and tool tips bypass the window manager too; what covers the screen is there to choose a part of it.
  const bool isCover = isBypassing && coversScreen(window);
  if ((isBypassing && !isCover) || !isCaptureTool(window)) return;
  if (isCover) choosing_.insert(window);
  seen(Sign::request);
}

void X11CaptureSigns::hearGone(xcb_window_t window) {
  if (choosing_.erase(window) > 0 && choosing_.empty()) choosingEnded();
}

bool X11CaptureSigns::isCaptureTool(xcb_window_t window) {
  QByteArray name = display_->text(window, "WM_CLASS").toLower();
  name.truncate(std::max<qsizetype>(0, name.indexOf('\0')));
  const auto& classes = CaptureToolTable::kWindowClasses;
  return std::find(classes.begin(), classes.end(), std::string_view(name.constData(), name.size())) != classes.end();
}

bool X11CaptureSigns::coversScreen(xcb_window_t window) const {
  const auto reply = X11Display::owned(
      xcb_get_geometry_reply(display_->connection(), xcb_get_geometry(display_->connection(), window), nullptr));
  const auto screens = QGuiApplication::screens();
  return reply && std::any_of(screens.begin(), screens.end(), [&](const QScreen* screen) {
           const QSizeF size = QSizeF(screen->size()) * screen->devicePixelRatio();
           return reply->width + 1 >= size.width() && reply->height + 1 >= size.height();
         });
}

}  // namespace quillmere
