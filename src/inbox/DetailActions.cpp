#include "inbox/DetailActions.h"

#include "controls/ActionButton.h"
#include "controls/WrappingRow.h"
#include "inbox/CommandButton.h"

namespace quillmere {

using Command = ScreenshotCommand;

DetailActions::DetailActions(AppModel& model, InboxPresentation& presentation, QWidget* parent)
    : QWidget(parent), model_(model), presentation_(presentation) {
  auto* row = new WrappingRow(8);
  for (const Command command : {Command::extractText, Command::extractWindow, Command::crop}) {
    auto* button = new ActionButton(ActionButton::Role::secondary, {}, {}, this);
    connect(button, &QPushButton::clicked, this,
            [this, command] { ScreenshotActionsMenu({id_}, model_, presentation_).perform(command); });
    row->addWidget(button);
    rows_.push_back({command, button});
  }
  setLayout(row);
}

void DetailActions::show(const UUID& id) {
  id_ = id;
  const ScreenshotActionsMenu menu({id}, model_, presentation_);
  for (const auto& [command, button] : rows_) {
    showCommand(*button, menu.action(command));
    const bool reads = command == Command::extractText;
    button->setWorking(reads && presentation_.extractingTextIDs->contains(id));
  }
  setVisible(true);
}

}  // namespace quillmere
