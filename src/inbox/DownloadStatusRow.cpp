#include "inbox/DownloadStatusRow.h"

#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>

#include "controls/ActionButton.h"
#include "controls/PlainText.h"
#include "controls/SymbolLabel.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

constexpr int kSymbol = 20;

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
      return {cloud, localized("Downloading from iCloud…"), Offer::nothing};
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
      text_(new PlainLabel(this)),
      button_(new ActionButton(ActionButton::Role::secondary, {}, {}, this)) {
  text_->setWordWrap(true);
  connect(button_, &QPushButton::clicked, this, [this] { onDownload(); });
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(10);
  row->addWidget(symbol_);
  row->addWidget(text_, 1);
  row->addWidget(button_);
}

void DownloadStatusRow::show(const DownloadStatusContent& content) {
  using Offer = DownloadStatusContent::Offer;
  symbol_->setSymbol(content.symbol);
  text_->setText(content.text);
  const bool isRetry = content.offer == Offer::retry;
  button_->setSymbol(isRetry ? QStringLiteral("arrow.clockwise") : QStringLiteral("arrow.down.circle"));
  button_->setText(isRetry ? localized("Try Again") : localized("Download"));
  button_->setToolTip(isRetry ? QString() : localized("Ask iCloud to download this screenshot’s image to this Mac"));
  button_->setVisible(content.offer != Offer::nothing);
  setVisible(true);
}

}  // namespace quillmere
