#include "editor/CropEditorActions.h"

#include "controls/ActionButton.h"
#include "controls/PlainText.h"
#include "controls/WorkIndicator.h"
#include "controls/WrappingRow.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

using Role = ActionButton::Role;

constexpr int kSpacing = 8;
constexpr int kButton = 84;

template <typename Owner>
ActionButton* makeButton(Owner* owner, Role role, const QString& symbol, const QString& text,
                         std::function<void()> Owner::*action) {
  auto* button = new ActionButton(role, symbol, text, owner);
  QObject::connect(button, &QPushButton::clicked, owner, [owner, action] {
    if (owner->*action) (owner->*action)();
  });
  return button;
}

}  // namespace

// --- What ends it ---

CropEditorConfirmActions::CropEditorConfirmActions(QWidget* parent)
    : QWidget(parent),
      indicator_(new WorkIndicator(this)),
      cancel_(makeButton(this, Role::secondary, {}, localized("Cancel"), &CropEditorConfirmActions::onCancel)),
      replace_(
          makeButton(this, Role::secondary, {}, localized("Replace Original…"), &CropEditorConfirmActions::onReplace)),
      save_(
          makeButton(this, Role::primary, {}, localized("Save as New Screenshot"), &CropEditorConfirmActions::onSave)) {
  cancel_->setMinimumWidth(kButton);
  save_->setDefault(true);
  // The buttons must not move under the pointer that pressed one.
  QSizePolicy policy = indicator_->sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  indicator_->setSizePolicy(policy);
  auto* row = new WrappingRow(kSpacing, Qt::AlignTrailing);
  for (QWidget* widget : {static_cast<QWidget*>(indicator_), static_cast<QWidget*>(cancel_),
                          static_cast<QWidget*>(replace_), static_cast<QWidget*>(save_)}) {
    row->addWidget(widget);
  }
  setLayout(row);
  setCanSave(false);
  setCanReplace(false, {});
  setWorking(false);
}

void CropEditorConfirmActions::setCanSave(bool canSave) {
  save_->setEnabled(canSave);
}

void CropEditorConfirmActions::setCanReplace(bool canReplace, const QString& obstacle) {
  const QString help =
      obstacle.isEmpty() ? localized("Move the original to Trash and save the crop under its name") : obstacle;
  replace_->setEnabled(canReplace);
  setPlainToolTip(*replace_, help);
  replace_->setAccessibleDescription(help);
}

void CropEditorConfirmActions::setWorking(bool isWorking) {
  indicator_->setVisible(isWorking);
}

QWidget* CropEditorConfirmActions::cancelButton() const {
  return cancel_;
}

// --- What can be done instead ---

CropEditorAlternateActions::CropEditorAlternateActions(QWidget* parent)
    : QWidget(parent),
      keep_(makeButton(this, Role::secondary, QStringLiteral("checkmark"), localized("Keep Full Screenshot"),
                       &CropEditorAlternateActions::onKeep)),
      copy_(makeButton(this, Role::secondary, QStringLiteral("document.on.document"), localized("Copy Cropped Image"),
                       &CropEditorAlternateActions::onCopy)) {
  auto* row = new WrappingRow(kSpacing);
  row->addWidget(keep_);
  row->addWidget(copy_);
  setLayout(row);
  setShowsKeep(false);
  setCanKeep(false);
  setCanCopy(false);
}

void CropEditorAlternateActions::setShowsKeep(bool shows) {
  keep_->setVisible(shows);
}

void CropEditorAlternateActions::setCanKeep(bool canKeep) {
  keep_->setEnabled(canKeep);
}

void CropEditorAlternateActions::setCanCopy(bool canCopy) {
  copy_->setEnabled(canCopy);
}

}  // namespace quillmere
