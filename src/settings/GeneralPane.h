#pragma once

#include "settings/SettingsPane.h"
#include "settings/SettingsServices.h"

class QComboBox;

namespace quillmere {

class LoginItemStatusRow;

/// How the program is there at all: at login, in the tray, up to date; and what it calls and keeps.
class GeneralPane final : public SettingsPane {
 public:
  GeneralPane(AppModel& model, const SettingsServices& services, QWidget* parent);

  bool shows(ModelField field) const override;
  void refresh() override;
  void appear() override { model().refreshLoginItemStatus(); }

 private:
  void makeLogin();
  void makeUpdates();
  void makeNaming();
  void makeClearing();
  void refreshLogin();
  void refreshTray();
  void refreshUpdates();
  void refreshNaming();

  SettingsServices services_;
  QCheckBox* login_ = nullptr;
  LoginItemStatusRow* loginStatus_ = nullptr;
  QCheckBox* menuBar_ = nullptr;
  QLabel* menuBarFooter_ = nullptr;
  QCheckBox* checksForUpdates_ = nullptr;
  QComboBox* naming_ = nullptr;
  QLabel* namingFooter_ = nullptr;
  Connection updates_;
  Connection tray_;
};

}  // namespace quillmere
