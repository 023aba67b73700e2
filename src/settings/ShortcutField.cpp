#include "settings/ShortcutField.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QPainter>

#include "controls/Grounds.h"
#include "controls/Metrics.h"
#include "controls/Theme.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

constexpr int kWidth = 180;

}  // namespace

ShortcutField::ShortcutField(QWidget* parent) : QPushButton(parent) {
  setAutoDefault(false);
  setAccessibleName(localized("Review screenshot"));
  connect(this, &QPushButton::clicked, this, [this] { onToggle(0); });
}

void ShortcutField::show(const Content& content) {
  isRecording_ = content.isRecording;
  setText(content.title);
  const QString hint = localized("Records a new shortcut. Press Escape to cancel or Delete to clear it.");
  setAccessibleDescription(content.value + QStringLiteral(". ") + hint);
  setToolTip(isRecording_ ? localized("Type a key combination. Press Escape to cancel or Delete to clear the shortcut.")
                          : localized("Click to record a new shortcut"));
  updateGeometry();
  update();
}

QSize ShortcutField::sizeHint() const {
  // As wide while it records as before.
  const QFontMetrics metrics(scaled(font(), 1, QFont::DemiBold));
  const int widest =
      std::max(metrics.horizontalAdvance(text()), metrics.horizontalAdvance(localized("Type shortcut…")));
  return {std::max(kWidth, widest + 2 * Metrics::kPadding), Metrics::kControlHeight};
}

void ShortcutField::keyPressEvent(QKeyEvent* event) {
  const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (!isReturn || event->isAutoRepeat()) return QPushButton::keyPressEvent(event);
  onToggle(event->nativeScanCode());
}

void ShortcutField::paintEvent(QPaintEvent*) {
  const Theme theme(palette());
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  paintField(painter, rect(), theme, isRecording_ || hasFocus());
  painter.setFont(isRecording_ ? font() : scaled(font(), 1, QFont::DemiBold));
  painter.setPen(isRecording_ ? theme.secondaryText : theme.text);
  painter.setLayoutDirection(text().isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
  painter.drawText(rect(), Qt::AlignCenter, text());
}

}  // namespace quillmere
