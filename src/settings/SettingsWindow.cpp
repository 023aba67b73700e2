#include "settings/SettingsWindow.h"

#include <QtGui/QScreen>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QSpinBox>
#include <QtWidgets/QTabBar>
#include <QtWidgets/QTabWidget>
#include <QtWidgets/QVBoxLayout>

#include "controls/ActionButton.h"
#include "controls/Alert.h"
#include "controls/PlainText.h"
#include "controls/SymbolLabel.h"
#include "controls/ThemedLabel.h"
#include "foundation/Localized.h"
#include "settings/ScreenshotLocationRow.h"

namespace quillmere {
namespace {

constexpr int kWidth = 560;
constexpr int kPadding = 18;
constexpr int kSymbol = 18;

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

struct ModelStatus {
  QString text;
  QString symbol;
};
ModelStatus modelStatus(AnalysisError::Unavailability reason) {
  const QString warning = QStringLiteral("exclamationmark.triangle");
  switch (reason) {
    case AnalysisError::Unavailability::appleIntelligenceNotEnabled:
      return {localized("Apple Intelligence is turned off in System Settings, so screenshots aren’t described. Text "
                        "extraction still works."),
              warning};
    case AnalysisError::Unavailability::deviceNotEligible:
      return {localized("This Mac can’t create on-device descriptions. Text extraction still works."), warning};
    case AnalysisError::Unavailability::modelNotReady:
      return {localized("Apple Intelligence is still getting ready. Descriptions start once it has finished."),
              QStringLiteral("arrow.down.circle")};
  }
  return {};
}

/// Whether a control of the window shows the field.
bool isShown(ModelField field) {
  switch (field) {
    case ModelField::watchFolderURL:
    case ModelField::watcherStatus:
    case ModelField::macOSScreenshotFolder:
    case ModelField::lastScreenshotLocationChange:
    case ModelField::includesNonCaptureImages:
    case ModelField::showPopupThumbnail:
    case ModelField::popupAutoSaveEnabled:
    case ModelField::popupAutoSaveSeconds:
    case ModelField::popupWaitsForPause:
    case ModelField::popupPauseSeconds:
    case ModelField::popupGathersSeries:
    case ModelField::screenshotNaming:
    case ModelField::analyzeScreenshots:
    case ModelField::intelligenceUnavailability:
    case ModelField::modelAddress:
    case ModelField::foreignModelServer:
    case ModelField::foreignModelServers:
      return true;
    default:
      return false;
  }
}

QVBoxLayout* makePane(QWidget* pane) {
  auto* column = new QVBoxLayout(pane);
  column->setContentsMargins(kPadding, kPadding, kPadding, kPadding);
  column->setSpacing(14);
  return column;
}

QVBoxLayout* addGroup(QVBoxLayout* pane, const QString& title, QWidget* parent) {
  auto* group = new QGroupBox(title, parent);
  auto* column = new QVBoxLayout(group);
  column->setSpacing(10);
  pane->addWidget(group);
  return column;
}

QLabel* makeFooter(const QString& text, QWidget* parent) {
  auto* footer = new ThemedLabel(Ink::secondary, parent, text);
  footer->setWordWrap(true);
  footer->setTextSize(0.92);
  return footer;
}

}  // namespace

SettingsWindow::SettingsWindow(AppModel& model) : model_(model) {
  setWindowTitle(localized("Settings"));
  tabs_ = new QTabWidget(this);
  tabs_->setDocumentMode(true);
  tabs_->addTab(makeGeneralPane(), localized("General"));
  tabs_->addTab(makeScreenshotsPane(), localized("Screenshots"));
  tabs_->addTab(makePopupPane(), localized("Popup"));
  tabs_->addTab(makeIntelligencePane(), localized("Intelligence"));
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 8, 0, 0);
  column->addWidget(tabs_);
  setMinimumWidth(kWidth);
  changes_ = model.changed.connect([this](const ModelChange& change) { follow(change); });
}

QWidget* SettingsWindow::makeGeneralPane() {
  auto* pane = new QWidget(this);
  auto* column = makePane(pane);
  auto* group = addGroup(column, localized("Naming"), pane);
  naming_ = new QComboBox(pane);
  naming_->addItem(localized("The macOS filename"));
  naming_->addItem(localized("The suggested filename"));
  naming_->setAccessibleName(localized("New screenshots keep"));
  connect(naming_, &QComboBox::currentIndexChanged, this, [this](int index) {
    model_.setScreenshotNaming(index == 1 ? ScreenshotNaming::suggested : ScreenshotNaming::original);
  });
  auto* row = new QHBoxLayout;
  row->addWidget(new PlainLabel(localized("New screenshots keep"), pane));
  row->addStretch();
  row->addWidget(naming_);
  group->addLayout(row);
  namingFooter_ = makeFooter({}, pane);
  group->addWidget(namingFooter_);
  column->addStretch();
  return pane;
}

QWidget* SettingsWindow::makeIntelligencePane() {
  auto* pane = new QWidget(this);
  auto* column = makePane(pane);
  analyzes_ = new QCheckBox(localized("Analyze screenshots"), pane);
  connect(analyzes_, &QCheckBox::toggled, this, [this](bool isOn) { model_.setAnalyzeScreenshots(isOn); });
  column->addWidget(analyzes_);
  modelSymbol_ = new SymbolLabel(kSymbol, Ink::warning, pane);
  modelStatus_ = new PlainLabel(pane);
  modelStatus_->setWordWrap(true);
  auto* status = new QHBoxLayout;
  status->setSpacing(8);
  status->addWidget(modelSymbol_, 0, Qt::AlignTop);
  status->addWidget(modelStatus_, 1);
  column->addLayout(status);

  modelAddress_ = new QLineEdit(pane);
  modelAddress_->setAccessibleName(localized("Model server address"));
  modelAddress_->setPlaceholderText(localized("Found by itself"));
  connect(modelAddress_, &QLineEdit::editingFinished, this, [this] { model_.setModelAddress(modelAddress_->text()); });
  auto* address = new QHBoxLayout;
  address->addWidget(new PlainLabel(localized("Model server address"), pane));
  address->addSpacing(8);
  address->addWidget(modelAddress_, 1);
  column->addLayout(address);
  foreignServer_ = new PlainLabel(pane);
  foreignServer_->setWordWrap(true);
  allowsForeign_ = new ActionButton(ActionButton::Role::secondary, {}, {}, pane);
  connect(allowsForeign_, &QPushButton::clicked, this, [this] {
    if (const auto server = *model_.foreignModelServer) model_.setAllowed(*server, !model_.isAllowed(*server));
  });
  auto* foreign = new QHBoxLayout;
  foreign->setSpacing(8);
  foreign->addWidget(foreignServer_, 1);
  foreign->addWidget(allowsForeign_, 0, Qt::AlignTop);
  column->addLayout(foreign);
  column->addWidget(makeFooter(
      localized(
          "Descriptions and filename suggestions use Apple Intelligence on this Mac. Screenshot content isn’t sent "
          "to a cloud service."),
      pane));
  column->addStretch();
  return pane;
}

QWidget* SettingsWindow::makeScreenshotsPane() {
  auto* pane = new QWidget(this);
  auto* column = makePane(pane);
  auto* folder = addGroup(column, localized("Folder"), pane);

  folderName_ = new PlainLabel(pane);
  folderName_->setFont(scaled(font(), 1, QFont::DemiBold));
  auto* choose = new ActionButton(ActionButton::Role::secondary, {}, localized("Choose…"), pane);
  choose->setAccessibleName(localized("Choose Screenshot Folder"));
  choose->setToolTip(localized("Choose the folder where macOS saves screenshots"));
  connect(choose, &QPushButton::clicked, this, [this] { model_.chooseWatchFolder({}, ErrorScope::settings); });
  auto* nameRow = new QHBoxLayout;
  nameRow->addWidget(new PlainLabel(localized("Screenshot folder"), pane));
  nameRow->addStretch();
  nameRow->addWidget(folderName_);
  nameRow->addSpacing(8);
  nameRow->addWidget(choose);
  folder->addLayout(nameRow);

  folderSymbol_ = new SymbolLabel(kSymbol, Ink::secondary, pane);
  folderStatus_ = new PlainLabel(pane);
  folderStatus_->setWordWrap(true);
  auto* statusRow = new QHBoxLayout;
  statusRow->setSpacing(8);
  statusRow->addWidget(folderSymbol_, 0, Qt::AlignTop);
  statusRow->addWidget(folderStatus_, 1);
  folder->addLayout(statusRow);
  cannotFollow_ = makeFooter(
      localized("The disk of this folder keeps too little about its files: a screenshot that you rename or move with "
                "another app may become unavailable here, and one that can’t be told from another file isn’t deleted "
                "when its time is up."),
      pane);
  folder->addWidget(cannotFollow_);

  location_ = new ScreenshotLocationRow(model_, pane);
  location_->confirmSavingHere = [this](const QString& name) { return confirmSavingHere && confirmSavingHere(name); };
  folder->addWidget(location_);

  includesOthers_ = new QCheckBox(localized("Also detect images from other apps"), pane);
  connect(includesOthers_, &QCheckBox::toggled, this, [this](bool isOn) { model_.setIncludesNonCaptureImages(isOn); });
  folder->addWidget(includesOthers_);
  folder->addWidget(
      makeFooter(localized("Includes other new images saved to this folder, such as downloads or exports."), pane));
  column->addStretch();
  return pane;
}

QWidget* SettingsWindow::makePopupPane() {
  auto* pane = new QWidget(this);
  auto* column = makePane(pane);
  showsThumbnail_ = new QCheckBox(localized("Show image thumbnail in popup"), pane);
  connect(showsThumbnail_, &QCheckBox::toggled, this, [this](bool isOn) { model_.setShowPopupThumbnail(isOn); });
  column->addWidget(showsThumbnail_);

  auto* series = addGroup(column, localized("Several in a row"), pane);
  waitsForPause_ = new QCheckBox(localized("Show the popup when you stop capturing"), pane);
  connect(waitsForPause_, &QCheckBox::toggled, this, [this](bool isOn) { model_.setPopupWaitsForPause(isOn); });
  series->addWidget(waitsForPause_);
  pauseLabel_ = new PlainLabel(pane);
  pause_ = new QSpinBox(pane);
  pause_->setRange(Settings::kShortestPauseSeconds, Settings::kLongestPauseSeconds);
  pause_->setAccessibleName(localized("Seconds after the last screenshot"));
  pause_->setKeyboardTracking(false);
  connect(pause_, &QSpinBox::valueChanged, this, [this](int value) { model_.setPopupPauseSeconds(value); });
  auto* pauseRow = new QHBoxLayout;
  pauseRow->addWidget(pauseLabel_);
  pauseRow->addStretch();
  pauseRow->addWidget(pause_);
  series->addLayout(pauseRow);
  gathersSeries_ = new QCheckBox(localized("Show several screenshots as a small note first"), pane);
  connect(gathersSeries_, &QCheckBox::toggled, this, [this](bool isOn) { model_.setPopupGathersSeries(isOn); });
  series->addWidget(gathersSeries_);
  series->addWidget(makeFooter(
      localized("The popup steps aside for the Print key and for the capture tools that it can tell. With others it "
                "may stand in the next screenshot unless it waits."),
      pane));

  auto* timeout = addGroup(column, localized("Timeout"), pane);
  dismissesPopup_ = new QCheckBox(localized("Automatically dismiss the popup"), pane);
  connect(dismissesPopup_, &QCheckBox::toggled, this, [this](bool isOn) { model_.setPopupAutoSaveEnabled(isOn); });
  timeout->addWidget(dismissesPopup_);
  secondsLabel_ = new PlainLabel(pane);
  seconds_ = new QSpinBox(pane);
  seconds_->setRange(Settings::kShortestPopupSeconds, Settings::kLongestPopupSeconds);
  seconds_->setAccessibleName(localized("Popup timeout in seconds"));
  // Each digit on the way to a number is no setting.
  seconds_->setKeyboardTracking(false);
  connect(seconds_, &QSpinBox::valueChanged, this, [this](int value) { model_.setPopupAutoSaveSeconds(value); });
  auto* secondsRow = new QHBoxLayout;
  secondsRow->addWidget(secondsLabel_);
  secondsRow->addStretch();
  secondsRow->addWidget(seconds_);
  timeout->addLayout(secondsRow);
  timeout->addWidget(makeFooter(
      localized("A screenshot whose popup closes on its own is kept without a deletion timer, under the name in the "
                "popup’s filename field. The countdown pauses while you use the popup or type a name."),
      pane));
  column->addStretch();
  return pane;
}

void SettingsWindow::follow(const ModelChange& change) {
  if (change.field == ModelField::settingsError) {
    // In a later turn: the failing operation must be over before its message waits for an answer.
    QMetaObject::invokeMethod(
        this, [this] { showError(); }, Qt::QueuedConnection);
  } else if (isVisible() && isShown(change.field)) {
    refresh();
  }
}

void SettingsWindow::showEvent(QShowEvent* event) {
  refresh();
  QWidget::showEvent(event);
}

/// As high as the pane that needs the most: texts that wrap tell no layout above them how high they become.
void SettingsWindow::makeRoom() {
  ensurePolished();
  const int width = std::max(kWidth, this->width());
  int highest = 0;
  for (int i = 0; i < tabs_->count(); ++i) {
    QLayout& pane = *tabs_->widget(i)->layout();
    pane.activate();
    highest = std::max(highest, pane.totalHeightForWidth(width));
  }
  const int around = layout()->contentsMargins().top() + tabs_->tabBar()->sizeHint().height();
  setMinimumHeight(std::min(highest + around, screen()->availableGeometry().height()));
}

void SettingsWindow::refresh() {
  const auto& folder = *model_.watchFolderURL;
  const WatcherStatus status = *model_.watcherStatus;
  folderName_->setText(folder ? folder->displayName() : localized("Not selected"));
  setPlainToolTip(*folderName_, folder ? folder->displayPath() : QString());
  folderSymbol_->setSymbol(symbolOf(status), status == WatcherStatus::watching ? Ink::secondary : Ink::warning);
  folderStatus_->setText(statusText(status));
  cannotFollow_->setVisible(status == WatcherStatus::watching && !model_.canFollowWatchFolder());
  location_->update();
  includesOthers_->setChecked(*model_.settings().includesNonCaptureImages);
  showsThumbnail_->setChecked(*model_.settings().showPopupThumbnail);
  dismissesPopup_->setChecked(*model_.settings().popupAutoSaveEnabled);
  secondsLabel_->setText(localized("Dismiss after %lld seconds", {*model_.settings().popupAutoSaveSeconds}));
  seconds_->setValue(*model_.settings().popupAutoSaveSeconds);
  seconds_->setEnabled(*model_.settings().popupAutoSaveEnabled);
  secondsLabel_->setEnabled(*model_.settings().popupAutoSaveEnabled);
  waitsForPause_->setChecked(*model_.settings().popupWaitsForPause);
  pauseLabel_->setText(
      localized("Show it %lld seconds after the last screenshot", {*model_.settings().popupPauseSeconds}));
  gathersSeries_->setChecked(*model_.settings().popupGathersSeries);
  pause_->setValue(*model_.settings().popupPauseSeconds);
  pause_->setEnabled(*model_.settings().popupWaitsForPause);
  pauseLabel_->setEnabled(*model_.settings().popupWaitsForPause);
  const bool usesSuggested = *model_.settings().screenshotNaming == ScreenshotNaming::suggested;
  naming_->setCurrentIndex(usesSuggested ? 1 : 0);
  const QString footer = localized(
      "This is the name the popup’s filename field starts with. You can change it there before choosing Keep or "
      "Temporary.");
  namingFooter_->setText(usesSuggested ? footer + QLatin1Char('\n') +
                                             localized("If no suggested name is ready, the macOS filename is used.")
                                       : footer);
  refreshIntelligence();
  makeRoom();
}

void SettingsWindow::refreshIntelligence() {
  analyzes_->setChecked(*model_.settings().analyzeScreenshots);
  if (!modelAddress_->hasFocus()) modelAddress_->setText(*model_.settings().modelAddress);
  refreshForeignServer();
  const auto& error = *model_.intelligenceUnavailability;
  const bool isShown = *model_.settings().analyzeScreenshots && error;
  modelSymbol_->setVisible(isShown);
  modelStatus_->setVisible(isShown);
  if (!isShown) return;
  const ModelStatus status = modelStatus(error->unavailability);
  modelStatus_->setText(status.text);
  modelSymbol_->setSymbol(status.symbol);
}

void SettingsWindow::refreshForeignServer() {
  const auto& server = *model_.foreignModelServer;
  const bool isShown = *model_.settings().analyzeScreenshots && server;
  foreignServer_->setVisible(isShown);
  allowsForeign_->setVisible(isShown);
  if (!isShown) return;
  const bool isAllowed = model_.isAllowed(*server);
  foreignServer_->setText(
      localized(isAllowed ? "Screenshots and their text are sent to the model server of “%@”, another user of this "
                            "computer, at %@."
                          : "“%@”, another user of this computer, runs a model server at %@. It would see your "
                            "screenshots and their text.",
                {server->owner, server->address}));
  allowsForeign_->setText(isAllowed ? localized("Don’t Use") : localized("Use It"));
}

void SettingsWindow::showError() {
  const auto error = *model_.settingsError;
  if (!error) return;
  model_.dismissError(ErrorScope::settings);
  showAlert(this, error->title, error->message);
}

}  // namespace quillmere
