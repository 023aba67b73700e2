#pragma once

#include <functional>
#include <optional>

#include "controls/CardDialog.h"

class QStackedWidget;

namespace quillmere {

class ActionButton;
class MessageView;
class RecognizedTextView;

/// The text in a screenshot. It takes its size from the window that it belongs to, and follows it.
class RecognizedTextSheet final : public CardDialog {
 public:
  explicit RecognizedTextSheet(QWidget* window);
  /// An empty text is one that was sought and not found.
  void show(const std::optional<QString>& text, bool isExtracting);
  std::function<void(const QString& text)> onCopy;

  static constexpr QSize kLeast{480, 360};  ///< of the card, in points

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QWidget* makeWaiting();
  void fitToWindow();

  QString text_;
  QStackedWidget* pages_;
  QWidget* waiting_;
  MessageView* nothing_;
  RecognizedTextView* found_;
  ActionButton* copy_;
  ActionButton* done_;
};

}  // namespace quillmere
