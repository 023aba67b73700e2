#include "platform/linux/shortcuts/KeyCombination.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QSet>
#include <algorithm>
#include <array>
#include <map>

namespace quillmere {
namespace {

using Modifier = HotKeyShortcut::Modifier;

/// Keys of Qt's that are no sign's number.
int qtKeyOf(xkb_keysym_t symbol) {
  static const std::map<xkb_keysym_t, Qt::Key> kNamed{{XKB_KEY_Escape, Qt::Key_Escape},
                                                      {XKB_KEY_Tab, Qt::Key_Tab},
                                                      {XKB_KEY_ISO_Left_Tab, Qt::Key_Backtab},
                                                      {XKB_KEY_BackSpace, Qt::Key_Backspace},
                                                      {XKB_KEY_Return, Qt::Key_Return},
                                                      {XKB_KEY_KP_Enter, Qt::Key_Enter},
                                                      {XKB_KEY_Insert, Qt::Key_Insert},
                                                      {XKB_KEY_Delete, Qt::Key_Delete},
                                                      {XKB_KEY_Home, Qt::Key_Home},
                                                      {XKB_KEY_End, Qt::Key_End},
                                                      {XKB_KEY_Left, Qt::Key_Left},
                                                      {XKB_KEY_Up, Qt::Key_Up},
                                                      {XKB_KEY_Right, Qt::Key_Right},
                                                      {XKB_KEY_Down, Qt::Key_Down},
                                                      {XKB_KEY_Page_Up, Qt::Key_PageUp},
                                                      {XKB_KEY_Page_Down, Qt::Key_PageDown}};
  if (const auto named = kNamed.find(symbol); named != kNamed.end()) return named->second;
  if (symbol >= XKB_KEY_F1 && symbol <= XKB_KEY_F35) return static_cast<int>(Qt::Key_F1 + symbol - XKB_KEY_F1);
  const char32_t sign = xkb_keysym_to_utf32(symbol);
  constexpr char32_t kSpace = U' ';
  return sign >= kSpace ? static_cast<int>(QChar::toUpper(sign)) : 0;
}

struct Accelerator {
  quint64 modifiers = 0;
  xkb_keysym_t key = XKB_KEY_NoSymbol;
};

/// None where it names a modifier that no shortcut of ours has.
std::optional<Accelerator> parsed(QString text) {
  static const std::map<QString, quint64> kModifiers{
      {QStringLiteral("primary"), Modifier::control}, {QStringLiteral("control"), Modifier::control},
      {QStringLiteral("ctrl"), Modifier::control},    {QStringLiteral("ctl"), Modifier::control},
      {QStringLiteral("shift"), Modifier::shift},     {QStringLiteral("shft"), Modifier::shift},
      {QStringLiteral("alt"), Modifier::option},      {QStringLiteral("mod1"), Modifier::option},
      {QStringLiteral("super"), Modifier::command},   {QStringLiteral("mod4"), Modifier::command}};
  Accelerator accelerator;
  while (text.startsWith(QLatin1Char('<'))) {
    const auto end = text.indexOf(QLatin1Char('>'));
    const auto known = kModifiers.find(text.mid(1, end - 1).toLower());
    if (end < 0 || known == kModifiers.end()) return std::nullopt;
    accelerator.modifiers |= known->second;
    text.remove(0, end + 1);
  }
  if (text == QLatin1String("Above_Tab")) text = QStringLiteral("grave");
  accelerator.key = xkb_keysym_from_name(text.toUtf8().constData(), XKB_KEYSYM_CASE_INSENSITIVE);
  return accelerator;
}

const std::map<QString, QString>& otherWords() {
  static const std::map<QString, QString> kWords{
      {QStringLiteral("control"), QStringLiteral("ctrl")}, {QStringLiteral("primary"), QStringLiteral("ctrl")},
      {QStringLiteral("ctl"), QStringLiteral("ctrl")},     {QStringLiteral("meta"), QStringLiteral("super")},
      {QStringLiteral("logo"), QStringLiteral("super")},   {QStringLiteral("win"), QStringLiteral("super")},
      {QStringLiteral("windows"), QStringLiteral("super")}};
  return kWords;
}

QSet<QString> wordsOf(const QString& text) {
  static const QRegularExpression kBetween(QStringLiteral("[\\s+<>]+"));
  QSet<QString> words;
  for (const QString& part : text.toLower().split(kBetween, Qt::SkipEmptyParts)) {
    const auto other = otherWords().find(part);
    words.insert(other == otherWords().end() ? part : other->second);
  }
  return words;
}

}  // namespace

KeyCombination KeyCombination::of(const HotKeyShortcut& shortcut, const XkbKeyboardLayout& layout) {
  return {shortcut.modifiers, layout.symbols(shortcut.keyCode)};
}

std::vector<int> KeyCombination::qtKeys() const {
  int flags = 0;
  if (modifiers & Modifier::shift) flags |= Qt::ShiftModifier;
  if (modifiers & Modifier::control) flags |= Qt::ControlModifier;
  if (modifiers & Modifier::option) flags |= Qt::AltModifier;
  if (modifiers & Modifier::command) flags |= Qt::MetaModifier;
  std::vector<int> keys;
  const auto add = [&](xkb_keysym_t symbol, int with) {
    const int key = qtKeyOf(symbol);
    if (key != 0 && std::find(keys.begin(), keys.end(), key | with) == keys.end()) keys.push_back(key | with);
  };
  for (const auto& [plain, shifted] : symbols) {
    add(plain, flags);
    // Signs that need Shift are kept as what it makes of them, often without a word of Shift.
    if ((modifiers & Modifier::shift) && qtKeyOf(shifted) != qtKeyOf(plain)) {
      add(shifted, flags);
      add(shifted, flags & ~static_cast<int>(Qt::ShiftModifier));
    }
  }
  return keys;
}

bool KeyCombination::isAccelerator(const QString& accelerator) const {
  const auto other = parsed(accelerator);
  if (!other || other->key == XKB_KEY_NoSymbol || other->modifiers != modifiers) return false;
  const xkb_keysym_t key = xkb_keysym_to_lower(other->key);
  return std::any_of(symbols.begin(), symbols.end(), [&](const XkbKeyboardLayout::Symbols& own) {
    const bool isShifted = (modifiers & Modifier::shift) && xkb_keysym_to_lower(own.shifted) == key;
    return xkb_keysym_to_lower(own.plain) == key || isShifted;
  });
}

QString KeyCombination::trigger() const {
  // The last one is the Latin layout's, by which shortcuts are kept.
  if (symbols.empty() || symbols.back().plain == XKB_KEY_NoSymbol) return {};
  constexpr size_t kLongest = 64;
  std::array<char, kLongest> name{};
  if (xkb_keysym_get_name(symbols.back().plain, name.data(), name.size()) < 0) return {};
  QString text;
  if (modifiers & Modifier::control) text += QLatin1String("CTRL+");
  if (modifiers & Modifier::option) text += QLatin1String("ALT+");
  if (modifiers & Modifier::shift) text += QLatin1String("SHIFT+");
  if (modifiers & Modifier::command) text += QLatin1String("LOGO+");
  return text + QString::fromLatin1(name.data());
}

bool describesKeys(const QString& description, const QString& keys) {
  static const QSet<QString> kModifiers{QStringLiteral("ctrl"), QStringLiteral("shift"), QStringLiteral("alt"),
                                        QStringLiteral("super")};
  const QSet<QString> theirs = wordsOf(description);
  const QSet<QString> ours = wordsOf(keys);
  return theirs.contains(ours) && (theirs & kModifiers) == (ours & kModifiers);
}

}  // namespace quillmere
