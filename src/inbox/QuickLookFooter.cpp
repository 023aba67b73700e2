#include "inbox/QuickLookFooter.h"

#include <QtCore/QLocale>
#include <QtGui/QPainter>
#include <QtWidgets/QHBoxLayout>

#include "controls/ActionButton.h"
#include "controls/ThemedLabel.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

constexpr int kPadding = 14;
constexpr int kSlimPadding = 6;
constexpr int kGap = 14;
constexpr int kButtonGap = 4;

QString percentText(qreal scale) {
  return localized("%@%", {QLocale().toString(qRound(scale * 100))});
}

}  // namespace

QString pictureSizeText(QSize pixels) {
  return localized("%@ × %@", {QString::number(pixels.width()), QString::number(pixels.height())});
}

QuickLookFooter::QuickLookFooter(QWidget* parent)
    : QWidget(parent),
      name_(new ThemedLabel(Ink::text, this)),
      size_(new ThemedLabel(Ink::secondary, this)),
      scale_(new ThemedLabel(Ink::secondary, this)),
      fit_(makeButton(QStringLiteral("picture.fit"), localized("Fit to Window"), &QuickLookFooter::onFit)),
      realSize_(makeButton(QStringLiteral("picture.real.size"), localized("Real Size"), &QuickLookFooter::onRealSize)),
      open_(makeButton(QStringLiteral("arrow.up.forward.square"), localized("Open in Image Viewer"),
                       &QuickLookFooter::onOpenElsewhere)) {
  name_->setFont(fileNameFont(font()));
  name_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  scale_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  // The sizes beside it must not tremble while it is zoomed.
  scale_->setMinimumWidth(fontMetrics().horizontalAdvance(percentText(8.88)));
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(kPadding, kSlimPadding + 1, kPadding - kSlimPadding, kSlimPadding);
  row->setSpacing(kGap);
  row->addWidget(name_, 1);
  row->addWidget(size_);
  row->addWidget(scale_);
  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(kButtonGap);
  for (ActionButton* button : {fit_, realSize_, open_}) buttons->addWidget(button);
  row->addLayout(buttons);
  setPictureSize(std::nullopt);
  setScale(std::nullopt);
  setOffersOpening(false);
}

ActionButton* QuickLookFooter::makeButton(const QString& symbol, const QString& name,
                                          std::function<void()> QuickLookFooter::*action) {
  auto* button = new ActionButton(ActionButton::Role::icon, symbol, {}, this);
  button->setAccessibleName(name);
  setPlainToolTip(*button, name);
  connect(button, &QPushButton::clicked, this, [this, action] {
    if (this->*action) (this->*action)();
  });
  return button;
}

void QuickLookFooter::setName(const QString& name) {
  fullName_ = name;
  name_->setAccessibleName(name);
  elideName();
}

void QuickLookFooter::setPictureSize(std::optional<QSize> size) {
  size_->setVisible(size.has_value());
  if (size) size_->setText(pictureSizeText(*size));
}

void QuickLookFooter::setScale(std::optional<qreal> scale) {
  scale_->setVisible(scale.has_value());
  if (scale) scale_->setText(percentText(*scale));
  fit_->setEnabled(scale.has_value());
  realSize_->setEnabled(scale.has_value());
}

void QuickLookFooter::setOffersOpening(bool offers) {
  open_->setVisible(offers);
}

/// Names of screenshots differ at their ends.
void QuickLookFooter::elideName() {
  layout()->activate();
  const QString shown = name_->fontMetrics().elidedText(fullName_, Qt::ElideMiddle, name_->width());
  name_->setText(shown);
  setPlainToolTip(*name_, shown == fullName_ ? QString() : fullName_);
}

void QuickLookFooter::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  elideName();
}

void QuickLookFooter::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(0, 0, width(), 1, Theme(palette()).hairline);
}

}  // namespace quillmere
