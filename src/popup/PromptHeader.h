#pragma once

#include <QtWidgets/QWidget>
#include <functional>

namespace quillmere {

class ActionButton;
class ThemedLabel;

/// The card's first row: what it is about, how many more wait, and the way out.
class PromptHeader final : public QWidget {
 public:
  explicit PromptHeader(QWidget* parent);

  /// `isDiskSlow`: what was decided before is still on its way to the disk.
  void show(int queuedCount, bool isDiskSlow);
  std::function<void()> onClose;
  QWidget* closeButton() const;

 private:
  ThemedLabel* queueCount_;
  ActionButton* closeButton_;
};

}  // namespace quillmere
