#include "inbox/TextExtractionProgress.h"

#include <QtWidgets/QHBoxLayout>

#include "controls/WorkIndicator.h"
#include "foundation/Localized.h"
#include "inbox/SymbolRow.h"

namespace quillmere {

TextExtractionProgress::TextExtractionProgress(QWidget* parent)
    : QWidget(parent), text_(new SymbolRow(Ink::secondary, SymbolRow::Wrapping::none, this)) {
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(8);
  row->addStretch();
  row->addWidget(new WorkIndicator(this));
  row->addWidget(text_);
  row->addStretch();
  hide();
}

void TextExtractionProgress::show(const std::optional<InboxPresentation::TextExtractionBatch>& batch) {
  const int left = batch ? batch->total - batch->completed : 0;
  if (left > 0) text_->show({}, localized("Reading text in %lld screenshots…", {left}));
  setVisible(left > 0);
}

}  // namespace quillmere
