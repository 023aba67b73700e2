#include "settings/RestoreDefaultShortcutButton.h"

#include <QtWidgets/QHBoxLayout>

#include "controls/ActionButton.h"
#include "foundation/Localized.h"

namespace quillmere {

RestoreDefaultShortcutButton::RestoreDefaultShortcutButton(AppModel& model, QWidget* parent)
    : QWidget(parent),
      model_(model),
      button_(new ActionButton(ActionButton::Role::secondary, {}, localized("Restore Default"), this)) {
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(button_);
  connect(button_, &QPushButton::clicked, this, [this] {
    if (willRestore) willRestore();
    model_.setHotKeyShortcut(HotKeyShortcut::standard());
  });
}

void RestoreDefaultShortcutButton::refresh() {
  button_->setToolTip(localized("Use %@", {HotKeyShortcut::standard().symbols(model_.hotKeys().layout())}));
  button_->setEnabled(*model_.settings().hotKeyShortcut != HotKeyShortcut::standard());
}

}  // namespace quillmere
