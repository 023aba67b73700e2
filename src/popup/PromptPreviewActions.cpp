#include "popup/PromptPreviewActions.h"

#include <QtWidgets/QHBoxLayout>

#include "foundation/Localized.h"
#include "popup/PreviewButton.h"

namespace quillmere {
namespace {

constexpr int kSpacing = 6;

}  // namespace

PromptPreviewActions::PromptPreviewActions(QWidget* parent)
    : QWidget(parent),
      extract_(new PreviewButton(QStringLiteral("macwindow"), localized("Extract Window"), this)),
      copyText_(new PreviewButton(QStringLiteral("text.viewfinder"), localized("Copy Text"), this)),
      share_(new PreviewButton(QStringLiteral("square.and.arrow.up"), localized("Share"), this)) {
  extract_->setOn(false);
  extract_->setToolTip(localized("Save only the window in this screenshot"));
  extract_->setAccessibleDescription(
      localized("When on, Keep, Temporary, Copy, and the timeout save only the window found in the screenshot, and the "
                "original moves to Trash. Share sends only the window too."));
  copyText_->setToolTip(localized("Copy the text in this preview"));
  copyText_->setAccessibleDescription(localized("Recognizes the text in the preview and puts it on the clipboard."));
  share_->setToolTip(localized("Send this screenshot with Mail, Messages, AirDrop, or another service"));
  share_->setAccessibleDescription(
      localized("Opens the share menu for the picture in the preview, under the name in the Filename field."));
  connect(extract_, &QPushButton::clicked, this, [this] { onExtract(); });
  connect(copyText_, &QPushButton::clicked, this, [this] { onCopyText(); });
  connect(share_, &QPushButton::clicked, this, [this] { onShare(*share_); });

  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(kSpacing);
  for (QWidget* control : controls()) row->addWidget(control);
}

void PromptPreviewActions::show(const CapturePromptContent& content) {
  setVisible(content.canReadImage);
  extract_->setOn(content.windowExtraction.has_value());
  extract_->setWorking(!content.canDecide());
  extract_->setEnabled(!content.isSaving());
}

void PromptPreviewActions::setCopyingText(bool isCopying) {
  copyText_->setWorking(isCopying);
}

std::vector<QWidget*> PromptPreviewActions::controls() const {
  return {extract_, copyText_, share_};
}

}  // namespace quillmere
