#include "popup/PromptFilenameField.h"

#include <QtCore/QEvent>
#include <QtGui/QPainter>

#include "controls/Grounds.h"
#include "controls/Metrics.h"
#include "controls/Theme.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

constexpr int kPadding = 8;

}  // namespace

PromptFilenameField::PromptFilenameField(QWidget* parent) : QLineEdit(parent) {
  setFrame(false);
  setTextMargins(kPadding, 0, kPadding, 0);
  setFixedHeight(Metrics::kControlHeight);
  setFont(fileNameFont(font()));
  setFocusPolicy(Qt::StrongFocus);
  setAccessibleName(localized("Filename"));
  setNote(std::nullopt);
  setToolTip(localized("Rename this screenshot. Keep and Temporary save it with this name."));
  letFieldShow(*this);
}

void PromptFilenameField::setNote(const std::optional<QString>& note) {
  const QString hint =
      localized("Return saves this screenshot as Temporary with this name. Escape puts back the name it started with.");
  setAccessibleDescription(note.value_or(hint));
}

QSize PromptFilenameField::sizeHint() const {
  return {QLineEdit::sizeHint().width(), Metrics::kControlHeight};
}

void PromptFilenameField::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) letFieldShow(*this);
  QLineEdit::changeEvent(event);
}

void PromptFilenameField::paintEvent(QPaintEvent* event) {
  const Theme theme(palette());
  {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintField(painter, rect(), theme, hasFocus());
  }
  QLineEdit::paintEvent(event);
}

}  // namespace quillmere
