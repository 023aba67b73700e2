#pragma once

#include <QtWidgets/QWidget>
#include <vector>

#include "popup/PictureAction.h"

namespace quillmere {

/// What can be done with the picture where no preview shows it.
class PromptTextActions final : public QWidget {
 public:
  explicit PromptTextActions(QWidget* parent);

  OnPictureAction onAction;
  /// For the order of the card's controls.
  const std::vector<QWidget*>& controls() const { return controls_; }

 private:
  std::vector<QWidget*> controls_;
};

}  // namespace quillmere
