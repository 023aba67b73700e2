#include "inbox/ReviewAction.h"

#include "foundation/Localized.h"

namespace quillmere {
namespace {

/// Keys whose name in menus is not Qt's own.
Qt::Key namelessKey(quint32 keyCode) {
  switch (keyCode) {
    case 36:
      return Qt::Key_Return;
    case 48:
      return Qt::Key_Tab;
    case 49:
      return Qt::Key_Space;
    case 51:
      return Qt::Key_Backspace;
    case 53:
      return Qt::Key_Escape;
    case 76:
      return Qt::Key_Enter;
    case 114:
      return Qt::Key_Insert;
    case 115:
      return Qt::Key_Home;
    case 116:
      return Qt::Key_PageUp;
    case 117:
      return Qt::Key_Delete;
    case 119:
      return Qt::Key_End;
    case 121:
      return Qt::Key_PageDown;
    case 123:
      return Qt::Key_Left;
    case 124:
      return Qt::Key_Right;
    case 125:
      return Qt::Key_Down;
    case 126:
      return Qt::Key_Up;
    default:
      return Qt::Key_unknown;
  }
}

Qt::Key keyOf(quint32 keyCode, const KeyboardLayout& layout) {
  if (const Qt::Key key = namelessKey(keyCode); key != Qt::Key_unknown) return key;
  const QKeySequence named = QKeySequence::fromString(HotKeyShortcut{keyCode, 0}.symbols(layout));
  return named.count() == 1 ? named[0].key() : Qt::Key_unknown;
}

}  // namespace

QKeySequence keySequence(const HotKeyShortcut& shortcut, const KeyboardLayout& layout) {
  const Qt::Key key = keyOf(shortcut.keyCode, layout);
  if (key == Qt::Key_unknown) return {};
  Qt::KeyboardModifiers modifiers;
  modifiers.setFlag(Qt::ShiftModifier, (shortcut.modifiers & HotKeyShortcut::shift) != 0);
  modifiers.setFlag(Qt::ControlModifier, (shortcut.modifiers & HotKeyShortcut::control) != 0);
  modifiers.setFlag(Qt::AltModifier, (shortcut.modifiers & HotKeyShortcut::option) != 0);
  modifiers.setFlag(Qt::MetaModifier, (shortcut.modifiers & HotKeyShortcut::command) != 0);
  return QKeyCombination(modifiers, key);
}

ReviewAction::ReviewAction(AppModel& model, QObject* parent)
    : QAction(localized("Review Screenshot"), parent), model_(model) {
  setShortcutContext(Qt::WidgetShortcut);
  connect(this, &QAction::triggered, this, [this] { model_.reviewPending(FocusNews::silent); });
  changes_ = model_.changed.connect([this](const ModelChange& change) {
    if (change.field == ModelField::hotKeyShortcut || change.field == ModelField::hotKeyError) showKeys();
  });
  keyChanges_ = model_.hotKeys().changed.connect([this] { showKeys(); });
  showKeys();
}

/// Keys that are not heard, because the desktop refused them, are not promised.
void ReviewAction::showKeys() {
  const auto& shortcut = *model_.settings().hotKeyShortcut;
  const HotKeyRegistering& hotKeys = model_.hotKeys();
  if (!shortcut || *model_.hotKeyError || hotKeys.reach() == HotKeyReach::nowhere) {
    setShortcut({});
  } else if (const QString chosen = hotKeys.chosenByDesktop(); !chosen.isEmpty()) {
    setShortcut(QKeySequence::fromString(chosen));
  } else {
    setShortcut(keySequence(*shortcut, hotKeys.layout()));
  }
}

}  // namespace quillmere
