#include "controls/AnalysisStatusRow.h"

#include <QtGui/QFocusEvent>
#include <QtWidgets/QHBoxLayout>

#include "controls/ActionButton.h"
#include "controls/ElidedLines.h"
#include "controls/SymbolLabel.h"
#include "controls/ThemedLabel.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

constexpr int kSymbol = 16;
constexpr int kSpacing = 8;

/// Reached by Tab it is selected as a whole, which shows that it is there and what would be copied.
class Description final : public ThemedLabel {
 public:
  using ThemedLabel::ThemedLabel;

 protected:
  void focusInEvent(QFocusEvent* event) override {
    ThemedLabel::focusInEvent(event);
    const bool isByTab = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    if (isByTab) setSelection(0, static_cast<int>(text().size()));
  }
  void focusOutEvent(QFocusEvent* event) override {
    ThemedLabel::focusOutEvent(event);
    const bool comesBack = event->reason() == Qt::PopupFocusReason || event->reason() == Qt::ActiveWindowFocusReason;
    if (!comesBack && hasSelectedText()) setSelection(0, 0);
  }
};

}  // namespace

AnalysisStatusRow::AnalysisStatusRow(QWidget* parent)
    : QWidget(parent),
      symbol_(new SymbolLabel(kSymbol, Ink::secondary, this, QStringLiteral("exclamationmark.bubble"))),
      text_(new Description(Ink::secondary, this)),
      button_(new ActionButton(ActionButton::Role::icon, QStringLiteral("arrow.clockwise"), {}, this)),
      more_(new ActionButton(ActionButton::Role::secondary, {}, localized("More"), this)) {
  text_->setObjectName(QStringLiteral("analysisStatus"));
  text_->setWordWrap(true);
  button_->setAccessibleName(localized("Analyze Again"));
  button_->setToolTip(localized("Analyze Again"));
  connect(button_, &QPushButton::clicked, this, [this] {
    if (onAnalyze) onAnalyze();
  });
  more_->setAccessibleDescription(localized("Shows the whole description"));
  connect(more_, &QPushButton::clicked, this, [this] {
    // The button goes, and the keyboard stays with what it was about.
    if (more_->hasFocus()) text_->setFocus(Qt::OtherFocusReason);
    if (onMore) onMore();
  });
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(kSpacing);
  row->addWidget(symbol_, 0, Qt::AlignTop);
  row->addWidget(text_, 1);
  row->addWidget(button_, 0, Qt::AlignTop);
  row->addWidget(more_, 0, Qt::AlignBottom);
}

QWidget& AnalysisStatusRow::text() const {
  return *text_;
}

QWidget& AnalysisStatusRow::button() const {
  return *button_;
}

QWidget& AnalysisStatusRow::moreButton() const {
  return *more_;
}

void AnalysisStatusRow::setLimit(int lines, int width) {
  limit_ = lines;
  width_ = width;
}

QString AnalysisStatusRow::shownText(const Content& content) {
  if (limit_ == 0 || content.isWhole || !content.isDescription) return content.text;
  const bool fits = elidedLines(content.text, text_->font(), width_, limit_) == content.text;
  const int beside = width_ - more_->sizeHint().width() - kSpacing;
  return fits ? content.text : elidedLines(content.text, text_->font(), beside, limit_);
}

void AnalysisStatusRow::show(const Content& content) {
  symbol_->setVisible(content.isFailure);
  const QString shown = shownText(content);
  text_->setText(shown);
  text_->setAccessibleName(content.text);
  more_->setVisible(shown != content.text);
  const Qt::TextInteractionFlags selectable = Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard;
  const auto interaction = content.isDescription ? selectable : Qt::TextInteractionFlags(Qt::NoTextInteraction);
  if (text_->textInteractionFlags() != interaction) {
    text_->setTextInteractionFlags(interaction);
    text_->setFocusPolicy(content.isDescription ? Qt::StrongFocus : Qt::NoFocus);
  }
  button_->setVisible(content.offersAnalysis);
  // Told at once: whoever measures the card in this turn of the loop must not find the old height.
  updateGeometry();
}

}  // namespace quillmere
