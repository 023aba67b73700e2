#pragma once

#include <functional>
#include <memory>

#include "model/AppModel.h"
#include "settings/DesktopTray.h"
#include "update/SoftwareUpdateModel.h"

class QMenu;
class QSystemTrayIcon;

namespace quillmere {

/// The icon in the desktop's tray, with its menu. Both are made when there is a tray to show them.
class MenuBarExtra {
 public:
  struct Actions {
    std::function<void()> openInbox;
    std::function<void()> openAbout;
    std::function<void()> openSettings;
    std::function<void()> quit;
  };
  MenuBarExtra(AppModel& model, SoftwareUpdateModel& updates, DesktopTray& tray, Actions actions);
  ~MenuBarExtra();

  /// Whether an icon can be seen at all: else the person has the launcher alone.
  bool hasTray() const { return tray_.isThere(); }
  void setShown(bool isShown);
  /// Null while the icon is not shown.
  QMenu* menu() const { return menu_.get(); }

 private:
  void follow();
  void makeMenu();

  AppModel& model_;
  SoftwareUpdateModel& updates_;
  DesktopTray& tray_;
  Actions actions_;
  bool isShown_ = false;
  std::unique_ptr<QMenu> menu_;
  std::unique_ptr<QSystemTrayIcon> icon_;
  Connection trayChanges_;
  Connection updateChanges_;
};

}  // namespace quillmere
