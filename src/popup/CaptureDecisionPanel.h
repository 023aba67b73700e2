#pragma once

#include <QtWidgets/QWidget>
#include <functional>

class QScrollArea;

namespace quillmere {

/// The popup's window: the card, its shadow around it, and nothing else. It never takes the keyboard by itself.
class CaptureDecisionPanel final : public QWidget {
 public:
  explicit CaptureDecisionPanel(QWidget* card);

  void setScrolls(bool scrolls);
  /// Without a compositor the window is cut to the card and has no shadow.
  void setCompositing(bool isCompositing);
  /// In the window's points.
  QRect cardRect() const;
  int frameChangeCount() const { return frameChangeCount_; }
  void setFrame(const QRect& frame);

  std::function<void()> onDeactivated;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  bool event(QEvent* event) override;

 private:
  void updateShape();
  QScrollArea* scroll_;
  bool isCompositing_ = true;
  int frameChangeCount_ = 0;
};

}  // namespace quillmere
