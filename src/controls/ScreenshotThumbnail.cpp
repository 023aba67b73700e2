#include "controls/ScreenshotThumbnail.h"

#include <QtGui/QPainter>
#include <QtWidgets/QAccessibleWidget>
#include <algorithm>
#include <cmath>

#include "controls/MissingPicture.h"
#include "controls/Theme.h"
#include "foundation/Interruptible.h"
#include "reading/PictureError.h"

namespace quillmere {
namespace {

using Outcome = ThumbnailLoader::Outcome;

bool isNotDownloaded(const std::optional<Outcome>& outcome) {
  return outcome && std::holds_alternative<ThumbnailLoader::NotDownloaded>(*outcome);
}

bool isTooCostly(const std::optional<Outcome>& outcome) {
  return outcome && std::holds_alternative<ThumbnailLoader::TooCostly>(*outcome);
}

/// Qt's own comparison takes what is almost equal for equal.
bool areEqual(const std::optional<QRectF>& a, const std::optional<QRectF>& b) {
  if (!a || !b) return !a && !b;
  return std::equal_to()(a->x(), b->x()) && std::equal_to()(a->y(), b->y()) &&
         std::equal_to()(a->width(), b->width()) && std::equal_to()(a->height(), b->height());
}

QAccessibleInterface* accessibleThumbnail(const QString&, QObject* object) {
  auto* thumbnail = dynamic_cast<ScreenshotThumbnail*>(object);
  return thumbnail ? new QAccessibleWidget(thumbnail, QAccessible::Graphic) : nullptr;
}

}  // namespace

bool ScreenshotThumbnail::LoadKey::operator==(const LoadKey& other) const {
  return url == other.url && pixels == other.pixels && identity == other.identity &&
         hasImageData == other.hasImageData && areEqual(crop, other.crop);
}

ScreenshotThumbnail::ScreenshotThumbnail(ThumbnailLoader& loader, QWidget* parent) : QWidget(parent), loader_(loader) {
  static const bool isRoleKnown = (QAccessible::installFactory(&accessibleThumbnail), true);
  Q_UNUSED(isRoleKnown)
}

ScreenshotThumbnail::~ScreenshotThumbnail() {
  loading_.cancel();
}

void ScreenshotThumbnail::show(const Content& content) {
  // A file that was renamed, or replaced by another, is the same screenshot still.
  const bool isSameScreenshot = content.url == content_.url || (content.identity && content_.identity &&
                                                                content.identity->isSameInode(*content_.identity));
  content_ = content;
  setAccessibleName(content_.accessibilityLabel);
  if (!isSameScreenshot) forget();
  loadIfNeeded();
  update();
}

void ScreenshotThumbnail::clear() {
  forget();
  content_ = {};
  update();
}

void ScreenshotThumbnail::forget() {
  loading_.cancel();
  loaded_.reset();
  setOutcome(std::nullopt);
  picture_ = {};
}

ScreenshotThumbnail::LoadKey ScreenshotThumbnail::key() const {
  const int pixels = qRound(content_.maxPointSize * devicePixelRatioF());
  const auto crop = content_.crop ? std::optional(content_.crop->normalized()) : std::nullopt;
  return {content_.url, pixels, content_.identity, content_.hasImageData, crop};
}

void ScreenshotThumbnail::loadIfNeeded() {
  if (!isVisible() || content_.url.isEmpty()) return;
  const LoadKey next = key();
  if (next == loaded_) return;
  loading_.cancel();
  loaded_ = next;
  if (next.hasImageData) {
    loading_ = load(lifetime_.weak(this), next, devicePixelRatioF());
  } else {
    take(ThumbnailLoader::NotDownloaded{}, devicePixelRatioF());
  }
}

Task<> ScreenshotThumbnail::load(Weak<ScreenshotThumbnail> self, LoadKey key, qreal displayScale) {
  auto loading = interruptible(key.crop ? self->loader_.load(key.url, key.pixels, *key.crop)
                                        : self->loader_.load(key.url, key.pixels));
  const Outcome outcome = co_await loading;
  const bool isStopped = co_await isCancelled;
  if (self && !isStopped) self->take(outcome, displayScale);
}

void ScreenshotThumbnail::take(const Outcome& outcome, qreal displayScale) {
  setOutcome(outcome);
  if (const auto* image = std::get_if<QImage>(&outcome)) picture_ = FittedPicture(*image, displayScale);
  update();
  if (onPictureChanged) onPictureChanged();
}

QRectF ScreenshotThumbnail::picturePlace() const {
  if (isWithoutPicture() || picture_.isNull()) return rect();
  return picture_.placeIn(rect(), content_.alignment, devicePixelRatioF());
}

void ScreenshotThumbnail::setOutcome(const std::optional<Outcome>& outcome) {
  const auto reason = [this] { return std::pair(isNotDownloaded(outcome_), isTooCostly(outcome_)); };
  const auto earlier = reason();
  outcome_ = outcome;
  // Otherwise it is the owner's.
  if (reason() == earlier) return;
  const auto [isEvicted, isCostly] = reason();
  const QString costly = isCostly ? description(PictureError::tooCostly) : QString();
  setToolTip(isEvicted ? adviceFor(MissingPicture::notDownloaded) : costly);
}

void ScreenshotThumbnail::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  loadIfNeeded();
}

void ScreenshotThumbnail::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  if (!loading_ || loading_.isDone()) return;
  loading_.cancel();
  loaded_.reset();
}

bool ScreenshotThumbnail::isWithoutPicture() const {
  return outcome_ && !std::holds_alternative<QImage>(*outcome_);
}

void ScreenshotThumbnail::paintEvent(QPaintEvent*) {
  // Here, since no event tells of a screen with other pixels.
  loadIfNeeded();
  QPainter painter(this);
  painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
  if (isWithoutPicture() || picture_.isNull()) {
    paintWell(painter);
    return;
  }
  const qreal displayScale = devicePixelRatioF();
  const QRectF place = picturePlace();
  picture_.paint(painter, place, content_.cornerRadius, displayScale);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(Theme(palette()).hairline, 1));
  painter.drawRoundedRect(place.adjusted(0.5, 0.5, -0.5, -0.5), content_.cornerRadius, content_.cornerRadius);
}

/// With a symbol; while the first picture is awaited nothing stands in it that would go at once.
void ScreenshotThumbnail::paintWell(QPainter& painter) {
  const Theme theme(palette());
  painter.setPen(Qt::NoPen);
  painter.setBrush(theme.fill);
  painter.drawRoundedRect(rect(), content_.cornerRadius, content_.cornerRadius);
  if (!isWithoutPicture()) return;
  const bool isEvicted = isNotDownloaded(outcome_);
  paintMissingPicture(painter, rect(), isEvicted ? MissingPicture::notDownloaded : MissingPicture::unreadable, *this);
}

}  // namespace quillmere
