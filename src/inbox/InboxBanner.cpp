#include "inbox/InboxBanner.h"

#include <QtWidgets/QLabel>
#include <QtWidgets/QVBoxLayout>

#include "controls/ActionButton.h"
#include "controls/Grounds.h"
#include "controls/PlainText.h"
#include "controls/SymbolLabel.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

constexpr int kSymbol = 18;

}  // namespace

InboxBanner::InboxBanner(QWidget* parent)
    : QWidget(parent),
      symbol_(new SymbolLabel(kSymbol, Ink::warning, this)),
      message_(new PlainLabel(this)),
      help_(new ActionButton(ActionButton::Role::icon, QStringLiteral("questionmark.circle"), {}, this)),
      action_(new ActionButton(ActionButton::Role::secondary, {}, {}, this)),
      dismiss_(new ActionButton(ActionButton::Role::icon, QStringLiteral("xmark"), {}, this)) {
  message_->setWordWrap(true);
  connect(action_, &QPushButton::clicked, this, [this] { onAction(); });
  help_->setAccessibleName(localized("Help"));
  help_->setToolTip(localized("Show help for this"));
  connect(help_, &QPushButton::clicked, this, [this] { onHelp(); });
  dismiss_->setAccessibleName(localized("Dismiss"));
  dismiss_->setToolTip(localized("Hide this notice"));
  connect(dismiss_, &QPushButton::clicked, this, [this] { onDismiss(); });
  auto* row = new QHBoxLayout;
  row->setSpacing(10);
  row->addWidget(symbol_, 0, Qt::AlignTop);
  row->addWidget(message_, 1);
  row->addWidget(dismiss_, 0, Qt::AlignTop);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(12, 10, 12, 10);
  column->setSpacing(8);
  column->addLayout(row);
  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(8);
  buttons->addStretch();
  buttons->addWidget(help_);
  buttons->addWidget(action_);
  column->addLayout(buttons);
}

void InboxBanner::show(const QString& symbol, const QString& message, const QString& action, Offers offers) {
  symbol_->setSymbol(symbol);
  message_->setText(message);
  action_->setText(action);
  help_->setVisible(offers.help);
  dismiss_->setVisible(offers.dismissal);
  // In line with the cross beside it, whose button is larger.
  const int top = offers.dismissal ? (dismiss_->sizeHint().height() - kSymbol) / 2 : 0;
  symbol_->setContentsMargins(0, top, 0, 0);
  message_->setContentsMargins(0, top, 0, 0);
  setVisible(true);
}

void InboxBanner::paintEvent(QPaintEvent*) {
  paintWarningGround(*this);
}

}  // namespace quillmere
