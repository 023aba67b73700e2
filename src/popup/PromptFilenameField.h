#pragma once

#include <QtWidgets/QLineEdit>

namespace quillmere {

/// A text field of the same family as the buttons around it.
class PromptFilenameField final : public QLineEdit {
 public:
  explicit PromptFilenameField(QWidget* parent);
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void followTheme();
};

}  // namespace quillmere
