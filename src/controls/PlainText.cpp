#include "controls/PlainText.h"

namespace quillmere {

PlainLabel::PlainLabel(const QString& text, QWidget* parent) : QLabel(parent) {
  // Before there is a text that could be read as markup.
  setTextFormat(Qt::PlainText);
  setText(text);
}

void setPlainToolTip(QWidget& widget, const QString& text) {
  widget.setToolTip(text.isEmpty() ? QString() : QStringLiteral("<span>%1</span>").arg(text.toHtmlEscaped()));
}

}  // namespace quillmere
