#pragma once

#include "controls/ScreenshotThumbnail.h"

namespace quillmere {

/// The picture of the one screenshot that is shown, from which its file can be dragged.
class DetailPreview final : public ScreenshotThumbnail {
 public:
  DetailPreview(ThumbnailLoader& loader, QWidget* parent);
  std::function<void()> onDrag;
  /// By double click and by Return.
  std::function<void()> onOpen;

  static constexpr int kLeastHeight = 160;  ///< in points
  QSize sizeHint() const override { return {kLeastHeight, kLeastHeight}; }

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  bool isOnPicture(const QPointF& place) const;
  std::optional<QPoint> pressedAt_;
};

}  // namespace quillmere
