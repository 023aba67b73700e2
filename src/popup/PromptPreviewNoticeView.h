#pragma once

#include <QtCore/QVariantAnimation>
#include <QtWidgets/QWidget>
#include <functional>

#include "foundation/Executor.h"
#include "foundation/Weak.h"
#include "model/PromptWindowExtraction.h"

namespace quillmere {

/// A short notice that comes, stays two seconds and goes. A second one takes the place of the first and stays its full
/// time.
class PromptPreviewNoticeView final : public QWidget {
 public:
  PromptPreviewNoticeView(Executor& executor, QWidget* parent);
  ~PromptPreviewNoticeView() override;

  void show(PromptPreviewNotice notice);
  /// Away at once: it was about something that is not shown any more.
  void clear();
  /// None from the moment in which it begins to go.
  std::optional<PromptPreviewNotice> notice() const { return notice_; }
  /// It appeared or is gone.
  std::function<void()> onVisibilityChanged;

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  static Task<> dismissLater(Weak<PromptPreviewNoticeView> self);
  void fade(double to, QEasingCurve::Type curve, int milliseconds);
  void setShown(bool isShown);

  Executor& executor_;
  std::optional<PromptPreviewNotice> notice_;
  QString text_;
  Task<> dismissal_;
  QVariantAnimation opacity_;
  Lifetime lifetime_;
};

}  // namespace quillmere
