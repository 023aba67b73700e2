#include "settings/GeneralPane.h"

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QVBoxLayout>

#include "controls/ActionButton.h"
#include "controls/PlainText.h"
#include "foundation/Localized.h"
#include "settings/ChoiceField.h"
#include "settings/LoginItemStatusRow.h"

namespace quillmere {

GeneralPane::GeneralPane(AppModel& model, const SettingsServices& services, QWidget* parent)
    : SettingsPane(model, parent), services_(services) {
  makeLogin();
  makeUpdates();
  makeNaming();
  makeClearing();
  column().addStretch();
  if (services_.tray) tray_ = services_.tray->changed.connect([this] { refreshTray(); });
  if (services_.updates) updates_ = services_.updates->changed.connect([this] { refreshUpdates(); });
}

void GeneralPane::makeLogin() {
  auto* rows = new QVBoxLayout;
  rows->setSpacing(10);
  column().addLayout(rows);
  login_ = addToggle(rows, localized("Open Quillmere at login"), [this](bool isOn) {
    askedToOpenAtLogin_.reset();
    model().setOpensAtLogin(isOn);
    if (loginContent().isOn == isOn) askedToOpenAtLogin_ = isOn;  // from now on it fails by itself, if at all
    refreshLogin();                                               // a refusal changes nothing that would be told
  });
  loginStatus_ = new LoginItemStatusRow(this);
  loginStatus_->onOpenSettings = [this] { model().openLoginItemSettings(); };
  rows->addWidget(loginStatus_);
  menuBar_ = addToggle(rows, localized("Show Quillmere in the menu bar"),
                       [this](bool isOn) { model().setMenuBarEnabled(isOn); });
  menuBarFooter_ = addFooter(rows);
}

void GeneralPane::makeUpdates() {
  auto* group = addGroup(localized("Updates"));
  checksForUpdates_ = addToggle(group, localized("Automatically check for updates"), [this](bool isOn) {
    services_.updates->setChecksForUpdatesAutomatically(isOn);
    refreshUpdates();  // the updater has the last word
  });
  updatesFooter_ = addFooter(group);
}

void GeneralPane::makeNaming() {
  auto* group = addGroup(localized("Naming"));
  naming_ = new ChoiceField(localized("New screenshots keep"), this);
  naming_->addItem(localized("The macOS filename"));
  naming_->addItem(localized("The suggested filename"));
  connect(naming_, &QComboBox::activated, this, [this](int index) {
    model().setScreenshotNaming(index == 1 ? ScreenshotNaming::suggested : ScreenshotNaming::original);
  });
  auto* name = new PlainLabel(localized("New screenshots keep"), this);
  name->setBuddy(naming_);  // a choice's own name is what is chosen
  addRow(group, name, {naming_});
  namingFooter_ = addFooter(group);
}

void GeneralPane::makeClearing() {
  auto* rows = new QVBoxLayout;
  rows->setSpacing(6);
  column().addLayout(rows);
  auto* clear = new ActionButton(ActionButton::Role::secondary, {}, localized("Clear Inbox Records…"), this);
  connect(clear, &QPushButton::clicked, this, [this] {
    if (services_.confirmClearingRecords && services_.confirmClearingRecords()) model().clearRecords();
  });
  rows->addWidget(clear, 0, Qt::AlignLeading);
  addFooter(rows, localized("Removes every screenshot from the Inbox. The files stay where they are."));
}

bool GeneralPane::shows(ModelField field) const {
  return field == ModelField::loginItemStatus || field == ModelField::menuBarEnabled ||
         field == ModelField::screenshotNaming;
}

void GeneralPane::appear() {
  // What it is now may be the person's work elsewhere.
  askedToOpenAtLogin_.reset();
  model().refreshLoginItemStatus();
  refreshLogin();
}

void GeneralPane::refresh() {
  refreshLogin();
  refreshTray();
  refreshUpdates();
  refreshNaming();
}

LoginItemContent GeneralPane::loginContent() const {
  return LoginItemContent::make(*model().loginItemStatus, model().canOpenLoginItemSettings(), askedToOpenAtLogin_);
}

void GeneralPane::refreshLogin() {
  const auto content = loginContent();
  login_->setChecked(content.isOn);
  login_->setEnabled(content.canBeTurned);
  loginStatus_->show(content);
}

/// Whoever has no icon to click is told how to come back.
void GeneralPane::refreshTray() {
  const bool isEnabled = *model().settings().menuBarEnabled;
  const bool isShownNowhere = services_.tray && !services_.tray->isThere();
  menuBar_->setChecked(isEnabled);
  menuBarFooter_->setVisible(isShownNowhere || !isEnabled);
  menuBarFooter_->setText(
      isShownNowhere
          ? localized(
                "This desktop shows no tray icons. Quillmere goes on watching when its windows are closed. To come "
                "back to it, open it again from your launcher.")
          : localized("When it’s hidden, open Quillmere from the Applications folder to see the Inbox and Settings."));
}

void GeneralPane::refreshUpdates() {
  const SoftwareUpdateModel* updates = services_.updates;
  const bool hasUpdater = updates && updates->setChecksForUpdatesAutomaticallyAction;
  checksForUpdates_->setEnabled(hasUpdater);
  checksForUpdates_->setChecked(updates && updates->checksForUpdatesAutomatically());
  updatesFooter_->setText(
      hasUpdater
          ? localized("Quillmere checks once a day and always asks before it downloads or installs anything. You can "
                      "check any time with Check for Updates… in the Quillmere menu.")
          : localized(
                "This copy of Quillmere doesn’t look for updates itself. They come with your system’s packages."));
}

void GeneralPane::refreshNaming() {
  const bool usesSuggested = *model().settings().screenshotNaming == ScreenshotNaming::suggested;
  naming_->setCurrentIndex(usesSuggested ? 1 : 0);
  QString footer = localized(
      "This is the name the popup’s filename field starts with. You can change it there before choosing Keep or "
      "Temporary.");
  if (usesSuggested) {
    footer += QLatin1Char('\n') + localized("If no suggested name is ready, the macOS filename is used.");
  }
  namingFooter_->setText(footer);
}

}  // namespace quillmere
