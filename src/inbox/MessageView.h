#pragma once

#include <QtWidgets/QWidget>
#include <functional>

namespace quillmere {

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
  std::function<void()> onAction;
};

}  // namespace quillmere
