#include "inbox/RecognizedTextView.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QTextBlock>
#include <QtWidgets/QMenu>
#include <algorithm>
#include <vector>

#include "controls/Theme.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

/// What is no text would be drawn as boxes or end the text for other programs.
QString shown(QString text) {
  text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
  // Each would begin a line of its own.
  for (const QChar separator : {QChar(QChar::ParagraphSeparator), QChar(u'\r'), QChar(0xfdd0), QChar(0xfdd1)}) {
    text.replace(separator, QLatin1Char('\n'));
  }
  text.removeIf([](QChar character) {
    return character.category() == QChar::Other_Control && character != QLatin1Char('\n') &&
           character != QLatin1Char('\t');
  });
  return text;
}

/// A line of which each drawing takes as long as it is. Longer ones are shown in parts.
constexpr qsizetype kLongestLine = 4000;
/// The state of a block that goes on with the line of the one before it.
constexpr int kContinues = 1;

/// Where the first part of a line ends.
qsizetype endOfPart(const QString& line, qsizetype start) {
  if (line.size() - start <= kLongestLine) return line.size();
  const qsizetype end = start + kLongestLine;
  const qsizetype space = line.lastIndexOf(QLatin1Char(' '), end - 1);
  if (space > start) return space + 1;
  return line[end].isLowSurrogate() ? end - 1 : end;
}

}  // namespace

RecognizedTextView::RecognizedTextView(QWidget* parent) : QPlainTextEdit(parent) {
  setReadOnly(true);
  setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  setUndoRedoEnabled(false);
  setTabChangesFocus(true);
  setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setAccessibleName(localized("Recognized Text"));
  document()->setDocumentMargin(6);
  followTheme();
}

void RecognizedTextView::setText(const QString& text) {
  if (text == text_) return;
  text_ = text;
  QStringList parts;
  std::vector<int> states;
  const QStringList lines = shown(text).split(QLatin1Char('\n'));
  for (const QString& line : lines) {
    qsizetype start = 0;
    do {
      const qsizetype end = endOfPart(line, start);
      states.push_back(start > 0 ? kContinues : 0);
      parts.push_back(line.mid(start, end - start));
      start = end;
    } while (start < line.size());
  }
  setPlainText(parts.join(QLatin1Char('\n')));
  QTextBlock block = document()->begin();
  for (size_t i = 0; i < states.size() && block.isValid(); ++i, block = block.next()) block.setUserState(states[i]);
}

/// As it was read, whatever it was shown in.
QString RecognizedTextView::selectedText() const {
  const QTextCursor cursor = textCursor();
  QString selected;
  for (QTextBlock block = document()->findBlock(cursor.selectionStart());
       block.isValid() && block.position() <= cursor.selectionEnd(); block = block.next()) {
    if (block.position() > cursor.selectionStart() && block.userState() != kContinues) selected += QLatin1Char('\n');
    const int from = std::max(0, cursor.selectionStart() - block.position());
    selected += block.text().mid(from, cursor.selectionEnd() - block.position() - from);
  }
  return selected;
}

void RecognizedTextView::copySelection() {
  const QString selected = selectedText();
  if (!selected.isEmpty() && onCopy) onCopy(selected);
}

bool RecognizedTextView::event(QEvent* event) {
  // Else the window's own Copy would take the key, and copy the picture.
  if (event->type() == QEvent::ShortcutOverride && static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy)) {
    event->accept();
    return true;
  }
  return QPlainTextEdit::event(event);
}

void RecognizedTextView::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy)) {
    copySelection();
    return;
  }
  const bool isOfTheSheet =
      event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Escape;
  isOfTheSheet ? event->ignore() : QPlainTextEdit::keyPressEvent(event);
}

void RecognizedTextView::contextMenuEvent(QContextMenuEvent* event) {
  auto* menu = new QMenu(this);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  QAction* copying = menu->addAction(localized("Copy"), this, [this] { copySelection(); });
  copying->setEnabled(textCursor().hasSelection());
  menu->addAction(localized("Select All"), this, &QPlainTextEdit::selectAll);
  menu->popup(event->globalPos());
}

void RecognizedTextView::followTheme() {
  const Theme theme(palette());
  QPalette own = palette();
  // Setting a palette is itself a change of it.
  if (own.color(QPalette::Base) == theme.field && own.color(QPalette::Text) == theme.text) return;
  own.setColor(QPalette::Base, theme.field);
  own.setColor(QPalette::Text, theme.text);
  setPalette(own);
}

void RecognizedTextView::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) followTheme();
  QPlainTextEdit::changeEvent(event);
}

}  // namespace quillmere
