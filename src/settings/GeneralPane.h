#pragma once

#include <optional>

#include "settings/SettingsPane.h"
#include "settings/SettingsServices.h"

class QComboBox;

namespace quillmere {

class LoginItemStatusRow;
struct LoginItemContent;

/// How the program is there at all: at login, in the tray, up to date; and what it calls and keeps.
class GeneralPane final : public SettingsPane {
 public:
  GeneralPane(AppModel& model, const SettingsServices& services, QWidget* parent);

  bool shows(ModelField field) const override;
  void refresh() override;
  void appear() override;

 private:
  void makeLogin();
  void makeUpdates();
  void makeNaming();
  void makeClearing();
  LoginItemContent loginContent() const;
  void refreshLogin();
  void refreshTray();
  void refreshUpdates();
  void refreshNaming();

  SettingsServices services_;
  QCheckBox* login_ = nullptr;
  std::optional<bool> askedToOpenAtLogin_;  ///< what the desktop seemed to take when it was last turned here
  LoginItemStatusRow* loginStatus_ = nullptr;
  QCheckBox* menuBar_ = nullptr;
  QLabel* menuBarFooter_ = nullptr;
  QCheckBox* checksForUpdates_ = nullptr;
  QLabel* updatesFooter_ = nullptr;
  QComboBox* naming_ = nullptr;
  QLabel* namingFooter_ = nullptr;
  Connection updates_;
  Connection tray_;
};

}  // namespace quillmere
