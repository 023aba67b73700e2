#include "platform/linux/shortcuts/XkbKeyboardLayout.h"

#include <xcb/xcb.h>
#include <xkbcommon/xkbcommon-x11.h>
#include <cstdlib>
#include <cstring>

#include "platform/linux/shortcuts/KeyCodes.h"
#include "platform/linux/shortcuts/KeyboardProtocol.h"

namespace quillmere {
namespace {

constexpr xkb_level_index_t kPlain = 0;
constexpr xkb_level_index_t kShifted = 1;

/// A dead key shows the accent that it puts on the next letter. Most are called as the accent is, after "dead_".
xkb_keysym_t withoutDeadness(xkb_keysym_t symbol) {
  constexpr size_t kLongest = 64;
  constexpr std::string_view kDead = "dead_";
  std::array<char, kLongest> buffer{};
  if (xkb_keysym_get_name(symbol, buffer.data(), buffer.size()) < 0) return symbol;
  std::string_view name = buffer.data();
  if (!name.starts_with(kDead)) return symbol;
  name.remove_prefix(kDead.size());
  if (name == "circumflex") return XKB_KEY_asciicircum;
  if (name == "tilde" || name == "perispomeni") return XKB_KEY_asciitilde;
  if (name == "abovering") return XKB_KEY_degree;
  return xkb_keysym_from_name(name.data(), XKB_KEYSYM_NO_FLAGS);
}

QString textOf(xkb_keysym_t symbol) {
  constexpr size_t kLongest = 16;
  std::array<char, kLongest> buffer{};
  return xkb_keysym_to_utf8(withoutDeadness(symbol), buffer.data(), buffer.size()) > 0
             ? QString::fromUtf8(buffer.data())
             : QString();
}

bool isLatinLetter(xkb_keysym_t symbol) {
  return (symbol >= XKB_KEY_a && symbol <= XKB_KEY_z) || (symbol >= XKB_KEY_A && symbol <= XKB_KEY_Z);
}

}  // namespace

XkbKeyboardLayout::XkbKeyboardLayout(Source source) : context_(xkb_context_new(XKB_CONTEXT_NO_FLAGS)) {
  if (source == Source::display) connectToDisplay();
  if (!keymap_) readStandardKeymap();
}

XkbKeyboardLayout::~XkbKeyboardLayout() = default;

void XkbKeyboardLayout::disconnect(xcb_connection_t* connection) {
  xcb_disconnect(connection);
}

void XkbKeyboardLayout::connectToDisplay() {
  connection_.reset(xcb_connect(nullptr, nullptr));
  if (xcb_connection_has_error(connection_.get())) return;
  const bool isThere =
      xkb_x11_setup_xkb_extension(connection_.get(), XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
                                  XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &firstEvent_, nullptr) == 1;
  if (!isThere) return;
  askForChanges();
  readKeymap();
  notifier_ = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection_.get()), QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { read(); });
}

void XkbKeyboardLayout::askForChanges() {
  constexpr uint16_t kEvents =
      XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY | XCB_XKB_EVENT_TYPE_STATE_NOTIFY;
  constexpr uint16_t kKeyboard = XCB_XKB_NKN_DETAIL_KEYCODES | XCB_XKB_NKN_DETAIL_DEVICE_ID;
  constexpr uint16_t kMap = XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP;
  xcb_xkb_select_events_details_t details{};
  details.affectNewKeyboard = kKeyboard;
  details.newKeyboardDetails = kKeyboard;
  // Of the state only the group: no event a key.
  details.affectState = XCB_XKB_STATE_PART_GROUP_STATE;
  details.stateDetails = XCB_XKB_STATE_PART_GROUP_STATE;
  xcb_xkb_select_events_aux(connection_.get(), XCB_XKB_ID_USE_CORE_KBD, kEvents, 0, 0, kMap, kMap, &details);
}

void XkbKeyboardLayout::readKeymap() {
  xcb_connection_t* connection = connection_.get();
  device_ = xkb_x11_get_core_keyboard_device_id(connection);
  if (device_ < 0) return;
  keymap_.reset(xkb_x11_keymap_new_from_device(context_.get(), connection, device_, XKB_KEYMAP_COMPILE_NO_FLAGS));
  if (!keymap_) return;
  const std::unique_ptr<xkb_state, Releaser<&xkb_state_unref>> state(
      xkb_x11_state_new_from_device(keymap_.get(), connection, device_));
  group_ = state ? xkb_state_serialize_layout(state.get(), XKB_STATE_LAYOUT_EFFECTIVE) : 0;
}

void XkbKeyboardLayout::readStandardKeymap() {
  group_ = 0;
  keymap_.reset(xkb_keymap_new_from_names(context_.get(), nullptr, XKB_KEYMAP_COMPILE_NO_FLAGS));
}

void XkbKeyboardLayout::read() {
  bool isOther = false;
  // Reading the map takes events off the line that Qt is told of no more.
  while (xcb_generic_event_t* event = xcb_poll_for_event(connection_.get())) {
    if ((event->response_type & 0x7f) == firstEvent_) isOther = true;
    std::free(event);
    if (!isOther) continue;
    while (xcb_generic_event_t* more = xcb_poll_for_queued_event(connection_.get())) std::free(more);
    readKeymap();
  }
  if (xcb_connection_has_error(connection_.get())) notifier_.reset();
  if (!keymap_) readStandardKeymap();
  if (isOther) changed();
}

std::optional<quint32> XkbKeyboardLayout::keyCode(quint32 nativeScanCode) const {
  if (nativeScanCode < KeyCodes::kFirstScanCode) return std::nullopt;
  return KeyCodes::stored(nativeScanCode - KeyCodes::kFirstScanCode);
}

QStringList XkbKeyboardLayout::texts(quint32 keyCode) const {
  QStringList found;
  if (const auto evdev = KeyCodes::evdev(keyCode)) {
    const xkb_keycode_t key = *evdev + KeyCodes::kFirstScanCode;
    for (const auto group : groups(key)) found << text(key, group, KeyCodes::isKeypad(keyCode));
  }
  return found;
}

std::vector<XkbKeyboardLayout::Symbols> XkbKeyboardLayout::symbols(quint32 keyCode) const {
  std::vector<Symbols> found;
  if (const auto evdev = KeyCodes::evdev(keyCode)) {
    const xkb_keycode_t key = *evdev + KeyCodes::kFirstScanCode;
    for (const auto group : groups(key)) found.push_back({symbol(key, group, kPlain), symbol(key, group, kShifted)});
  }
  return found;
}

/// The one in use and the first Latin one, as far as the key has them.
std::vector<xkb_layout_index_t> XkbKeyboardLayout::groups(xkb_keycode_t key) const {
  const xkb_layout_index_t count = keymap_ ? xkb_keymap_num_layouts_for_key(keymap_.get(), key) : 0;
  if (count == 0) return {};
  // A key with fewer groups than the keyboard repeats its own.
  std::vector<xkb_layout_index_t> found{group_ % count};
  if (const auto latin = firstLatinGroup(); latin && *latin % count != found.front()) found.push_back(*latin % count);
  return found;
}

std::optional<xkb_layout_index_t> XkbKeyboardLayout::firstLatinGroup() const {
  constexpr xkb_keycode_t kFirstLetters = 16 + KeyCodes::kFirstScanCode;  // the upper row
  constexpr xkb_keycode_t kLastLetters = 25 + KeyCodes::kFirstScanCode;
  for (xkb_layout_index_t group = 0; group < xkb_keymap_num_layouts(keymap_.get()); ++group) {
    for (xkb_keycode_t key = kFirstLetters; key <= kLastLetters; ++key) {
      if (group < xkb_keymap_num_layouts_for_key(keymap_.get(), key) && isLatinLetter(symbol(key, group, kPlain))) {
        return group;
      }
    }
  }
  return std::nullopt;
}

xkb_keysym_t XkbKeyboardLayout::symbol(xkb_keycode_t key, xkb_layout_index_t group, xkb_level_index_t level) const {
  const xkb_keysym_t* symbols = nullptr;
  const int count = xkb_keymap_key_get_syms_by_level(keymap_.get(), key, group, level, &symbols);
  return count > 0 ? symbols[0] : static_cast<xkb_keysym_t>(XKB_KEY_NoSymbol);
}

/// The keys at the side are labelled with what they write while Num Lock is on.
QString XkbKeyboardLayout::text(xkb_keycode_t key, xkb_layout_index_t group, bool isKeypad) const {
  const QString plain = textOf(symbol(key, group, kPlain));
  return plain.isEmpty() && isKeypad ? textOf(symbol(key, group, kShifted)) : plain;
}

}  // namespace quillmere
