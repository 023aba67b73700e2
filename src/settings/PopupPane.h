#pragma once

#include "settings/SettingsPane.h"

namespace quillmere {

class SecondsField;

/// What the popup shows, when it comes and when it goes.
class PopupPane final : public SettingsPane {
 public:
  PopupPane(AppModel& model, QWidget* parent);

  bool shows(ModelField field) const override;
  void refresh() override;

 private:
  void makeSeries();
  void makeTimeout();

  QCheckBox* showsThumbnail_;
  QCheckBox* waitsForPause_ = nullptr;
  QLabel* pauseLabel_ = nullptr;
  SecondsField* pause_ = nullptr;
  QCheckBox* gathersSeries_ = nullptr;
  QCheckBox* dismissesPopup_ = nullptr;
  QLabel* secondsLabel_ = nullptr;
  SecondsField* seconds_ = nullptr;
};

}  // namespace quillmere
