#pragma once

#include <QtWidgets/QWidget>
#include <functional>
#include <vector>

#include "popup/CapturePromptContent.h"

namespace quillmere {

class ActionButton;
class DurationPicker;

/// The decisions.
class PromptActions final : public QWidget {
 public:
  explicit PromptActions(QWidget* parent);

  void show(const CapturePromptContent& content);
  TemporaryDuration duration() const;
  void setDuration(TemporaryDuration duration);
  /// The main button can be pressed.
  bool canDecide() const;
  /// Whether Copy says that it has copied.
  void showCopied(bool isCopied);

  std::function<void()> onTemporary;
  std::function<void()> onKeep;
  std::function<void()> onCopy;
  std::function<void()> onTrash;
  QWidget* mainButton() const;
  /// For the order of the card's controls.
  std::vector<QWidget*> controls() const;

 private:
  void refreshHint();
  ActionButton* temporary_;
  ActionButton* keep_;
  ActionButton* copy_;
  DurationPicker* durationPicker_;
  ActionButton* trash_;
};

}  // namespace quillmere
