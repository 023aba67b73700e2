#include "inbox/DownloadStatusRow.h"

#include <QtGui/QPainter>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QVBoxLayout>

#include "controls/ActionButton.h"
#include "controls/Grounds.h"
#include "controls/Metrics.h"
#include "controls/SymbolLabel.h"
#include "controls/ThemedLabel.h"
#include "controls/WorkIndicator.h"
#include "controls/WrappingRow.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

constexpr int kSymbol = 18;
constexpr int kPadding = 12;

}  // namespace

DownloadStatusContent DownloadStatusContent::make(bool canDownload, std::optional<DownloadState> state) {
  const QString cloud = QStringLiteral("icloud");
  const QString troubled = QStringLiteral("exclamationmark.icloud");
  if (!canDownload) {
    return {cloud,
            localized("Not downloaded. The image isn’t on this Mac, so it can’t be shown or copied here. Open it in "
                      "Finder to download it."),
            Offer::nothing};
  }
  if (!state) {
    return {cloud,
            localized("Not downloaded. The image is in iCloud, not on this Mac, so it can’t be shown or copied here."),
            Offer::download};
  }
  switch (*state) {
    case DownloadState::requesting:
    case DownloadState::downloading:
      return {cloud, localized("Downloading from iCloud…"), Offer::nothing, true};
    case DownloadState::stalled:
      return {
          troubled,
          localized("The image hasn’t arrived yet. iCloud still has the request, so it will finish downloading once "
                    "this Mac is back online."),
          Offer::nothing};
    case DownloadState::refused:
      return {troubled,
              localized("iCloud couldn’t start the download, so the image is still in iCloud. Try again, or open the "
                        "screenshot in Finder to download it."),
              Offer::retry};
  }
  return {};
}

DownloadStatusRow::DownloadStatusRow(QWidget* parent)
    : QWidget(parent),
      symbol_(new SymbolLabel(kSymbol, Ink::secondary, this)),
      ring_(new WorkIndicator(this)),
      text_(new ThemedLabel(Ink::text, this)) {
  text_->setWordWrap(true);
  using Role = ActionButton::Role;
  download_ = new ActionButton(Role::secondary, QStringLiteral("arrow.down.circle"), localized("Download"), this);
  download_->setToolTip(localized("Ask iCloud to download this screenshot’s image to this Mac"));
  retry_ = new ActionButton(Role::secondary, QStringLiteral("arrow.clockwise"), localized("Try Again"), this);
  showInFinder_ = new ActionButton(Role::secondary, QStringLiteral("finder"), localized("Show in Finder"), this);
  showInFinder_->setToolTip(localized("Show this screenshot’s file in the Finder"));
  for (ActionButton* button : {download_, retry_}) {
    connect(button, &QPushButton::clicked, this, [this] { onDownload(); });
  }
  connect(showInFinder_, &QPushButton::clicked, this, [this] { onShowInFinder(); });

  auto* said = new QHBoxLayout;
  said->setSpacing(10);
  said->addWidget(symbol_, 0, Qt::AlignTop);
  said->addWidget(ring_, 0, Qt::AlignTop);
  said->addWidget(text_, 1);
  auto* offered = new WrappingRow(8);
  for (ActionButton* button : {download_, retry_, showInFinder_}) offered->addWidget(button);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(kPadding, kPadding, kPadding, kPadding);
  column->setSpacing(kPadding);
  column->addLayout(said);
  column->addLayout(offered);
}

void DownloadStatusRow::show(const DownloadStatusContent& content) {
  using Offer = DownloadStatusContent::Offer;
  symbol_->setSymbol(content.symbol);
  symbol_->setVisible(!content.isUnderWay);
  ring_->setVisible(content.isUnderWay);
  text_->setText(content.text);
  download_->setVisible(content.offer == Offer::download);
  retry_->setVisible(content.offer == Offer::retry);
  setVisible(true);
}

void DownloadStatusRow::paintEvent(QPaintEvent*) {
  const Theme theme(palette());
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  paintGround(painter, rect(), Radius::kSurface, theme.card, theme);
}

}  // namespace quillmere
