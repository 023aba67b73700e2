#pragma once

#include <optional>

#include "model/HotKeyShortcut.h"

class QKeyEvent;

namespace quillmere {

/// A key that goes down while a shortcut is recorded.
struct KeyDown {
  quint32 keyCode = 0;    ///< as a shortcut has it
  quint64 modifiers = 0;  ///< of `HotKeyShortcut`
  bool isRepeat = false;

  bool operator==(const KeyDown&) const = default;
  /// Nothing for keys that make no shortcut: those that only modify or lock, and those without a code.
  static std::optional<KeyDown> of(const QKeyEvent& event, const KeyboardLayout& layout);
};

/// What a key means to a recording.
struct RecordedKey {
  enum class Kind {
    ignore,    ///< a held key
    pass,      ///< moves the focus, as always
    clear,     ///< no shortcut
    cancel,    ///< the one that was
    shortcut,  ///< this one
    issue,     ///< it cannot be one
  };
  Kind kind = Kind::ignore;
  HotKeyShortcut shortcut = {};
  std::optional<HotKeyShortcut::Issue> issue = std::nullopt;

  bool operator==(const RecordedKey&) const = default;
  static RecordedKey of(const KeyDown& key);
};

}  // namespace quillmere
