#include "popup/PromptErrorBanner.h"

#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QVBoxLayout>

#include "controls/ActionButton.h"
#include "controls/Grounds.h"
#include "controls/Symbol.h"
#include "controls/Theme.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

constexpr int kSymbol = 18;

}  // namespace

PromptErrorBanner::PromptErrorBanner(QWidget* parent)
    : QWidget(parent), symbol_(new QLabel(this)), title_(new QLabel(this)), message_(new QLabel(this)) {
  title_->setWordWrap(true);
  title_->setFont(scaled(font(), 1, QFont::DemiBold));
  message_->setWordWrap(true);
  auto* dismiss = new ActionButton(ActionButton::Role::secondary, {}, localized("Dismiss"), this);
  connect(dismiss, &QPushButton::clicked, this, [this] { onDismiss(); });

  auto* texts = new QVBoxLayout;
  texts->setSpacing(2);
  texts->addWidget(title_);
  texts->addWidget(message_);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(12, 10, 10, 10);
  row->setSpacing(10);
  row->addWidget(symbol_, 0, Qt::AlignTop);
  row->addLayout(texts, 1);
  row->addWidget(dismiss, 0, Qt::AlignVCenter);
}

void PromptErrorBanner::show(const ScopedError& error) {
  const Theme theme(palette());
  symbol_->setPixmap(
      symbolPixmap(QStringLiteral("exclamationmark.triangle"), kSymbol, theme.warning, devicePixelRatioF()));
  title_->setText(error.title);
  message_->setText(error.message);
  // Told at once: the card is measured in this turn of the loop.
  updateGeometry();
}

void PromptErrorBanner::paintEvent(QPaintEvent*) {
  paintWarningGround(*this);
}

}  // namespace quillmere
