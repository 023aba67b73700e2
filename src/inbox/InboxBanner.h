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
  /// What is beside its action.
  struct Offers {
    bool help = false;
    bool dismissal = false;
  };
  void show(const QString& symbol, const QString& message, const QString& action, Offers offers);
  std::function<void()> onAction;
  std::function<void()> onHelp;
  std::function<void()> onDismiss;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  SymbolLabel* symbol_;
  QLabel* message_;
  ActionButton* help_;
  ActionButton* action_;
  ActionButton* dismiss_;
};

}  // namespace quillmere
