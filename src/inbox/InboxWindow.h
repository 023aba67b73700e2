#pragma once

#include <QtWidgets/QWidget>
#include <functional>

#include "formats/ThumbnailLoader.h"
#include "model/AppModel.h"

class QListView;
class QStackedWidget;

namespace quillmere {

class InboxBanners;
class InboxDetail;
class InboxListModel;
class MessageView;
class ThemedLabel;

/// The Inbox: what came, with its status, beside the one that is selected; or the folder set-up while none is chosen.
class InboxWindow final : public QWidget {
 public:
  InboxWindow(AppModel& model, ThumbnailLoader& thumbnails);
  ~InboxWindow() override;

  std::function<void()> onClosed;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  QWidget* makeSidebar(ThumbnailLoader& thumbnails);
  QWidget* makeDetail(ThumbnailLoader& thumbnails);
  void follow(const ModelChange& change);
  void refresh();
  void showInboxError();

  AppModel& model_;
  QWidget* sidebar_ = nullptr;
  InboxListModel* list_ = nullptr;
  QListView* listView_ = nullptr;
  ThemedLabel* count_ = nullptr;
  InboxBanners* banners_ = nullptr;
  QStackedWidget* detail_ = nullptr;
  MessageView* setup_ = nullptr;
  MessageView* noScreenshots_ = nullptr;
  MessageView* noSelection_ = nullptr;
  InboxDetail* selected_ = nullptr;
  Connection changes_;
};

}  // namespace quillmere
