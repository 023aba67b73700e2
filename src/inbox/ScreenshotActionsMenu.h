#pragma once

#include <QtGui/QKeySequence>
#include <vector>

#include "inbox/InboxPresentation.h"

namespace quillmere {

/// What can be done with screenshots, in the order of the menus.
enum class ScreenshotCommand {
  keep,
  markTemporary,  ///< for a duration
  rename,
  useSuggestedName,
  moveAndRename,
  quickLook,
  showInFinder,
  download,
  showOriginal,
  copy,
  share,  ///< with a target
  extractText,
  extractWindow,
  crop,
  analyze,
  removeFromInbox,
  moveToTrash,
  deleteImmediately,
};

/// A command as menus and buttons show it.
struct ScreenshotAction {
  ScreenshotCommand command;
  QString title;
  QString symbol;  ///< may be empty
  QString help;
  bool isEnabled = false;
  bool beginsGroup = false;
  QList<QKeySequence> keys;  ///< the first is the one that is shown
};

/// The commands over a list of screenshots: the same list serves the menu bar, the context menu of a row and the menu
/// of the toolbar, so that a command cannot differ between them. A value, made anew for each use.
class ScreenshotActionsMenu {
 public:
  /// `ids` in the order of the list. Those that are no record are left out.
  ScreenshotActionsMenu(const std::vector<UUID>& ids, AppModel& model, InboxPresentation& presentation);
  /// Over the records selected in the window; over none while a sheet is up.
  static ScreenshotActionsMenu ofSelection(InboxPresentation& presentation);

  const std::vector<UUID>& ids() const { return ids_; }
  std::vector<ScreenshotAction> actions() const;
  ScreenshotAction action(ScreenshotCommand command) const;
  bool isEnabled(ScreenshotCommand command) const;

  /// Does nothing where the command is not enabled.
  void perform(ScreenshotCommand command) const;
  void markTemporary(TemporaryDuration duration) const;

  // The records among them that a command acts on, in order.
  std::vector<UUID> keepable() const;
  std::vector<UUID> temporaryAble() const;
  std::vector<UUID> renamable() const;
  std::vector<UUID> downloadable() const;
  /// Their contents are on this machine, and can be reached.
  std::vector<UUID> readable() const;

 private:
  using Test = bool (ScreenshotActionsMenu::*)(const ScreenshotItem& item) const;
  std::vector<UUID> those(Test test) const;
  bool any(Test test) const;
  bool isReachable(const ScreenshotItem& item) const;
  bool canKeep(const ScreenshotItem& item) const;
  bool canMarkTemporary(const ScreenshotItem& item) const;
  bool canUseSuggestedName(const ScreenshotItem& item) const;
  bool canDownload(const ScreenshotItem& item) const;
  bool canRead(const ScreenshotItem& item) const;
  bool canAnalyze(const ScreenshotItem& item) const;

  std::vector<ScreenshotItem> items() const;
  const ScreenshotItem* single() const;
  void extractText() const;

  std::vector<UUID> ids_;
  AppModel* model_;
  InboxPresentation* presentation_;
};

}  // namespace quillmere
