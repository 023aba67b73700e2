#pragma once

#include <QtWidgets/QWidget>
#include <functional>

class QLabel;

namespace quillmere {

class SymbolLabel;

/// A symbol, a title and a sentence in the middle of an empty place, with at most one button.
class MessageView final : public QWidget {
 public:
  struct Content {
    QString symbol;
    QString title;
    QString text;
    QString action;  ///< of the button; none when empty
  };
  MessageView(const Content& content, QWidget* parent);
  /// Says something else; the button stays what it is.
  void say(const Content& content);
  std::function<void()> onAction;

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void fitText();
  SymbolLabel* symbol_;
  QLabel* title_;
  QLabel* text_;
};

}  // namespace quillmere
