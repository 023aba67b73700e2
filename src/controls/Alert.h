#pragma once

#include "controls/CardDialog.h"
#include "controls/Theme.h"

namespace quillmere {

class ActionButton;

/// What an alert says, and what can be answered.
struct AlertContent {
  QString symbol;
  Ink ink = Ink::secondary;  ///< the symbol's
  QString heading;
  QString message;
  QString safe;                ///< changes nothing; also what Return, Escape and closing mean
  QString action;              ///< does what is asked about; none where there is only something to read
  bool isDestructive = false;  ///< the action throws something away
};

/// A message or a question on a small card.
///
/// Return is the safe answer wherever the focus is, also where the desktop's theme has Return press the button that has
/// it: the action takes Space or a click.
class Alert final : public CardDialog {
 public:
  Alert(AlertContent content, QWidget* parent);

  const AlertContent& content() const { return content_; }
  ActionButton& safeButton() const { return *safe_; }
  ActionButton* actionButton() const { return action_; }
  /// Whether the action was chosen.
  bool ask();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void layOut();
  void makeButtons();

  AlertContent content_;
  ActionButton* safe_ = nullptr;
  ActionButton* action_ = nullptr;
};

/// Shows a failure with its title and message, and waits until it is read.
void showAlert(QWidget* parent, const QString& title, const QString& message);

}  // namespace quillmere
