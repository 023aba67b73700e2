#pragma once

#include <QtGui/QImage>
#include <QtWidgets/QWidget>
#include <functional>
#include <optional>

#include "controls/MissingPicture.h"
#include "controls/PictureLevels.h"
#include "controls/PictureZoom.h"
#include "foundation/Executor.h"
#include "foundation/Weak.h"

class QNativeGestureEvent;

namespace quillmere {

/// A picture that can be looked at closely: it fits at first, is zoomed by Ctrl and the wheel, by two fingers, by Ctrl
/// with plus, minus, 0 (fit) and 1 (real size) anywhere in its window and by a double click, and is moved by the hand
/// and the wheel. From four times its size on its pixels are squares. A frame costs what the view has pixels, however
/// large the picture: smaller copies of it are made in the background.
class PictureCanvas : public QWidget {
 public:
  /// What its memory goes into.
  enum class Purpose {
    looking,  ///< smaller copies of all sizes, so that every zoom is smooth at once
    drawing   ///< what is seen, so that what is painted over it can change with every move of the pointer; a smaller
              ///< copy only while one is needed
  };
  /// From this scale on pixels are shown as squares.
  static constexpr qreal kSquareScale = 4;

  PictureCanvas(Executor& executor, QWidget* parent, Purpose purpose = Purpose::looking);
  ~PictureCanvas() override;

  /// A picture of `fullSize` pixels, or a smaller copy that stands for it. When one takes the place of the other
  /// neither scale nor place change; a picture of another size fits. In sRGB; RGB32 or premultiplied is shown as it is.
  void setPicture(const QImage& image, QSize fullSize);
  /// Lets go of the picture; nothing is shown, or what stands for a missing one.
  void clear(std::optional<MissingPicture> missing = std::nullopt);
  bool hasPicture() const { return !levels_.isEmpty(); }
  /// Whether all pixels are there.
  bool hasFullPicture() const { return !full_.isNull(); }
  std::optional<MissingPicture> missing() const { return missing_; }
  /// All pixels that it holds, in bytes.
  qsizetype heldBytes() const;

  const PictureZoom& zoom() const { return zoom_; }
  void fit();
  void showRealSize() { showRealSize(zoom_.middle()); }
  /// By a step, about the middle. A step stops at real size.
  void zoomIn() { zoomByStep(1, zoom_.middle()); }
  void zoomOut() { zoomByStep(-1, zoom_.middle()); }
  /// Whether the plain wheel zooms too, as long as there is nothing to pan.
  void setWheelZooms(bool wheelZooms) { wheelZooms_ = wheelZooms; }
  /// Another scale or another mode, whoever changed it.
  std::function<void()> onZoomChanged;

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;

  /// Paints what belongs to the picture as it is seen and changes only with that, by a painter whose unit is a pixel of
  /// the screen. Only for drawing.
  virtual void paintMarks(QPainter& painter, const QRect& place, const QRect& visible);
  /// Paints over the picture, by a painter whose unit is a pixel of the screen and that has been cut to what is needed.
  /// `place` is where the whole picture is, which may be far larger than the view.
  virtual void paintOver(QPainter& painter, const QRect& place, const QRect& visible);
  /// The picture has another place: it was zoomed or moved, or the view has become another.
  virtual void placeChanged() {}
  /// For what the pointer would do now.
  virtual void updateCursor();

  Executor& executor() { return executor_; }
  /// The picture with all its pixels; null without.
  const QImage& fullPicture() const { return full_; }
  /// Where the picture is, in pixels of the screen.
  QRect placeInPixels() const;
  void pan(QPointF points);
  /// A hand takes hold of the picture at a point of the view, which then goes with it.
  void takeHand(QPointF point);
  bool hasHand() const { return hand_.has_value(); }
  void moveHand(QPointF point);
  void letGo();

 private:
  /// Does something to the zoom, and what follows of that.
  void change(const std::function<void(PictureZoom&)>& something);
  void followView();
  void showRealSize(QPointF point);
  void zoomByStep(qreal steps, QPointF point);
  void takeGesture(const QNativeGestureEvent& gesture);

  /// The best image for the picture at this size.
  QImage imageFor(QSize pixels) const;
  void paintPicture(QPainter& painter, const QRect& place, const QRect& visible);
  void paintImage(QPainter& painter, const QImage& image, const QRect& place, const QRect& visible);
  void keepFrame(const QImage& image, const QRect& place, const QRect& visible);
  bool isSquares(const QImage& image) const;
  /// What is copied as it is need not be kept once more.
  static bool isCopied(const QImage& image, const QRect& place);
  void halveIfNeeded();
  /// Has a copy made of exactly the size in which the whole picture is seen, if there isn't one.
  void sharpenIfNeeded();
  static Task<> halve(Weak<PictureCanvas> self, QImage full);
  static Task<> halve(Weak<PictureCanvas> self, QImage full, int times);
  static Task<> sharpen(Weak<PictureCanvas> self, QImage full, QSize pixels);

  /// A part of the picture as it was painted.
  struct Frame {
    QImage pixels;
    qint64 source = 0;     ///< the key of what it was painted from
    bool isSharp = false;  ///< it can't become better
    QRect place;
    QRect visible;
    QRgb ground = 0;
  };

  Executor& executor_;
  Purpose purpose_;
  PictureZoom zoom_;
  QImage full_;
  PictureLevels levels_;
  int halvings_ = 0;  ///< of the copy that is kept for drawing, or on its way
  QImage sharp_;      ///< of the size in which it is seen
  Frame frame_;       ///< as it is seen; only for drawing
  Task<> halving_;
  Task<> sharpening_;
  QSize sharpeningTo_;
  std::optional<MissingPicture> missing_;
  bool wheelZooms_ = false;
  std::optional<quint64> lastWheel_;  ///< when it turned, in milliseconds of its events
  bool turnZooms_ = false;
  std::optional<QPointF> hand_;  ///< where it holds the picture
  Lifetime lifetime_;
};

}  // namespace quillmere
