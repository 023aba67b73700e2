#pragma once

#include <xkbcommon/xkbcommon.h>
#include <QtCore/QString>
#include <vector>

#include "platform/linux/shortcuts/XkbKeyboardLayout.h"

namespace quillmere {

/// A shortcut in the words of the desktops, which know keys by what they write.
struct KeyCombination {
  static KeyCombination of(const HotKeyShortcut& shortcut, const XkbKeyboardLayout& layout);

  /// As Qt counts keys with modifiers, in each way that a person could have set it.
  std::vector<int> qtKeys() const;
  /// Whether it is the one that is written as GTK does, such as "<Primary><Shift>b".
  bool isAccelerator(const QString& accelerator) const;
  /// As portals write it, such as "CTRL+SHIFT+LOGO+b"; empty for a key without a name.
  QString trigger() const;

  quint64 modifiers = 0;  ///< of `HotKeyShortcut::Modifier`
  std::vector<XkbKeyboardLayout::Symbols> symbols;
};

/// Whether a desktop's description of keys, which is meant for people, has them among its words: "Press <Control>B" has
/// "Ctrl+B", and "Ctrl+Shift+B" has not.
bool describesKeys(const QString& description, const QString& keys);

}  // namespace quillmere
