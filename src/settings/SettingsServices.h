#pragma once

#include <functional>

#include "controls/HelpAnchor.h"
#include "foundation/UserDefaults.h"
#include "settings/DesktopTray.h"
#include "update/SoftwareUpdateModel.h"

namespace quillmere {

struct SystemEvents;

/// What the Settings need besides the model. All of them outlive the window.
struct SettingsServices {
  UserDefaults* defaults = nullptr;  ///< what the window remembers
  OpenHelp openHelp = [](HelpAnchor) {};
  /// Opens the settings of the desktop's capture tool; none where there is nothing to open.
  std::function<void()> openScreenshotOptions = nullptr;
  SoftwareUpdateModel* updates = nullptr;  ///< none where nothing is ever updated
  DesktopTray* tray = nullptr;             ///< none where nobody asks
  SystemEvents* events = nullptr;          ///< none where nobody tells them
  /// Asks whether every screenshot is to be saved in the folder of this name.
  std::function<bool(const QString& folder)> confirmSavingHere = nullptr;
  /// Asks whether every record is to be forgotten.
  std::function<bool()> confirmClearingRecords = nullptr;
};

}  // namespace quillmere
