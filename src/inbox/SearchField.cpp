#include "inbox/SearchField.h"

#include <QtGui/QAccessible>
#include <QtGui/QAction>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QToolButton>

#include "controls/AccessibleRole.h"
#include "controls/Metrics.h"
#include "controls/Symbol.h"
#include "controls/Theme.h"
#include "foundation/Localized.h"

namespace quillmere {

SearchField::SearchField(QWidget* parent)
    : QLineEdit(parent),
      glass_(addAction(QIcon(), QLineEdit::LeadingPosition)),
      clear_(addAction(QIcon(), QLineEdit::TrailingPosition)) {
  setFixedHeight(Metrics::kControlHeight);
  setPlaceholderText(localized("Search"));
  setAccessibleName(localized("Search"));
  clear_->setText(localized("Clear Search"));
  clear_->setVisible(false);
  connect(clear_, &QAction::triggered, this, &QLineEdit::clear);
  connect(this, &QLineEdit::textChanged, this, [this](const QString& text) { clear_->setVisible(!text.isEmpty()); });
  // It does nothing and says nothing that the field does not say.
  for (QToolButton* button : findChildren<QToolButton*>()) {
    if (button->defaultAction() == glass_) setAccessibleRole(*button, QAccessible::NoRole);
  }
  showSymbols();
}

void SearchField::showSymbols() {
  const QColor color = Theme(palette()).secondaryText;
  const qreal ratio = devicePixelRatioF();
  glass_->setIcon(symbolPixmap(QStringLiteral("magnifyingglass"), Metrics::kSmallSymbol, color, ratio));
  clear_->setIcon(symbolPixmap(QStringLiteral("xmark"), Metrics::kSmallSymbol, color, ratio));
}

/// Keys that edit the text are not commands on screenshots: a word that is deleted must not ask about a file.
bool SearchField::event(QEvent* event) {
  if (event->type() != QEvent::ShortcutOverride) return QLineEdit::event(event);
  const auto* key = static_cast<QKeyEvent*>(event);
  const bool isWindows =
      key->modifiers() == Qt::ControlModifier &&
      (key->key() == Qt::Key_F || key->key() == Qt::Key_W || key->key() == Qt::Key_Q || key->key() == Qt::Key_Comma);
  if (isWindows || key->key() == Qt::Key_Escape) return QLineEdit::event(event);
  event->accept();
  return true;
}

void SearchField::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Down:
      onLeave();
      return;
    default:
      QLineEdit::keyPressEvent(event);
  }
}

void SearchField::focusInEvent(QFocusEvent* event) {
  QLineEdit::focusInEvent(event);
  onFocus();
}

void SearchField::changeEvent(QEvent* event) {
  QLineEdit::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) showSymbols();
}

}  // namespace quillmere
