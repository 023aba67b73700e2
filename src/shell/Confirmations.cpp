#include "shell/Confirmations.h"

#include <QtWidgets/QApplication>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>

#include "controls/ModalDialog.h"
#include "controls/PlainText.h"
#include "foundation/Localized.h"
#include "model/Messages.h"

namespace quillmere {
namespace {

bool ask(const QString& question, const QString& details, const QString& action) {
  QMessageBox box(QApplication::activeWindow());
  box.setWindowTitle(question);
  box.setIcon(QMessageBox::Question);
  setPlainTexts(box, question, details);
  QPushButton* confirm = box.addButton(action, QMessageBox::DestructiveRole);
  QPushButton* cancel = box.addButton(localized("Cancel"), QMessageBox::RejectRole);
  confirm->setAutoDefault(false);
  box.setDefaultButton(cancel);
  box.setEscapeButton(cancel);
  runModal(box);
  return box.clickedButton() == confirm;
}

}  // namespace

bool Confirmations::quit(const QuitConcerns& concerns) {
  QStringList details;
  if (concerns.isNotSaved) details += message(BackgroundIssue{BackgroundIssue::Kind::recordsNotSaved});
  if (concerns.waitingScreenshots > 0) {
    details += localized(
        "%lld screenshots are still waiting for a decision. They’ll be waiting again the next time you open Quillmere, "
        "but a screenshot you take while it’s closed is saved without a popup.",
        {concerns.waitingScreenshots});
  }
  return ask(localized("Quit Quillmere?"), details.join(QStringLiteral("\n\n")), localized("Quit Quillmere"));
}

bool Confirmations::deletion(const QString& fileName) {
  return ask(
      localized("Delete Screenshot?"),
      localized("“%@” will be deleted from its folder and removed from Quillmere. This can’t be undone.", {fileName}),
      localized("Delete"));
}

bool Confirmations::savingScreenshotsIn(const QString& folder) {
  return ask(localized("Save Screenshots to “%@”?", {folder}),
             localized("Every screenshot taken on this Mac will be saved there from now on, in every app, not only in "
                       "Quillmere. You can change it back in Screenshot (⇧⌘5) › Options, or here in Quillmere."),
             localized("Save Screenshots Here"));
}

}  // namespace quillmere
