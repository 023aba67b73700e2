#pragma once

#include <optional>

#include "model/HotKeyShortcut.h"

class QKeyEvent;

namespace quillmere {

/// A key that goes down while a shortcut is recorded.
struct KeyDown {
  std::optional<quint32> keyCode;  ///< as a shortcut has it; none of a key that no shortcut can have
  quint64 modifiers = 0;           ///< of `HotKeyShortcut`
  bool isRepeat = false;

  bool operator==(const KeyDown&) const = default;
  /// Nothing for keys that only modify or lock.
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
    unusable,  ///< no shortcut has this key
  };
  Kind kind = Kind::ignore;
  HotKeyShortcut shortcut = {};
  std::optional<HotKeyShortcut::Issue> issue = std::nullopt;

  bool operator==(const RecordedKey&) const = default;
  static RecordedKey of(const KeyDown& key);
};

}  // namespace quillmere
