#include "popup/PromptPreview.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QStyle>

#include "controls/Grounds.h"
#include "controls/ScreenshotThumbnail.h"
#include "controls/Theme.h"
#include "foundation/Localized.h"
#include "popup/PromptPreviewActions.h"
#include "popup/PromptPreviewNoticeView.h"

namespace quillmere {
namespace {

constexpr int kInset = 8;
constexpr int kDragSide = 160;
constexpr qreal kCornerRadius = 10;

}  // namespace

PromptPreview::PromptPreview(Executor& executor, ThumbnailLoader& thumbnails, QWidget* parent)
    : QWidget(parent),
      thumbnail_(new ScreenshotThumbnail(thumbnails, this)),
      actions_(new PromptPreviewActions(this)),
      notice_(new PromptPreviewNoticeView(executor, this)) {
  setFixedWidth(kPreviewWidth);
  thumbnail_->onPictureChanged = [this] {
    placeOverlays();
    update();
    // It hears of no pointer.
    setToolTip(thumbnail_->toolTip());
  };
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
  thumbnail_->setAccessibleDescription(
      !content.canReadImage ? QString()
      : isWindow ? localized("Drag this preview into another app to put the extracted window there as an image.")
                 : localized("Drag this preview into another app to put the screenshot’s file there."));
  ScreenshotThumbnail::Content picture;
  picture.url = content.item.url;
  picture.maxPointSize = kPreviewWidth;
  picture.accessibilityLabel = isWindow ? localized("Extracted window preview") : localized("Screenshot preview");
  picture.identity = content.item.fileIdentity;
  picture.hasImageData = !content.isEvicted;
  picture.cornerRadius = kCornerRadius;
  picture.crop = content.shownPart();
  thumbnail_->show(picture);
}

void PromptPreview::clear() {
  notice_->clear();
  thumbnail_->clear();
}

QPixmap PromptPreview::dragPicture() const {
  const QImage& image = thumbnail_->image();
  if (image.isNull()) return {};
  const qreal ratio = devicePixelRatioF();
  QImage small = image.scaled(QSize(kDragSide, kDragSide) * ratio, Qt::KeepAspectRatio, Qt::SmoothTransformation);
  small.setDevicePixelRatio(ratio);
  return QPixmap::fromImage(small);
}

void PromptPreview::placeOverlays() {
  thumbnail_->setGeometry(rect());
  actions_->adjustSize();
  // On the picture, unless that is too narrow for them or stands in a well.
  const int needed = actions_->width() + 2 * kInset;
  const QRect picture = thumbnail_->picturePlace().toRect();
  const int right = picture.width() >= needed && !hasWell() ? picture.right() + 1 : width();
  const QRect corner(right - kInset - actions_->width(), kInset, actions_->width(), actions_->height());
  actions_->setGeometry(QStyle::visualRect(layoutDirection(), rect(), corner));
  notice_->adjustSize();
  notice_->move((width() - notice_->width()) / 2, height() - kInset - notice_->height());
}

/// A picture that is smaller than the preview on all sides stands in a well, so that it does not float on the card.
bool PromptPreview::hasWell() const {
  const QRectF picture = thumbnail_->picturePlace();
  return picture.width() < width() - 1 && picture.height() < height() - 1;
}

void PromptPreview::paintEvent(QPaintEvent*) {
  if (!hasWell()) return;
  const Theme theme(palette());
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  paintGround(painter, rect(), kCornerRadius, theme.fill, theme);
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
