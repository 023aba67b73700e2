#include "inbox/InboxBanner.h"

#include <QtWidgets/QLabel>
#include <QtWidgets/QVBoxLayout>

#include "controls/ActionButton.h"
#include "controls/Grounds.h"
#include "controls/Symbol.h"
#include "controls/Theme.h"

namespace quillmere {

InboxBanner::InboxBanner(QWidget* parent)
    : QWidget(parent),
      symbol_(new QLabel(this)),
      message_(new QLabel(this)),
      action_(new ActionButton(ActionButton::Role::secondary, {}, {}, this)) {
  message_->setWordWrap(true);
  connect(action_, &QPushButton::clicked, this, [this] { onAction(); });
  auto* row = new QHBoxLayout;
  row->setSpacing(10);
  row->addWidget(symbol_, 0, Qt::AlignTop);
  row->addWidget(message_, 1);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(12, 10, 12, 10);
  column->setSpacing(8);
  column->addLayout(row);
  column->addWidget(action_, 0, Qt::AlignRight);
}

void InboxBanner::show(const QString& symbol, const QString& message, const QString& action) {
  constexpr int kSymbol = 18;
  symbol_->setPixmap(symbolPixmap(symbol, kSymbol, Theme(palette()).warning, devicePixelRatioF()));
  message_->setText(message);
  action_->setText(action);
  setVisible(true);
}

void InboxBanner::paintEvent(QPaintEvent*) {
  paintWarningGround(*this);
}

}  // namespace quillmere
