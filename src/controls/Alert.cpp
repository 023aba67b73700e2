#include "controls/Alert.h"

#include <QtGui/QAccessible>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QVBoxLayout>

#include "controls/AccessibleRole.h"
#include "controls/ActionButton.h"
#include "controls/ModalDialog.h"
#include "controls/SymbolLabel.h"
#include "controls/Theme.h"
#include "controls/ThemedLabel.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

constexpr int kSymbol = 32;
constexpr int kButton = 84;
/// A line is read with ease up to about so many letters, and a card of fewer looks lost.
constexpr int kMostLetters = 60;
constexpr int kFewestLetters = 36;

bool isReturn(const QEvent& event) {
  if (event.type() != QEvent::KeyPress) return false;
  const int key = static_cast<const QKeyEvent&>(event).key();
  return key == Qt::Key_Return || key == Qt::Key_Enter;
}

/// As wide as the texts like to be, within what can be read.
int widthFor(const AlertContent& content, const QFont& font, const QFont& headingFont) {
  const int letter = QFontMetrics(font).averageCharWidth();
  const int widest = std::max(QFontMetrics(headingFont).horizontalAdvance(content.heading),
                              QFontMetrics(font).horizontalAdvance(content.message));
  return std::clamp(widest, kFewestLetters * letter, kMostLetters * letter);
}

}  // namespace

Alert::Alert(AlertContent content, QWidget* parent)
    : CardDialog(content.heading, parent), content_(std::move(content)) {
  setAccessibleRole(*this, QAccessible::AlertMessage);
  layOut();
  safe_->setFocus();
}

void Alert::layOut() {
  auto* heading = new ThemedLabel(Ink::text, this, content_.heading);
  heading->setTextSize(1.12, QFont::DemiBold);
  auto* message = new ThemedLabel(Ink::text, this, breakable(content_.message));
  message->setFont(fileNameFont({}));
  message->setAccessibleName(content_.message);
  const int width = widthFor(content_, font(), heading->font());
  auto* texts = new QVBoxLayout;
  texts->setSpacing(6);
  for (QLabel* text : {static_cast<QLabel*>(heading), static_cast<QLabel*>(message)}) {
    text->setWordWrap(true);
    text->setFixedWidth(width);
    texts->addWidget(text);
  }
  message->setVisible(!content_.message.isEmpty());
  makeButtons();  // after the texts, as they are read out
  texts->addStretch();
  auto* row = new QHBoxLayout;
  row->setSpacing(14);
  row->addWidget(new SymbolLabel(kSymbol, content_.ink, this, content_.symbol), 0, Qt::AlignTop);
  row->addLayout(texts, 1);
  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(8);
  buttons->addStretch();
  for (ActionButton* button : {action_, safe_}) {
    if (!button) continue;
    button->setMinimumWidth(kButton);
    buttons->addWidget(button);
  }
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(kMargins);
  column->setSpacing(kPadding);
  column->addLayout(row);
  column->addLayout(buttons);
  column->setSizeConstraint(QLayout::SetFixedSize);
}

void Alert::makeButtons() {
  if (!content_.action.isEmpty()) {
    const auto role = content_.isDestructive ? ActionButton::Role::destructive : ActionButton::Role::secondary;
    action_ = new ActionButton(role, {}, content_.action, this);
    action_->installEventFilter(this);
    connect(action_, &QPushButton::clicked, this, &QDialog::accept);
  }
  safe_ = new ActionButton(ActionButton::Role::primary, {}, content_.safe, this);
  connect(safe_, &QPushButton::clicked, this, &QDialog::reject);
}

bool Alert::ask() {
  return runModal(*this) == QDialog::Accepted;
}

bool Alert::eventFilter(QObject* watched, QEvent* event) {
  if (watched != action_ || !isReturn(*event)) return CardDialog::eventFilter(watched, event);
  reject();
  return true;
}

void Alert::keyPressEvent(QKeyEvent* event) {
  isReturn(*event) ? reject() : CardDialog::keyPressEvent(event);
}

void Alert::showEvent(QShowEvent* event) {
  CardDialog::showEvent(event);
  QAccessibleEvent told(this, QAccessible::Alert);
  QAccessible::updateAccessibility(&told);
}

void showAlert(QWidget* parent, const QString& title, const QString& message) {
  QWidget* above = parent && parent->isVisible() ? parent : nullptr;
  Alert({.symbol = QStringLiteral("exclamationmark.triangle.fill"),
         .ink = Ink::warning,
         .heading = title,
         .message = message,
         .safe = localized("OK"),
         .action = {}},
        above)
      .ask();
}

}  // namespace quillmere
