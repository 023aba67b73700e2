#include "controls/PictureCanvas.h"

#include <QtGui/QNativeGestureEvent>
#include <QtGui/QPainter>
#include <QtGui/QShortcut>
#include <QtGui/QWheelEvent>
#include <cmath>

#include "controls/AccessibleRole.h"
#include "controls/Contrast.h"
#include "controls/PictureDrawing.h"
#include "controls/Theme.h"
#include "pixels/Downscaler.h"

namespace quillmere {
namespace {

constexpr qreal kStep = 1.25;
constexpr int kCheckerSide = 8;  // points
constexpr qreal kNotch = 120;    // in eighths of a degree
constexpr qreal kPointsANotch = 60;
/// What turns within this time, in milliseconds, is one turn of the wheel.
constexpr quint64 kOneTurn = 400;
/// What may be held beside a picture for drawing, in hundredths of it.
constexpr qsizetype kSpare = 40;
/// Zooming has come to rest when nothing changed for so long.
const Duration kRest = seconds(0.06);

/// As it can be painted without being converted each time.
QImage paintable(const QImage& image) {
  const auto wanted = image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
  return image.format() == wanted ? image : image.convertToFormat(wanted);
}

void addShortcut(QWidget& widget, Qt::Key key, const std::function<void()>& action) {
  auto* shortcut = new QShortcut(QKeySequence(Qt::CTRL | key), &widget);
  QObject::connect(shortcut, &QShortcut::activated, &widget, action);
}

}  // namespace

PictureCanvas::PictureCanvas(Executor& executor, QWidget* parent, Purpose purpose)
    : QWidget(parent), executor_(executor), purpose_(purpose) {
  setAccessibleRole(*this, QAccessible::Graphic);
  setAttribute(Qt::WA_OpaquePaintEvent);
  setFocusPolicy(Qt::StrongFocus);
  for (const Qt::Key key : {Qt::Key_Plus, Qt::Key_Equal}) addShortcut(*this, key, [this] { zoomIn(); });
  addShortcut(*this, Qt::Key_Minus, [this] { zoomOut(); });
  addShortcut(*this, Qt::Key_0, [this] { fit(); });
  addShortcut(*this, Qt::Key_1, [this] { showRealSize(); });
}

PictureCanvas::~PictureCanvas() {
  halving_.cancel();
  sharpening_.cancel();
}

void PictureCanvas::setPicture(const QImage& image, QSize fullSize) {
  if (image.isNull()) return clear();
  missing_.reset();
  const QImage picture = paintable(image);
  const bool isFull = picture.size() == fullSize;
  // Drawn from alone, a large picture would be noise until its smaller copies are there.
  const bool keepsPreview = isFull && full_.isNull() && fullSize == zoom_.picture();
  halving_.cancel();
  sharpening_.cancel();
  sharpeningTo_ = {};
  sharp_ = {};
  frame_ = {};
  halvings_ = 0;
  full_ = isFull ? picture : QImage();
  if (!keepsPreview) levels_.clear();
  levels_.add(picture);
  followView();
  change([&](PictureZoom& zoom) { zoom.setPicture(fullSize); });
  update();
  if (isFull && purpose_ == Purpose::looking) halving_ = halve(lifetime_.weak(this), full_);
}

void PictureCanvas::clear(std::optional<MissingPicture> missing) {
  halving_.cancel();
  sharpening_.cancel();
  sharpeningTo_ = {};
  full_ = {};
  sharp_ = {};
  frame_ = {};
  halvings_ = 0;
  levels_.clear();
  hand_.reset();
  missing_ = missing;
  change([](PictureZoom& zoom) { zoom.setPicture({0, 0}); });
  update();
}

Task<> PictureCanvas::halve(Weak<PictureCanvas> self, QImage full) {
  auto halving = self->executor_.background([full] { return PictureLevels::halves(full); });
  const auto halves = co_await halving;
  const bool isStopped = co_await isCancelled;
  if (!self || isStopped) co_return;
  self->levels_.clear();
  self->levels_.add(full);
  for (const QImage& half : halves) self->levels_.add(half);
  self->update();
}

Task<> PictureCanvas::halve(Weak<PictureCanvas> self, QImage full, int times) {
  auto halving = self->executor_.background([full, times] { return PictureLevels::halved(full, times); });
  const QImage half = co_await halving;
  const bool isStopped = co_await isCancelled;
  if (!self || isStopped || half.isNull()) co_return;
  self->levels_.clear();
  self->levels_.add(full);
  self->levels_.add(half);
  self->update();
}

void PictureCanvas::halveIfNeeded() {
  if (purpose_ != Purpose::drawing || full_.isNull()) return;
  const auto longer = [](QSize size) { return std::max(size.width(), size.height()); };
  // What is seen whole has its sharp copy.
  const int wanted =
      zoom_.isLargerThanView() ? PictureLevels::halvings(longer(full_.size()), longer(placeInPixels().size())) : 0;
  if (wanted == halvings_) return;
  halvings_ = wanted;
  halving_.cancel();
  if (wanted > 0) {
    halving_ = halve(lifetime_.weak(this), full_, wanted);
  } else {
    levels_.clear();
    levels_.add(full_);
  }
}

void PictureCanvas::sharpenIfNeeded() {
  const QSize wanted = placeInPixels().size();
  // Where only a part is seen the copies by halves must do: the whole could be larger than any memory.
  if (full_.isNull() || zoom_.scale() >= 1 || zoom_.isLargerThanView()) return;
  const QSize present = frame_.isSharp ? frame_.place.size() : sharp_.size();
  if (wanted == present || wanted == sharpeningTo_) return;
  sharpening_.cancel();
  sharpeningTo_ = wanted;
  sharpening_ = sharpen(lifetime_.weak(this), full_, wanted);
}

Task<> PictureCanvas::sharpen(Weak<PictureCanvas> self, QImage full, QSize pixels) {
  auto resting = self->executor_.sleep(self->sharp_.isNull() ? Duration::zero() : kRest);
  const bool isAtRest = co_await resting;
  if (!self || !isAtRest) co_return;
  auto scaling = self->executor_.background([full, pixels] { return Downscaler::scaled(full, pixels); });
  QImage sharp = co_await scaling;
  const bool isStopped = co_await isCancelled;
  if (!self || isStopped) co_return;
  self->sharpeningTo_ = {};
  self->sharp_ = std::move(sharp);
  self->frame_ = {};
  if (self->purpose_ == Purpose::drawing && self->halvings_ == 0) {
    // What stood for the picture meanwhile is not needed any more.
    self->levels_.clear();
    self->levels_.add(full);
  }
  self->update();
}

// --- How it is zoomed ---

void PictureCanvas::change(const std::function<void(PictureZoom&)>& something) {
  const auto mode = zoom_.mode();
  const qreal scale = zoom_.scale();
  const QRectF place = zoom_.place();
  something(zoom_);
  updateCursor();
  const bool isSameScale = mode == zoom_.mode() && std::equal_to()(scale, zoom_.scale());
  // A paint event asks too, and must not lead to the next one.
  if (!isSameScale || place != zoom_.place()) {
    update();
    placeChanged();
  }
  if (!isSameScale && onZoomChanged) onZoomChanged();
}

void PictureCanvas::followView() {
  change([this](PictureZoom& zoom) { zoom.setView(size(), devicePixelRatioF()); });
}

void PictureCanvas::fit() {
  change([](PictureZoom& zoom) { zoom.fit(); });
}

void PictureCanvas::showRealSize(QPointF point) {
  change([&](PictureZoom& zoom) { zoom.zoomTo(1, point); });
}

void PictureCanvas::zoomByStep(qreal steps, QPointF point) {
  const qreal from = zoom_.scale();
  const qreal to = from * std::pow(kStep, steps);
  const bool passesRealSize = (from < 1 && to > 1) || (from > 1 && to < 1);
  change([&](PictureZoom& zoom) { zoom.zoomTo(passesRealSize ? 1 : to, point); });
}

void PictureCanvas::pan(QPointF points) {
  change([&](PictureZoom& zoom) { zoom.pan(points); });
}

void PictureCanvas::updateCursor() {
  if (!zoom_.isLargerThanView()) return unsetCursor();
  setCursor(hand_ ? Qt::ClosedHandCursor : Qt::OpenHandCursor);
}

bool PictureCanvas::event(QEvent* event) {
  if (event->type() == QEvent::NativeGesture) {
    takeGesture(static_cast<const QNativeGestureEvent&>(*event));
    return true;
  }
  return QWidget::event(event);
}

void PictureCanvas::takeGesture(const QNativeGestureEvent& gesture) {
  if (gesture.gestureType() != Qt::ZoomNativeGesture) return;
  change([&](PictureZoom& zoom) { zoom.zoomBy(1 + gesture.value(), gesture.position()); });
}

void PictureCanvas::wheelEvent(QWheelEvent* event) {
  QPointF notches = QPointF(event->angleDelta()) / kNotch;
  const bool isNewTurn = !lastWheel_ || event->timestamp() > *lastWheel_ + kOneTurn;
  lastWheel_ = event->timestamp();
  // A turn that began to zoom goes on so when the picture has outgrown the view.
  if (isNewTurn) turnZooms_ = wheelZooms_ && !zoom_.isLargerThanView();
  if (turnZooms_ || event->modifiers().testFlag(Qt::ControlModifier)) {
    // Two fingers that go sideways don't zoom, and what fits goes on fitting.
    if (event->angleDelta().y() != 0) zoomByStep(notches.y(), event->position());
  } else {
    if (event->modifiers().testFlag(Qt::ShiftModifier)) notches = notches.transposed();
    pan(notches * kPointsANotch);
  }
  event->accept();
}

void PictureCanvas::takeHand(QPointF point) {
  hand_ = point;
  updateCursor();
}

void PictureCanvas::moveHand(QPointF point) {
  pan(point - *hand_);
  hand_ = point;
}

void PictureCanvas::letGo() {
  hand_.reset();
  updateCursor();
}

void PictureCanvas::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return QWidget::mousePressEvent(event);
  takeHand(event->position());
}

void PictureCanvas::mouseMoveEvent(QMouseEvent* event) {
  if (!hand_) return QWidget::mouseMoveEvent(event);
  moveHand(event->position());
}

void PictureCanvas::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return QWidget::mouseReleaseEvent(event);
  letGo();
}

void PictureCanvas::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return QWidget::mouseDoubleClickEvent(event);
  zoom_.mode() == PictureZoom::Mode::fit ? showRealSize(event->position()) : fit();
}

void PictureCanvas::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  followView();
}

// --- How it is painted ---

QRect PictureCanvas::placeInPixels() const {
  const QRectF place = zoom_.place();
  const qreal displayScale = devicePixelRatioF();
  return {qRound(place.x() * displayScale), qRound(place.y() * displayScale), qRound(place.width() * displayScale),
          qRound(place.height() * displayScale)};
}

void PictureCanvas::paintEvent(QPaintEvent* event) {
  const qreal displayScale = devicePixelRatioF();
  // Here, since no event tells of a screen with other pixels.
  followView();
  halveIfNeeded();
  sharpenIfNeeded();
  QPainter painter(this);
  const QColor ground = palette().color(QPalette::Window);
  if (!hasPicture()) {
    painter.fillRect(event->rect(), ground);
    if (missing_) paintMissingPicture(painter, rect(), *missing_, *this);
    return;
  }
  painter.scale(1 / displayScale, 1 / displayScale);
  // At 1.25 pixels to a point the canvas's own corner may lie between two pixels.
  const QTransform onScreen = painter.deviceTransform();
  painter.translate(std::round(onScreen.dx()) - onScreen.dx(), std::round(onScreen.dy()) - onScreen.dy());
  const QRect place = placeInPixels();
  const QRect visible(0, 0, qCeil(width() * displayScale), qCeil(height() * displayScale));
  for (const QRect& beside : QRegion(visible) - place) painter.fillRect(beside, ground);
  paintPicture(painter, place, visible);
  paintOver(painter, place, visible);
}

void PictureCanvas::paintOver(QPainter& painter, const QRect& place, const QRect& visible) {
  // So that a picture of the ground's colour has an edge too.
  painter.setPen(QPen(Theme(palette()).hairline, 1));
  painter.setBrush(Qt::NoBrush);
  painter.drawRect((place & visible.adjusted(-1, -1, 1, 1)).adjusted(-1, -1, 0, 0));
}

void PictureCanvas::paintMarks(QPainter&, const QRect&, const QRect&) {}

QImage PictureCanvas::imageFor(QSize pixels) const {
  return sharp_.size() == pixels ? sharp_ : levels_.nearest(pixels);
}

bool PictureCanvas::isSquares(const QImage& image) const {
  return zoom_.scale() >= kSquareScale && image.size() == zoom_.picture();
}

bool PictureCanvas::isCopied(const QImage& image, const QRect& place) {
  return image.size() == place.size() && !image.hasAlphaChannel();
}

void PictureCanvas::paintPicture(QPainter& painter, const QRect& place, const QRect& visible) {
  const QImage image = imageFor(place.size());
  if (purpose_ == Purpose::looking || isCopied(image, place)) {
    frame_ = {};
    return paintImage(painter, image, place, visible);
  }
  keepFrame(image, place, visible);
  painter.drawImage((place & visible).topLeft(), frame_.pixels);
}

void PictureCanvas::keepFrame(const QImage& image, const QRect& place, const QRect& visible) {
  const QRgb ground = Theme(palette()).card.rgb();
  const QRect seen = place & visible;
  const bool isFromHere = frame_.isSharp || frame_.source == image.cacheKey();
  const bool isKept = isFromHere && frame_.place == place && frame_.visible == visible && frame_.ground == ground &&
                      !frame_.pixels.isNull();
  if (isKept || seen.isEmpty()) return;
  if (isSquares(image) && !image.hasAlphaChannel()) {
    frame_.pixels = {};
    frame_.pixels = asSquares(image, place, visible);
  } else if (frame_.pixels.size() != seen.size()) {
    frame_.pixels = {};
    frame_.pixels = QImage(seen.size(), QImage::Format_RGB32);
  }
  const bool isSharp = image.cacheKey() == sharp_.cacheKey();
  frame_ = {std::move(frame_.pixels), image.cacheKey(), isSharp, place, visible, ground};
  QPainter painter(&frame_.pixels);
  painter.translate(-seen.topLeft());
  if (!isSquares(image) || image.hasAlphaChannel()) paintImage(painter, image, place, visible);
  paintMarks(painter, place, visible);
  // A sharp copy of another size is quickly made again, and one that is in the frame is not needed.
  const bool isSpare = sharp_.size() != place.size() || isSharp;
  if (isSpare && 100 * (heldBytes() - full_.sizeInBytes()) > kSpare * full_.sizeInBytes()) sharp_ = {};
}

void PictureCanvas::paintImage(QPainter& painter, const QImage& image, const QRect& place, const QRect& visible) {
  if (image.hasAlphaChannel()) {
    const Theme theme(palette());
    drawCheckers(painter, place, visible, qRound(kCheckerSide * devicePixelRatioF()), theme.card,
                 mixed(theme.card, theme.text, 0.06));
  }
  if (isSquares(image)) {
    painter.drawImage((place & visible).topLeft(), asSquares(image, place, visible));
  } else {
    drawSmoothly(painter, image, place, visible);
  }
}

qsizetype PictureCanvas::heldBytes() const {
  return full_.sizeInBytes() + levels_.bytesBeside(full_) + sharp_.sizeInBytes() + frame_.pixels.sizeInBytes();
}

}  // namespace quillmere
