#pragma once

#include <functional>
#include <memory>

#include "inbox/ScreenshotMenuItems.h"

class QMenuBar;

namespace quillmere {

/// The menus of the Inbox. A desktop that shows menus in a place of its own takes them over.
class InboxMenuBar {
 public:
  struct Actions {
    std::function<void()> chooseFolder;
    std::function<void()> openSettings;
    std::function<void()> openAbout;
    std::function<void()> checkForUpdates;
    std::function<bool()> canCheckForUpdates;
    std::function<void()> close;
    std::function<void()> quit;
    std::function<void()> openWelcome;
    std::function<void()> openHelp;
    std::function<void()> openSupport;
    std::function<void()> writeToSupport;
    std::function<void()> selectAll;
    std::function<void()> showKeys;
  };
  /// `window` has the bar and the keys.
  InboxMenuBar(InboxPresentation& presentation, InboxSharing& sharing, Actions actions, QWidget& window);

  QMenuBar& bar() const { return *bar_; }
  /// Makes the items say what can be done now.
  void refresh();

 private:
  void makeFileMenu();
  void makeEditMenu();
  void makeScreenshotMenu(InboxSharing& sharing);
  void makeHelpMenu();

  InboxPresentation& presentation_;
  Actions actions_;
  QMenuBar* bar_;
  QAction* find_ = nullptr;
  QAction* review_ = nullptr;
  QAction* checkForUpdates_ = nullptr;
  ScreenshotMenuItems* items_ = nullptr;
};

}  // namespace quillmere
