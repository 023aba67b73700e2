#pragma once

#include <QtWidgets/QLineEdit>
#include <functional>

namespace quillmere {

/// Where a search is typed: with a magnifying glass, and a cross that empties it.
class SearchField final : public QLineEdit {
 public:
  explicit SearchField(QWidget* parent);
  /// Return or Down: the person goes on to what was found.
  std::function<void()> onLeave;
  std::function<void()> onFocus;

 protected:
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void showSymbols();
  QAction* glass_;
  QAction* clear_;
};

}  // namespace quillmere
