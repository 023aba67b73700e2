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
      controls_{extract_} {
  extract_->setOn(false);
  extract_->setToolTip(localized("Save only the window in this screenshot"));
  extract_->setAccessibleDescription(
      localized("When on, Keep, Temporary, Copy, and the timeout save only the window found in the screenshot, and the "
                "original moves to Trash. Share sends only the window too."));
  connect(extract_, &QPushButton::clicked, this, [this] { onExtract(); });
  for (const PictureActionTraits& traits : pictureActions()) {
    auto* button = new PreviewButton(traits.symbol, traits.name, this);
    button->setToolTip(traits.toolTipOnPreview);
    button->setAccessibleDescription(traits.hintOnPreview);
    connect(button, &QPushButton::clicked, this, [this, button, action = traits.action] { onAction(action, *button); });
    buttons_[traits.action] = button;
    controls_.push_back(button);
  }

  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(kSpacing);
  for (QWidget* control : controls_) row->addWidget(control);
}

void PromptPreviewActions::show(const CapturePromptContent& content) {
  setVisible(content.canReadImage);
  extract_->setOn(content.windowExtraction.has_value());
  extract_->setWorking(!content.canDecide());
  extract_->setEnabled(!content.isSaving());
}

void PromptPreviewActions::setWorking(PictureAction action, bool isWorking) {
  buttons_.at(action)->setWorking(isWorking);
}

}  // namespace quillmere
