#include "shell/MenuBarExtra.h"

#include <QtGui/QIcon>
#include <QtWidgets/QMenu>
#include <QtWidgets/QSystemTrayIcon>

#include "controls/Symbol.h"
#include "foundation/Localized.h"
#include "inbox/ReviewAction.h"

namespace quillmere {
namespace {

/// Panels paint a symbolic icon in the colour of their texts. Where it is not installed they get pixels: panels are
/// dark or light without telling, and this grey is seen on both.
QIcon trayIcon() {
  QIcon icon;
  for (const int side : {16, 22, 24, 32, 48}) {
    icon.addPixmap(symbolPixmap(QStringLiteral("viewfinder"), side, QColor(0x8a8f98), 1));
  }
  return QIcon::fromTheme(QStringLiteral("com.quillmere.app-symbolic"), icon);
}

}  // namespace

MenuBarExtra::MenuBarExtra(AppModel& model, SoftwareUpdateModel& updates, DesktopTray& tray, Actions actions)
    : model_(model),
      updates_(updates),
      tray_(tray),
      actions_(std::move(actions)),
      trayChanges_(tray.changed.connect([this] { follow(); })) {}

MenuBarExtra::~MenuBarExtra() = default;

void MenuBarExtra::setShown(bool isShown) {
  isShown_ = isShown;
  follow();
}

/// A tray that comes back is another one: it gets an icon anew.
void MenuBarExtra::follow() {
  if (!isShown_ || !tray_.isThere()) {
    icon_.reset();
    updateChanges_.reset();
    // Later: what was chosen in it may still be going on, such as the question whether to quit.
    if (menu_) menu_.release()->deleteLater();
    return;
  }
  if (icon_) return;
  makeMenu();
  icon_ = std::make_unique<QSystemTrayIcon>(trayIcon());
  icon_->setToolTip(localized("Quillmere"));
  icon_->setContextMenu(menu_.get());
  QObject::connect(icon_.get(), &QSystemTrayIcon::activated, icon_.get(), [this](auto reason) {
    if (reason == QSystemTrayIcon::Trigger) actions_.openInbox();
  });
  icon_->show();
}

void MenuBarExtra::makeMenu() {
  menu_ = std::make_unique<QMenu>();
  QMenu* menu = menu_.get();
  menu->addAction(localized("Open Quillmere"), menu, [this] { actions_.openInbox(); });
  menu->addAction(new ReviewAction(model_, menu));
  menu->addSeparator();
  menu->addAction(localized("About Quillmere"), menu, [this] { actions_.openAbout(); });
  menu->addAction(localized("Settings"), menu, [this] { actions_.openSettings(); });
  QAction* check = menu->addAction(localized("Check for Updates…"), menu, [this] { updates_.checkForUpdates(); });
  const auto dim = [this, check] { check->setEnabled(updates_.canCheckForUpdates()); };
  updateChanges_ = updates_.changed.connect(dim);
  dim();
  menu->addSeparator();
  menu->addAction(localized("Quit Quillmere"), menu, [this] { actions_.quit(); });
}

}  // namespace quillmere
