#include "settings/ScreenshotLocationRow.h"

#include <QtWidgets/QGridLayout>

#include "controls/ActionButton.h"
#include "controls/SymbolLabel.h"
#include "controls/ThemedLabel.h"
#include "controls/WrappingRow.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

constexpr int kSymbol = 18;

ActionButton* makeButton(ActionButton::Role role, const QString& symbol, const QString& text, const QString& help,
                         QWidget* parent) {
  auto* button = new ActionButton(role, symbol, text, parent);
  button->setToolTip(help);
  return button;
}

QLabel* makeText(Ink ink, QWidget* parent) {
  auto* label = new ThemedLabel(ink, parent);
  label->setWordWrap(true);
  return label;
}

}  // namespace

ScreenshotLocationContent ScreenshotLocationContent::make(const AppModel& model) {
  using Kind = ScreenshotFolderMatch::Kind;
  ScreenshotLocationContent content;
  const auto match = model.screenshotFolderMatch();
  if (match.kind == Kind::matches) {
    content.symbol = QStringLiteral("checkmark.circle");
    const auto& change = *model.lastScreenshotLocationChange;
    content.offersUndo = change.has_value();
    content.status = change ? localized("macOS now saves screenshots to %@", {change->folder.displayName()})
                            : localized("Matches where macOS saves screenshots");
  } else if (match.kind == Kind::differs) {
    content.status = localized("macOS saves screenshots to %@", {match.folder->displayName()});
    content.watched = localized("Quillmere watches %@", {(*model.watchFolderURL)->displayName()});
    content.hint = localized("Or change it in Screenshot (⇧⌘5) › Options.");
    content.offersThisFolder = content.offersHelp = true;
    content.offersSavingHere = model.canPointMacOSAtWatchFolder();
  }
  return content;
}

ScreenshotLocationRow::ScreenshotLocationRow(AppModel& model, const SettingsServices& services, QWidget* parent)
    : QWidget(parent),
      model_(model),
      services_(services),
      symbol_(new SymbolLabel(kSymbol, Ink::secondary, this)),
      text_(makeText(Ink::text, this)),
      hint_(makeText(Ink::secondary, this)),
      undo_(makeButton(ActionButton::Role::secondary, {}, localized("Undo"), {}, this)),
      dismiss_(makeButton(ActionButton::Role::icon, QStringLiteral("xmark"), {}, localized("Hide this notice"), this)),
      useThisFolder_(makeButton(ActionButton::Role::secondary, {}, localized("Use This Folder…"),
                                localized("Open the folder picker at this folder so Quillmere can watch it"), this)),
      saveHere_(makeButton(ActionButton::Role::secondary, {}, localized("Save Screenshots Here…"),
                           localized("Save every screenshot on this Mac in this folder"), this)),
      help_(makeButton(ActionButton::Role::icon, QStringLiteral("questionmark.circle"), {}, localized("Help"), this)) {
  dismiss_->setAccessibleName(localized("Dismiss"));
  help_->setAccessibleName(localized("Help"));
  auto* buttons = new WrappingRow(8);
  for (ActionButton* button : {useThisFolder_, saveHere_, undo_, help_}) buttons->addWidget(button);
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setHorizontalSpacing(8);
  grid->setVerticalSpacing(6);
  grid->setColumnStretch(1, 1);
  grid->addWidget(symbol_, 0, 0);
  grid->addWidget(text_, 0, 1);
  grid->addWidget(dismiss_, 0, 2);
  grid->addLayout(buttons, 1, 1);
  grid->addWidget(hint_, 2, 1);

  connect(undo_, &QPushButton::clicked, this, [this] { model_.undoScreenshotLocationChange(); });
  connect(dismiss_, &QPushButton::clicked, this, [this] { model_.dismissScreenshotLocationChange(); });
  connect(useThisFolder_, &QPushButton::clicked, this,
          [this] { model_.chooseWatchFolder(*model_.macOSScreenshotFolder, ErrorScope::settings); });
  connect(saveHere_, &QPushButton::clicked, this, [this] {
    const auto& folder = *model_.watchFolderURL;
    if (!folder || !services_.confirmSavingHere) return;
    if (services_.confirmSavingHere(folder->displayName())) model_.pointMacOSAtWatchFolder();
  });
  connect(help_, &QPushButton::clicked, this, [this] { services_.openHelp(HelpAnchor::folderMismatch); });
}

void ScreenshotLocationRow::update() {
  const auto content = ScreenshotLocationContent::make(model_);
  setVisible(!content.status.isEmpty());
  symbol_->setVisible(!content.symbol.isEmpty());
  symbol_->setSymbol(content.symbol);
  const QString text =
      content.watched.isEmpty() ? content.status : content.status + QLatin1Char('\n') + content.watched;
  text_->setText(breakable(text));
  text_->setAccessibleName(text);
  hint_->setText(content.hint);
  hint_->setVisible(!content.hint.isEmpty());
  undo_->setVisible(content.offersUndo);
  dismiss_->setVisible(content.offersUndo);
  useThisFolder_->setVisible(content.offersThisFolder);
  saveHere_->setVisible(content.offersSavingHere);
  help_->setVisible(content.offersHelp && services_.openHelp);
  const auto& folder = *model_.watchFolderURL;
  if (folder) saveHere_->setAccessibleName(localized("Save Screenshots to %@", {folder->displayName()}));
}

}  // namespace quillmere
