#include "controls/PictureZoom.h"

#include <algorithm>
#include <cmath>

namespace quillmere {
namespace {

/// A length in the middle of one that is at least as long, else so that no gap is left on either side.
qreal centreInside(qreal centre, qreal length, qreal visible) {
  if (length <= visible) return length / 2;
  return std::clamp(centre, visible / 2, length - visible / 2);
}

}  // namespace

void PictureZoom::setView(QSizeF points, qreal displayScale) {
  view_ = points;
  displayScale_ = displayScale;
  scale_ = std::clamp(scale_, smallestScale(), kLargestScale);
  keepInside();
}

void PictureZoom::setPicture(QSize pixels) {
  if (pixels == picture_) return;
  picture_ = pixels;
  fit();
}

qreal PictureZoom::fittingScale() const {
  if (isEmpty()) return 1;
  const QSizeF view = viewPixels();
  return std::min({1.0, view.width() / picture_.width(), view.height() / picture_.height()});
}

qreal PictureZoom::scale() const {
  return mode_ == Mode::fit ? fittingScale() : scale_;
}

bool PictureZoom::isLargerThanView() const {
  if (isEmpty()) return false;
  const QRectF whole = place();
  // Of less than a pixel of the screen nothing can be seen.
  const qreal least = 1 / displayScale_;
  return whole.width() >= view_.width() + least || whole.height() >= view_.height() + least;
}

void PictureZoom::fit() {
  mode_ = Mode::fit;
  scale_ = fittingScale();
  keepInside();
}

void PictureZoom::zoomTo(qreal scale, QPointF point) {
  if (isEmpty() || !std::isfinite(scale)) return;
  const QPointF fromMiddle = (point - middle()) * displayScale_;
  const QPointF held = centre_ + fromMiddle / this->scale();
  mode_ = Mode::scale;
  scale_ = std::clamp(scale, smallestScale(), kLargestScale);
  centre_ = held - fromMiddle / scale_;
  keepInside();
}

void PictureZoom::pan(QPointF points) {
  centre_ -= points * displayScale_ / scale();
  keepInside();
}

void PictureZoom::keepInside() {
  const QSizeF visible = viewPixels() / scale();
  centre_ = {centreInside(centre_.x(), picture_.width(), visible.width()),
             centreInside(centre_.y(), picture_.height(), visible.height())};
}

QRectF PictureZoom::place() const {
  if (isEmpty()) return {};
  const QSizeF view = viewPixels();
  const qreal scale = this->scale();
  const qreal left = std::round(view.width() / 2 - centre_.x() * scale);
  const qreal top = std::round(view.height() / 2 - centre_.y() * scale);
  const QSizeF size(std::max(1.0, std::round(picture_.width() * scale)),
                    std::max(1.0, std::round(picture_.height() * scale)));
  return {QPointF(left, top) / displayScale_, size / displayScale_};
}

QPointF PictureZoom::pictureAt(QPointF viewPoint) const {
  const QRectF whole = place();
  if (whole.isEmpty()) return {};
  return {(viewPoint.x() - whole.x()) / whole.width() * picture_.width(),
          (viewPoint.y() - whole.y()) / whole.height() * picture_.height()};
}

QPointF PictureZoom::viewAt(QPointF picturePixel) const {
  if (isEmpty()) return {};
  const QRectF whole = place();
  return {whole.x() + picturePixel.x() / picture_.width() * whole.width(),
          whole.y() + picturePixel.y() / picture_.height() * whole.height()};
}

}  // namespace quillmere
