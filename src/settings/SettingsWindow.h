#pragma once

#include <QtWidgets/QWidget>
#include <vector>

#include "model/AppModel.h"
#include "settings/SettingsServices.h"

class QTabWidget;

namespace quillmere {

class SettingsPane;

/// The settings. Each control writes at once what it shows; there is nothing to apply. The window is as large as the
/// pane that needs the most, whichever is in front; on a screen that is smaller the panes scroll.
class SettingsWindow final : public QWidget {
 public:
  SettingsWindow(AppModel& model, SettingsServices services);

 protected:
  bool event(QEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void addPane(const char* key, SettingsPane* pane, const QString& title);
  void showLastPane();
  void rememberPane(int index);
  void follow(const ModelChange& change);
  void refresh();
  void appear();
  void makeRoom();
  void keepOnScreen();
  void showErrorLater();
  void showError();

  AppModel& model_;
  SettingsServices services_;
  QTabWidget* tabs_;
  std::vector<SettingsPane*> panes_;
  std::vector<QString> keys_;  ///< of the panes, as the last one is remembered
  Connection changes_;
};

}  // namespace quillmere
