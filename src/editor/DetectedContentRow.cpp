#include "editor/DetectedContentRow.h"

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <algorithm>

#include "controls/ThemedLabel.h"
#include "controls/WrappingRow.h"
#include "editor/CropNotes.h"
#include "foundation/Localized.h"

namespace quillmere {

DetectedContentRow::DetectedContentRow(QWidget* parent)
    : QWidget(parent), menu_(new QComboBox(this)), shadow_(new QCheckBox(localized("Include window shadow"), this)) {
  auto* label = new ThemedLabel(Ink::text, this, localized("Detected content"));
  label->setBuddy(menu_);
  menu_->setAccessibleName(label->text());
  menu_->setPlaceholderText(localized("Choose a Window"));
  connect(menu_, &QComboBox::activated, this, [this](int index) {
    const auto place = static_cast<size_t>(index);
    if (place < offered_.size() && onPick) onPick(offered_[place]);
  });
  connect(shadow_, &QCheckBox::clicked, this, [this](bool isOn) {
    if (onIncludeShadow) onIncludeShadow(isOn);
  });
  auto* row = new WrappingRow(10);
  for (QWidget* widget : {static_cast<QWidget*>(label), static_cast<QWidget*>(menu_), static_cast<QWidget*>(shadow_)}) {
    row->addWidget(widget);
  }
  setLayout(row);
  show({});
}

void DetectedContentRow::show(const CropSelection& selection) {
  setVisible(!selection.candidates().empty());
  showMenu(selection);
  showShadow(selection);
}

void DetectedContentRow::showMenu(const CropSelection& selection) {
  std::vector<UUID> offered;
  for (const WindowCandidate& candidate : selection.candidates()) offered.push_back(candidate.id);
  if (offered != offered_) {
    offered_ = offered;
    menu_->clear();
    for (const WindowCandidate& candidate : selection.candidates()) {
      menu_->addItem(localized("Possible Window %lld", {candidate.number}));
    }
  }
  const auto selected = selection.selectedCandidate();
  const auto place = selected ? std::find(offered_.begin(), offered_.end(), *selected) : offered_.end();
  menu_->setCurrentIndex(place == offered_.end() ? -1 : static_cast<int>(place - offered_.begin()));
}

void DetectedContentRow::showShadow(const CropSelection& selection) {
  const auto obstacle = CropNotes::shadowObstacle(selection);
  const QString help = obstacle.value_or(localized("Grow the crop to take in the window’s drop shadow"));
  shadow_->setEnabled(!obstacle);
  shadow_->setChecked(selection.appliedShadow().has_value());
  setPlainToolTip(*shadow_, help);
  shadow_->setAccessibleDescription(help);
}

}  // namespace quillmere
