#include "shell/Confirmations.h"

#include <QtGui/QCursor>
#include <QtWidgets/QApplication>

#include "controls/Alert.h"
#include "foundation/Localized.h"
#include "model/Messages.h"
#include "model/WideFolder.h"
#include "shell/QuestionPlace.h"

namespace quillmere {
namespace {

bool ask(AlertContent content, QWidget* window = placeForQuestionOverActive()) {
  content.safe = localized("Cancel");
  return Alert(std::move(content), window).ask();
}

/// The window that has the keyboard; else the one that was clicked, which a popup without the keyboard is. A question
/// that belonged to neither could lie below the popup.
QWidget* windowThatAsks() {
  QWidget* active = placeForQuestionOverActive();
  return active ? active : placeForQuestionOver(QApplication::topLevelAt(QCursor::pos()));
}

}  // namespace

bool Confirmations::quit(const QuitConcerns& concerns, QWidget* window) {
  QStringList details;
  if (concerns.isNotSaved) details += message(BackgroundIssue{BackgroundIssue::Kind::recordsNotSaved});
  if (concerns.waitingScreenshots > 0) {
    details += localized(
        "%lld screenshots are still waiting for a decision. They’ll be waiting again the next time you open Quillmere, "
        "but a screenshot you take while it’s closed is saved without a popup.",
        {concerns.waitingScreenshots});
  }
  QWidget* active = placeForQuestionOverActive();
  return ask({.symbol = QStringLiteral("questionmark.circle"),
              .heading = localized("Quit Quillmere?"),
              .message = details.join(QStringLiteral("\n\n")),
              .safe = {},
              .action = localized("Quit Quillmere")},
             active ? active : window);
}

bool Confirmations::deletion(const QString& fileName) {
  return ask({.symbol = QStringLiteral("trash"),
              .ink = Ink::danger,
              .heading = localized("Delete Screenshot?"),
              .message = localized(
                  "“%@” will be deleted from its folder and removed from Quillmere. This can’t be undone.", {fileName}),
              .safe = {},
              .action = localized("Delete"),
              .isDestructive = true},
             windowThatAsks());
}

bool Confirmations::savingScreenshotsIn(const QString& folder) {
  return ask({.symbol = QStringLiteral("folder"),
              .heading = localized("Save Screenshots to “%@”?", {folder}),
              .message = localized(
                  "Every screenshot taken on this Mac will be saved there from now on, in every app, not only in "
                  "Quillmere. You can change it back in Screenshot (⇧⌘5) › Options, or here in Quillmere."),
              .safe = {},
              .action = localized("Save Screenshots Here")});
}

bool Confirmations::clearingRecords() {
  return ask({.symbol = QStringLiteral("questionmark.circle"),
              .ink = Ink::danger,
              .heading = localized("Clear Inbox Records?"),
              .message = localized(
                  "Quillmere forgets every screenshot in the Inbox, with its description and deletion timer. The files "
                  "stay where they are, and Temporary screenshots won’t be moved to Trash."),
              .safe = {},
              .action = localized("Clear Records"),
              .isDestructive = true});
}

bool Confirmations::watching(const FileURL& folder, const FileURL& home) {
  const auto wide = wideFolder(folder, home);
  if (!wide) return true;
  return ask(
      {.symbol = QStringLiteral("folder.badge.questionmark"),
       .ink = Ink::warning,
       .heading = *wide == WideFolder::home ? localized("Watch Your Whole Home Folder?")
                                            : localized("Watch the Computer’s Root Folder?"),
       .message = localized(
           "Other apps keep files of their own here. Quillmere would look at every picture that one of them puts "
           "directly into this folder, to find out whether it’s a screenshot. A folder for screenshots alone is "
           "the better choice."),
       .safe = {},
       .action = localized("Watch This Folder")});
}

}  // namespace quillmere
