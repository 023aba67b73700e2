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

/// A file's name may be one long word, and its end is often what tells two apart: lines may break within it.
QString breakable(const QString& text);

void setPlainToolTip(QWidget& widget, const QString& text);

}  // namespace quillmere
