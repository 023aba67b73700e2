#include "popup/PromptTextActions.h"

#include "controls/ActionButton.h"
#include "popup/AdaptiveActionRow.h"

namespace quillmere {

PromptTextActions::PromptTextActions(QWidget* parent) : QWidget(parent) {
  auto* row = new AdaptiveActionRow(AdaptiveActionRow::Distribution::equalWidths);
  row->setContentsMargins(0, 0, 0, 0);
  setLayout(row);
  for (const PictureActionTraits& traits : pictureActions()) {
    auto* button = new ActionButton(ActionButton::Role::secondary, traits.symbol, traits.name, this);
    button->setToolTip(traits.toolTipInRow);
    connect(button, &QPushButton::clicked, this, [this, button, action = traits.action] { onAction(action, *button); });
    buttons_[traits.action] = button;
    controls_.push_back(button);
    row->addWidget(button);
  }
}

void PromptTextActions::setWorking(PictureAction action, bool isWorking) {
  buttons_.at(action)->setWorking(isWorking);
}

}  // namespace quillmere
