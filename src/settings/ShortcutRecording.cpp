#include "settings/ShortcutRecording.h"

#include <QtGui/QKeyEvent>

namespace quillmere {
namespace {

constexpr quint32 kTab = 48;
constexpr quint32 kDelete = 51;
constexpr quint32 kEscape = 53;
constexpr quint32 kForwardDelete = 117;

bool isModifierOrLock(int key) {
  switch (key) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Meta:
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
    case Qt::Key_Super_L:
    case Qt::Key_Super_R:
    case Qt::Key_Hyper_L:
    case Qt::Key_Hyper_R:
    case Qt::Key_CapsLock:
    case Qt::Key_NumLock:
    case Qt::Key_ScrollLock:
    case Qt::Key_Mode_switch:
    case Qt::Key_Multi_key:
      return true;
    default:
      return false;
  }
}

quint64 modifiersOf(Qt::KeyboardModifiers held) {
  quint64 modifiers = 0;
  if (held & Qt::ShiftModifier) modifiers |= HotKeyShortcut::shift;
  if (held & Qt::ControlModifier) modifiers |= HotKeyShortcut::control;
  if (held & Qt::AltModifier) modifiers |= HotKeyShortcut::option;
  if (held & Qt::MetaModifier) modifiers |= HotKeyShortcut::command;
  return modifiers;
}

}  // namespace

std::optional<KeyDown> KeyDown::of(const QKeyEvent& event, const KeyboardLayout& layout) {
  if (isModifierOrLock(event.key())) return std::nullopt;
  return KeyDown{layout.keyCode(event.nativeScanCode()), modifiersOf(event.modifiers()), event.isAutoRepeat()};
}

RecordedKey RecordedKey::of(const KeyDown& key) {
  constexpr quint64 kBesideShift = HotKeyShortcut::command | HotKeyShortcut::control | HotKeyShortcut::option;
  if (key.isRepeat) return {Kind::ignore};
  if (!key.keyCode) return {Kind::unusable};
  if (key.keyCode == kTab && (key.modifiers & kBesideShift) == 0) return {Kind::pass};
  const quint64 modifiers = key.modifiers & HotKeyShortcut::kModifierMask;
  if ((key.keyCode == kDelete || key.keyCode == kForwardDelete) && modifiers == 0) return {Kind::clear};
  if (key.keyCode == kEscape && modifiers == 0) return {Kind::cancel};
  const HotKeyShortcut shortcut{*key.keyCode, modifiers};
  const auto issue = shortcut.validate();
  return {issue ? Kind::issue : Kind::shortcut, shortcut, issue};
}

}  // namespace quillmere
