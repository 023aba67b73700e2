#include "platform/linux/shortcuts/X11HotKeys.h"

#include <cstdlib>

#include "platform/linux/shortcuts/KeyCodes.h"
#include "platform/linux/shortcuts/KeyboardProtocol.h"

namespace quillmere {
namespace {

/// Of an X server that is gone, which no error number of its own tells.
constexpr qint32 kNoServer = 1;
/// A held key is told again sooner than this. Where its release was lost to somebody who took the whole keyboard, a
/// later press counts again.
constexpr xcb_timestamp_t kLongestRepeat = 2000;

xcb_window_t rootOf(const xcb_setup_t* setup, int screen) {
  auto screens = xcb_setup_roots_iterator(setup);
  for (; screen > 0 && screens.rem > 1; --screen) xcb_screen_next(&screens);
  return screens.data->root;
}

}  // namespace

X11HotKeys::X11HotKeys() {
  int screen = 0;
  connection_.reset(xcb_connect(nullptr, &screen));
  if (!isConnected()) return;
  root_ = rootOf(xcb_get_setup(connection_.get()), screen);
  askForKeyboard();
  modifiers_ = X11Modifiers::ofServer(connection_.get());
  notifier_ = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection_.get()), QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { read(); });
}

/// Of a held key its release is to be told once, when it is real; and of another keyboard or map.
void X11HotKeys::askForKeyboard() {
  xcb_connection_t* connection = connection_.get();
  const xcb_query_extension_reply_t* extension = xcb_get_extension_data(connection, &xcb_xkb_id);
  if (!extension || !extension->present) return;
  keyboardEvent_ = extension->first_event;
  xcb_discard_reply(connection,
                    xcb_xkb_use_extension(connection, XCB_XKB_MAJOR_VERSION, XCB_XKB_MINOR_VERSION).sequence);
  constexpr uint32_t kRealReleases = XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT;
  xcb_discard_reply(
      connection,
      xcb_xkb_per_client_flags(connection, XCB_XKB_ID_USE_CORE_KBD, kRealReleases, kRealReleases, 0, 0, 0).sequence);
  constexpr uint16_t kEvents = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
  constexpr uint16_t kMap = XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP;
  xcb_xkb_select_events_aux(connection, XCB_XKB_ID_USE_CORE_KBD, kEvents, 0, kEvents, kMap, kMap, nullptr);
}

/// The server takes the keys back with the connection.
X11HotKeys::~X11HotKeys() = default;

bool X11HotKeys::isConnected() const {
  return !xcb_connection_has_error(connection_.get());
}

qint32 X11HotKeys::installHandler(Handler handler) {
  handler_ = std::move(handler);
  return hotKeyDone;
}

void X11HotKeys::removeHandler() {
  handler_ = nullptr;
}

HotKeySystem::Answer X11HotKeys::registerHotKey(const HotKeyShortcut& shortcut, HotKeyID key) {
  Grab grab{shortcut, key, 0, {}};
  const qint32 status = take(grab);
  if (status != hotKeyDone) return {status, std::nullopt};
  grabs_.emplace(++lastReference_, std::move(grab));
  return {hotKeyDone, lastReference_};
}

void X11HotKeys::unregisterHotKey(Reference reference) {
  const auto found = grabs_.find(reference);
  if (found == grabs_.end()) return;
  release(found->second);
  grabs_.erase(found);
}

/// All combinations or none: with one that another program has, the shortcut would be heard only sometimes.
qint32 X11HotKeys::take(Grab& grab) {
  xcb_connection_t* connection = connection_.get();
  if (!isConnected()) return kNoServer;
  const auto evdev = KeyCodes::evdev(grab.shortcut.keyCode);
  const auto mask = modifiers_.mask(grab.shortcut.modifiers);
  if (!evdev || !mask || *evdev + KeyCodes::kFirstScanCode > xcb_get_setup(connection)->max_keycode) {
    return hotKeyInvalid;
  }
  grab.keycode = static_cast<xcb_keycode_t>(*evdev + KeyCodes::kFirstScanCode);
  grab.masks.clear();
  std::vector<xcb_void_cookie_t> cookies;
  for (const uint16_t locks : modifiers_.locks()) {
    grab.masks.push_back(static_cast<uint16_t>(*mask | locks));
    cookies.push_back(xcb_grab_key_checked(connection, 0, root_, grab.masks.back(), grab.keycode, XCB_GRAB_MODE_ASYNC,
                                           XCB_GRAB_MODE_ASYNC));
  }
  qint32 status = hotKeyDone;
  for (const auto cookie : cookies) {
    xcb_generic_error_t* error = xcb_request_check(connection, cookie);
    if (error) status = error->error_code == XCB_ACCESS ? qint32{hotKeyExists} : qint32{error->error_code};
    std::free(error);
  }
  if (status != hotKeyDone) release(grab);
  // Answers were waited for, and with them events may have come of which the notifier is told no more.
  QMetaObject::invokeMethod(
      notifier_.get(), [this] { read(); }, Qt::QueuedConnection);
  return status;
}

void X11HotKeys::release(Grab& grab) {
  if (!isConnected()) return;
  for (const uint16_t mask : std::exchange(grab.masks, {}))
    xcb_ungrab_key(connection_.get(), grab.keycode, root_, mask);
  held_.erase(grab.keycode);
  xcb_flush(connection_.get());
}

void X11HotKeys::read() {
  while (xcb_generic_event_t* event = xcb_poll_for_event(connection_.get())) {
    hear(*event);
    std::free(event);
  }
  if (!isConnected()) {
    notifier_.reset();
  } else if (std::exchange(isMapOther_, false)) {
    takeAnew();
  }
}

void X11HotKeys::hear(const xcb_generic_event_t& event) {
  constexpr uint8_t kSent = 0x80;
  if (event.response_type & kSent) return;  // by another program, which presses no keys
  if (keyboardEvent_ != 0 && event.response_type == keyboardEvent_) isMapOther_ = true;
  switch (event.response_type) {
    case XCB_KEY_PRESS:
      hearPress(reinterpret_cast<const xcb_key_press_event_t&>(event));
      break;
    case XCB_KEY_RELEASE:
      held_.erase(reinterpret_cast<const xcb_key_release_event_t&>(event).detail);
      break;
    case XCB_MAPPING_NOTIFY:
      if (reinterpret_cast<const xcb_mapping_notify_event_t&>(event).request != XCB_MAPPING_POINTER) isMapOther_ = true;
      break;
    default:
      break;
  }
}

bool X11HotKeys::isRepeat(const xcb_key_press_event_t& event) {
  const auto before = held_.find(event.detail);
  const bool isHeld = before != held_.end() && event.time - before->second < kLongestRepeat;
  held_[event.detail] = event.time;
  return isHeld;
}

void X11HotKeys::hearPress(const xcb_key_press_event_t& event) {
  const uint16_t state = modifiers_.withoutLocks(event.state);
  for (const auto& [reference, grab] : grabs_) {
    if (grab.keycode != event.detail || grab.masks.empty() || grab.masks.front() != state) continue;
    const HotKeyPress press{.key = grab.key};
    if (!isRepeat(event) && handler_) handler_(&press);
    return;
  }
}

/// The modifiers may be in other places now.
void X11HotKeys::takeAnew() {
  modifiers_ = X11Modifiers::ofServer(connection_.get());
  for (auto& [reference, grab] : grabs_) release(grab);
  std::vector<std::pair<quint32, qint32>> refused;
  for (auto& [reference, grab] : grabs_) {
    if (const qint32 status = take(grab); status != hotKeyDone) refused.emplace_back(grab.key.id, status);
  }
  for (const auto& [id, status] : refused) refusedLater(id, status);
}

}  // namespace quillmere
