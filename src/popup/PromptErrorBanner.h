#pragma once

#include <QtWidgets/QWidget>
#include <functional>

#include "model/ModelMessages.h"

class QLabel;

namespace quillmere {

/// The error that stands in the popup.
class PromptErrorBanner final : public QWidget {
 public:
  explicit PromptErrorBanner(QWidget* parent);
  void show(const ScopedError& error);
  std::function<void()> onDismiss;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QLabel* symbol_;
  QLabel* title_;
  QLabel* message_;
};

}  // namespace quillmere
