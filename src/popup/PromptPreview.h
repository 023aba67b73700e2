#pragma once

#include <QtWidgets/QWidget>
#include <functional>

#include "popup/CapturePromptContent.h"
#include "reading/ThumbnailLoader.h"

namespace quillmere {

class PromptPreviewActions;
class PromptPreviewNoticeView;
class ScreenshotThumbnail;

/// The picture on the card, in a well of the card's width, with what can be done with it and what is to be told of it.
/// It can be dragged out.
class PromptPreview final : public QWidget {
 public:
  PromptPreview(Executor& executor, ThumbnailLoader& thumbnails, QWidget* parent);

  void show(const CapturePromptContent& content);
  /// Lets go of the picture.
  void clear();
  PromptPreviewActions& actions() const { return *actions_; }
  PromptPreviewNoticeView& notice() const { return *notice_; }
  /// The person has begun to drag the picture; the button is still down.
  std::function<void()> onDragBegun;
  /// The picture as it is shown, to be dragged along; null while there is none.
  QPixmap dragPicture() const;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;

 private:
  void lay();

  ScreenshotThumbnail* thumbnail_;
  PromptPreviewActions* actions_;
  PromptPreviewNoticeView* notice_;
  std::optional<QSizeF> screenshotPixels_;
  std::optional<QSizeF> windowPixels_;  ///< of the window that is shown out of it
  std::optional<QPoint> pressedAt_;
};

}  // namespace quillmere
