#include "controls/CardDialog.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QWindow>
#include <QtWidgets/QStyleOption>

namespace quillmere {

CardDialog::CardDialog(const QString& title, QWidget* parent) : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint) {
  setWindowTitle(title);
  setAccessibleName(title);
  // Qt makes its window before it polishes a dialog, and the style cannot make that translucent any more.
  ensurePolished();
}

/// It has no title bar to be moved by.
void CardDialog::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && windowHandle()) windowHandle()->startSystemMove();
}

void CardDialog::paintEvent(QPaintEvent*) {
  QStyleOptionFrame frame;
  frame.initFrom(this);
  QPainter painter(this);
  style()->drawControl(QStyle::CE_ShapedFrame, &frame, &painter, this);
}

}  // namespace quillmere
