#include "settings/LoginItemStatusRow.h"

#include <QtWidgets/QVBoxLayout>

#include "controls/ActionButton.h"
#include "foundation/Localized.h"
#include "settings/SymbolNote.h"

namespace quillmere {

LoginItemContent LoginItemContent::make(LoginItemStatus status, bool hasSystemSettings) {
  switch (status) {
    case LoginItemStatus::enabled:
      return {.isOn = true, .symbol = {}, .text = {}};
    case LoginItemStatus::notRegistered:
      break;
    case LoginItemStatus::requiresApproval:
      return {.isOn = true,
              .symbol = {},
              .text = localized("Waiting for your approval in Login Items settings."),
              .offersSettings = hasSystemSettings};
    case LoginItemStatus::notFound:
      return {.canBeTurned = false,
              .symbol = QStringLiteral("exclamationmark.triangle"),
              .text = localized("Opening at login isn’t available for this copy of Quillmere. Move Quillmere to the "
                                "Applications folder and try again.")};
  }
  return {};
}

LoginItemStatusRow::LoginItemStatusRow(QWidget* parent)
    : QWidget(parent),
      note_(new SymbolNote(this)),
      settings_(new ActionButton(ActionButton::Role::secondary, {}, localized("Open Login Items Settings"), this)) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(6);
  column->addWidget(note_);
  column->addWidget(settings_, 0, Qt::AlignLeading);
  connect(settings_, &QPushButton::clicked, this, [this] {
    if (onOpenSettings) onOpenSettings();
  });
  hide();
}

void LoginItemStatusRow::show(const LoginItemContent& content) {
  note_->show(content.symbol, Ink::warning, content.text);
  settings_->setVisible(content.offersSettings);
  setVisible(!content.text.isEmpty());
}

}  // namespace quillmere
