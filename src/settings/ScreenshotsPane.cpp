#include "settings/ScreenshotsPane.h"

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QVBoxLayout>

#include "controls/ActionButton.h"
#include "controls/PlainText.h"
#include "foundation/Localized.h"
#include "settings/ScreenshotLocationRow.h"
#include "settings/SymbolNote.h"

namespace quillmere {
namespace {

constexpr int kWidestName = 240;

QString symbolOf(WatcherStatus status) {
  switch (status) {
    case WatcherStatus::watching:
      return QStringLiteral("checkmark.circle.fill");
    case WatcherStatus::notChosen:
      return QStringLiteral("folder.badge.questionmark");
    case WatcherStatus::notFound:
      return QStringLiteral("exclamationmark.triangle.fill");
    case WatcherStatus::volumeNotConnected:
      return QStringLiteral("externaldrive.badge.xmark");
  }
  return {};
}

}  // namespace

ScreenshotsPane::ScreenshotsPane(AppModel& model, const SettingsServices& services, QWidget* parent)
    : SettingsPane(model, parent) {
  makeFolder(services);
  makeTrash();
  makeThumbnail(services);
  column().addStretch();
}

void ScreenshotsPane::makeFolder(const SettingsServices& services) {
  auto* group = addGroup(localized("Folder"));
  folderName_ = new PlainLabel(this);
  folderName_->setFont(scaled(font(), 1, QFont::DemiBold));
  auto* choose = new ActionButton(ActionButton::Role::secondary, {}, localized("Choose…"), this);
  choose->setAccessibleName(localized("Choose Screenshot Folder"));
  choose->setToolTip(localized("Choose the folder where macOS saves screenshots"));
  connect(choose, &QPushButton::clicked, this, [this] { model().chooseWatchFolder({}, ErrorScope::settings); });
  addRow(group, new PlainLabel(localized("Screenshot folder"), this), {folderName_, choose});
  folderStatus_ = addNote(group);
  cannotFollow_ = addFooter(
      group,
      localized("The disk of this folder keeps too little about its files: a screenshot that you rename or move with "
                "another app may become unavailable here, and one that can’t be told from another file isn’t deleted "
                "when its time is up."));
  location_ = new ScreenshotLocationRow(model(), services, this);
  group->addWidget(location_);
  includesOthers_ = addToggle(group, localized("Also detect images from other apps"),
                              [this](bool isOn) { model().setIncludesNonCaptureImages(isOn); });
  addFooter(group, localized("Includes other new images saved to this folder, such as downloads or exports."));
}

void ScreenshotsPane::makeTrash() {
  auto* group = addGroup(localized("Trash"));
  showsDeleteImmediately_ = addToggle(group, localized("Show Delete Immediately in menus"),
                                      [this](bool isOn) { model().setShowsDeleteImmediately(isOn); });
  deletesChosen_ = addToggle(group, localized("Move to Trash deletes instead"),
                             [this](bool isOn) { model().setDeletesChosenImmediately(isOn); });
  deletesExpired_ = addToggle(group, localized("Delete Temporary screenshots when their time is up"),
                              [this](bool isOn) { model().setDeletesExpiredImmediately(isOn); });
  addFooter(group,
            localized("Quillmere moves screenshots to the Trash, where Finder’s Put Back brings them back. Each of "
                      "these skips it for one kind of deletion, and a screenshot that is deleted can’t be recovered. "
                      "Delete Immediately and Move to Trash ask first. A Temporary screenshot’s time running out "
                      "doesn’t."));
}

void ScreenshotsPane::makeThumbnail(const SettingsServices& services) {
  auto* group = addGroup(localized("Floating Thumbnail"));
  addFooter(group,
            localized("macOS shows a floating thumbnail after each capture. Quillmere’s popup appears sooner with it "
                      "turned off. Turn it off in Screenshot (⇧⌘5) › Options. Quillmere doesn’t change the floating "
                      "thumbnail setting for you."));
  if (!services.openScreenshotOptions) return;
  auto* open = new ActionButton(ActionButton::Role::secondary, {}, localized("Open Screenshot Options"), this);
  connect(open, &QPushButton::clicked, this, services.openScreenshotOptions);
  group->addWidget(open, 0, Qt::AlignLeading);
}

bool ScreenshotsPane::shows(ModelField field) const {
  switch (field) {
    case ModelField::watchFolderURL:
    case ModelField::watcherStatus:
    case ModelField::macOSScreenshotFolder:
    case ModelField::lastScreenshotLocationChange:
    case ModelField::includesNonCaptureImages:
    case ModelField::showsDeleteImmediately:
    case ModelField::deletesChosenImmediately:
    case ModelField::deletesExpiredImmediately:
      return true;
    default:
      return false;
  }
}

void ScreenshotsPane::refresh() {
  const auto& folder = *model().watchFolderURL;
  const WatcherStatus status = *model().watcherStatus;
  const QString name = folder ? folder->displayName() : localized("Not selected");
  folderName_->setText(folderName_->fontMetrics().elidedText(name, Qt::ElideMiddle, kWidestName));
  folderName_->setAccessibleName(name);
  setPlainToolTip(*folderName_, folder ? folder->displayPath() : QString());
  folderStatus_->show(symbolOf(status), status == WatcherStatus::watching ? Ink::secondary : Ink::warning,
                      statusText(status));
  cannotFollow_->setVisible(status == WatcherStatus::watching && !model().canFollowWatchFolder());
  location_->update();
  const Settings& settings = model().settings();
  includesOthers_->setChecked(*settings.includesNonCaptureImages);
  showsDeleteImmediately_->setChecked(*settings.showsDeleteImmediately);
  deletesChosen_->setChecked(*settings.deletesChosenImmediately);
  deletesExpired_->setChecked(*settings.deletesExpiredImmediately);
}

}  // namespace quillmere
