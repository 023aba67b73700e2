#include "popup/PromptErrorBanner.h"

#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QVBoxLayout>

#include "controls/AccessibleRole.h"
#include "controls/ActionButton.h"
#include "controls/Grounds.h"
#include "controls/SymbolLabel.h"
#include "controls/ThemedLabel.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

constexpr int kSymbol = 18;

}  // namespace

PromptErrorBanner::PromptErrorBanner(QWidget* parent)
    : QWidget(parent),
      title_(new ThemedLabel(Ink::text, this)),
      message_(new ThemedLabel(Ink::text, this)),
      dismiss_(new ActionButton(ActionButton::Role::secondary, {}, localized("Dismiss"), this)) {
  setAccessibleRole(*this, QAccessible::AlertMessage);
  title_->setWordWrap(true);
  title_->setTextSize(1, QFont::DemiBold);
  message_->setWordWrap(true);
  auto* symbol = new SymbolLabel(kSymbol, Ink::warning, this, QStringLiteral("exclamationmark.triangle.fill"));
  connect(dismiss_, &QPushButton::clicked, this, [this] { onDismiss(); });

  auto* texts = new QVBoxLayout;
  texts->setSpacing(2);
  texts->addWidget(title_);
  texts->addWidget(message_);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(12, 10, 10, 10);
  row->setSpacing(10);
  row->addWidget(symbol, 0, Qt::AlignTop);
  row->addLayout(texts, 1);
  row->addWidget(dismiss_, 0, Qt::AlignVCenter);
}

void PromptErrorBanner::show(const ScopedError& error) {
  title_->setText(error.title);
  message_->setText(error.message);
  setAccessibleName(error.title);
  setAccessibleDescription(error.message);
  const bool isAnother = std::exchange(shown_, error.id) != error.id;
  if (isAnother && isVisible()) alert();
  // Told at once: the card is measured in this turn of the loop.
  updateGeometry();
}

void PromptErrorBanner::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  alert();
}

void PromptErrorBanner::alert() {
  QAccessibleEvent alert(this, QAccessible::Alert);
  QAccessible::updateAccessibility(&alert);
}

QWidget* PromptErrorBanner::control() const {
  return dismiss_;
}

void PromptErrorBanner::paintEvent(QPaintEvent*) {
  paintWarningGround(*this);
}

}  // namespace quillmere
