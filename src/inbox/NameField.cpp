#include "inbox/NameField.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QPainter>

#include "controls/Grounds.h"
#include "controls/Theme.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

/// What Qt keeps beside the text by itself.
constexpr int kOwnMargin = 2;

}  // namespace

NameField::NameField(InboxPresentation& presentation, const InboxPresentation::RenameSession& session, QWidget* parent)
    : QLineEdit(session.text, parent), presentation_(presentation), session_(session) {
  setFrame(false);
  setTextMargins(kBeside - kOwnMargin, 0, kBeside - kOwnMargin, 0);
  // A name reads from the left in every language.
  setLayoutDirection(Qt::LeftToRight);
  setAccessibleName(localized("Name"));
  setPlaceholderText(localized("Name"));
  setAccessibleDescription(localized("Return renames the screenshot’s file. Escape keeps its current name."));
  letFieldShow(*this);
  selectAll();
  connect(this, &QLineEdit::textEdited, this, [this](const QString& text) {
    if (isOpen()) presentation_.setRenameText(text);
  });
}

/// Another one may have begun before this field heard that its own is over.
bool NameField::isOpen() const {
  const auto& session = *presentation_.renameSession;
  return session && session->token == session_.token;
}

void NameField::cancel() {
  if (isOpen()) presentation_.cancelRename();
}

bool NameField::event(QEvent* event) {
  if (event->type() != QEvent::ShortcutOverride) return QLineEdit::event(event);
  event->accept();
  return true;
}

void NameField::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter: {
      InboxPresentation::RenameSession session = session_;
      session.text = text();
      presentation_.commitRename(session).detach();
      break;
    }
    case Qt::Key_Escape:
      cancel();
      break;
    default:
      QLineEdit::keyPressEvent(event);
  }
  // What means nothing here must not move the list around it.
  event->accept();
}

void NameField::focusOutEvent(QFocusEvent* event) {
  QLineEdit::focusOutEvent(event);
  // Its own menu gives it back.
  if (event->reason() != Qt::PopupFocusReason) cancel();
}

void NameField::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) letFieldShow(*this);
  QLineEdit::changeEvent(event);
}

void NameField::paintEvent(QPaintEvent* event) {
  {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintField(painter, rect(), Theme(palette()), hasFocus());
  }
  QLineEdit::paintEvent(event);
}

}  // namespace quillmere
