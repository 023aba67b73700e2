#pragma once

#include <QtWidgets/QLabel>

class QMessageBox;

namespace quillmere {

// Names of files, descriptions and recognised text come from outside and may look like markup. A QLabel, a tool tip or
// a message box would obey it, down to reading a file that it names. These show text as it is.

class PlainLabel : public QLabel {
 public:
  explicit PlainLabel(QWidget* parent = nullptr) : PlainLabel(QString(), parent) {}
  explicit PlainLabel(const QString& text, QWidget* parent = nullptr);
};

void setPlainToolTip(QWidget& widget, const QString& text);
/// `text` in bold, `details` below it.
void setPlainTexts(QMessageBox& box, const QString& text, const QString& details);

}  // namespace quillmere
