#pragma once

#include <QtWidgets/QLineEdit>
#include <optional>

namespace quillmere {

/// A text field of the same family as the buttons around it.
class PromptFilenameField final : public QLineEdit {
 public:
  explicit PromptFilenameField(QWidget* parent);
  /// What becomes of the name as it is, in the place of what the field is for.
  void setNote(const std::optional<QString>& note);
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void changeEvent(QEvent* event) override;
};

}  // namespace quillmere
