#include "controls/ThemedLabel.h"

#include <QtCore/QEvent>

#include "controls/Grounds.h"

namespace quillmere {

ThemedLabel::ThemedLabel(Ink ink, QWidget* parent, const QString& text) : QLabel(text, parent), ink_(ink) {
  followTheme();
}

void ThemedLabel::followTheme() {
  const QColor color = Theme(palette()).color(ink_);
  // Setting a colour is itself a change of the palette.
  if (palette().color(QPalette::WindowText) != color) setTextColor(*this, color);
}

void ThemedLabel::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) followTheme();
  QLabel::changeEvent(event);
}

}  // namespace quillmere
