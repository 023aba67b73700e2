#pragma once

#include <QtWidgets/QWidget>
#include <functional>

class QLabel;

namespace quillmere {

class ActionButton;
class SymbolLabel;

/// A message above the list, with one action. Some can be waved away.
class InboxBanner final : public QWidget {
 public:
  explicit InboxBanner(QWidget* parent);
  void show(const QString& symbol, const QString& message, const QString& action, bool isDismissible = false);
  std::function<void()> onAction;
  std::function<void()> onDismiss;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  SymbolLabel* symbol_;
  QLabel* message_;
  ActionButton* action_;
  ActionButton* dismiss_;
};

}  // namespace quillmere
