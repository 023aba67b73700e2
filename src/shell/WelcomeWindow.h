#pragma once

#include <functional>

#include "controls/HelpAnchor.h"
#include "foundation/Signal.h"
#include "settings/DesktopTray.h"
#include "shell/SmallWindow.h"

namespace quillmere {

/// The first window of a new person: what the program does, and the choice of its folder.
class WelcomeWindow final : public SmallWindow {
 public:
  struct Actions {
    std::function<bool()> chooseFolder;           ///< the folder panel; true when a folder was chosen
    std::function<void()> openScreenshotOptions;  ///< none where there is nothing to open
    OpenHelp openHelp;
  };
  /// Without a tray it says how to come back to the program, now or when the tray goes.
  WelcomeWindow(Actions actions, DesktopTray& tray);

 private:
  QLayout* makeFacts();
  QWidget* makeTip();
  QWidget* makeReachability();
  QLayout* makeButtons();
  void chooseFolder();

  Actions actions_;
  Connection trayChanges_;
};

}  // namespace quillmere
