#include "inbox/InboxMenuBar.h"

#include <QtGui/QAction>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenuBar>

#include "foundation/Localized.h"
#include "inbox/ReviewAction.h"

namespace quillmere {
namespace {

/// An item that is done by the widget that has the keyboard, as fields do by themselves. Its key only stands beside it:
/// the field takes it first.
void addFieldAction(QMenu& menu, const QString& title, QKeySequence::StandardKey key, const char* slot) {
  QAction* action = menu.addAction(title, &menu, [slot] {
    QWidget* field = QApplication::focusWidget();
    const QByteArray signature = QByteArray(slot) + "()";
    if (field && field->metaObject()->indexOfSlot(signature.constData()) >= 0) QMetaObject::invokeMethod(field, slot);
  });
  action->setShortcut(key);
  action->setShortcutContext(Qt::WidgetShortcut);
}

}  // namespace

InboxMenuBar::InboxMenuBar(InboxPresentation& presentation, InboxSharing& sharing, Actions actions, QWidget& window)
    : presentation_(presentation), actions_(std::move(actions)), bar_(new QMenuBar(&window)) {
  makeFileMenu();
  makeEditMenu();
  makeScreenshotMenu(sharing);
  makeHelpMenu();
  refresh();
}

void InboxMenuBar::makeFileMenu() {
  QMenu* menu = bar_->addMenu(localized("File"));
  menu->addAction(localized("About Quillmere"), menu, [this] { actions_.openAbout(); });
  checkForUpdates_ = menu->addAction(localized("Check for Updates…"), menu, [this] { actions_.checkForUpdates(); });
  menu->addSeparator();
  menu->addAction(localized("Choose Screenshot Folder…"), menu, [this] { actions_.chooseFolder(); });
  menu->addSeparator();
  menu->addAction(localized("Settings"), menu, [this] { actions_.openSettings(); })
      ->setShortcut(Qt::CTRL | Qt::Key_Comma);
  menu->addSeparator();
  menu->addAction(localized("Close Window"), menu, [this] { actions_.close(); })->setShortcut(Qt::CTRL | Qt::Key_W);
  menu->addAction(localized("Quit Quillmere"), menu, [this] { actions_.quit(); })->setShortcut(Qt::CTRL | Qt::Key_Q);
}

void InboxMenuBar::makeEditMenu() {
  QMenu* menu = bar_->addMenu(localized("Edit"));
  addFieldAction(*menu, localized("Undo"), QKeySequence::Undo, "undo");
  addFieldAction(*menu, localized("Redo"), QKeySequence::Redo, "redo");
  menu->addSeparator();
  addFieldAction(*menu, localized("Cut"), QKeySequence::Cut, "cut");
  addFieldAction(*menu, localized("Copy"), QKeySequence::Copy, "copy");
  addFieldAction(*menu, localized("Paste"), QKeySequence::Paste, "paste");
  QAction* all = menu->addAction(localized("Select All"), menu, [this] { actions_.selectAll(); });
  all->setShortcut(QKeySequence::SelectAll);
  all->setShortcutContext(Qt::WidgetShortcut);
  menu->addSeparator();
  find_ = menu->addAction(localized("Find"), menu, [this] { presentation_.find(); });
  find_->setShortcut(Qt::CTRL | Qt::Key_F);
}

void InboxMenuBar::makeScreenshotMenu(InboxSharing& sharing) {
  QMenu* menu = bar_->addMenu(localized("Screenshot"));
  review_ = new ReviewAction(presentation_.model(), menu);
  menu->addAction(review_);
  menu->addSeparator();
  items_ = new ScreenshotMenuItems(
      *menu, [this] { return ScreenshotActionsMenu::ofSelection(presentation_); }, sharing,
      ScreenshotMenuItems::Keys::active);
}

void InboxMenuBar::makeHelpMenu() {
  QMenu* menu = bar_->addMenu(localized("Help"));
  menu->addAction(localized("Welcome to Quillmere"), menu, [this] { actions_.openWelcome(); });
  menu->addAction(localized("Quillmere Help"), menu, [this] { actions_.openHelp(); });
  menu->addSeparator();
  menu->addAction(localized("Quillmere Support Website"), menu, [this] { actions_.openSupport(); });
  menu->addAction(localized("Contact Support…"), menu, [this] { actions_.writeToSupport(); });
  menu->addSeparator();
  menu->addAction(localized("Keyboard Shortcuts"), menu, [this] { actions_.showKeys(); });
}

void InboxMenuBar::refresh() {
  const bool isShowingModal = presentation_.isShowingModal();
  find_->setEnabled(!isShowingModal);
  review_->setEnabled(!isShowingModal);
  checkForUpdates_->setEnabled(actions_.canCheckForUpdates());
  items_->refresh();
}

}  // namespace quillmere
