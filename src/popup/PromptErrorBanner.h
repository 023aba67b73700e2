#pragma once

#include <QtWidgets/QWidget>
#include <functional>

#include "model/Messages.h"

namespace quillmere {

class ActionButton;
class ThemedLabel;

/// The error that stands in the popup.
class PromptErrorBanner final : public QWidget {
 public:
  explicit PromptErrorBanner(QWidget* parent);
  void show(const ScopedError& error);
  std::function<void()> onDismiss;
  /// What of it takes the keyboard, for the order of the card's controls.
  QWidget* control() const;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void alert();
  UUID shown_;
  ThemedLabel* title_;
  ThemedLabel* message_;
  ActionButton* dismiss_;
};

}  // namespace quillmere
