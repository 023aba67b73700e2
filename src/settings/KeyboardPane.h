#pragma once

#include "settings/SettingsPane.h"
#include "settings/SettingsServices.h"

namespace quillmere {

class RestoreDefaultShortcutButton;
class ShortcutRecorder;

/// The review shortcut, and how far it reaches.
class KeyboardPane final : public SettingsPane {
 public:
  KeyboardPane(AppModel& model, const SettingsServices& services, QWidget* parent);

  bool shows(ModelField field) const override;
  void refresh() override;

 private:
  ShortcutRecorder* recorder_ = nullptr;
  RestoreDefaultShortcutButton* restore_ = nullptr;
  QLabel* footer_ = nullptr;
  SymbolNote* error_ = nullptr;
  SymbolNote* controlOption_ = nullptr;
  SymbolNote* commandsOfApps_ = nullptr;
  SymbolNote* chosenByDesktop_ = nullptr;
  SymbolNote* reach_ = nullptr;
  Connection hotKeys_;
};

}  // namespace quillmere
