#pragma once

#include <QtWidgets/QScrollArea>

#include "inbox/InboxPresentation.h"

namespace quillmere {

class AnalysisStatusRow;
class DetailActions;
class DetailHeader;
class DetailPreview;
class DownloadStatusRow;
class MessageView;
class ScreenshotNameEditor;

/// One screenshot, large, with its name, its status and what can be done with it. It scrolls where it is too low for
/// the picture.
class InboxDetail final : public QScrollArea {
 public:
  InboxDetail(AppModel& model, InboxPresentation& presentation, QWidget* parent);
  void show(const ScreenshotItem& item);
  /// The person begins to drag the picture; called within the mouse event.
  std::function<void(const UUID&)> onDrag;
  /// The picture of a record, as far as it is decoded; null of any other than the one that is shown.
  QImage picture(const ScreenshotItem& item) const;
  /// The name in the header.
  ScreenshotNameEditor& name() const;

 private:
  void follow(InboxField field);
  void showDownload(const ScreenshotItem& item, bool isEvicted);
  void showAnalysis(const ScreenshotItem& item, bool canRead);
  void showPicture(const ScreenshotItem& item, bool isUnavailable, bool isEvicted);
  void openInQuickLook();

  AppModel& model_;
  InboxPresentation& presentation_;
  UUID id_;
  DetailHeader* header_;
  DetailPreview* picture_;
  MessageView* unavailable_;  ///< in the picture's place
  DownloadStatusRow* download_;
  AnalysisStatusRow* analysis_;
  DetailActions* actions_;
  Connection changes_;
};

}  // namespace quillmere
