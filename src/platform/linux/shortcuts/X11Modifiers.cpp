#include "platform/linux/shortcuts/X11Modifiers.h"

#include <xkbcommon/xkbcommon-keysyms.h>
#include <cstdlib>
#include <memory>
#include <set>

namespace quillmere {
namespace {

constexpr int kModifiers = 8;
/// Mod1 to Mod5 are what the keys behind them say.
constexpr int kFirstFree = 3;

template <typename Reply>
std::unique_ptr<Reply, decltype(&std::free)> owned(Reply* reply) {
  return {reply, &std::free};
}

/// The keysyms that the keys of each modifier have, in any group or level.
std::array<std::set<xcb_keysym_t>, kModifiers> symbolsOfModifiers(xcb_connection_t* connection) {
  std::array<std::set<xcb_keysym_t>, kModifiers> symbols;
  const xcb_setup_t* setup = xcb_get_setup(connection);
  const auto count = static_cast<uint8_t>(setup->max_keycode - setup->min_keycode + 1);
  const auto asked = xcb_get_keyboard_mapping(connection, setup->min_keycode, count);
  const auto modifiers =
      owned(xcb_get_modifier_mapping_reply(connection, xcb_get_modifier_mapping(connection), nullptr));
  const auto mapping = owned(xcb_get_keyboard_mapping_reply(connection, asked, nullptr));
  if (!modifiers || !mapping) return symbols;
  const xcb_keycode_t* keys = xcb_get_modifier_mapping_keycodes(modifiers.get());
  const xcb_keysym_t* all = xcb_get_keyboard_mapping_keysyms(mapping.get());
  for (int i = 0; i < xcb_get_modifier_mapping_keycodes_length(modifiers.get()); ++i) {
    if (keys[i] < setup->min_keycode) continue;  // an empty place
    const int first = (keys[i] - setup->min_keycode) * mapping->keysyms_per_keycode;
    auto& found = symbols[static_cast<size_t>(i / modifiers->keycodes_per_modifier)];
    found.insert(all + first, all + first + mapping->keysyms_per_keycode);
  }
  return symbols;
}

}  // namespace

X11Modifiers X11Modifiers::ofServer(xcb_connection_t* connection) {
  const auto symbols = symbolsOfModifiers(connection);
  // The first of these keysyms that is behind a modifier counts: the right Alt key is often another modifier.
  const auto find = [&](std::initializer_list<xcb_keysym_t> wanted) -> std::optional<uint16_t> {
    for (const xcb_keysym_t symbol : wanted) {
      for (size_t modifier = kFirstFree; modifier < kModifiers; ++modifier) {
        if (symbols[modifier].contains(symbol)) return static_cast<uint16_t>(1U << modifier);
      }
    }
    return std::nullopt;
  };
  X11Modifiers modifiers;
  modifiers.alt_ = find({XKB_KEY_Alt_L, XKB_KEY_Alt_R, XKB_KEY_Meta_L, XKB_KEY_Meta_R});
  modifiers.super_ = find({XKB_KEY_Super_L, XKB_KEY_Super_R});
  modifiers.numLock_ = find({XKB_KEY_Num_Lock}).value_or(0);
  modifiers.scrollLock_ = find({XKB_KEY_Scroll_Lock}).value_or(0);
  return modifiers;
}

std::optional<uint16_t> X11Modifiers::mask(quint64 modifiers) const {
  const bool hasAlt = modifiers & HotKeyShortcut::option;
  const bool hasSuper = modifiers & HotKeyShortcut::command;
  if ((hasAlt && !alt_) || (hasSuper && !super_)) return std::nullopt;
  uint16_t mask = 0;
  if (modifiers & HotKeyShortcut::shift) mask |= XCB_MOD_MASK_SHIFT;
  if (modifiers & HotKeyShortcut::control) mask |= XCB_MOD_MASK_CONTROL;
  if (hasAlt) mask |= *alt_;
  if (hasSuper) mask |= *super_;
  return mask;
}

std::vector<uint16_t> X11Modifiers::locks() const {
  std::set<uint16_t> combinations;
  for (const uint16_t caps : {uint16_t{0}, uint16_t{XCB_MOD_MASK_LOCK}}) {
    for (const uint16_t num : {uint16_t{0}, numLock_}) {
      for (const uint16_t scroll : {uint16_t{0}, scrollLock_}) {
        combinations.insert(static_cast<uint16_t>(caps | num | scroll));
      }
    }
  }
  return {combinations.begin(), combinations.end()};
}

uint16_t X11Modifiers::withoutLocks(uint16_t state) const {
  constexpr uint16_t kAll = 0xff;  // above are the pointer's buttons and the layout's group
  return static_cast<uint16_t>(state & kAll & ~(XCB_MOD_MASK_LOCK | numLock_ | scrollLock_));
}

}  // namespace quillmere
