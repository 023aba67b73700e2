#include "popup/PromptActions.h"

#include <QtWidgets/QLabel>
#include <QtWidgets/QVBoxLayout>

#include "controls/AccessibleButton.h"
#include "controls/ActionButton.h"
#include "controls/PlainText.h"
#include "foundation/Localized.h"
#include "popup/AdaptiveActionRow.h"
#include "popup/DurationPicker.h"

namespace quillmere {

PromptActions::PromptActions(QWidget* parent) : QWidget(parent) {
  using Role = ActionButton::Role;
  using Distribution = AdaptiveActionRow::Distribution;
  temporary_ = new ActionButton(Role::primary, QStringLiteral("clock"), localized("Temporary"), this);
  temporary_->setToolTip(localized("Keep for the selected time, then move to Trash"));
  // The card gives it Return; this tells so.
  temporary_->setDefault(true);
  setAccessibleKey(*temporary_, Qt::Key_Return);
  keep_ = new ActionButton(Role::secondary, QStringLiteral("checkmark"), localized("Keep"), this);
  keep_->setToolTip(localized("Keep this screenshot without a deletion timer"));
  copy_ = new ActionButton(Role::secondary, QStringLiteral("document.on.document"), localized("Copy"), this);
  copy_->setToolTip(localized("Copy this screenshot so it can be pasted into another app or into Finder"));
  durationPicker_ = new DurationPicker(this);
  trash_ = new ActionButton(Role::destructive, QStringLiteral("trash"), localized("Move to Trash"), this);
  // Some screen readers look for what a menu is for at its label alone.
  auto* durationLabel = new PlainLabel(durationPicker_->accessibleName(), this);
  durationLabel->setBuddy(durationPicker_);
  durationLabel->hide();
  connect(temporary_, &QPushButton::clicked, this, [this] { onTemporary(); });
  connect(keep_, &QPushButton::clicked, this, [this] { onKeep(); });
  connect(copy_, &QPushButton::clicked, this, [this] { onCopy(); });
  connect(trash_, &QPushButton::clicked, this, [this] { onTrash(); });
  connect(durationPicker_, &QComboBox::currentIndexChanged, this, [this] { refreshHint(); });

  auto* decisions = new AdaptiveActionRow(Distribution::equalWidths);
  for (QWidget* button : {temporary_, keep_, copy_}) decisions->addWidget(button);
  auto* others = new AdaptiveActionRow(Distribution::leadingAndTrailing);
  others->addWidget(durationPicker_);
  others->addWidget(trash_);
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->setSpacing(AdaptiveActionRow::kSpacing);
  rows->addLayout(decisions);
  rows->addLayout(others);
}

void PromptActions::show(const CapturePromptContent& content) {
  for (ActionButton* button : {temporary_, keep_, copy_}) button->setEnabled(content.canDecide());
  trash_->setEnabled(!content.isSaving());
  // The next screenshot's buttons come in a moment; the keyboard is to stand where it stood.
  for (ActionButton* button : {temporary_, keep_, copy_, trash_}) button->setDimmed(content.isDecided);
  trash_->setText(content.deletesChosen ? localized("Delete") : localized("Move to Trash"));
  trash_->setToolTip(content.deletesChosen ? localized("Delete this screenshot’s file")
                                           : localized("Move this screenshot to Trash"));
  trash_->setAccessibleDescription(
      content.deletesChosen
          ? localized("Deletes only this image, asking first. It can’t be recovered.")
          : localized("Moves only this image to Trash, without asking. You can restore it from Trash in Finder."));
  refreshHint();
}

void PromptActions::refreshHint() {
  temporary_->setAccessibleDescription(temporaryHint(duration()));
}

TemporaryDuration PromptActions::duration() const {
  return durationPicker_->duration();
}

void PromptActions::setDuration(TemporaryDuration duration) {
  durationPicker_->setDuration(duration);
}

bool PromptActions::canDecide() const {
  return temporary_->isEnabled();
}

void PromptActions::showCopied(bool isCopied) {
  copy_->setNote(isCopied ? localized("Copied") : QString());
}

QWidget* PromptActions::mainButton() const {
  return temporary_;
}

std::vector<QWidget*> PromptActions::controls() const {
  return {temporary_, keep_, copy_, durationPicker_, trash_};
}

}  // namespace quillmere
