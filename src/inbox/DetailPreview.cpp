#include "inbox/DetailPreview.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>

#include "controls/ButtonLook.h"
#include "controls/Metrics.h"
#include "controls/Theme.h"
#include "foundation/Localized.h"

namespace quillmere {

DetailPreview::DetailPreview(ThumbnailLoader& loader, QWidget* parent) : ScreenshotThumbnail(loader, parent) {
  setFocusPolicy(Qt::TabFocus);
  setMouseTracking(true);
  setMinimumHeight(kLeastHeight);
  setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Expanding);
  setAccessibleDescription(localized("Drag this preview into another app to put the screenshot’s file there."));
}

bool DetailPreview::isOnPicture(const QPointF& place) const {
  return !image().isNull() && picturePlace().contains(place);
}

void DetailPreview::mousePressEvent(QMouseEvent* event) {
  pressedAt_.reset();
  if (event->button() != Qt::LeftButton || !isOnPicture(event->position())) {
    ScreenshotThumbnail::mousePressEvent(event);
    return;
  }
  pressedAt_ = event->position().toPoint();
}

void DetailPreview::mouseMoveEvent(QMouseEvent* event) {
  const QPoint place = event->position().toPoint();
  if (!event->buttons().testFlag(Qt::LeftButton)) {
    pressedAt_.reset();
    setCursor(isOnPicture(place) ? Qt::OpenHandCursor : Qt::ArrowCursor);
    return;
  }
  if (!pressedAt_ || (place - *pressedAt_).manhattanLength() < QApplication::startDragDistance()) return;
  // Once for each press, and before a drag that runs a loop of its own.
  pressedAt_.reset();
  if (onDrag) onDrag();
}

void DetailPreview::mouseReleaseEvent(QMouseEvent* event) {
  pressedAt_.reset();
  ScreenshotThumbnail::mouseReleaseEvent(event);
}

void DetailPreview::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && isOnPicture(event->position()) && onOpen) onOpen();
}

void DetailPreview::keyPressEvent(QKeyEvent* event) {
  const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  const auto chords = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
  if (isReturn && !(event->modifiers() & chords)) {
    if (onOpen) onOpen();
    return;
  }
  ScreenshotThumbnail::keyPressEvent(event);
}

void DetailPreview::focusInEvent(QFocusEvent* event) {
  ScreenshotThumbnail::focusInEvent(event);
  update();
}

void DetailPreview::focusOutEvent(QFocusEvent* event) {
  ScreenshotThumbnail::focusOutEvent(event);
  update();
}

void DetailPreview::paintEvent(QPaintEvent* event) {
  ScreenshotThumbnail::paintEvent(event);
  if (!hasFocus()) return;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  paintFocusRing(painter, picturePlace(), Radius::kControl, Theme(palette()).focusRing);
}

}  // namespace quillmere
