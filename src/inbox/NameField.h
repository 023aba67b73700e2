#pragma once

#include <QtWidgets/QLineEdit>

#include "inbox/InboxPresentation.h"

namespace quillmere {

/// The field of one rename, in which a screenshot's name is changed where it stands: Return renames, Escape and the
/// loss of the keyboard leave the name as it is. Whoever makes it shows it, gives it the keyboard and takes it away
/// when the session is over. While it has the keyboard no shortcut of the window fires: every key is the name's.
class NameField final : public QLineEdit {
 public:
  NameField(InboxPresentation& presentation, const InboxPresentation::RenameSession& session, QWidget* parent);

  /// From the field's edge to its text, in points.
  static constexpr int kBeside = 7;
  static constexpr int kAbove = 4;
  /// Its text then stands exactly where a text in this place does that is in the middle of the place's height.
  void placeOver(const QRect& line) { setGeometry(line.adjusted(-kBeside, -kAbove, kBeside, kAbove)); }

 protected:
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  bool isOpen() const;
  void cancel();

  InboxPresentation& presentation_;
  const InboxPresentation::RenameSession session_;
};

}  // namespace quillmere
