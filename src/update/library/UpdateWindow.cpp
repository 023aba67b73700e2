#include "update/library/UpdateWindow.h"

#include <QtGui/QCloseEvent>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QVBoxLayout>

#include "controls/ActionButton.h"
#include "controls/SymbolLabel.h"
#include "controls/ThemedLabel.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

constexpr int kSymbol = 32;
constexpr int kButton = 84;
constexpr int kWidth = 380;
constexpr int kNotesHeight = 140;
/// Of a bar; a package may have more bytes than it can count.
constexpr int kSteps = 1000;

QString symbolOf(UpdateNotice::Kind kind) {
  switch (kind) {
    case UpdateNotice::Kind::upToDate:
      return QStringLiteral("checkmark.circle");
    case UpdateNotice::Kind::failed:
      return QStringLiteral("exclamationmark.triangle.fill");
    default:
      return QStringLiteral("arrow.down.circle");
  }
}

bool isReturn(const QEvent& event) {
  if (event.type() != QEvent::KeyPress) return false;
  const int key = static_cast<const QKeyEvent&>(event).key();
  return key == Qt::Key_Return || key == Qt::Key_Enter;
}

}  // namespace

UpdateWindow::UpdateWindow(UpdateNotice notice, std::function<void(UpdateWindows::Answer)> answered)
    : CardDialog(notice.heading, nullptr), notice_(std::move(notice)), answered_(std::move(answered)) {
  layOut();
  if (safe_) safe_->setFocus();
}

void UpdateWindow::layOut() {
  auto* texts = new QVBoxLayout;
  texts->setSpacing(6);
  auto* heading = new ThemedLabel(Ink::text, this, notice_.heading);
  heading->setTextSize(1.12, QFont::DemiBold);
  auto* message = new ThemedLabel(Ink::text, this, notice_.message);
  for (ThemedLabel* text : {heading, message}) {
    text->setWordWrap(true);
    text->setFixedWidth(kWidth);
    texts->addWidget(text);
  }
  message->setVisible(!notice_.message.isEmpty());
  if (!notice_.notes.isEmpty()) {
    auto* notes = new QPlainTextEdit(notice_.notes, this);
    notes->setReadOnly(true);
    notes->setTabChangesFocus(true);
    notes->setAccessibleName(localized("What’s New"));
    notes->setFixedSize(kWidth, kNotesHeight);
    texts->addWidget(notes);
  }
  if (notice_.isWork()) {
    progress_ = new QProgressBar(this);
    progress_->setRange(0, 0);  // under way, nobody knows how far
    progress_->setTextVisible(false);
    progress_->setAccessibleName(notice_.heading);
    texts->addWidget(progress_);
  }
  texts->addStretch();
  auto* row = new QHBoxLayout;
  row->setSpacing(14);
  const Ink ink = notice_.kind == UpdateNotice::Kind::failed ? Ink::warning : Ink::secondary;
  row->addWidget(new SymbolLabel(kSymbol, ink, this, symbolOf(notice_.kind)), 0, Qt::AlignTop);
  row->addLayout(texts, 1);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(kMargins);
  column->setSpacing(kPadding);
  column->addLayout(row);
  addButtons(*column);
  column->setSizeConstraint(QLayout::SetFixedSize);
}

void UpdateWindow::addButtons(QBoxLayout& column) {
  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(8);
  buttons->addStretch();
  const auto add = [&](ActionButton::Role role, const QString& text) -> ActionButton* {
    if (text.isEmpty()) return nullptr;
    auto* button = new ActionButton(role, {}, text, this);
    button->setMinimumWidth(kButton);
    buttons->addWidget(button);
    return button;
  };
  action_ = add(ActionButton::Role::secondary, notice_.action);
  safe_ = add(ActionButton::Role::primary, notice_.safe);
  if (action_) action_->installEventFilter(this);
  if (action_) connect(action_, &QPushButton::clicked, this, &QDialog::accept);
  if (safe_) connect(safe_, &QPushButton::clicked, this, &QDialog::reject);
  column.addLayout(buttons);
}

void UpdateWindow::setProgress(qint64 done, qint64 whole) {
  if (!progress_ || whole <= 0) return;
  progress_->setRange(0, kSteps);
  progress_->setValue(static_cast<int>(std::clamp<qint64>(done, 0, whole) * kSteps / whole));
}

void UpdateWindow::answer(UpdateWindows::Answer answer) {
  if (const auto answered = std::exchange(answered_, nullptr)) answered(answer);
}

void UpdateWindow::reject() {
  if (safe_) answer(UpdateWindows::Answer::safe);
}

void UpdateWindow::accept() {
  answer(UpdateWindows::Answer::action);
}

/// Return is the safe answer, also where the desktop's theme has it press the button with the focus.
bool UpdateWindow::eventFilter(QObject* watched, QEvent* event) {
  if (watched != action_ || !isReturn(*event)) return CardDialog::eventFilter(watched, event);
  reject();
  return true;
}

void UpdateWindow::keyPressEvent(QKeyEvent* event) {
  isReturn(*event) ? reject() : CardDialog::keyPressEvent(event);
}

void UpdateWindow::closeEvent(QCloseEvent* event) {
  event->ignore();  // whoever is told the answer closes it
  reject();
}

}  // namespace quillmere
