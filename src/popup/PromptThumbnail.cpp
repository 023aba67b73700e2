#include "popup/PromptThumbnail.h"

#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

#include "controls/Symbol.h"
#include "controls/Theme.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

constexpr qreal kCornerRadius = 10;
constexpr int kPointSize = 408;

}  // namespace

PromptThumbnail::PromptThumbnail(ThumbnailLoader& loader, QWidget* parent) : QWidget(parent), loader_(loader) {
  setAccessibleName(localized("Screenshot preview"));
}

void PromptThumbnail::show(const FileURL& url, const std::optional<FileIdentity>& identity, bool hasImageData) {
  if (url == url_ && identity == identity_ && hasImageData == hasImageData_) return;
  const bool isSameFile = identity == identity_ && identity;
  url_ = url;
  identity_ = identity;
  hasImageData_ = hasImageData;
  if (!isSameFile) image_ = {};
  update();
  if (hasImageData_) load(lifetime_.weak(this), ++loadCount_).detach();
}

Task<> PromptThumbnail::load(Weak<PromptThumbnail> self, int load) {
  const int pixels = qRound(kPointSize * self->devicePixelRatioF());
  const auto outcome = co_await self->loader_.load(self->url_, pixels);
  if (!self || load != self->loadCount_) co_return;
  if (const QImage* image = std::get_if<QImage>(&outcome)) {
    self->image_ = *image;
    self->update();
  }
}

void PromptThumbnail::paintEvent(QPaintEvent*) {
  const Theme theme(palette());
  QPainter painter(this);
  painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
  QPainterPath shape;
  shape.addRoundedRect(QRectF(rect()), kCornerRadius, kCornerRadius);
  painter.fillPath(shape, theme.fill);
  if (image_.isNull()) {
    constexpr int kSymbol = 28;
    painter.drawPixmap((width() - kSymbol) / 2, (height() - kSymbol) / 2,
                       symbolPixmap(QStringLiteral("photo"), kSymbol, theme.secondaryText, devicePixelRatioF()));
    return;
  }
  painter.setClipPath(shape);
  QRectF target(QPointF(), QSizeF(image_.size()).scaled(size(), Qt::KeepAspectRatio));
  target.moveCenter(QRectF(rect()).center());
  painter.drawImage(target, image_);
  painter.setClipping(false);
  painter.setPen(QPen(theme.hairline, 1));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kCornerRadius, kCornerRadius);
}

}  // namespace quillmere
