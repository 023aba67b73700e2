#include "controls/ThemedLabel.h"

#include <QtCore/QEvent>

#include "controls/Grounds.h"

namespace quillmere {

ThemedLabel::ThemedLabel(Ink ink, QWidget* parent, const QString& text) : PlainLabel(text, parent), ink_(ink) {
  followTheme();
}

void ThemedLabel::followTheme() {
  const QColor color = Theme(palette()).color(ink_);
  // Setting a colour is itself a change of the palette.
  if (palette().color(QPalette::WindowText) != color) setTextColor(*this, color);
}

void ThemedLabel::setTextSize(qreal factor, QFont::Weight weight) {
  textSize_ = factor;
  weight_ = weight;
  // A font with a size of its own does not hear of another one, but its parent's does.
  parentWidget()->installEventFilter(this);
  followFont();
}

void ThemedLabel::followFont() {
  setFont(scaled(parentWidget()->font(), textSize_, weight_));
}

bool ThemedLabel::eventFilter(QObject* watched, QEvent* event) {
  if (watched == parentWidget() && event->type() == QEvent::FontChange) followFont();
  return PlainLabel::eventFilter(watched, event);
}

void ThemedLabel::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) followTheme();
  PlainLabel::changeEvent(event);
}

}  // namespace quillmere
