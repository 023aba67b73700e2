#include "popup/PromptPreview.h"

#include <QtGui/QMouseEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QStyle>

#include "controls/AccessibleRole.h"
#include "foundation/Localized.h"
#include "popup/PromptPreviewActions.h"
#include "popup/PromptPreviewNoticeView.h"
#include "popup/PromptThumbnail.h"

namespace quillmere {
namespace {

constexpr int kInset = 8;
constexpr int kDragSide = 160;

}  // namespace

PromptPreview::PromptPreview(Executor& executor, ThumbnailLoader& thumbnails, QWidget* parent)
    : QWidget(parent),
      thumbnail_(new PromptThumbnail(thumbnails, this)),
      actions_(new PromptPreviewActions(this)),
      notice_(new PromptPreviewNoticeView(executor, this)) {
  setFixedWidth(kPreviewWidth);
  setAccessibleRole(*thumbnail_, QAccessible::Graphic);
  // Presses on the picture are for this widget, which drags it.
  thumbnail_->setAttribute(Qt::WA_TransparentForMouseEvents);
  notice_->setAttribute(Qt::WA_TransparentForMouseEvents);
  notice_->onVisibilityChanged = [this] { placeOverlays(); };
}

void PromptPreview::show(const CapturePromptContent& content) {
  const bool isWindow = content.shownPart().has_value();
  setFixedHeight(content.thumbnailHeight);
  actions_->show(content);
  placeOverlays();
  // A copy that is only measured needs no picture.
  if (!content.reportsEdits) return;
  thumbnail_->setAccessibleName(isWindow ? localized("Extracted window preview") : localized("Screenshot preview"));
  thumbnail_->setAccessibleDescription(
      isWindow ? localized("Drag this preview into another app to put the extracted window there as an image.")
               : localized("Drag this preview into another app to put the screenshot’s file there."));
  thumbnail_->show(content.item.url, content.item.fileIdentity, content.canReadImage);
}

QPixmap PromptPreview::dragPicture() const {
  const qreal ratio = devicePixelRatioF();
  QPixmap picture =
      thumbnail_->grab().scaled(QSize(kDragSide, kDragSide) * ratio, Qt::KeepAspectRatio, Qt::SmoothTransformation);
  picture.setDevicePixelRatio(ratio);
  return picture;
}

void PromptPreview::placeOverlays() {
  thumbnail_->setGeometry(rect());
  actions_->adjustSize();
  const QRect corner(width() - kInset - actions_->width(), kInset, actions_->width(), actions_->height());
  actions_->setGeometry(QStyle::visualRect(layoutDirection(), rect(), corner));
  notice_->adjustSize();
  notice_->move((width() - notice_->width()) / 2, height() - kInset - notice_->height());
}

void PromptPreview::resizeEvent(QResizeEvent*) {
  placeOverlays();
}

void PromptPreview::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) pressedAt_ = event->position().toPoint();
}

void PromptPreview::mouseMoveEvent(QMouseEvent* event) {
  if (!pressedAt_ || !event->buttons().testFlag(Qt::LeftButton)) return;
  const QPoint moved = event->position().toPoint() - *pressedAt_;
  if (moved.manhattanLength() < QApplication::startDragDistance()) return;
  pressedAt_.reset();
  onDragBegun();
}

}  // namespace quillmere
