#include "model/HotKeyShortcut.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QLocale>
#include <algorithm>
#include <array>
#include <limits>
#include <set>
#include <utility>

#include "foundation/Localized.h"

namespace quillmere {
namespace {

/// F1 to F20.
constexpr std::array<quint32, 20> kFunctionKeys{122, 120, 99,  118, 96,  97,  98, 100, 101, 109,
                                                103, 111, 105, 107, 113, 106, 64, 79,  80,  90};

std::optional<int> functionKeyNumber(quint32 keyCode) {
  const auto* found = std::find(kFunctionKeys.begin(), kFunctionKeys.end(), keyCode);
  return found == kFunctionKeys.end() ? std::nullopt
                                      : std::optional(static_cast<int>(found - kFunctionKeys.begin()) + 1);
}

using Combination = std::pair<quint32, quint64>;

std::set<Combination> makeReserved() {
  constexpr std::array<quint32, 4> kArrows{123, 124, 126, 125};
  std::set<Combination> reserved;
  const auto reserve = [&](quint64 modifiers, std::initializer_list<quint32> keys) {
    for (const quint32 key : keys) reserved.emplace(key, modifiers);
  };
  const auto reserveArrows = [&](quint64 modifiers) {
    for (const quint32 key : kArrows) reserved.emplace(key, modifiers);
  };
  using enum HotKeyShortcut::Modifier;
  reserve(command, {12, 13, 4, 46, 45, 31, 35, 1, 0, 8, 9, 7, 6, 3, 17, 43, 50, 48, 49, 96});
  reserveArrows(command);
  reserve(command | shift, {48, 6, 12, 20, 21, 23, 22, 44});
  reserveArrows(command | shift);
  reserve(control | command | shift, {20, 21, 23, 22});
  reserve(control | command, {12, 3, 49});
  reserve(option | command, {53, 49, 4, 2, 28, 24, 27, 96});
  reserve(option | shift | command, {12});
  reserve(control | option | command, {28, 47, 43});
  reserve(control, {49, 122, 120, 99, 118, 96, 97, 98, 100, 0, 11, 2, 14, 3, 4, 40, 45, 31, 35, 17, 9, 16});
  reserveArrows(control);
  return reserved;
}

bool isReserved(const HotKeyShortcut& shortcut) {
  static const std::set<Combination> kReserved = makeReserved();
  return kReserved.contains({shortcut.keyCode, shortcut.modifiers});
}

/// Keys that no layout names.
struct FixedName {
  QString symbol;
  QString spelled;
};
std::optional<FixedName> fixedName(quint32 keyCode) {
  const auto same = [](const QString& name) { return FixedName{name, name}; };
  switch (keyCode) {
    case 36:
      return same(localized("Return"));
    case 48:
      return same(localized("Tab"));
    case 49:
      return same(localized("Space"));
    case 51:
      return same(localized("key.delete"));
    case 53:
      return same(localized("Escape"));
    case 76:
      return same(localized("Enter"));
    case 114:
      return same(localized("key.help"));
    case 115:
      return same(localized("Home"));
    case 116:
      return same(localized("Page Up"));
    case 117:
      return same(localized("Forward Delete"));
    case 119:
      return same(localized("End"));
    case 121:
      return same(localized("Page Down"));
    case 123:
      return FixedName{QStringLiteral("←"), localized("Left Arrow")};
    case 124:
      return FixedName{QStringLiteral("→"), localized("Right Arrow")};
    case 125:
      return FixedName{QStringLiteral("↓"), localized("Down Arrow")};
    case 126:
      return FixedName{QStringLiteral("↑"), localized("Up Arrow")};
    default:
      break;
  }
  if (const auto number = functionKeyNumber(keyCode)) return same(QStringLiteral("F%1").arg(*number));
  return std::nullopt;
}

/// Without white space and control characters at both ends.
QString trimmed(const QString& text) {
  const auto isBlank = [](QChar unit) { return unit.isSpace() || unit.category() == QChar::Other_Control; };
  const auto* first = std::find_if_not(text.begin(), text.end(), isBlank);
  const auto last = std::find_if_not(text.rbegin(), text.rend(), isBlank).base();
  return first < last ? QString(first, last - first) : QString();
}

FixedName keyName(quint32 keyCode, const KeyboardLayout& layout) {
  if (auto fixed = fixedName(keyCode)) return *fixed;
  for (const QString& text : layout.texts(keyCode)) {
    if (const QString name = QLocale().toUpper(trimmed(text)); !name.isEmpty()) return {name, name};
  }
  const QString code = localized("Key %u").replace(QLatin1String("%u"), QString::number(keyCode));
  return {code, code};
}

std::optional<quint64> wholeNumber(const QJsonValue& value, quint64 most) {
  const qint64 number = value.toInteger(-1);
  if (number < 0 || static_cast<quint64>(number) > most) return std::nullopt;
  return static_cast<quint64>(number);
}

}  // namespace

std::optional<HotKeyShortcut::Issue> HotKeyShortcut::validate() const {
  if ((modifiers & (control | option | command)) == 0) return Issue::needsModifier;
  if ((modifiers & (control | command)) == 0 && !functionKeyNumber(keyCode)) return Issue::typesCharacter;
  if (isReserved(*this)) return Issue::reserved;
  return std::nullopt;
}

QString HotKeyShortcut::symbols(const KeyboardLayout& layout) const {
  QString text;
  if (modifiers & control) text += localized("⌃");
  if (modifiers & option) text += localized("⌥");
  if (modifiers & shift) text += localized("⇧");
  if (modifiers & command) text += localized("⌘");
  return text + keyName(keyCode, layout).symbol;
}

QString HotKeyShortcut::spelledOut(const KeyboardLayout& layout) const {
  QStringList names;
  if (modifiers & control) names << localized("Control");
  if (modifiers & option) names << localized("Option");
  if (modifiers & shift) names << localized("Shift");
  if (modifiers & command) names << localized("Command");
  names << keyName(keyCode, layout).spelled;
  return names.join(localized("shortcut.separator"));
}

QString message(HotKeyShortcut::Issue issue) {
  switch (issue) {
    case HotKeyShortcut::Issue::needsModifier:
      return localized("Include Command, Control, or Option.");
    case HotKeyShortcut::Issue::typesCharacter:
      return localized("Option shortcuts type special characters. Add Command or Control.");
    case HotKeyShortcut::Issue::reserved:
      return localized("macOS or most apps already use this shortcut. Choose a different shortcut.");
  }
  return {};
}

QByteArray StoredShortcut::encode(const std::optional<HotKeyShortcut>& shortcut) {
  if (!shortcut) return "null";
  const QJsonObject object{{QStringLiteral("keyCode"), static_cast<qint64>(shortcut->keyCode)},
                           {QStringLiteral("modifiers"), static_cast<qint64>(shortcut->modifiers)}};
  return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

std::optional<std::optional<HotKeyShortcut>> StoredShortcut::decode(const QByteArray& json) {
  if (json.trimmed() == "null") return std::optional<HotKeyShortcut>();
  const QJsonObject object = QJsonDocument::fromJson(json).object();
  const auto keyCode = wholeNumber(object[QLatin1String("keyCode")], std::numeric_limits<quint32>::max());
  const auto modifiers = wholeNumber(object[QLatin1String("modifiers")], std::numeric_limits<qint64>::max());
  if (!keyCode || !modifiers) return std::nullopt;
  return HotKeyShortcut{static_cast<quint32>(*keyCode), *modifiers & HotKeyShortcut::kModifierMask};
}

}  // namespace quillmere
