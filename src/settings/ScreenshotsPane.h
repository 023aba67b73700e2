#pragma once

#include "settings/SettingsPane.h"
#include "settings/SettingsServices.h"

namespace quillmere {

class ScreenshotLocationRow;

/// Where screenshots come from, and how they go.
class ScreenshotsPane final : public SettingsPane {
 public:
  ScreenshotsPane(AppModel& model, const SettingsServices& services, QWidget* parent);

  bool shows(ModelField field) const override;
  void refresh() override;

 private:
  void makeFolder(const SettingsServices& services);
  void makeTrash();
  void makeThumbnail(const SettingsServices& services);

  QLabel* folderName_ = nullptr;
  SymbolNote* folderStatus_ = nullptr;
  QLabel* cannotFollow_ = nullptr;
  ScreenshotLocationRow* location_ = nullptr;
  QCheckBox* includesOthers_ = nullptr;
  QCheckBox* showsDeleteImmediately_ = nullptr;
  QCheckBox* deletesChosen_ = nullptr;
  QCheckBox* deletesExpired_ = nullptr;
};

}  // namespace quillmere
