#include "controls/ElidedLines.h"

#include <QtGui/QFontMetrics>
#include <QtGui/QTextLayout>

namespace quillmere {

QString elidedLines(const QString& text, const QFont& font, int width, int lines) {
  QString flowing = text;
  flowing.replace(QLatin1Char('\n'), QChar::LineSeparator);
  QTextLayout layout(flowing, font);
  QTextOption option;
  option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  layout.setTextOption(option);
  layout.beginLayout();
  int lastStart = 0;
  int end = 0;
  for (int i = 0; i < lines; ++i) {
    QTextLine line = layout.createLine();
    if (!line.isValid()) break;
    line.setLineWidth(width);
    lastStart = line.textStart();
    end = line.textStart() + line.textLength();
  }
  layout.endLayout();
  if (end >= flowing.size()) return text;
  QString last = text.mid(lastStart, end - lastStart).trimmed() + QChar(0x2026);
  const QFontMetrics metrics(font);
  // The ellipsis has to find room on the line too.
  if (metrics.horizontalAdvance(last) > width) last = metrics.elidedText(last, Qt::ElideRight, width);
  return text.left(lastStart) + last;
}

}  // namespace quillmere
