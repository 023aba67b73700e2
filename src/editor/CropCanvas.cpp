#include "editor/CropCanvas.h"

#include <QtGui/QKeyEvent>

#include "editor/CropCanvasAccessible.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

constexpr int kLargeStep = 10;

constexpr Qt::KeyboardModifiers kPlaceOfKey = Qt::KeypadModifier | Qt::GroupSwitchModifier;

bool isArrow(int key) {
  return key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Up || key == Qt::Key_Down;
}

}  // namespace

CropCanvas::CropCanvas(Executor& executor, CropHistory& history, QWidget* parent)
    : PictureCanvas(executor, parent, Purpose::drawing), history_(history) {
  setMouseTracking(true);
  setAccessibleName(localized("Screenshot preview"));
  setAccessibleDescription(
      localized("Use the arrow keys to move the selection. Hold Shift to move 10 pixels at a time. Hold Option to "
                "change its size."));
  makeAccessible(*this);
}

CropCanvas::~CropCanvas() {
  if (click_) executor().cancelDelay(*click_);
  stopScrolling();
}

QString CropCanvas::valueInWords(const CropSelection& selection) {
  if (selection.isEmpty()) return localized("Nothing is selected.");
  const QRect& rect = selection.selection();
  return localized("X %1$lld, Y %2$lld, width %3$lld, height %4$lld, in pixels",
                   {rect.x(), rect.y(), rect.width(), rect.height()});
}

// --- What is selected ---

bool CropCanvas::isReady() const {
  return hasPicture() && !selection().imageSize().isEmpty() && selection().imageSize() == zoom().picture();
}

void CropCanvas::change(const std::function<void(CropSelection&)>& something) {
  if (history_.change(something)) tellChange();
}

void CropCanvas::tellChange() {
  followHistory();
  if (onChanged) onChanged();
}

void CropCanvas::followHistory() {
  // An undo from elsewhere has ended the step that was the canvas's own.
  if (!history_.isInStep()) endStep();
  showScene();
  updateCursor();
  if (told_ == selection().selection()) return;
  told_ = selection().selection();
  tellValue(*this);
}

void CropCanvas::setLocked(bool isLocked) {
  if (isLocked == isLocked_) return;
  isLocked_ = isLocked;
  endStep();
  showScene();
  updateCursor();
}

void CropCanvas::moveSelection(int dx, int dy) {
  if (isLocked_) return;
  endStep();
  change([=](CropSelection& selection) { selection.moveBy(dx, dy); });
}

void CropCanvas::endStep() {
  const bool wasHeld = held_.has_value();
  held_.reset();
  stopScrolling();
  arrows_.clear();
  if (click_) executor().cancelDelay(*click_);
  click_.reset();
  history_.end();
  if (!wasHeld) return;
  showScene();
  updateCursor();
}

// --- By keys ---

bool CropCanvas::isOwn(const QKeyEvent& event) const {
  const auto modifiers = event.modifiers() & ~kPlaceOfKey;
  if (isArrow(event.key())) return !(modifiers & ~(Qt::ShiftModifier | Qt::AltModifier));
  if (event.key() == Qt::Key_Space) return !modifiers || isSpaceHeld_;
  return event.key() == Qt::Key_Escape && held_;
}

bool CropCanvas::event(QEvent* event) {
  // Nobody's shortcut takes away what is the canvas's own.
  if (event->type() == QEvent::ShortcutOverride && isOwn(static_cast<QKeyEvent&>(*event))) {
    event->accept();
    return true;
  }
  return PictureCanvas::event(event);
}

void CropCanvas::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Alt && held_) {
    modifiers_ |= Qt::AltModifier;
    continueDrag();
  }
  if (!isOwn(*event)) return event->ignore();
  if (event->key() == Qt::Key_Escape) {
    cancelDrag();
  } else if (event->key() == Qt::Key_Space) {
    isSpaceHeld_ = true;
    showScene();
    updateCursor();
  } else {
    takeArrow(*event);
  }
}

void CropCanvas::takeArrow(const QKeyEvent& event) {
  if (isLocked_ || held_ || !isReady()) return;
  const int step = event.modifiers().testFlag(Qt::ShiftModifier) ? kLargeStep : 1;
  const int dx = event.key() == Qt::Key_Left ? -step : event.key() == Qt::Key_Right ? step : 0;
  const int dy = event.key() == Qt::Key_Up ? -step : event.key() == Qt::Key_Down ? step : 0;
  // As long as one is held all is one step.
  if (arrows_.empty()) {
    endStep();
    history_.begin();
  }
  arrows_.insert(event.key());
  const bool changesSize = event.modifiers().testFlag(Qt::AltModifier);
  change([&](CropSelection& selection) { changesSize ? selection.resizeBy(dx, dy) : selection.moveBy(dx, dy); });
}

void CropCanvas::keyReleaseEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Alt && held_) {
    modifiers_ &= ~Qt::KeyboardModifiers(Qt::AltModifier);
    continueDrag();
  }
  if (event->isAutoRepeat()) return isOwn(*event) ? event->accept() : event->ignore();
  if (event->key() == Qt::Key_Space && isSpaceHeld_) {
    isSpaceHeld_ = false;
    showScene();
    return updateCursor();
  }
  if (arrows_.erase(event->key()) == 0) return event->ignore();
  if (arrows_.empty()) endStep();
}

void CropCanvas::focusInEvent(QFocusEvent* event) {
  const auto reason = event->reason();
  if (reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason) showsRing_ = true;
  PictureCanvas::focusInEvent(event);
  update();
}

void CropCanvas::focusOutEvent(QFocusEvent* event) {
  // The window may come back with the ring that it had.
  if (event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason) showsRing_ = false;
  isSpaceHeld_ = false;
  if (!held_) endStep();
  PictureCanvas::focusOutEvent(event);
  updateCursor();
  update();
}

}  // namespace quillmere
