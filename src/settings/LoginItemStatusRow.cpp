#include "settings/LoginItemStatusRow.h"

#include <QtWidgets/QVBoxLayout>

#include "controls/ActionButton.h"
#include "foundation/Localized.h"
#include "settings/SymbolNote.h"

namespace quillmere {
namespace {

/// The desktop took it, and could not do it.
LoginItemContent failed(bool isOn, bool hasSystemSettings, const QString& text) {
  return {.isOn = isOn,
          .symbol = QStringLiteral("exclamationmark.triangle"),
          .text = text,
          .offersSettings = hasSystemSettings};
}

}  // namespace

LoginItemContent LoginItemContent::make(LoginItemStatus status, bool hasSystemSettings, std::optional<bool> asked) {
  switch (status) {
    case LoginItemStatus::enabled:
      if (asked.value_or(true)) return {.isOn = true, .symbol = {}, .text = {}};
      return failed(true, hasSystemSettings,
                    localized("Your desktop couldn’t turn this off. Try again, or turn it off in your desktop’s "
                              "settings."));
    case LoginItemStatus::notRegistered:
      if (!asked.value_or(false)) return {};
      return failed(false, hasSystemSettings,
                    localized("Your desktop couldn’t turn this on. Try again, or turn it on in your desktop’s "
                              "settings."));
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
