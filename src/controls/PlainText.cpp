#include "controls/PlainText.h"

namespace quillmere {

PlainLabel::PlainLabel(const QString& text, QWidget* parent) : QLabel(parent) {
  // Before there is a text that could be read as markup.
  setTextFormat(Qt::PlainText);
  setText(text);
}

QString breakable(const QString& text) {
  constexpr int kLongestPart = 24;
  QString parts;
  int length = 0;
  for (const QChar character : text) {
    length = character.isSpace() ? 0 : length + 1;
    if (length > kLongestPart && !character.isLowSurrogate() && !character.isMark()) {
      parts += QChar(0x200b);
      length = 1;
    }
    parts += character;
    if (character == QLatin1Char('_')) {
      parts += QChar(0x200b);
      length = 0;
    }
  }
  return parts;
}

void setPlainToolTip(QWidget& widget, const QString& text) {
  widget.setToolTip(text.isEmpty() ? QString() : QStringLiteral("<span>%1</span>").arg(text.toHtmlEscaped()));
}

}  // namespace quillmere
