#pragma once

#include <QtWidgets/QWidget>
#include <functional>

#include "model/AppModel.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QSpinBox;
class QTabWidget;

namespace quillmere {

class ActionButton;
class ScreenshotLocationRow;
class SymbolLabel;

/// The settings. Each control writes at once what it shows; there is nothing to apply.
class SettingsWindow final : public QWidget {
 public:
  explicit SettingsWindow(AppModel& model);

  /// Asks whether every screenshot is to be saved in the folder of this name.
  std::function<bool(const QString& folder)> confirmSavingHere;

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  QWidget* makeGeneralPane();
  QWidget* makeScreenshotsPane();
  QWidget* makePopupPane();
  QWidget* makeIntelligencePane();
  void refreshIntelligence();
  void refreshForeignServer();
  void follow(const ModelChange& change);
  void refresh();
  void makeRoom();
  void showError();

  AppModel& model_;
  QComboBox* naming_ = nullptr;
  QLabel* namingFooter_ = nullptr;
  QLabel* folderName_ = nullptr;
  SymbolLabel* folderSymbol_ = nullptr;
  QLabel* folderStatus_ = nullptr;
  ScreenshotLocationRow* location_ = nullptr;
  QCheckBox* includesOthers_ = nullptr;
  QCheckBox* showsThumbnail_ = nullptr;
  QCheckBox* dismissesPopup_ = nullptr;
  QLabel* secondsLabel_ = nullptr;
  QSpinBox* seconds_ = nullptr;
  QTabWidget* tabs_ = nullptr;
  QCheckBox* waitsForPause_ = nullptr;
  QCheckBox* gathersSeries_ = nullptr;
  QLabel* pauseLabel_ = nullptr;
  QSpinBox* pause_ = nullptr;
  QCheckBox* analyzes_ = nullptr;
  SymbolLabel* modelSymbol_ = nullptr;
  QLabel* modelStatus_ = nullptr;
  QLineEdit* modelAddress_ = nullptr;
  QLabel* foreignServer_ = nullptr;
  ActionButton* allowsForeign_ = nullptr;
  QLabel* cannotFollow_ = nullptr;
  Connection changes_;
};

}  // namespace quillmere
