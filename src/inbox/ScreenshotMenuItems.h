#pragma once

#include <QtCore/QObject>
#include <functional>
#include <map>

#include "inbox/InboxSharing.h"
#include "inbox/ScreenshotActionsMenu.h"

class QAction;
class QMenu;

namespace quillmere {

/// The commands over screenshots as the items of a menu.
class ScreenshotMenuItems final : public QObject {
 public:
  using Source = std::function<ScreenshotActionsMenu()>;
  enum class Keys {
    active,  ///< they work while the menu's window has the keyboard
    shown,   ///< they only stand beside the items
  };
  /// Adds the items to `menu`, whose child this is. `source` gives what the commands act on, each time anew.
  ScreenshotMenuItems(QMenu& menu, Source source, InboxSharing& sharing, Keys keys);

  /// Makes the items say what can be done now. It is done by itself before the menu shows.
  void refresh();

 private:
  void addItem(const ScreenshotAction& action, Keys keys);
  void fillDurations(QMenu& submenu);
  void forgetTargets();
  static Task<> fillTargets(Weak<ScreenshotMenuItems> self);

  QMenu& menu_;
  Source source_;
  InboxSharing& sharing_;
  std::map<ScreenshotCommand, QAction*> items_;
  QMenu* targets_ = nullptr;
  std::vector<UUID> shared_;  ///< what the applications in the menu are for
  Lifetime lifetime_;
};

}  // namespace quillmere
