#pragma once

#include <QtWidgets/QWidget>

#include "foundation/Weak.h"
#include "imaging/ThumbnailLoader.h"
#include "model/AppModel.h"

class QLabel;

namespace quillmere {

class ActionButton;
class AnalysisStatusRow;
class DownloadStatusRow;

/// One screenshot, large, with its name, its status and what can be done with it.
class InboxDetail final : public QWidget {
 public:
  InboxDetail(AppModel& model, ThumbnailLoader& thumbnails, QWidget* parent);
  void show(const ScreenshotItem& item);

  /// Asks whether a file is to be deleted for good.
  std::function<bool(const QString& fileName)> confirmDeletion;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QWidget* makeHeader();
  void moveToTrash();
  void paintPicture(class QPainter& painter, const QRect& area);
  static Task<> load(Weak<InboxDetail> self, FileURL url);

  AppModel& model_;
  ThumbnailLoader& thumbnails_;
  QLabel* name_ = nullptr;
  QLabel* status_ = nullptr;
  QLabel* note_ = nullptr;
  ActionButton* keep_ = nullptr;
  ActionButton* move_ = nullptr;
  ActionButton* trash_ = nullptr;
  DownloadStatusRow* download_ = nullptr;
  AnalysisStatusRow* analysis_ = nullptr;
  QWidget* picture_ = nullptr;  ///< the place of the picture, which is painted
  UUID id_;
  FileURL url_;
  std::optional<FileIdentity> identity_;
  bool isReachable_ = false;
  QImage image_;
  Lifetime lifetime_;
};

}  // namespace quillmere
