#pragma once

#include <QtWidgets/QWidget>
#include <map>
#include <vector>

#include "popup/PictureAction.h"

namespace quillmere {

class ActionButton;

/// What can be done with the picture where no preview shows it.
class PromptTextActions final : public QWidget {
 public:
  explicit PromptTextActions(QWidget* parent);

  /// Something is under way that the action began.
  void setWorking(PictureAction action, bool isWorking);

  OnPictureAction onAction;
  /// For the order of the card's controls.
  const std::vector<QWidget*>& controls() const { return controls_; }

 private:
  std::map<PictureAction, ActionButton*> buttons_;
  std::vector<QWidget*> controls_;
};

}  // namespace quillmere
