#include "controls/SymbolLabel.h"

#include <QtGui/QPainter>

#include "controls/Symbol.h"

namespace quillmere {

SymbolLabel::SymbolLabel(int points, Ink ink, QWidget* parent, const QString& symbol)
    : QWidget(parent), points_(points), ink_(ink), symbol_(symbol) {
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  setAttribute(Qt::WA_TransparentForMouseEvents);
}

void SymbolLabel::setSymbol(const QString& symbol, Ink ink) {
  if (symbol == symbol_ && ink == ink_) return;
  symbol_ = symbol;
  ink_ = ink;
  update();
}

QSize SymbolLabel::sizeHint() const {
  const QMargins margins = contentsMargins();
  return {points_ + margins.left() + margins.right(), points_ + margins.top() + margins.bottom()};
}

void SymbolLabel::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const QColor color = Theme(palette()).color(ink_);
  painter.drawPixmap(contentsRect().topLeft(), symbolPixmap(symbol_, points_, color, devicePixelRatioF()));
}

}  // namespace quillmere
