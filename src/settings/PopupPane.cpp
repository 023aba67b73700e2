#include "settings/PopupPane.h"

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QVBoxLayout>

#include "controls/PlainText.h"
#include "foundation/Localized.h"
#include "settings/SecondsField.h"

namespace quillmere {

PopupPane::PopupPane(AppModel& model, QWidget* parent)
    : SettingsPane(model, parent),
      showsThumbnail_(addToggle(&column(), localized("Show image thumbnail in popup"),
                                [this](bool isOn) { this->model().setShowPopupThumbnail(isOn); })) {
  makeSeries();
  makeTimeout();
  column().addStretch();
}

void PopupPane::makeSeries() {
  auto* group = addGroup(localized("Several in a row"));
  waitsForPause_ = addToggle(group, localized("Show the popup when you stop capturing"),
                             [this](bool isOn) { model().setPopupWaitsForPause(isOn); });
  pauseLabel_ = new PlainLabel(this);
  pause_ = new SecondsField(Settings::kShortestPauseSeconds, Settings::kLongestPauseSeconds,
                            localized("Seconds after the last screenshot"), this);
  connect(pause_, &QSpinBox::valueChanged, this, [this](int value) { model().setPopupPauseSeconds(value); });
  addRow(group, pauseLabel_, {pause_});
  gathersSeries_ = addToggle(group, localized("Show several screenshots as a small note first"),
                             [this](bool isOn) { model().setPopupGathersSeries(isOn); });
  addFooter(group,
            localized("The popup steps aside for the Print key and for the capture tools that it can tell. With others "
                      "it may stand in the next screenshot unless it waits."));
}

void PopupPane::makeTimeout() {
  auto* group = addGroup(localized("Timeout"));
  dismissesPopup_ = addToggle(group, localized("Automatically dismiss the popup"),
                              [this](bool isOn) { model().setPopupAutoSaveEnabled(isOn); });
  secondsLabel_ = new PlainLabel(this);
  seconds_ = new SecondsField(Settings::kShortestPopupSeconds, Settings::kLongestPopupSeconds,
                              localized("Popup timeout in seconds"), this);
  connect(seconds_, &QSpinBox::valueChanged, this, [this](int value) { model().setPopupAutoSaveSeconds(value); });
  addRow(group, secondsLabel_, {seconds_});
  addFooter(group,
            localized("A screenshot whose popup closes on its own is kept without a deletion timer, under the name in "
                      "the popup’s filename field. The countdown pauses while you use the popup or type a name."));
}

bool PopupPane::shows(ModelField field) const {
  switch (field) {
    case ModelField::showPopupThumbnail:
    case ModelField::popupWaitsForPause:
    case ModelField::popupPauseSeconds:
    case ModelField::popupGathersSeries:
    case ModelField::popupAutoSaveEnabled:
    case ModelField::popupAutoSaveSeconds:
      return true;
    default:
      return false;
  }
}

void PopupPane::refresh() {
  const Settings& settings = model().settings();
  showsThumbnail_->setChecked(*settings.showPopupThumbnail);
  waitsForPause_->setChecked(*settings.popupWaitsForPause);
  pauseLabel_->setText(localized("Show it %lld seconds after the last screenshot", {*settings.popupPauseSeconds}));
  pause_->setValue(*settings.popupPauseSeconds);
  gathersSeries_->setChecked(*settings.popupGathersSeries);
  dismissesPopup_->setChecked(*settings.popupAutoSaveEnabled);
  secondsLabel_->setText(localized("Dismiss after %lld seconds", {*settings.popupAutoSaveSeconds}));
  seconds_->setValue(*settings.popupAutoSaveSeconds);
  // A number without an effect is dimmed, with what it says.
  for (QWidget* part : {static_cast<QWidget*>(pauseLabel_), static_cast<QWidget*>(pause_)}) {
    part->setEnabled(*settings.popupWaitsForPause);
  }
  for (QWidget* part : {static_cast<QWidget*>(secondsLabel_), static_cast<QWidget*>(seconds_)}) {
    part->setEnabled(*settings.popupAutoSaveEnabled);
  }
}

}  // namespace quillmere
