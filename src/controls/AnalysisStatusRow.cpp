#include "controls/AnalysisStatusRow.h"

#include <QtWidgets/QHBoxLayout>

#include "controls/ActionButton.h"
#include "controls/SymbolLabel.h"
#include "controls/ThemedLabel.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

constexpr int kSymbol = 16;

}  // namespace

AnalysisStatusRow::AnalysisStatusRow(QWidget* parent)
    : QWidget(parent),
      symbol_(new SymbolLabel(kSymbol, Ink::secondary, this, QStringLiteral("exclamationmark.bubble"))),
      text_(new ThemedLabel(Ink::secondary, this)),
      button_(new ActionButton(ActionButton::Role::icon, QStringLiteral("arrow.clockwise"), {}, this)) {
  text_->setObjectName(QStringLiteral("analysisStatus"));
  text_->setWordWrap(true);
  text_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  text_->setFocusPolicy(Qt::NoFocus);
  button_->setAccessibleName(localized("Analyze Again"));
  button_->setToolTip(localized("Analyze Again"));
  connect(button_, &QPushButton::clicked, this, [this] {
    if (onAnalyze) onAnalyze();
  });
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(8);
  row->addWidget(symbol_, 0, Qt::AlignTop);
  row->addWidget(text_, 1);
  row->addWidget(button_, 0, Qt::AlignTop);
}

QWidget* AnalysisStatusRow::control() const {
  return button_;
}

void AnalysisStatusRow::show(const QString& text, bool isFailure, bool offersAnalysis) {
  symbol_->setVisible(isFailure);
  text_->setText(text);
  button_->setVisible(offersAnalysis);
  // Told at once: whoever measures the card in this turn of the loop must not find the old height.
  updateGeometry();
}

}  // namespace quillmere
