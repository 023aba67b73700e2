#include "controls/Theme.h"

namespace quillmere {

Theme::Theme(const QPalette& palette) {
  constexpr int kHalf = 128;
  isDark = palette.color(QPalette::Window).lightness() < kHalf;
  card = isDark ? QColor(0x2a2c31) : QColor(0xfbfbfc);
  text = isDark ? QColor(0xf2f3f5) : QColor(0x1b1d21);
  secondaryText = isDark ? QColor(0xb3b7bf) : QColor(0x5b616b);
  hairline = isDark ? QColor(255, 255, 255, 28) : QColor(0, 0, 0, 26);
  field = isDark ? QColor(0x1f2125) : QColor(Qt::white);
  fieldBorder = isDark ? QColor(0x50545c) : QColor(0xc9cdd4);
  fill = isDark ? QColor(255, 255, 255, 22) : QColor(20, 28, 45, 15);
  fillHover = isDark ? QColor(255, 255, 255, 34) : QColor(20, 28, 45, 25);
  fillPressed = isDark ? QColor(255, 255, 255, 46) : QColor(20, 28, 45, 38);
  accent = QColor(0x2563d9);
  accentHover = QColor(0x1f57c4);
  accentPressed = QColor(0x1a4aa8);
  onAccent = Qt::white;
  danger = isDark ? QColor(0xff8078) : QColor(0xc02b21);
  warning = isDark ? QColor(0xf0b248) : QColor(0xa85f00);
}

QFont scaled(QFont font, qreal factor, QFont::Weight weight) {
  if (font.pointSizeF() > 0) {
    font.setPointSizeF(font.pointSizeF() * factor);
  } else {
    font.setPixelSize(qRound(font.pixelSize() * factor));
  }
  font.setWeight(weight);
  return font;
}

}  // namespace quillmere
