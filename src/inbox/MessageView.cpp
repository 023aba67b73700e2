#include "inbox/MessageView.h"

#include <QtWidgets/QLabel>
#include <QtWidgets/QVBoxLayout>

#include "controls/ActionButton.h"
#include "controls/PlainText.h"
#include "controls/SymbolLabel.h"
#include "controls/ThemedLabel.h"

namespace quillmere {
namespace {

constexpr int kSymbol = 48;
constexpr int kTextWidth = 360;

}  // namespace

MessageView::MessageView(const Content& content, QWidget* parent) : QWidget(parent) {
  auto* symbol = new SymbolLabel(kSymbol, Ink::secondary, this, content.symbol);
  auto* title = new PlainLabel(content.title, this);
  title->setFont(scaled(font(), 1.35, QFont::DemiBold));
  title->setAlignment(Qt::AlignCenter);
  auto* text = new ThemedLabel(Ink::secondary, this, content.text);
  text->setWordWrap(true);
  text->setAlignment(Qt::AlignCenter);
  text->setFixedWidth(kTextWidth);
  // Aligned in its column, a label is no longer asked for its height at a width.
  text->setMinimumHeight(text->heightForWidth(kTextWidth));

  auto* column = new QVBoxLayout(this);
  column->setSpacing(8);
  column->addStretch();
  column->addWidget(symbol, 0, Qt::AlignHCenter);
  column->addWidget(title);
  column->addWidget(text, 0, Qt::AlignHCenter);
  if (!content.action.isEmpty()) {
    auto* action = new ActionButton(ActionButton::Role::primary, {}, content.action, this);
    action->setDefault(true);
    connect(action, &QPushButton::clicked, this, [this] { onAction(); });
    column->addSpacing(10);
    column->addWidget(action, 0, Qt::AlignHCenter);
  }
  column->addStretch();
}

}  // namespace quillmere
