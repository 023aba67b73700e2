#pragma once

#include <QtWidgets/QWidget>
#include <functional>
#include <vector>

namespace quillmere {

class ActionButton;

/// What can be done with the picture where no preview shows it.
class PromptTextActions final : public QWidget {
 public:
  explicit PromptTextActions(QWidget* parent);

  std::function<void()> onCopyText;
  std::function<void(QWidget& anchor)> onShare;
  /// For the order of the card's controls.
  std::vector<QWidget*> controls() const;

 private:
  ActionButton* copyText_;
  ActionButton* share_;
};

}  // namespace quillmere
