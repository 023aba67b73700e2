#include "inbox/InboxDetail.h"

#include <QtCore/QLocale>
#include <QtGui/QPainter>
#include <QtWidgets/QLabel>
#include <QtWidgets/QVBoxLayout>

#include "controls/Grounds.h"
#include "controls/Symbol.h"
#include "controls/Theme.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

constexpr int kPictureSide = 1400;  // pixels; larger than the view is on most screens
constexpr int kPadding = 20;

}  // namespace

InboxDetail::InboxDetail(ThumbnailLoader& thumbnails, QWidget* parent)
    : QWidget(parent), thumbnails_(thumbnails), name_(new QLabel(this)), status_(new QLabel(this)) {
  const Theme theme(palette());
  name_->setFont(scaled(font(), 1.2, QFont::DemiBold));
  name_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  name_->setWordWrap(true);
  setTextColor(*status_, theme.secondaryText);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(kPadding, kPadding, kPadding, kPadding);
  column->setSpacing(4);
  column->addStretch();
  column->addWidget(name_);
  column->addWidget(status_);
}

void InboxDetail::show(const ScreenshotItem& item, bool isUnavailable) {
  name_->setText(item.url.displayName());
  const QString time = QLocale().toString(item.createdAt.toDateTime().toLocalTime(), QLocale::ShortFormat);
  status_->setText(localized("%@ · %@", {isUnavailable ? localized("Unavailable") : statusText(item.state), time}));
  if (item.url == url_ && item.fileIdentity == identity_) return;
  if (item.fileIdentity != identity_ || !identity_) image_ = {};
  url_ = item.url;
  identity_ = item.fileIdentity;
  QWidget::update();
  if (!isUnavailable) load(lifetime_.weak(this), url_).detach();
}

Task<> InboxDetail::load(Weak<InboxDetail> self, FileURL url) {
  const auto outcome = co_await self->thumbnails_.load(url, kPictureSide);
  if (!self || self->url_ != url) co_return;
  if (const QImage* image = std::get_if<QImage>(&outcome)) {
    self->image_ = *image;
    self->update();
  }
}

QRect InboxDetail::pictureArea() const {
  return QRect(kPadding, kPadding, width() - 2 * kPadding, name_->y() - 2 * kPadding);
}

void InboxDetail::paintEvent(QPaintEvent*) {
  const Theme theme(palette());
  QPainter painter(this);
  painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
  const QRect area = pictureArea();
  if (image_.isNull()) {
    constexpr int kSymbol = 48;
    QRect place(0, 0, kSymbol, kSymbol);
    place.moveCenter(area.center());
    painter.drawPixmap(place.topLeft(),
                       symbolPixmap(QStringLiteral("photo"), kSymbol, theme.secondaryText, devicePixelRatioF()));
    return;
  }
  QSizeF size = image_.size();
  if (size.width() > area.width() || size.height() > area.height()) size.scale(area.size(), Qt::KeepAspectRatio);
  QRectF target(QPointF(), size);
  target.moveCenter(QRectF(area).center());
  painter.drawImage(target, image_);
  painter.setPen(QPen(theme.hairline, 1));
  painter.drawRect(target.adjusted(0.5, 0.5, -0.5, -0.5));
}

}  // namespace quillmere
