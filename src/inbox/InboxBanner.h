#pragma once

#include <QtWidgets/QWidget>
#include <functional>

class QLabel;

namespace quillmere {

class ActionButton;

/// A message above the list, with one action.
class InboxBanner final : public QWidget {
 public:
  explicit InboxBanner(QWidget* parent);
  void show(const QString& symbol, const QString& message, const QString& action);
  std::function<void()> onAction;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QLabel* symbol_;
  QLabel* message_;
  ActionButton* action_;
};

}  // namespace quillmere
