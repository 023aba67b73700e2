#pragma once

#include "settings/SettingsPane.h"

class QLineEdit;

namespace quillmere {

class ActionButton;

/// Whether screenshots are described, and by which model server.
class IntelligencePane final : public SettingsPane {
 public:
  IntelligencePane(AppModel& model, QWidget* parent);

  bool shows(ModelField field) const override;
  void refresh() override;

 private:
  void makeServer();
  void refreshForeignServer();

  QCheckBox* analyzes_;
  SymbolNote* unavailable_;
  QLineEdit* address_ = nullptr;
  QLabel* foreignServer_ = nullptr;
  ActionButton* allowsForeign_ = nullptr;
};

}  // namespace quillmere
