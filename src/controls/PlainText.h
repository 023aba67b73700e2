#pragma once

#include <QtWidgets/QLabel>

namespace quillmere {

// Names of files, descriptions and recognised text come from outside and may look like markup. A QLabel or a tool
// tip would obey it, down to reading a file that it names. These show text as it is.

class PlainLabel : public QLabel {
 public:
  explicit PlainLabel(QWidget* parent = nullptr) : PlainLabel(QString(), parent) {}
  explicit PlainLabel(const QString& text, QWidget* parent = nullptr);
};

void setPlainToolTip(QWidget& widget, const QString& text);

}  // namespace quillmere
