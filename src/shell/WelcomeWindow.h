#pragma once

#include <functional>

#include "controls/HelpAnchor.h"
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
  /// `hasTray`: whether the program's icon can be seen on this desktop.
  WelcomeWindow(Actions actions, bool hasTray);

 private:
  QLayout* makeFacts();
  QWidget* makeTip();
  QWidget* makeReachability();
  QLayout* makeButtons();
  void chooseFolder();

  Actions actions_;
};

}  // namespace quillmere
