#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <optional>

namespace quillmere {

/// The keyboard as the person has set it up. Key codes are the stored ones, by the key's place (`HotKeyShortcut`).
class KeyboardLayout {
 public:
  virtual ~KeyboardLayout() = default;
  /// What the key writes without modifiers, by the layout in use and then by the first Latin one; a layout without the
  /// key gives an empty text or none.
  virtual QStringList texts(quint32 keyCode) const = 0;
  /// The key whose press told this number (`QKeyEvent::nativeScanCode`); none for a key that has no stored code.
  virtual std::optional<quint32> keyCode(quint32 nativeScanCode) const = 0;
};

/// A key with modifiers that is heard whichever program has the keyboard.
struct HotKeyShortcut {
  enum Modifier : quint64 { shift = 0x20000, control = 0x40000, option = 0x80000, command = 0x100000 };
  static constexpr quint64 kModifierMask = shift | control | option | command;

  quint32 keyCode = 0;    ///< by the key's place on the keyboard, in the numbers that are stored: 0 is A, 11 is B
  quint64 modifiers = 0;  ///< of `Modifier`; Option is Alt here, Command the Super key

  bool operator==(const HotKeyShortcut&) const = default;

  /// Control, Shift, Command and B.
  static HotKeyShortcut standard() { return {11, control | shift | command}; }

  /// Why a shortcut cannot be one.
  enum class Issue {
    needsModifier,
    typesCharacter,
    reserved,  ///< by most desktops or programs
  };
  std::optional<Issue> validate() const;

  /// In the short form of menus and fields.
  QString symbols(const KeyboardLayout& layout) const;
  /// In words, as they are spoken.
  QString spelledOut(const KeyboardLayout& layout) const;
};
QString message(HotKeyShortcut::Issue issue);

/// A shortcut or the choice to have none, as it is stored: a JSON object with "keyCode" and "modifiers", or null.
namespace StoredShortcut {
QByteArray encode(const std::optional<HotKeyShortcut>& shortcut);
/// Nothing for what cannot be read. Flags beyond the modifiers have no effect.
std::optional<std::optional<HotKeyShortcut>> decode(const QByteArray& json);
}  // namespace StoredShortcut

}  // namespace quillmere
