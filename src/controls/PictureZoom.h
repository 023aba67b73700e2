#pragma once

#include <QtCore/QRectF>
#include <QtCore/QSize>

namespace quillmere {

/// Which part of a picture a view shows, and how large.
///
/// Points of the view count from its top left corner, pixels of the picture from its own, and a pixel's middle lies
/// half a pixel inside. A scale is how many pixels of the screen a pixel of the picture has on each side: 1 is real
/// size. Until there are a view and a picture nothing is shown, and the place is empty.
class PictureZoom {
 public:
  enum class Mode {
    fit,   ///< the whole picture, as large as the view has room for and at most at real size; also after the view
           ///< changes
    scale  ///< at a scale that somebody chose
  };
  static constexpr qreal kLargestScale = 32;
  /// How much smaller than fitting a picture may become.
  static constexpr qreal kSmallestOfFit = 0.25;

  /// In points, on a screen of `displayScale` pixels to a point. What was in the middle stays there.
  void setView(QSizeF points, qreal displayScale);
  /// Another picture, which fits. One of the same size stays where the one before was.
  void setPicture(QSize pixels);

  Mode mode() const { return mode_; }
  QSize picture() const { return picture_; }
  qreal scale() const;
  qreal fittingScale() const;
  qreal smallestScale() const { return fittingScale() * kSmallestOfFit; }
  /// Whether the view shows less than all of it.
  bool isLargerThanView() const;

  void fit();
  /// At this scale or the nearest that may be; the picture's pixel at the view's `point` stays there, unless the
  /// picture would leave a gap on one side that it could fill.
  void zoomTo(qreal scale, QPointF point);
  void zoomBy(qreal factor, QPointF point) { zoomTo(scale() * factor, point); }
  /// The picture goes with a hand that moves by so many points, as far as the view has no gap.
  void pan(QPointF points);

  /// Where the whole picture is, in points; on whole pixels of the screen, so that at real size nothing blurs.
  QRectF place() const;
  QPointF pictureAt(QPointF viewPoint) const;
  QPointF viewAt(QPointF picturePixel) const;
  QPointF middle() const { return {view_.width() / 2, view_.height() / 2}; }

 private:
  bool isEmpty() const { return view_.isEmpty() || picture_.isEmpty(); }
  QSizeF viewPixels() const { return view_ * displayScale_; }
  void keepInside();

  QSizeF view_{0, 0};
  qreal displayScale_ = 1;
  QSize picture_{0, 0};
  Mode mode_ = Mode::fit;
  qreal scale_ = 1;  ///< that was chosen
  QPointF centre_;   ///< what lies in the middle of the view, in pixels of the picture
};

}  // namespace quillmere
