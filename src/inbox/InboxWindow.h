#pragma once

#include <QtWidgets/QWidget>
#include <functional>
#include <memory>

#include "inbox/InboxMenuBar.h"

class QSplitter;
class QStackedWidget;

namespace quillmere {

class ActionButton;
class InboxDetail;
class InboxSheets;
class InboxSidebar;
class MessageView;
class QuickLookPresenter;
class RenameSessionGuard;
class ScreenshotSelectionView;

/// The Inbox: what came, with its status, beside the one that is selected; or the folder set-up while none is chosen.
class InboxWindow final : public QWidget {
 public:
  InboxWindow(AppModel& model, const InboxServices& services);
  ~InboxWindow() override;

  InboxPresentation& presentation() { return presentation_; }
  /// Puts the keyboard on the list.
  void takeKeyboard();

  std::function<void()> onClosed;
  /// What the menus have of the program beyond this window; without one of them that item does nothing.
  struct ProgramActions {
    std::function<void()> openSettings = nullptr;
    std::function<void()> openAbout = nullptr;
    std::function<void()> openWelcome = nullptr;
    std::function<void()> checkForUpdates = nullptr;
    std::function<bool()> canCheckForUpdates = nullptr;
    std::function<void()> openHelp = nullptr;
    std::function<void()> openSupport = nullptr;
    std::function<void()> writeToSupport = nullptr;
    std::function<void()> quit = nullptr;
  };
  void setProgram(ProgramActions program);
  /// The menus say anew what can be done.
  void refreshMenus() { menus_->refresh(); }

 protected:
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  QWidget* makeToolbar();
  QWidget* makeDetail();
  void makeMenus();
  InboxPresentation::RenamePlace placeForRename(const UUID& id);
  void renameInHeader();
  void restorePlace();
  void savePlace();

  void follow(const ModelChange& change);
  void followPresentation(const InboxChange& change);
  void refreshSoon();
  void refresh();
  void showDetail();
  void showInboxError();
  void showKeys();
  void openContextMenu(const std::vector<UUID>& ids, QPoint global);
  void drag(const std::vector<UUID>& ids);
  void perform(ScreenshotCommand command);

  AppModel& model_;
  InboxPresentation presentation_;
  InboxSharing sharing_;
  ProgramActions program_;
  std::unique_ptr<InboxMenuBar> menus_;
  QSplitter* split_ = nullptr;
  InboxSidebar* sidebar_ = nullptr;
  QWidget* toolbar_ = nullptr;
  ActionButton* share_ = nullptr;
  ActionButton* more_ = nullptr;
  QStackedWidget* detail_ = nullptr;
  MessageView* setup_ = nullptr;
  MessageView* noScreenshots_ = nullptr;
  MessageView* noSelection_ = nullptr;
  InboxDetail* selected_ = nullptr;
  ScreenshotSelectionView* several_ = nullptr;
  std::unique_ptr<QuickLookPresenter> quickLook_;
  std::unique_ptr<InboxSheets> sheets_;
  std::unique_ptr<RenameSessionGuard> renameGuard_;
  bool isRefreshing_ = false;  ///< in a later turn
  bool isHeaderClicked_ = false;
  Connection changes_;
  Connection presentationChanges_;
};

}  // namespace quillmere
