#pragma once

#include "controls/CardDialog.h"
#include "update/library/UpdateWindows.h"

class QBoxLayout;
class QProgressBar;

namespace quillmere {

class ActionButton;

/// One notice on a card. What the maker writes is shown as text and never as markup.
class UpdateWindow final : public CardDialog {
 public:
  UpdateWindow(UpdateNotice notice, std::function<void(UpdateWindows::Answer)> answered);

  const UpdateNotice& notice() const { return notice_; }
  /// Null where there is nothing to answer so.
  ActionButton* safeButton() const { return safe_; }
  ActionButton* actionButton() const { return action_; }
  void setProgress(qint64 done, qint64 whole);

  /// Closing, by whatever means, is the safe answer; without one it stays.
  void reject() override;
  void accept() override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void layOut();
  void addButtons(QBoxLayout& column);
  void answer(UpdateWindows::Answer answer);

  UpdateNotice notice_;
  std::function<void(UpdateWindows::Answer)> answered_;
  QProgressBar* progress_ = nullptr;
  ActionButton* safe_ = nullptr;
  ActionButton* action_ = nullptr;
};

}  // namespace quillmere
