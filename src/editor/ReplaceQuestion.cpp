#include "editor/ReplaceQuestion.h"

#include "foundation/Localized.h"

namespace quillmere {

ReplaceQuestion::ReplaceQuestion(QString fileName, QWidget* sheet) : fileName_(std::move(fileName)), sheet_(sheet) {}

AlertContent ReplaceQuestion::content() const {
  return {.symbol = QStringLiteral("crop"),
          .ink = Ink::danger,
          .heading = localized("Replace the Original Screenshot?"),
          .message = localized("“%@” moves to Trash, and the cropped image takes its name. You can put the original "
                               "back from Trash in Finder.",
                               {fileName_}),
          .safe = localized("Cancel"),
          .action = localized("Replace Original"),
          .isDestructive = true};
}

void ReplaceQuestion::setAsked(bool isAsked) {
  if (isAsked == (alert_ != nullptr)) return;
  isAsked ? ask() : takeBack();
}

void ReplaceQuestion::ask() {
  alert_ = new Alert(content(), sheet_);
  QObject::connect(alert_, &QDialog::finished, sheet_, [this](int result) {
    takeBack();
    if (onAnswer) onAnswer(result == QDialog::Accepted);
  });
  alert_->open();
}

/// It may be in the middle of telling its answer.
void ReplaceQuestion::takeBack() {
  QObject::disconnect(alert_, &QDialog::finished, nullptr, nullptr);
  alert_->hide();
  alert_->deleteLater();
  alert_ = nullptr;
}

}  // namespace quillmere
