#include "shell/MenuBarExtra.h"

#include <QtGui/QIcon>
#include <QtWidgets/QMenu>
#include <QtWidgets/QSystemTrayIcon>

#include "controls/Symbol.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

/// Docks are dark or light without telling; this grey is seen on both.
QIcon trayIcon() {
  QIcon icon;
  for (const int side : {16, 22, 24, 32, 48}) {
    icon.addPixmap(symbolPixmap(QStringLiteral("viewfinder"), side, QColor(0x8a8f98), 1));
  }
  return icon;
}

}  // namespace

MenuBarExtra::MenuBarExtra(Actions actions)
    : actions_(std::move(actions)), menu_(std::make_unique<QMenu>()), icon_(std::make_unique<QSystemTrayIcon>()) {
  menu_->addAction(localized("Open Quillmere"), menu_.get(), [this] { actions_.openInbox(); });
  menu_->addAction(localized("Review Screenshot"), menu_.get(), [this] { actions_.review(); });
  menu_->addSeparator();
  menu_->addAction(localized("Settings"), menu_.get(), [this] { actions_.openSettings(); });
  menu_->addAction(localized("Quit Quillmere"), menu_.get(), [this] { actions_.quit(); });
  icon_->setIcon(trayIcon());
  icon_->setToolTip(localized("Quillmere"));
  icon_->setContextMenu(menu_.get());
  QObject::connect(icon_.get(), &QSystemTrayIcon::activated, icon_.get(), [this](auto reason) {
    if (reason == QSystemTrayIcon::Trigger) actions_.openInbox();
  });
}

MenuBarExtra::~MenuBarExtra() = default;

void MenuBarExtra::setShown(bool isShown) {
  icon_->setVisible(isShown);
}

}  // namespace quillmere
