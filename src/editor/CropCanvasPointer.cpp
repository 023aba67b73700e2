#include <QtGui/QMouseEvent>
#include <QtWidgets/QApplication>
#include <algorithm>

#include "editor/CropCanvas.h"

namespace quillmere {
namespace {

// In points of the view.
constexpr qreal kReach = 7;
constexpr qreal kSnap = 6;
/// Less is a click of an unsteady hand.
constexpr qreal kTravel = 4;
/// So near to its edge the view scrolls along.
constexpr qreal kEdge = 14;
constexpr qreal kFastest = 32;

const Duration kFrame = seconds(1.0 / 60);

}  // namespace

std::optional<CropHandle> CropCanvas::handleAt(QPointF point) const {
  const QRect& rect = selection().selection();
  if (rect.isEmpty()) return std::nullopt;
  const QPointF first = zoom().viewAt(rect.topLeft());
  const QPointF last = zoom().viewAt(rect.topLeft() + QPoint(rect.width(), rect.height()));
  return CropHandles::at(point, QRectF(first, last), kReach, selection().isWholeImage());
}

const WindowCandidate* CropCanvas::windowAt(QPointF point) const {
  return CropHandles::windowAt(selection().candidates(), zoom().pictureAt(point));
}

void CropCanvas::mousePressEvent(QMouseEvent* event) {
  const bool isHand = event->button() == Qt::MiddleButton || (event->button() == Qt::LeftButton && isSpaceHeld_);
  if (!held_ && isHand) return takeHand(event->position());
  if (event->button() != Qt::LeftButton) return event->ignore();
  modifiers_ = event->modifiers();
  if (isReady() && !isLocked_ && !hasHand()) beginDrag(event->position());
}

void CropCanvas::beginDrag(QPointF point) {
  endStep();
  pointer_ = point;
  history_.begin();
  held_ = Held{CropDrag(handleAt(point), zoom().pictureAt(point), selection()), point};
  // A click beside the selection takes it away; one on it changes nothing.
  if (!held_->drag.handle()) change([](CropSelection& selection) { selection.setByHand({}); });
  showScene();
  updateCursor();
}

void CropCanvas::mouseMoveEvent(QMouseEvent* event) {
  if (hasHand()) {
    pointer_ = event->position();
    return moveHand(event->position());
  }
  followPointer(event->position(), event->modifiers());
}

void CropCanvas::followPointer(QPointF point, Qt::KeyboardModifiers modifiers) {
  pointer_ = point;
  modifiers_ = modifiers;
  if (!held_) {
    showScene();
    return updateCursor();
  }
  if ((point - held_->press).manhattanLength() >= kTravel) held_->hasTravelled = true;
  continueDrag();
  scrollAlong();
}

void CropCanvas::continueDrag() {
  if (!held_->hasTravelled) return showScene();
  const qreal reach = modifiers_.testFlag(Qt::AltModifier) ? 0 : kSnap * devicePixelRatioF() / zoom().scale();
  const QPointF pixel = zoom().pictureAt(*pointer_);
  const bool hasChanged =
      history_.change([&](CropSelection& selection) { held_->drag.apply(selection, pixel, reach); });
  // The loupe goes with the pointer.
  hasChanged ? tellChange() : showScene();
}

void CropCanvas::mouseReleaseEvent(QMouseEvent* event) {
  const bool isOwn = event->button() == Qt::LeftButton || event->button() == Qt::MiddleButton;
  if (!isOwn) return event->ignore();
  if (hasHand()) {
    letGo();
  } else if (held_ && event->button() == Qt::LeftButton) {
    const bool isClick = !held_->hasTravelled;
    held_.reset();
    stopScrolling();
    isClick ? awaitSecondClick() : endStep();
  }
  followPointer(event->position(), event->modifiers());
}

void CropCanvas::awaitSecondClick() {
  const Duration interval = std::chrono::milliseconds(QApplication::doubleClickInterval());
  click_ = executor().startDelay(interval, [this](bool) {
    click_.reset();
    endStep();
  });
}

void CropCanvas::mouseDoubleClickEvent(QMouseEvent* event) {
  const bool picks = event->button() == Qt::LeftButton && isReady() && !isLocked_ && !isSpaceHeld_ && !hasHand();
  const WindowCandidate* window = picks ? windowAt(event->position()) : nullptr;
  if (!window) return mousePressEvent(event);
  const UUID id = window->id;
  if (click_) history_.cancel();
  endStep();
  history_.change([&](CropSelection& selection) { selection.pick(id); });
  tellChange();
}

void CropCanvas::cancelDrag() {
  history_.cancel();
  endStep();
  tellChange();
}

void CropCanvas::leaveEvent(QEvent* event) {
  if (!held_) pointer_.reset();
  showScene();
  PictureCanvas::leaveEvent(event);
}

QPointF CropCanvas::scrolling() const {
  if (!held_ || !held_->hasTravelled || !pointer_ || !zoom().isLargerThanView()) return {};
  const auto beyond = [](qreal position, qreal length) {
    const qreal distance = position < kEdge ? kEdge - position : std::min(0.0, length - kEdge - position);
    return std::clamp(distance / 2, -kFastest, kFastest);
  };
  return {beyond(pointer_->x(), width()), beyond(pointer_->y(), height())};
}

void CropCanvas::scrollAlong() {
  if (scrolling_ || scrolling().isNull()) return;
  scrolling_ = executor().startDelay(kFrame, [this](bool isOver) {
    scrolling_.reset();
    const QPointF by = scrolling();
    if (!isOver || by.isNull()) return;
    const QRectF before = zoom().place();
    pan(by);
    if (zoom().place() != before) scrollAlong();
  });
}

void CropCanvas::stopScrolling() {
  if (scrolling_) executor().cancelDelay(*scrolling_);
  scrolling_.reset();
}

void CropCanvas::placeChanged() {
  if (held_) {
    continueDrag();
  } else {
    showScene();
  }
}

void CropCanvas::updateCursor() {
  if (hasHand()) return setCursor(Qt::ClosedHandCursor);
  if (isSpaceHeld_) return setCursor(Qt::OpenHandCursor);
  if (held_) return setCursor(CropHandles::cursor(held_->drag.handle()));
  if (!isReady() || isLocked_) return unsetCursor();
  setCursor(CropHandles::cursor(pointer_ ? handleAt(*pointer_) : std::nullopt));
}

}  // namespace quillmere
