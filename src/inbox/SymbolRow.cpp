#include "inbox/SymbolRow.h"

#include <QtCore/QEvent>
#include <QtWidgets/QHBoxLayout>
#include <algorithm>

#include "controls/Metrics.h"
#include "controls/SymbolLabel.h"
#include "controls/ThemedLabel.h"

namespace quillmere {
namespace {

constexpr int kGap = 7;

}  // namespace

SymbolRow::SymbolRow(Ink ink, Wrapping wrapping, QWidget* parent)
    : QWidget(parent),
      wrapping_(wrapping),
      symbol_(new SymbolLabel(Metrics::kSmallSymbol, ink, this)),
      text_(new ThemedLabel(ink, this)) {
  text_->setWordWrap(true);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(kGap);
  row->addWidget(symbol_, 0, Qt::AlignTop);
  row->addWidget(text_, 1);
  placeSymbol();
}

void SymbolRow::show(const QString& symbol, const QString& text) {
  symbol_->setSymbol(symbol);
  symbol_->setVisible(!symbol.isEmpty());
  text_->setText(text);
  updateGeometry();
  setVisible(true);
}

void SymbolRow::setTextSize(qreal factor) {
  text_->setTextSize(factor);
  placeSymbol();
}

QString SymbolRow::text() const {
  return text_->text();
}

QSize SymbolRow::sizeHint() const {
  if (wrapping_ == Wrapping::words) return QWidget::sizeHint();
  const int symbol = symbol_->isHidden() ? 0 : Metrics::kSmallSymbol + kGap;
  const int width = symbol + text_->fontMetrics().horizontalAdvance(text_->text()) + 1;
  return {width, layout()->heightForWidth(width)};
}

QSize SymbolRow::minimumSizeHint() const {
  constexpr int kLeast = 80;
  return {std::min(kLeast, sizeHint().width()), std::max(Metrics::kSmallSymbol, text_->fontMetrics().height())};
}

/// In the middle of the first line.
void SymbolRow::placeSymbol() {
  const int above = (QFontMetrics(text_->font()).height() - Metrics::kSmallSymbol) / 2;
  symbol_->setContentsMargins(0, std::max(0, above), 0, 0);
  text_->setContentsMargins(0, std::max(0, -above), 0, 0);
  symbol_->updateGeometry();
}

void SymbolRow::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange) placeSymbol();
}

}  // namespace quillmere
