#pragma once

#include <QtWidgets/QWidget>

#include "inbox/InboxListView.h"

class QStackedWidget;

namespace quillmere {

class ActionButton;
class InboxBanners;
class MessageView;
class SearchField;
class ThemedLabel;

/// The list with what hangs on it: banners, the search, the choice of a status, how many there are.
class InboxSidebar final : public QWidget {
 public:
  InboxSidebar(InboxPresentation& presentation, QWidget* parent);

  InboxListView& list() const { return *list_; }
  SearchField& search() const { return *search_; }
  /// `showsFolderBanner` is false while the folder set-up fills the window, which asks the same.
  void refresh(bool showsFolderBanner);
  /// Escape: ends the search, and where there is none the selection.
  void escape();
  void releaseSearch() { rows_->releaseSearch(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QWidget* makeSearchRow();
  void chooseScope();
  void follow(const InboxChange& change);
  void showFilter();
  void showRows();
  void leaveSearch();

  InboxPresentation& presentation_;
  AppModel& model_;
  InboxListModel* rows_;
  InboxBanners* banners_ = nullptr;
  SearchField* search_;
  ActionButton* scope_;
  QStackedWidget* pages_;
  InboxListView* list_;
  MessageView* noMatches_;
  ThemedLabel* count_;
  bool isLeavingSearch_ = false;  ///< to the first row, once the rows are those of the search
  Connection changes_;
};

}  // namespace quillmere
