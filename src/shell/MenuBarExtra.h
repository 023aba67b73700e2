#pragma once

#include <functional>
#include <memory>

class QMenu;
class QSystemTrayIcon;

namespace quillmere {

/// The icon in the desktop's tray, with its menu.
class MenuBarExtra {
 public:
  struct Actions {
    std::function<void()> openInbox;
    std::function<void()> review;
    std::function<void()> openSettings;
    std::function<void()> quit;
  };
  explicit MenuBarExtra(Actions actions);
  ~MenuBarExtra();

  void setShown(bool isShown);

 private:
  Actions actions_;
  std::unique_ptr<QMenu> menu_;
  std::unique_ptr<QSystemTrayIcon> icon_;
};

}  // namespace quillmere
