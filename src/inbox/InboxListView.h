#pragma once

#include <QtWidgets/QListView>
#include <functional>

#include "inbox/InboxListModel.h"

namespace quillmere {

class NameField;
class ScreenshotRowDelegate;

/// The list of screenshots. What is selected in it is what the model holds as selected, at every moment.
class InboxListView final : public QListView {
 public:
  InboxListView(InboxPresentation& presentation, InboxListModel& list, QWidget* parent);
  ~InboxListView() override;

  /// The selected records in the order of the list, or the record of the row alone where that is not selected.
  std::vector<UUID> idsAt(const QModelIndex& index) const;
  /// Puts the keyboard on the list, and on its first row if there is none yet.
  void takeKeyboard();
  void selectFirst() { step(-list_.rowCount()); }
  bool isInSight(const UUID& id) const;
  /// The picture of a row, if it is there.
  QImage picture(const UUID& id) const;
  /// The row next to the one that is looked at is selected alone.
  void step(int rows);

  std::function<void(const std::vector<UUID>& ids, QPoint global)> onContextMenu;
  std::function<void(const std::vector<UUID>& ids)> onDrag;
  /// Space, Return or a double click on what is selected.
  std::function<void()> onOpen;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void startDrag(Qt::DropActions actions) override;
  void resizeEvent(QResizeEvent* event) override;
  void scrollContentsBy(int dx, int dy) override;
  void dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight, const QList<int>& roles) override;
  void rowsInserted(const QModelIndex& parent, int start, int end) override;
  void rowsAboutToBeRemoved(const QModelIndex& parent, int start, int end) override;
  void changeEvent(QEvent* event) override;

 private:
  void tellSelection(const QItemSelection& selected, const QItemSelection& deselected);
  void showSelection();
  void dropHiddenSelection();
  void beforeReset();
  void afterReset();
  void followRename();
  void placeNameField();
  QStyleOptionViewItem optionAt(const QModelIndex& index) const;

  InboxPresentation& presentation_;
  AppModel& model_;
  InboxListModel& list_;
  ScreenshotRowDelegate* delegate_;
  NameField* nameField_ = nullptr;
  UUID nameToken_;            ///< of the session that the field is of
  UUID currentID_;            ///< across a reset
  bool isFollowing_ = false;  ///< the selection is being made what the model holds
  Connection changes_;
  Connection presentationChanges_;
};

}  // namespace quillmere
