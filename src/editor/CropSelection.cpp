#include "editor/CropSelection.h"

#include <QtCore/QMargins>
#include <algorithm>
#include <cmath>

namespace quillmere {
namespace {

/// Also of what is no number, as a view of no size has it.
double inRoom(double position, int room) {
  return std::max(0.0, std::min<double>(room, position));
}

QPointF inPicture(QPointF point, QSize image) {
  return {inRoom(point.x(), image.width()), inRoom(point.y(), image.height())};
}

/// The whole pixels between two places of the picture. Rounded from the places themselves: by way of a width, the same
/// two places would now and then touch a pixel more.
QRect wholePixels(QPointF topLeft, QPointF bottomRight) {
  const auto left = static_cast<int>(std::floor(topLeft.x()));
  const auto top = static_cast<int>(std::floor(topLeft.y()));
  const auto right = static_cast<int>(std::ceil(bottomRight.x()));
  const auto bottom = static_cast<int>(std::ceil(bottomRight.y()));
  return {left, top, right - left, bottom - top};
}

/// Along one axis: where something of this length goes that is at `position`.
int moved(int position, int by, int length, int room) {
  const qint64 wanted = qint64{position} + by;
  return static_cast<int>(std::max<qint64>(0, std::min<qint64>(wanted, room - length)));
}

int resized(int length, int by, int position, int room) {
  const qint64 wanted = qint64{length} + by;
  return static_cast<int>(std::max<qint64>(1, std::min<qint64>(wanted, room - position)));
}

}  // namespace

CropSelection::CropSelection(QSize image, std::vector<WindowCandidate> candidates)
    : image_(image.isEmpty() ? QSize(0, 0) : image), candidates_(std::move(candidates)) {}

const WindowCandidate* CropSelection::candidate() const {
  const auto found = std::find_if(candidates_.begin(), candidates_.end(),
                                  [&](const WindowCandidate& one) { return one.id == selectedCandidate_; });
  return found == candidates_.end() ? nullptr : &*found;
}

bool CropSelection::canIncludeShadow() const {
  const WindowCandidate* window = candidate();
  return window && window->shadow.source != WindowShadowMargin::Source::none;
}

/// What touches no pixel is one and the same nothing.
void CropSelection::select(const QRect& rect) {
  const QRect inside = rect & bounds();
  selection_ = inside.isEmpty() ? QRect() : inside;
}

void CropSelection::becomeOwn() {
  selectedCandidate_.reset();
  appliedShadow_.reset();
}

void CropSelection::pick(const UUID& id) {
  const auto found =
      std::find_if(candidates_.begin(), candidates_.end(), [&](const WindowCandidate& one) { return one.id == id; });
  if (found == candidates_.end()) return;
  selectedCandidate_ = id;
  appliedShadow_.reset();
  select(found->rect);
  if (includesShadow_ && canIncludeShadow()) addShadow();
}

// --- The shadow ---

void CropSelection::setIncludesShadow(bool includes) {
  if (!canIncludeShadow() || includes == appliedShadow_.has_value()) return;
  includesShadow_ = includes;
  includes ? addShadow() : removeShadow();
}

void CropSelection::addShadow() {
  const WindowCandidate& window = *candidate();
  WindowShadowMargin added = window.shadow;
  const QPointF topLeft = window.rect.topLeft() - QPointF(added.left, added.top);
  const QPointF bottomRight = window.rect.bottomRight() + QPointF(1 + added.right, 1 + added.bottom);
  select(wholePixels(inPicture(topLeft, image_), inPicture(bottomRight, image_)));
  added.left = window.rect.left() - selection_.left();
  added.top = window.rect.top() - selection_.top();
  added.right = selection_.right() - window.rect.right();
  added.bottom = selection_.bottom() - window.rect.bottom();
  appliedShadow_ = added;
}

void CropSelection::removeShadow() {
  // Whole numbers, since both rectangles were.
  const QMargins added =
      QMarginsF(appliedShadow_->left, appliedShadow_->top, appliedShadow_->right, appliedShadow_->bottom).toMargins();
  select(selection_.marginsRemoved(added));
  appliedShadow_.reset();
}

// --- By hand ---

void CropSelection::drag(QPointF start, QPointF current) {
  const QPointF one = inPicture(start, image_);
  const QPointF other = inPicture(current, image_);
  becomeOwn();
  if (one == other) return select(QRect());
  select(wholePixels({std::min(one.x(), other.x()), std::min(one.y(), other.y())},
                     {std::max(one.x(), other.x()), std::max(one.y(), other.y())}));
}

void CropSelection::setByHand(const QRect& rect) {
  becomeOwn();
  select(rect);
}

void CropSelection::moveBy(int dx, int dy) {
  if (isEmpty()) return;
  becomeOwn();
  selection_.moveTo(moved(selection_.x(), dx, selection_.width(), image_.width()),
                    moved(selection_.y(), dy, selection_.height(), image_.height()));
}

void CropSelection::resizeBy(int dx, int dy) {
  if (isEmpty()) return;
  becomeOwn();
  selection_.setSize({resized(selection_.width(), dx, selection_.x(), image_.width()),
                      resized(selection_.height(), dy, selection_.y(), image_.height())});
}

bool CropSelection::setBounds(qint64 x, qint64 y, qint64 width, qint64 height) {
  const auto fits = [](qint64 position, qint64 length, qint64 room) {
    return position >= 0 && length > 0 && length <= room && position <= room - length;
  };
  if (!fits(x, width, image_.width()) || !fits(y, height, image_.height())) return false;
  becomeOwn();
  selection_ = QRect(static_cast<int>(x), static_cast<int>(y), static_cast<int>(width), static_cast<int>(height));
  return true;
}

void CropSelection::selectWholeImage() {
  selection_ = image_.isEmpty() ? QRect() : bounds();
}

}  // namespace quillmere
