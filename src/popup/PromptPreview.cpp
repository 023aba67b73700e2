#include "popup/PromptPreview.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QStyle>

#include "controls/Grounds.h"
#include "controls/Metrics.h"
#include "controls/ScreenshotThumbnail.h"
#include "controls/Theme.h"
#include "foundation/Localized.h"
#include "popup/PreviewLayout.h"
#include "popup/PromptPreviewActions.h"
#include "popup/PromptPreviewNoticeView.h"

namespace quillmere {
namespace {

constexpr int kInset = 8;
constexpr int kDragSide = 160;

}  // namespace

PromptPreview::PromptPreview(Executor& executor, ThumbnailLoader& thumbnails, QWidget* parent)
    : QWidget(parent),
      thumbnail_(new ScreenshotThumbnail(thumbnails, this)),
      actions_(new PromptPreviewActions(this)),
      notice_(new PromptPreviewNoticeView(executor, this)) {
  setFixedWidth(kPreviewWidth);
  // It hears of no pointer.
  thumbnail_->onPictureChanged = [this] { setToolTip(thumbnail_->toolTip()); };
  // Presses on the picture are for this widget, which drags it.
  thumbnail_->setAttribute(Qt::WA_TransparentForMouseEvents);
  notice_->setAttribute(Qt::WA_TransparentForMouseEvents);
  notice_->onVisibilityChanged = [this] { lay(); };
}

void PromptPreview::show(const CapturePromptContent& content) {
  const bool isWindow = content.shownPart().has_value();
  screenshotPixels_ = content.screenshotPixelSize;
  windowPixels_ = isWindow ? content.previewPixelSize : std::nullopt;
  setFixedHeight(content.thumbnailHeight);
  actions_->show(content);
  lay();
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
  picture.cornerRadius = Radius::kControl;
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

void PromptPreview::lay() {
  const auto points = [this](const std::optional<QSizeF>& pixels) {
    return pixels ? std::optional(*pixels / devicePixelRatioF()) : std::nullopt;
  };
  actions_->adjustSize();
  const PreviewLayout layout =
      PreviewLayout::of(size(), actions_->size(), points(screenshotPixels_), points(windowPixels_));
  const auto mirrored = [this](const QRect& place) { return QStyle::visualRect(layoutDirection(), rect(), place); };
  actions_->setGeometry(mirrored(layout.actions));
  thumbnail_->setGeometry(actions_->isHidden() ? rect() : mirrored(layout.picture));
  notice_->adjustSize();
  notice_->move((width() - notice_->width()) / 2, height() - kInset - notice_->height());
}

void PromptPreview::paintEvent(QPaintEvent*) {
  const Theme theme(palette());
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  paintGround(painter, rect(), Radius::kControl, theme.fill, theme);
}

void PromptPreview::resizeEvent(QResizeEvent*) {
  lay();
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
