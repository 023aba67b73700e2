#include "settings/SymbolNote.h"

#include <QtWidgets/QHBoxLayout>

#include "controls/PlainText.h"
#include "controls/SymbolLabel.h"

namespace quillmere {
namespace {

constexpr int kSymbol = 18;

}  // namespace

SymbolNote::SymbolNote(QWidget* parent)
    : QWidget(parent), symbol_(new SymbolLabel(kSymbol, Ink::secondary, this)), text_(new PlainLabel(this)) {
  text_->setWordWrap(true);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(8);
  row->addWidget(symbol_, 0, Qt::AlignTop);
  row->addWidget(text_, 1);
  hide();
}

void SymbolNote::show(const QString& symbol, Ink ink, const QString& text) {
  symbol_->setSymbol(symbol, ink);
  symbol_->setVisible(!symbol.isEmpty());
  text_->setText(text);
  setVisible(!text.isEmpty());
}

QString SymbolNote::text() const {
  return text_->text();
}

}  // namespace quillmere
