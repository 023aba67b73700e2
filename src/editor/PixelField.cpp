#include "editor/PixelField.h"

#include <QtCore/QLocale>
#include <QtGui/QKeyEvent>

#include "controls/Metrics.h"

namespace quillmere {
namespace {

constexpr int kLongStep = 10;

}  // namespace

PixelField::PixelField(const QString& name, QWidget* parent) : QLineEdit(parent) {
  setAccessibleName(name);
  setInputMethodHints(Qt::ImhDigitsOnly);
}

std::optional<qint64> PixelField::number() const {
  bool isNumber = false;
  qint64 number = text().trimmed().toLongLong(&isNumber);
  // In the digits of the person's language too.
  if (!isNumber) number = QLocale().toLongLong(text().trimmed(), &isNumber);
  return isNumber ? std::optional(number) : std::nullopt;
}

void PixelField::setNumber(std::optional<qint64> number) {
  const QString shown = number ? QString::number(*number) : QString();
  // What is the same already keeps its cursor and what can be undone in it.
  if (shown != text()) setText(shown);
}

QSize PixelField::sizeHint() const {
  const int width = fontMetrics().horizontalAdvance(QStringLiteral("000000")) + 2 * Metrics::kFieldPadding;
  return {width, QLineEdit::sizeHint().height()};
}

void PixelField::keyPressEvent(QKeyEvent* event) {
  const int step = event->modifiers().testFlag(Qt::ShiftModifier) ? kLongStep : 1;
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      if (onCommit) onCommit(Commit::byReturn);
      // It is no answer to the window around it.
      event->accept();
      return;
    case Qt::Key_Up:
      return takeArrow(event->key(), step);
    case Qt::Key_Down:
      return takeArrow(event->key(), -step);
    default:
      QLineEdit::keyPressEvent(event);
  }
}

void PixelField::takeArrow(int key, int by) {
  const bool isFirst = arrows_.empty();
  arrows_.insert(key);
  if (isFirst && onHold) onHold(true);
  if (onStep) onStep(by);
}

void PixelField::keyReleaseEvent(QKeyEvent* event) {
  QLineEdit::keyReleaseEvent(event);
  if (event->isAutoRepeat() || arrows_.erase(event->key()) == 0) return;
  if (arrows_.empty()) letGo();
}

void PixelField::letGo() {
  arrows_.clear();
  if (onHold) onHold(false);
}

void PixelField::focusOutEvent(QFocusEvent* event) {
  if (!arrows_.empty()) letGo();
  QLineEdit::focusOutEvent(event);
  // Its own menu gives the keyboard back.
  if (event->reason() != Qt::PopupFocusReason && onCommit) onCommit(Commit::byLeaving);
}

}  // namespace quillmere
