#pragma once

#include <QtWidgets/QWidget>

#include "model/AppModel.h"
#include "settings/SettingsServices.h"

class QLabel;

namespace quillmere {

class ActionButton;
class SymbolLabel;

/// What the row says of the folder that the desktop saves to.
struct ScreenshotLocationContent {
  QString symbol;  ///< none when empty
  QString status;  ///< nothing is shown when empty
  QString watched;
  QString hint;
  bool offersUndo = false;
  bool offersThisFolder = false;
  bool offersSavingHere = false;
  bool offersHelp = false;

  static ScreenshotLocationContent make(const AppModel& model);
  bool operator==(const ScreenshotLocationContent&) const = default;
};

/// Compares the watched folder with the one that the desktop saves screenshots to, and brings the two together.
class ScreenshotLocationRow final : public QWidget {
 public:
  ScreenshotLocationRow(AppModel& model, const SettingsServices& services, QWidget* parent);
  void update();

 private:
  AppModel& model_;
  SettingsServices services_;
  SymbolLabel* symbol_;
  QLabel* text_;
  QLabel* hint_;
  ActionButton* undo_;
  ActionButton* dismiss_;
  ActionButton* useThisFolder_;
  ActionButton* saveHere_;
  ActionButton* help_;
};

}  // namespace quillmere
