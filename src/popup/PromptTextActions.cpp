#include "popup/PromptTextActions.h"

#include "controls/ActionButton.h"
#include "foundation/Localized.h"
#include "popup/AdaptiveActionRow.h"

namespace quillmere {

PromptTextActions::PromptTextActions(QWidget* parent) : QWidget(parent) {
  using Role = ActionButton::Role;
  copyText_ = new ActionButton(Role::secondary, QStringLiteral("text.viewfinder"), localized("Copy Text"), this);
  copyText_->setToolTip(localized("Copy the text in this screenshot"));
  share_ = new ActionButton(Role::secondary, QStringLiteral("square.and.arrow.up"), localized("Share"), this);
  share_->setToolTip(localized("Share this screenshot"));
  connect(copyText_, &QPushButton::clicked, this, [this] { onCopyText(); });
  connect(share_, &QPushButton::clicked, this, [this] { onShare(*share_); });

  auto* row = new AdaptiveActionRow(AdaptiveActionRow::Distribution::equalWidths);
  row->setContentsMargins(0, 0, 0, 0);
  setLayout(row);
  for (QWidget* control : controls()) row->addWidget(control);
}

std::vector<QWidget*> PromptTextActions::controls() const {
  return {copyText_, share_};
}

}  // namespace quillmere
