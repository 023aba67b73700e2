#include "inbox/DetailHeader.h"

#include <QtWidgets/QVBoxLayout>

#include "controls/ActionButton.h"
#include "controls/WrappingRow.h"
#include "foundation/Localized.h"
#include "inbox/CommandButton.h"
#include "inbox/DetailMetadata.h"
#include "inbox/NameField.h"
#include "inbox/ScreenshotNameEditor.h"

namespace quillmere {

using Command = ScreenshotCommand;

DetailHeader::DetailHeader(AppModel& model, InboxPresentation& presentation, QWidget* parent)
    : QWidget(parent),
      model_(model),
      presentation_(presentation),
      name_(new ScreenshotNameEditor(presentation, ScreenshotNameEditor::Lines::all, this)),
      metadata_(new DetailMetadata(this)),
      keep_(makeButton(Command::keep)),
      move_(makeButton(Command::moveAndRename)),
      trash_(makeButton(Command::moveToTrash)) {
  name_->setTextSize(1.3, QFont::DemiBold);
  metadata_->onShowOriginal = [this] { perform(Command::showOriginal); };
  auto* buttons = new WrappingRow(8);
  for (ActionButton* button : {keep_, move_, trash_}) buttons->addWidget(button);
  // The field's edge reaches beyond what stands below it.
  auto* rest = new QVBoxLayout;
  rest->setContentsMargins(NameField::kBeside, 0, NameField::kBeside, 0);
  rest->setSpacing(14);
  rest->addWidget(metadata_);
  rest->addLayout(buttons);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(2);
  column->addWidget(name_);
  column->addLayout(rest);
}

ActionButton* DetailHeader::makeButton(Command command) {
  const bool isTrash = command == Command::moveToTrash;
  const auto role = isTrash ? ActionButton::Role::destructive : ActionButton::Role::secondary;
  auto* button = new ActionButton(role, {}, {}, this);
  connect(button, &QPushButton::clicked, this, [this, command] { perform(command); });
  return button;
}

void DetailHeader::perform(Command command) {
  ScreenshotActionsMenu({id_}, model_, presentation_).perform(command);
}

void DetailHeader::show(const ScreenshotItem& item, const DetailState& state) {
  id_ = item.id;
  name_->show(item);
  metadata_->show(item, state);
  const ScreenshotActionsMenu menu({id_}, model_, presentation_);
  showCommand(*keep_, menu.action(Command::keep));
  showCommand(*move_, menu.action(Command::moveAndRename));
  showCommand(*trash_, menu.action(Command::moveToTrash));
  if (*model_.settings().deletesChosenImmediately) {
    trash_->setSymbol(QStringLiteral("trash.slash"));
    trash_->setText(localized("Delete"));
    trash_->setToolTip(localized("Delete this screenshot’s file"));
  }
  keep_->setVisible(keep_->isEnabled());
  move_->setVisible(!state.isUnavailable);
}

}  // namespace quillmere
