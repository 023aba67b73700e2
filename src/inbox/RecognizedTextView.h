#pragma once

#include <QtWidgets/QPlainTextEdit>
#include <functional>

namespace quillmere {

/// Recognised text, which can be read, scrolled, selected and copied. It may be of any length and hold anything.
class RecognizedTextView final : public QPlainTextEdit {
 public:
  explicit RecognizedTextView(QWidget* parent);
  void setText(const QString& text);
  QString selectedText() const;
  /// The selection, by the keys for copying.
  std::function<void(const QString& text)> onCopy;

 protected:
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void copySelection();
  void followTheme();
  QString text_;
};

}  // namespace quillmere
