#include "inbox/MessageView.h"

#include <QtWidgets/QLabel>
#include <QtWidgets/QVBoxLayout>

#include "controls/ActionButton.h"
#include "controls/Grounds.h"
#include "controls/Symbol.h"
#include "controls/Theme.h"

namespace quillmere {
namespace {

constexpr int kSymbol = 48;
constexpr int kTextWidth = 360;

}  // namespace

MessageView::MessageView(const Content& content, QWidget* parent) : QWidget(parent) {
  const Theme theme(palette());
  auto* symbol = new QLabel(this);
  symbol->setPixmap(symbolPixmap(content.symbol, kSymbol, theme.secondaryText, devicePixelRatioF()));
  symbol->setAlignment(Qt::AlignCenter);
  auto* title = new QLabel(content.title, this);
  title->setFont(scaled(font(), 1.35, QFont::DemiBold));
  title->setAlignment(Qt::AlignCenter);
  auto* text = new QLabel(content.text, this);
  text->setWordWrap(true);
  text->setAlignment(Qt::AlignCenter);
  text->setFixedWidth(kTextWidth);
  setTextColor(*text, theme.secondaryText);
  // Aligned in its column, a label is no longer asked for its height at a width.
  text->setMinimumHeight(text->heightForWidth(kTextWidth));

  auto* column = new QVBoxLayout(this);
  column->setSpacing(8);
  column->addStretch();
  column->addWidget(symbol);
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
