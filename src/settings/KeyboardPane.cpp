#include "settings/KeyboardPane.h"

#include <QtWidgets/QLabel>
#include <QtWidgets/QVBoxLayout>

#include "foundation/Localized.h"
#include "settings/RestoreDefaultShortcutButton.h"
#include "settings/ShortcutRecorder.h"
#include "settings/SymbolNote.h"

namespace quillmere {
namespace {

/// What a key of the desktop's own can be bound to.
const QString kCommand = QStringLiteral("quillmere --review");

QString textOf(HotKeyReach reach) {
  switch (reach) {
    case HotKeyReach::everywhere:
      break;
    case HotKeyReach::windowsOfX11:
      return localized(
          "Your desktop lets no app listen for keys in every window, so this shortcut is heard in some apps only. For "
          "a key that works everywhere, open your desktop’s keyboard settings, add a custom shortcut, and give it the "
          "command “%@”.",
          {kCommand});
    case HotKeyReach::nowhere:
      return localized(
          "Your desktop lets no app listen for keys, so this shortcut isn’t heard. For a key that works, open your "
          "desktop’s keyboard settings, add a custom shortcut, and give it the command “%@”.",
          {kCommand});
  }
  return {};
}

}  // namespace

KeyboardPane::KeyboardPane(AppModel& model, const SettingsServices& services, QWidget* parent)
    : SettingsPane(model, parent) {
  auto* rows = new QVBoxLayout;
  rows->setSpacing(10);
  column().addLayout(rows);
  recorder_ = new ShortcutRecorder(model, services.events, this);
  rows->addWidget(recorder_);
  restore_ = new RestoreDefaultShortcutButton(model, this);
  restore_->willRestore = [this] { recorder_->stop(); };
  rows->addWidget(restore_, 0, Qt::AlignTrailing);
  footer_ = addFooter(&column());
  error_ = addNote(&column());
  chosenByDesktop_ = addNote(&column());
  controlOption_ = addNote(&column());
  commandsOfApps_ = addNote(&column());
  reach_ = addNote(&column());
  column().addStretch();
  hotKeys_ = model.hotKeys().changed.connect([this] { refresh(); });
}

bool KeyboardPane::shows(ModelField field) const {
  return field == ModelField::hotKeyShortcut || field == ModelField::hotKeyError;
}

void KeyboardPane::refresh() {
  recorder_->refresh();
  restore_->refresh();
  error_->show(QStringLiteral("exclamationmark.triangle.fill"), Ink::warning, model().hotKeyError->value_or(QString()));
  const HotKeyRegistering& hotKeys = model().hotKeys();
  footer_->setText(
      hotKeys.reach() == HotKeyReach::everywhere
          ? localized("Press this shortcut in any app to move keyboard focus to the screenshot popup. Press Escape to "
                      "return to the app you were using.")
          : localized("Reviewing a screenshot moves keyboard focus to its popup. Press Escape to return to the app you "
                      "were using."));
  const QString info = QStringLiteral("info.circle");
  const QString chosen = hotKeys.chosenByDesktop();
  chosenByDesktop_->show(
      info, Ink::secondary,
      chosen.isEmpty() ? QString()
                       : localized("Your desktop has the last word, and gave this shortcut %@. You can change it in "
                                   "your desktop’s keyboard settings.",
                                   {chosen}));
  constexpr quint64 kBoth = HotKeyShortcut::control | HotKeyShortcut::option;
  const auto& shortcut = *model().settings().hotKeyShortcut;
  const bool hasBoth = shortcut && (shortcut->modifiers & kBoth) == kBoth;
  controlOption_->show(
      info, Ink::secondary,
      hasBoth ? localized("This shortcut includes Control-Option, which VoiceOver also uses.") : QString());
  // Apps of this desktop have their commands on Control; they do not get what is heard here.
  constexpr quint64 kCommands = HotKeyShortcut::control | HotKeyShortcut::shift;
  const bool isOfApps = shortcut && (shortcut->modifiers & ~kCommands) == 0;
  commandsOfApps_->show(info, Ink::secondary,
                        isOfApps ? localized("Apps may use this shortcut for commands of their own. While it is set "
                                             "here, it doesn’t reach them.")
                                 : QString());
  reach_->show(info, Ink::secondary, shortcut ? textOf(hotKeys.reach()) : QString());
}

}  // namespace quillmere
