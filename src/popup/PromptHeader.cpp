#include "popup/PromptHeader.h"

#include <QtWidgets/QHBoxLayout>
#include <algorithm>

#include "controls/AccessibleButton.h"
#include "controls/AccessibleRole.h"
#include "controls/ActionButton.h"
#include "controls/ThemedLabel.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

/// The width of a text whose digits all are as wide as the widest: a count that goes down must not make it tremble.
int widthWithEvenDigits(const QString& text, const QFontMetrics& metrics) {
  int widest = 0;
  for (char digit = '0'; digit <= '9'; ++digit) {
    widest = std::max(widest, metrics.horizontalAdvance(QLatin1Char(digit)));
  }
  int width = 0;
  for (const QChar character : text) width += character.isDigit() ? widest : metrics.horizontalAdvance(character);
  return width;
}

}  // namespace

PromptHeader::PromptHeader(QWidget* parent)
    : QWidget(parent),
      queueCount_(new ThemedLabel(Ink::secondary, this)),
      closeButton_(new ActionButton(ActionButton::Role::icon, QStringLiteral("xmark"), {}, this)) {
  auto* title = new ThemedLabel(Ink::text, this, localized("Screenshot Captured"));
  title->setTextSize(1.1, QFont::DemiBold);
  setAccessibleRole(*title, QAccessible::Heading);
  title->setMinimumWidth(1);  // it gives way where letters are large, never the button
  // Screen readers go through a widget's children in their order.
  title->lower();
  closeButton_->raise();
  closeButton_->setAccessibleName(localized("Dismiss Screenshot Popup"));
  closeButton_->setToolTip(localized("Dismiss. The screenshot stays in the Inbox."));
  setAccessibleKey(*closeButton_, Qt::Key_Escape);
  connect(closeButton_, &QPushButton::clicked, this, [this] { onClose(); });

  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(8);
  row->addWidget(title);
  row->addWidget(queueCount_);
  row->addStretch();
  row->addWidget(closeButton_);
}

void PromptHeader::show(int queuedCount, bool isDiskSlow) {
  queueCount_->setVisible(queuedCount > 0 || isDiskSlow);
  if (isDiskSlow) {
    const QString text = localized("Waiting for the disk…");
    queueCount_->setText(text);
    queueCount_->setMinimumWidth(0);
    queueCount_->setAccessibleName(text);
    return;
  }
  const QString text = localized("%lld more", {queuedCount});
  queueCount_->setText(text);
  queueCount_->setMinimumWidth(widthWithEvenDigits(text, queueCount_->fontMetrics()));
  queueCount_->setAccessibleName(localized("%lld more screenshots waiting", {queuedCount}));
}

QWidget* PromptHeader::closeButton() const {
  return closeButton_;
}

}  // namespace quillmere
