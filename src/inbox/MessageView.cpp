#include "inbox/MessageView.h"

#include <QtWidgets/QLabel>
#include <QtWidgets/QVBoxLayout>
#include <algorithm>

#include "controls/ActionButton.h"
#include "controls/PlainText.h"
#include "controls/SymbolLabel.h"
#include "controls/ThemedLabel.h"

namespace quillmere {
namespace {

constexpr int kSymbol = 48;
constexpr int kTextWidth = 360;

}  // namespace

MessageView::MessageView(const Content& content, QWidget* parent)
    : QWidget(parent),
      symbol_(new SymbolLabel(kSymbol, Ink::secondary, this, content.symbol)),
      title_(new PlainLabel(this)),
      text_(new ThemedLabel(Ink::secondary, this)) {
  title_->setFont(scaled(font(), 1.35, QFont::DemiBold));
  for (QLabel* label : {title_, text_}) {
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
  }
  // Its texts wrap at whatever width there is.
  setMinimumWidth(1);
  auto* column = new QVBoxLayout(this);
  column->setSpacing(8);
  column->addStretch();
  column->addWidget(symbol_, 0, Qt::AlignHCenter);
  column->addWidget(title_, 0, Qt::AlignHCenter);
  column->addWidget(text_, 0, Qt::AlignHCenter);
  if (!content.action.isEmpty()) {
    auto* action = new ActionButton(ActionButton::Role::primary, {}, content.action, this);
    action->setDefault(true);
    connect(action, &QPushButton::clicked, this, [this] { onAction(); });
    column->addSpacing(10);
    column->addWidget(action, 0, Qt::AlignHCenter);
  }
  column->addStretch();
  say(content);
}

void MessageView::say(const Content& content) {
  symbol_->setSymbol(content.symbol);
  title_->setText(content.title);
  text_->setText(content.text);
  fitText();
}

void MessageView::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  fitText();
}

/// Aligned in their column, labels are no longer asked for their height at a width.
void MessageView::fitText() {
  const QMargins margins = layout()->contentsMargins();
  const int width = std::min(kTextWidth, std::max(1, this->width() - margins.left() - margins.right()));
  for (QLabel* label : {title_, text_}) {
    label->setFixedWidth(width);
    // A label answers with its minimum at least, which was for another width.
    label->setMinimumHeight(0);
    label->setFixedHeight(label->heightForWidth(width));
  }
}

}  // namespace quillmere
