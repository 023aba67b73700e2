#include "controls/PlainText.h"

#include <QtWidgets/QMessageBox>

namespace quillmere {

PlainLabel::PlainLabel(const QString& text, QWidget* parent) : QLabel(parent) {
  // Before there is a text that could be read as markup.
  setTextFormat(Qt::PlainText);
  setText(text);
}

void setPlainToolTip(QWidget& widget, const QString& text) {
  widget.setToolTip(text.isEmpty() ? QString() : QStringLiteral("<span>%1</span>").arg(text.toHtmlEscaped()));
}

void setPlainTexts(QMessageBox& box, const QString& text, const QString& details) {
  box.setTextFormat(Qt::PlainText);
  box.setText(text);
  // The label below is made by its first text, and knows no format before.
  box.setInformativeText(QStringLiteral(" "));
  for (QLabel* label : box.findChildren<QLabel*>()) label->setTextFormat(Qt::PlainText);
  box.setInformativeText(details);
}

}  // namespace quillmere
