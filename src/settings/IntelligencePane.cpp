#include "settings/IntelligencePane.h"

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QVBoxLayout>

#include "controls/ActionButton.h"
#include "controls/PlainText.h"
#include "foundation/Localized.h"
#include "settings/SymbolNote.h"

namespace quillmere {
namespace {

struct Note {
  QString text;
  QString symbol;
};
Note noteOf(AnalysisError::Unavailability reason) {
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

}  // namespace

IntelligencePane::IntelligencePane(AppModel& model, QWidget* parent)
    : SettingsPane(model, parent),
      analyzes_(addToggle(&column(), localized("Analyze screenshots"),
                          [this](bool isOn) { this->model().setAnalyzeScreenshots(isOn); })),
      unavailable_(addNote(&column())) {
  makeServer();
  addFooter(&column(),
            localized("Descriptions and filename suggestions use Apple Intelligence on this Mac. Screenshot content "
                      "isn’t sent to a cloud service."));
  column().addStretch();
}

void IntelligencePane::makeServer() {
  address_ = new QLineEdit(this);
  address_->setAccessibleName(localized("Model server address"));
  address_->setPlaceholderText(localized("Found by itself"));
  connect(address_, &QLineEdit::editingFinished, this, [this] { model().setModelAddress(address_->text()); });
  auto* address = new QHBoxLayout;
  address->addWidget(new PlainLabel(localized("Model server address"), this));
  address->addSpacing(8);
  address->addWidget(address_, 1);
  column().addLayout(address);

  foreignServer_ = new PlainLabel(this);
  foreignServer_->setWordWrap(true);
  allowsForeign_ = new ActionButton(ActionButton::Role::secondary, {}, {}, this);
  connect(allowsForeign_, &QPushButton::clicked, this, [this] {
    if (const auto server = *model().foreignModelServer) model().setAllowed(*server, !model().isAllowed(*server));
  });
  auto* foreign = new QHBoxLayout;
  foreign->setSpacing(8);
  foreign->addWidget(foreignServer_, 1);
  foreign->addWidget(allowsForeign_, 0, Qt::AlignTop);
  column().addLayout(foreign);
}

bool IntelligencePane::shows(ModelField field) const {
  switch (field) {
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

void IntelligencePane::refresh() {
  const bool isOn = *model().settings().analyzeScreenshots;
  analyzes_->setChecked(isOn);
  // What is being typed stays.
  if (!address_->hasFocus()) address_->setText(*model().settings().modelAddress);
  refreshForeignServer();
  const auto& error = *model().intelligenceUnavailability;
  const Note note = isOn && error ? noteOf(error->unavailability) : Note();
  unavailable_->show(note.symbol, Ink::warning, note.text);
}

void IntelligencePane::refreshForeignServer() {
  const auto& server = *model().foreignModelServer;
  const bool isShown = *model().settings().analyzeScreenshots && server;
  foreignServer_->setVisible(isShown);
  allowsForeign_->setVisible(isShown);
  if (!isShown) return;
  const bool isAllowed = model().isAllowed(*server);
  foreignServer_->setText(
      localized(isAllowed ? "Screenshots and their text are sent to the model server of “%@”, another user of this "
                            "computer, at %@."
                          : "“%@”, another user of this computer, runs a model server at %@. It would see your "
                            "screenshots and their text.",
                {server->owner, server->address}));
  allowsForeign_->setText(isAllowed ? localized("Don’t Use") : localized("Use It"));
}

}  // namespace quillmere
