#pragma once

#include <QtWidgets/QWidget>

#include "formats/ThumbnailLoader.h"
#include "model/AppModel.h"

class QLabel;

namespace quillmere {

class ActionButton;
class AnalysisStatusRow;
class DownloadStatusRow;
class MessageView;
class ScreenshotThumbnail;

/// One screenshot, large, with its name, its status and what can be done with it.
class InboxDetail final : public QWidget {
 public:
  InboxDetail(AppModel& model, ThumbnailLoader& thumbnails, QWidget* parent);
  void show(const ScreenshotItem& item);

 private:
  QWidget* makeHeader();

  AppModel& model_;
  QLabel* name_ = nullptr;
  QLabel* status_ = nullptr;
  QLabel* note_ = nullptr;
  ActionButton* keep_ = nullptr;
  ActionButton* move_ = nullptr;
  ActionButton* trash_ = nullptr;
  DownloadStatusRow* download_ = nullptr;
  AnalysisStatusRow* analysis_ = nullptr;
  ScreenshotThumbnail* picture_ = nullptr;
  MessageView* unavailable_ = nullptr;  ///< in the picture's place
  UUID id_;
};

}  // namespace quillmere
